#include <string>

#include "render/board_plan.h"
#include "render/frame_logic.h"
#include "render/graphics_win32.h"

namespace {

HBRUSH BrushOf(CellBrush brush) {
  switch (brush) {
    case CellBrush::SkyBlue:
      return Graphics.SkyBlueBrush;
    case CellBrush::Gold:
      return Graphics.GoldBrush;
    case CellBrush::LightGreen:
      return Graphics.LightGreenBrush;
    case CellBrush::None:
      break;
  }
  return nullptr;
}

DWORD RasterOf(RasterOp raster) {
  switch (raster) {
    case RasterOp::And:
      return SRCAND;
    case RasterOp::Or:
      return SRCPAINT;
    case RasterOp::Copy:
      break;
  }
  return SRCCOPY;
}

// Carries out the drawing steps in the back buffer, in their order.
void RunDrawList(const DrawList& steps) {
  HDC dc = Graphics.BackBuffer;
  if (dc == nullptr) return;
  SelectObject(dc, Graphics.TextFont);
  SetBkMode(dc, TRANSPARENT);
  for (const DrawOp& op : steps) {
    const PixelRect& r = op.Rect;
    switch (op.Kind) {
      case DrawKind::FillBlack:
        PatBlt(dc, r.X, r.Y, r.Width, r.Height, BLACKNESS);
        break;
      case DrawKind::CopyBackground:
        BitBlt(dc, r.X, r.Y, r.Width, r.Height, Graphics.BackgroundBuffer, r.X, r.Y, SRCCOPY);
        break;
      case DrawKind::Line:
        MoveToEx(dc, op.From.X, op.From.Y, nullptr);
        LineTo(dc, op.To.X, op.To.Y);
        break;
      case DrawKind::FillCell: {
        const RECT cell{r.X, r.Y, r.X + r.Width, r.Y + r.Height};
        FillRect(dc, &cell, BrushOf(op.Brush));
        break;
      }
      case DrawKind::Bitmap:
        DrawResourceBitmap(dc, op.Resource, r.X, r.Y, r.Width, r.Height, RasterOf(op.Raster));
        break;
      case DrawKind::Text:
        SetTextColor(dc, op.Colour);
        TextOutA(dc, op.At.X, op.At.Y, op.Text.data(), static_cast<int>(op.Text.size()));
        break;
    }
  }
}

}  // namespace

void PaintGridBoard() {
  ComposeFrameLogic();
  RunDrawList(PlanGridBoard());
}

void PaintEngineBoard() {
  ComposeFrameLogic();
  RunDrawList(PlanEngineBoard());
}

void DrawPiece(int32_t x, int32_t y, int32_t player) {
  DrawList steps;
  PlanPiece(steps, x, y, player);
  RunDrawList(steps);
}
