// French texts. The sources are UTF-8; the program keeps every text as the Windows-1252 bytes
// that the Windows "A" functions take, converted at compile time by Cp1252(). The driver turns
// them back into UTF-8 with ToUtf8() when it prints them.
#pragma once

#include <array>
#include <cstddef>
#include <string>

// A text in Windows-1252, terminated by a zero byte.
template <std::size_t N>
struct Cp1252Text {
  std::array<char, N> Bytes{};
  constexpr const char* c_str() const { return Bytes.data(); }
  constexpr operator const char*() const { return Bytes.data(); }
};

// Number of Windows-1252 bytes of a UTF-8 literal that uses only characters up to U+00FF.
consteval std::size_t Cp1252Length(const char* utf8) {
  std::size_t n = 0;
  for (std::size_t i = 0; utf8[i] != 0; ++i) {
    if ((static_cast<unsigned char>(utf8[i]) & 0xC0) != 0x80) ++n;  // skip continuation bytes
  }
  return n;
}

// Converts a UTF-8 literal to Windows-1252. Only U+0000..U+00FF are used by the game's texts,
// and there the two encodings agree; anything else fails the build.
template <std::size_t N>
consteval auto Cp1252(const char (&utf8)[N]) {
  Cp1252Text<N> out{};
  std::size_t o = 0;
  for (std::size_t i = 0; i + 1 < N; ++i) {
    const unsigned char c = static_cast<unsigned char>(utf8[i]);
    if (c < 0x80) {
      out.Bytes[o++] = static_cast<char>(c);
    } else if ((c & 0xE0) == 0xC0 && c <= 0xC3) {
      const unsigned char next = static_cast<unsigned char>(utf8[++i]);
      out.Bytes[o++] = static_cast<char>(((c & 0x1F) << 6) | (next & 0x3F));
    } else {
      throw "text outside Windows-1252's Latin-1 range";  // not a constant expression: build fails
    }
  }
  return out;
}

// Windows-1252 text to UTF-8 (the bytes 0x80..0x9F, unused by the game, map to U+FFFD).
std::string ToUtf8(const char* cp1252);
