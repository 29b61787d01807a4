#include "ground/texts.h"

std::string ToUtf8(const char* cp1252) {
  std::string out;
  for (const char* p = cp1252; *p != 0; ++p) {
    const unsigned char c = static_cast<unsigned char>(*p);
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0xA0) {
      out += "\xEF\xBF\xBD";
    } else {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}
