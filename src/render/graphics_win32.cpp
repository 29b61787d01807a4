#include "render/graphics_win32.h"

#include "ground/front_end_win32.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "render/bitmap_table.h"
#include "render/board_plan.h"
#include "render/viewport.h"
#include "resources/resource.h"

GraphicsRecord Graphics;

namespace {

// The memory surfaces holding the loaded pictures, by slot of the BitmapTable. Like every
// graphic object they live until the process ends.
HDC LoadedSurfaces[kBitmapSlots] = {};

// A memory surface of the buffers' size, compatible with the window's.
HDC CreateBufferSurface(HDC paint) {
  HDC surface = CreateCompatibleDC(paint);
  SelectObject(surface, CreateCompatibleBitmap(paint, kBufferSide, kBufferSide));
  return surface;
}

// A memory surface holding bitmap resource `resource` as the loader scales it to width x
// height (0 x 0: the size it is stored at); null for a missing resource.
HDC LoadBitmapSurface(HDC like, int32_t resource, int32_t width, int32_t height) {
  HANDLE image = LoadImageA(FrontEnd.Instance, MAKEINTRESOURCEA(resource), IMAGE_BITMAP, width,
                            height, LR_DEFAULTCOLOR);
  if (image == nullptr) return nullptr;
  HDC surface = CreateCompatibleDC(like);
  SelectObject(surface, image);
  return surface;
}

void ReleaseBitmapSurface(HDC surface) {
  HGDIOBJ image = GetCurrentObject(surface, OBJ_BITMAP);
  DeleteDC(surface);
  DeleteObject(image);
}

// The background is one black pixel above one dark blue pixel, stretched into an upper and a
// lower half. It is not loaded at the logical size: a loader may smooth what it enlarges (the
// one under Wine stretches every bitmap of more than one bit per pixel in the halftone mode),
// and the two flat halves would come out as a gradient from black to blue. So it is loaded at
// its stored size and stretched here in the COLORONCOLOR mode, which repeats pixels and never
// blends them. The other pictures keep the loader's scaling.
void DrawBackgroundPicture() {
  HDC target = Graphics.BackgroundBuffer;
  const int32_t width = SessionState.LogicalWidth;
  const int32_t height = SessionState.LogicalHeight;
  if (width <= 0 || height <= 0) return;
  HDC source = LoadBitmapSurface(target, IDB_BACKGROUND, 0, 0);
  if (source == nullptr) return;
  BITMAP stored = {};
  GetObjectA(GetCurrentObject(source, OBJ_BITMAP), sizeof stored, &stored);
  SetStretchBltMode(target, COLORONCOLOR);
  StretchBlt(target, 0, 0, width, height, source, 0, 0, stored.bmWidth, stored.bmHeight, SRCCOPY);
  ReleaseBitmapSurface(source);
}

}  // namespace

void CreateGraphicResources() {
  Graphics.TextFont = CreateFontA(18, 0, 0, 0, 0, FALSE, FALSE, FALSE, 0, OUT_DEFAULT_PRECIS,
                                  CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, VARIABLE_PITCH, "Tahoma");
  Graphics.DialogBrush = CreateSolidBrush(RGB(128, 192, 255));
  Graphics.GoldBrush = CreateSolidBrush(BrushColour(CellBrush::Gold));
  Graphics.SkyBlueBrush = CreateSolidBrush(BrushColour(CellBrush::SkyBlue));
  Graphics.LightGreenBrush = CreateSolidBrush(BrushColour(CellBrush::LightGreen));
  Graphics.WaitCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32514));
}

void DrawResourceBitmap(HDC target, int32_t resource, int32_t x, int32_t y, int32_t width,
                        int32_t height, DWORD rop) {
  // A size of 0 would make the loader take the stored size; an empty area draws nothing.
  if (target == nullptr || width <= 0 || height <= 0) return;
  const BitmapSlot slot = FindBitmapSlot(resource, width, height);
  if (slot.Index < 0) {
    HDC source = LoadBitmapSurface(target, resource, width, height);
    if (source == nullptr) return;
    BitBlt(target, x, y, width, height, source, 0, 0, rop);
    ReleaseBitmapSurface(source);
    return;
  }
  HDC& source = LoadedSurfaces[slot.Index];
  // A missing resource stays missing: its slot keeps no surface and draws nothing.
  if (slot.Fresh) source = LoadBitmapSurface(target, resource, width, height);
  if (source != nullptr) BitBlt(target, x, y, width, height, source, 0, 0, rop);
}

void FirstPaintSetup(HDC paint) {
  NewGame();
  Graphics.GridPen = CreatePen(PS_SOLID, 1, kGridLineColour);
  Graphics.BackBuffer = CreateBufferSurface(paint);
  SelectObject(Graphics.BackBuffer, Graphics.GridPen);
  Graphics.BackgroundBuffer = CreateBufferSurface(paint);
  DrawBackgroundPicture();
}

void RefillBackground() {
  // Before the first repaint there is no surface yet; the first repaint fills it anyway.
  if (Graphics.BackgroundBuffer == nullptr) return;
  PatBlt(Graphics.BackgroundBuffer, 0, 0, kBufferSide, kBufferSide, BLACKNESS);
  DrawBackgroundPicture();
}

void PresentBackBuffer(HDC paint) {
  const PresentPlan plan = PlanPresentation();
  SetStretchBltMode(paint, SessionState.Smoothing != 0 ? HALFTONE : COLORONCOLOR);
  SetBrushOrgEx(paint, 0, 0, nullptr);  // the halftone mode needs the brush origin reset
  const PixelRect& to = plan.Destination;
  const PixelRect& from = plan.Source;
  if (Graphics.BackBuffer != nullptr && to.Width > 0 && to.Height > 0 && from.Width > 0 &&
      from.Height > 0) {
    StretchBlt(paint, to.X, to.Y, to.Width, to.Height, Graphics.BackBuffer, from.X, from.Y,
               from.Width, from.Height, SRCCOPY);
  }
  for (int32_t i = 0; i < plan.BlackCount; ++i) {
    const PixelRect& r = plan.Black[i];
    PatBlt(paint, r.X, r.Y, r.Width, r.Height, BLACKNESS);
  }
}
