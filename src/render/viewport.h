// The sizes of the picture on the window, with no drawing: the logical size that the window
// settles to, the part of the client area the picture fills, the black margins around it, and
// the mapping of pointer positions back to logical pixels.
#pragma once

#include <cstdint>

// Both off-screen surfaces are this many pixels a side; only their top-left W x H part is used.
constexpr int32_t kBufferSide = 660;

// Extent of every black margin, whatever the window's size.
constexpr int32_t kBlackExtent = 1000;

// A rectangle as x, y, width, height.
struct PixelRect {
  int32_t X = 0;
  int32_t Y = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  bool operator==(const PixelRect&) const = default;
};

// The client area of the main window and the picture inside it, read afresh at every window
// message.
struct ViewportRecord {
  int32_t ClientWidth = 0;
  int32_t ClientHeight = 0;
  int32_t DisplayWidth = 0;   // destW: width of the picture on the window
  int32_t DisplayHeight = 0;  // destH
};

extern ViewportRecord Viewport;

// Logical position of the last pointer move, in LogicalSize coordinates.
extern int32_t MouseX;
extern int32_t MouseY;

// Counts one window message. For the first messages after start or after a new board size
// (SettleCounter below 10) the logical size follows the client area. Returns true exactly when
// the counter passes from 9 to 10: the background surface must then be refilled at the settled
// size (black over the whole surface, then the background picture at W x H).
bool SettleLogicalSize(int32_t clientWidth, int32_t clientHeight);

// Records the client size and sizes the picture in it: the whole area, or with "Troujours
// carré" the largest part that keeps the logical aspect ratio.
void FitDestination(int32_t clientWidth, int32_t clientHeight);

// Margins left and above the picture: half of what it leaves free, rounded toward zero.
int32_t MarginLeft();
int32_t MarginTop();

// How a composed frame reaches the window: which part of the back buffer is stretched where,
// then which rectangles are blacked out.
struct PresentPlan {
  PixelRect Source;       // top-left part of the back buffer
  PixelRect Destination;  // on the window
  PixelRect Black[6];
  int32_t BlackCount = 0;
};

PresentPlan PlanPresentation();

// Turns a pointer position in client pixels into logical pixels (MouseX, MouseY).
void TrackPointer(int32_t x, int32_t y);
