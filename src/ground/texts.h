// French texts. The sources are UTF-8; the program keeps every text as the Windows-1252 bytes
// that the Windows "A" functions take, converted at compile time. The driver converts the names
// typed in its scripts by the same rule at run time, and turns texts back into UTF-8 with
// ToUtf8() when it prints them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// What NextCp1252 gives for a character that Windows-1252 has no byte for here.
constexpr int32_t kNotLatin1 = -1;

// The Windows-1252 byte of the UTF-8 character that starts at text[*at], and *at moved past
// it. The game's texts use only U+0000..U+00FF, where the two encodings agree; any other
// character, or a malformed one, gives kNotLatin1.
constexpr int32_t NextCp1252(const char* text, std::size_t size, std::size_t* at) {
  const unsigned char lead = static_cast<unsigned char>(text[(*at)++]);
  if (lead < 0x80) return lead;
  const std::size_t start = *at;
  while (*at < size && (static_cast<unsigned char>(text[*at]) & 0xC0) == 0x80) ++*at;
  if ((lead != 0xC2 && lead != 0xC3) || *at != start + 1) return kNotLatin1;
  return ((lead & 0x1F) << 6) | (static_cast<unsigned char>(text[start]) & 0x3F);
}

// A text in Windows-1252 in a field of N bytes, terminated by a zero byte. Built from a UTF-8
// literal at compile time: a character outside Latin-1, or a text that does not fit the field
// with its zero byte, fails the build.
template <std::size_t N>
struct Cp1252Text {
  std::array<char, N> Bytes{};

  template <std::size_t M>
  consteval Cp1252Text(const char (&utf8)[M]) {
    std::size_t out = 0;
    for (std::size_t at = 0; at + 1 < M;) {
      const int32_t c = NextCp1252(utf8, M - 1, &at);
      if (c == kNotLatin1 || out + 1 >= N) throw "text outside Latin-1 or longer than its field";
      Bytes[out++] = static_cast<char>(c);
    }
  }
  constexpr const char* c_str() const { return Bytes.data(); }
  constexpr operator const char*() const { return Bytes.data(); }
};

// A text in a field of its own size: the UTF-8 literal's size is enough for its conversion.
template <std::size_t M>
consteval Cp1252Text<M> Cp1252(const char (&utf8)[M]) {
  return Cp1252Text<M>(utf8);
}

// Windows-1252 text to UTF-8 (the bytes 0x80..0x9F, unused by the game, map to U+FFFD).
std::string ToUtf8(const char* cp1252);

// UTF-8 text to Windows-1252, each character beyond Latin-1 (or malformed) as '?'.
std::string FromUtf8(std::string_view utf8);
