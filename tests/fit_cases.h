// Cases of the aspect fit of the picture in the client area, shared by the host's unit test
// and the check that the 32-bit Windows build computes the same sizes.
#pragma once

#include <cstdint>

struct FitCase {
  int32_t W, H, square, clientW, clientH, destW, destH, offX, offY;
};

inline constexpr FitCase kFitCases[] = {
    {400, 200, 0, 1000, 200, 1000, 200, 0, 0},   // stretched to the whole area
    {400, 200, 1, 400, 200, 400, 200, 0, 0},     // exactly the logical size: unscaled
    {400, 200, 1, 1000, 200, 401, 200, 299, 0},  // wider: one pixel more than the ratio
    {400, 200, 1, 400, 600, 400, 200, 0, 200},   // taller: height from the width
    {400, 300, 1, 800, 600, 800, 600, 0, 0},     // same aspect, larger
    {350, 500, 1, 700, 1000, 700, 1000, 0, 0},   // a ratio that single precision rounds down
    {285, 261, 1, 570, 300, 328, 300, 121, 0},
    // The ratio rounded down in single precision, times the height, falls just short of a
    // whole number: only the ratio is rounded to single precision, never the product.
    {345, 350, 1, 700, 700, 690, 700, 5, 0},
    {465, 410, 1, 940, 820, 930, 820, 5, 0},
    {400, 200, 1, 0, 0, 0, 0, 0, 0},  // minimised: nothing to divide by
    {0, 0, 1, 300, 200, 300, 200, 0, 0},
};
