#include "dialogs/dialog_text.h"

#include <limits>

int32_t ReadLeadingNumber(const char* text) {
  const char* p = text;
  while (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\v' || *p == '\f' || *p == '\r') ++p;
  bool negative = false;
  if (*p == '+' || *p == '-') negative = *p++ == '-';
  constexpr int64_t kLimit = int64_t{std::numeric_limits<int32_t>::max()} + 1;
  int64_t value = 0;
  for (; *p >= '0' && *p <= '9'; ++p) {
    value = value * 10 + (*p - '0');
    if (value > kLimit) value = kLimit;  // saturate; the digits that follow change nothing
  }
  if (negative) return static_cast<int32_t>(-value);
  return static_cast<int32_t>(value < kLimit ? value : kLimit - 1);
}
