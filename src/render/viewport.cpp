#include "render/viewport.h"

#include <algorithm>

#include "ground/session.h"

ViewportRecord Viewport;
int32_t MouseX = 0;
int32_t MouseY = 0;

bool SettleLogicalSize(int32_t clientWidth, int32_t clientHeight) {
  SessionRecord& s = SessionState;
  const int32_t c = s.SettleCounter;
  s.SettleCounter = c + 1;
  if (c < 10) {
    s.LogicalWidth = clientWidth;
    s.LogicalHeight = clientHeight;
  }
  return c + 1 == 10;
}

void FitDestination(int32_t clientWidth, int32_t clientHeight) {
  const int32_t w = SessionState.LogicalWidth;
  const int32_t h = SessionState.LogicalHeight;
  Viewport.ClientWidth = clientWidth;
  Viewport.ClientHeight = clientHeight;
  Viewport.DisplayWidth = clientWidth;
  Viewport.DisplayHeight = clientHeight;
  if (SessionState.AlwaysSquare == 0 || (clientWidth == w && clientHeight == h)) return;
  // An empty side has no aspect ratio to keep (a minimised window, or one that settled while
  // minimised): the picture then simply fills the client area.
  if (w <= 0 || h <= 0 || clientWidth <= 0 || clientHeight <= 0) return;
  // The ratio is rounded to single precision once, and that rounding is part of the rule: the
  // widened width is client height x r + 1 with r as a float, the product and the sum taken in
  // double and then truncated. Nothing else is rounded to single precision: the quotients of
  // the comparisons are taken in double, where they are exact enough that no rounding can turn
  // an equality into an inequality or back (a product in float would: 345 x 350 in a 700 x
  // 700 client must give 690, not 691).
  const float r = static_cast<float>(w) / static_cast<float>(h);
  if (static_cast<double>(clientWidth) / clientHeight > static_cast<double>(r)) {
    Viewport.DisplayWidth =
        static_cast<int32_t>(static_cast<double>(clientHeight) * static_cast<double>(r) + 1.0);
  }
  const int32_t destW = Viewport.DisplayWidth;
  if (static_cast<double>(clientHeight) / destW > static_cast<double>(h) / w) {
    Viewport.DisplayHeight = static_cast<int32_t>(static_cast<int64_t>(destW) * h / w);
  }
}

int32_t MarginLeft() {
  return (Viewport.ClientWidth - Viewport.DisplayWidth) / 2;
}

int32_t MarginTop() {
  return (Viewport.ClientHeight - Viewport.DisplayHeight) / 2;
}

namespace {

// How much of a displayed extent the buffer can fill. A logical size beyond the 660 pixels of
// the buffers has nothing behind its excess; that part of the picture is shown black, and the
// rest keeps the scale of the whole, so nothing drawn moves. An empty logical size shows
// nothing at all.
int32_t ShownExtent(int32_t displayed, int32_t logical) {
  if (logical <= 0) return 0;
  return static_cast<int32_t>(static_cast<int64_t>(displayed) * std::min(logical, kBufferSide) /
                              logical);
}

}  // namespace

PresentPlan PlanPresentation() {
  const int32_t w = SessionState.LogicalWidth;
  const int32_t h = SessionState.LogicalHeight;
  const int32_t offX = MarginLeft();
  const int32_t offY = MarginTop();
  const int32_t destW = Viewport.DisplayWidth;
  const int32_t destH = Viewport.DisplayHeight;
  const int32_t shownW = ShownExtent(destW, w);
  const int32_t shownH = ShownExtent(destH, h);

  PresentPlan plan;
  plan.Source = {0, 0, std::clamp(w, 0, kBufferSide), std::clamp(h, 0, kBufferSide)};
  plan.Destination = {offX, offY, shownW, shownH};
  auto black = [&plan](PixelRect r) { plan.Black[plan.BlackCount++] = r; };
  // A margin of a single pixel on the left or at the top is left as it is.
  if (offX > 1) black({0, 0, offX, kBlackExtent});
  if (offY > 1) black({0, 0, kBlackExtent, offY});
  black({offX + destW, 0, kBlackExtent, kBlackExtent});
  black({0, offY + destH, kBlackExtent, kBlackExtent});
  if (shownW < destW) black({offX + shownW, offY, destW - shownW, destH});
  if (shownH < destH) black({offX, offY + shownH, destW, destH - shownH});
  return plan;
}

void TrackPointer(int32_t x, int32_t y) {
  // A picture of no width or no height (a minimised window) has no point under the pointer:
  // the coordinate of that axis keeps its last value rather than being divided by zero.
  const int32_t destW = Viewport.DisplayWidth;
  const int32_t destH = Viewport.DisplayHeight;
  if (destW != 0) {
    MouseX = static_cast<int32_t>(static_cast<int64_t>(x - MarginLeft()) *
                                  SessionState.LogicalWidth / destW);
  }
  if (destH != 0) {
    MouseY = static_cast<int32_t>(static_cast<int64_t>(y - MarginTop()) *
                                  SessionState.LogicalHeight / destH);
  }
}
