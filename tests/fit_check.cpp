// The aspect fit as the Windows build computes it: every case of the host's fit table through
// the real FitDestination, built with the Windows toolchain and run under Wine. It exists for
// the 32-bit build, whose floating point may differ from the host's; exits 1 on a mismatch.
#include <algorithm>
#include <cstdio>
#include <iterator>

#include "fit_cases.h"
#include "ground/session.h"
#include "render/viewport.h"

int main() {
  int mismatches = 0;
  for (const FitCase& c : kFitCases) {
    SessionState.LogicalWidth = c.W;
    SessionState.LogicalHeight = c.H;
    SessionState.AlwaysSquare = c.square;
    FitDestination(c.clientW, c.clientH);
    const int32_t got[] = {Viewport.DisplayWidth, Viewport.DisplayHeight, MarginLeft(),
                           MarginTop()};
    const int32_t want[] = {c.destW, c.destH, c.offX, c.offY};
    if (std::equal(std::begin(got), std::end(got), std::begin(want))) continue;
    std::printf("%dx%d in %dx%d: picture %dx%d at (%d,%d), expected %dx%d at (%d,%d)\n", c.W, c.H,
                c.clientW, c.clientH, got[0], got[1], got[2], got[3], want[0], want[1], want[2],
                want[3]);
    ++mismatches;
  }
  const int cases = static_cast<int>(sizeof kFitCases / sizeof kFitCases[0]);
  std::printf("fit check (%d-bit): %d of %d cases as on the host\n",
              static_cast<int>(sizeof(void*) * 8), cases - mismatches, cases);
  return mismatches == 0 ? 0 : 1;
}
