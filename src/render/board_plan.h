// What a frame of the board shows and where, as a list of drawing steps in logical pixels of
// the back buffer: background, board lines, marked cells, pieces, portrait, status and title.
// The window carries the steps out one by one; nothing here draws.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ground/session.h"
#include "render/viewport.h"

constexpr int32_t kSpritePixels = 20;

// A colour as red, green and blue bytes in the order the Windows API packs them.
constexpr uint32_t Rgb(uint32_t r, uint32_t g, uint32_t b) {
  return r | g << 8 | b << 16;
}

constexpr uint32_t kGridLineColour = Rgb(0, 192, 255);
constexpr uint32_t kChallengeColour = Rgb(255, 0, 0);
constexpr uint32_t kStatusColour = Rgb(255, 128, 0);
constexpr uint32_t kTitleColour = Rgb(255, 192, 0);
constexpr uint32_t kLetterXColour = Rgb(0, 255, 0);
constexpr uint32_t kLetterOColour = Rgb(255, 0, 0);

struct PixelPoint {
  int32_t X = 0;
  int32_t Y = 0;
  bool operator==(const PixelPoint&) const = default;
};

struct PixelSize {
  int32_t Width = 0;
  int32_t Height = 0;
};

// Drawn size of each character's portrait, by CharacterId.
extern const PixelSize PortraitSizes[14];

enum class DrawKind {
  FillBlack,       // Rect filled with black
  CopyBackground,  // Rect copied from the background surface at the same place
  Line,            // From .. To with the board's pen (of Colour); the end point is not drawn
  FillCell,        // Rect filled with Brush (of Colour); right and bottom edges excluded
  Bitmap,          // bitmap Resource drawn at Rect's size by Raster
  Text,            // Text at At in Colour, on a transparent background
};

enum class CellBrush { None, SkyBlue, Gold, LightGreen };

// The colour of each brush of a marked cell; None paints nothing.
constexpr uint32_t BrushColour(CellBrush brush) {
  switch (brush) {
    case CellBrush::SkyBlue:
      return Rgb(0, 160, 255);
    case CellBrush::Gold:
      return Rgb(255, 210, 0);
    case CellBrush::LightGreen:
      return Rgb(128, 255, 128);
    default:
      return 0;
  }
}
enum class RasterOp { Copy, And, Or };

struct DrawOp {
  DrawKind Kind = DrawKind::FillBlack;
  PixelRect Rect;
  PixelPoint From;
  PixelPoint To;
  CellBrush Brush = CellBrush::None;
  int32_t Resource = 0;
  RasterOp Raster = RasterOp::Copy;
  PixelPoint At;
  uint32_t Colour = 0;
  std::string Text;  // Windows-1252
};

using DrawList = std::vector<DrawOp>;

// The steps that draw one piece of a player (1 or 2) in the screen cell at column x, row y:
// a sprite over its mask, a letter, or nothing, by the player, the character shown, the
// strategy number and the graphic options.
void PlanPiece(DrawList& out, int32_t x, int32_t y, int32_t player);

// A frame from the referee's board. Reads the status line that ComposeFrameLogic has just
// formatted into TextBuffer, and leaves the title line there.
DrawList PlanGridBoard();

// A frame from the engine's board, for the game of the searching character while it runs;
// the same after ComposeFrameLogic.
DrawList PlanEngineBoard();

// The whole of a repaint's composing without pixels: the frame's game effects and status line
// (ComposeFrameLogic), then the plan of the board it shows.
DrawList ComposeFrame();
