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
  // The ratio is held in single precision and the widened width gets one pixel more; both are
  // part of the rule, so the comparisons are made in single precision as well.
  const float r = static_cast<float>(w) / static_cast<float>(h);
  if (static_cast<float>(clientWidth) / static_cast<float>(clientHeight) > r) {
    Viewport.DisplayWidth = static_cast<int32_t>(static_cast<float>(clientHeight) * r + 1.0);
  }
  const int32_t destW = Viewport.DisplayWidth;
  if (static_cast<float>(clientHeight) / static_cast<float>(destW) >
      static_cast<float>(h) / static_cast<float>(w)) {
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
