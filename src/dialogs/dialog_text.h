// Reading numbers typed into the dialogs' edit fields.
#pragma once

#include <cstdint>

// Reads a decimal integer the way the C library's atoi does: leading blanks, one optional
// sign, then digits up to the first other character. A text without leading digits, and an
// empty text, read as 0. A number beyond the 32-bit range reads as the nearest limit.
int32_t ReadLeadingNumber(const char* text);
