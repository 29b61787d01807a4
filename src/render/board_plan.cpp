#include "render/board_plan.h"

#include <cstdio>

#include "engine/engine.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "opponents/roster.h"
#include "render/frame_logic.h"
#include "resources/resource.h"

// clang-format off
const PixelSize PortraitSizes[14] = {
    {31, 30}, {29, 38}, {32, 30}, {38, 33}, {19, 39}, {32, 37}, {23, 38},
    {28, 38}, {32, 39}, {32, 49}, {23, 68}, {32, 41}, {27, 48}, {32, 32},
};
// clang-format on

namespace {

constexpr const char kTitleFormat[] = "Kalvero 4 v5.5 - Joueur %i";

// The opponent's sprite by CharacterId when the characters' own colours are on.
// clang-format off
constexpr int32_t kOwnColourSprite[kRosterSize] = {
    IDB_DISC_RED,    IDB_DISC_BLUE,   IDB_DISC_ORANGE, IDB_DISC_SILVER, IDB_DISC_RED,
    IDB_DISC_YELLOW, IDB_DISC_MAGENTA, IDB_DISC_BLUE,  IDB_DISC_CYAN,   IDB_DISC_ORANGE,
    IDB_DISC_VIOLET, IDB_DISC_SILVER, IDB_DISC_BLUE,   IDB_DISC_YELLOW,
};
// clang-format on

DrawOp Filled(DrawKind kind, PixelRect rect) {
  DrawOp op;
  op.Kind = kind;
  op.Rect = rect;
  return op;
}

DrawOp Line(PixelPoint from, PixelPoint to) {
  DrawOp op;
  op.Kind = DrawKind::Line;
  op.Colour = kGridLineColour;
  op.From = from;
  op.To = to;
  return op;
}

DrawOp Bitmap(int32_t resource, PixelRect rect, RasterOp raster) {
  DrawOp op;
  op.Kind = DrawKind::Bitmap;
  op.Resource = resource;
  op.Rect = rect;
  op.Raster = raster;
  return op;
}

DrawOp Text(PixelPoint at, uint32_t colour, const char* text) {
  DrawOp op;
  op.Kind = DrawKind::Text;
  op.At = at;
  op.Colour = colour;
  op.Text = text;
  return op;
}

void Sprite(DrawList& out, int32_t x, int32_t y, int32_t resource) {
  const PixelRect at{kCellPixels * x + 6, kCellPixels * y + 6, kSpritePixels, kSpritePixels};
  out.push_back(Bitmap(IDB_DISC_MASK, at, RasterOp::And));
  out.push_back(Bitmap(resource, at, RasterOp::Or));
}

void Letter(DrawList& out, int32_t x, int32_t y, const char* letter, uint32_t colour) {
  out.push_back(Text({kCellPixels * x + 11, kCellPixels * y + 7}, colour, letter));
}

// Background, board lines and the "Challenge" mark: what both routines draw first.
void PlanBackground(DrawList& out) {
  const SessionRecord& s = SessionState;
  const int32_t w = s.LogicalWidth;
  const int32_t h = s.LogicalHeight;
  const int32_t n = s.BoardSize;
  out.push_back(Filled(DrawKind::FillBlack, {0, 0, w, h}));
  out.push_back(Filled(DrawKind::CopyBackground, {0, 0, w, h}));
  out.push_back(Filled(DrawKind::FillBlack, {0, 0, w, 1}));
  for (int32_t k = 1; k <= n; ++k) {
    out.push_back(Line({kCellPixels, kCellPixels * k}, {kCellPixels * n, kCellPixels * k}));
    out.push_back(Line({kCellPixels * k, kCellPixels}, {kCellPixels * k, kCellPixels * n}));
  }
  if (s.Challenge != 0) {
    out.push_back(Text({kCellPixels * n - 9, kCellPixels * n + 8}, kChallengeColour, "Challenge"));
  }
}

void PlanStatus(DrawList& out) {
  if (TextBuffer[0] == 0) return;
  out.push_back(Text({0, kCellPixels * SessionState.BoardSize + 8}, kStatusColour, TextBuffer));
}

// Portrait and title line: what both routines draw last. The engine board's title stands
// 8 pixels further right.
void PlanPortraitAndTitle(DrawList& out, int32_t titleShift) {
  const SessionRecord& s = SessionState;
  const int32_t n = s.BoardSize;
  const int32_t id = IsRosterIndex(s.CharacterId) ? s.CharacterId : 0;
  const PixelSize size = PortraitSizes[id];
  out.push_back(Bitmap(PortraitResource(id),
                       {kCellPixels * n + 10, kCellPixels / 2 * n, size.Width, size.Height},
                       RasterOp::Copy));
  std::snprintf(TextBuffer, kTextBufferSize, kTitleFormat, s.CurrentPlayer);
  const int32_t x = n > 5 ? 12 * n - 36 + titleShift : 0;
  out.push_back(Text({x, 0}, kTitleColour, TextBuffer));
}

void PlanGridCell(DrawList& out, int32_t x, int32_t y, int32_t value) {
  if (value >= kMark && value <= 3 * kMark) {
    const PixelRect interior{kCellPixels * x + 1, kCellPixels * y + 1, kCellPixels - 1,
                             kCellPixels - 1};
    DrawOp fill = Filled(DrawKind::FillCell, interior);
    fill.Brush = value == kMark + 1   ? CellBrush::SkyBlue
                 : value == kMark + 2 ? CellBrush::Gold
                                      : CellBrush::LightGreen;
    fill.Colour = BrushColour(fill.Brush);
    out.push_back(fill);
    if (value == kMark + 1 || value == kMark + 2) PlanPiece(out, x, y, value - kMark);
    return;
  }
  if (value == 1 || value == 2) PlanPiece(out, x, y, value);
}

}  // namespace

void PlanPiece(DrawList& out, int32_t x, int32_t y, int32_t player) {
  const SessionRecord& s = SessionState;
  if (player == 1) {
    if (s.CharacterId == 12) return Sprite(out, x, y, IDB_DISC_RED);
    if (s.ShowImages != 0) return Sprite(out, x, y, IDB_DISC_GREEN);
    return Letter(out, x, y, "X", kLetterXColour);
  }
  if (player != 2) return;
  if (s.ShowImages == 0) {
    if (HidesLetters(s.AiNumber)) return;
    return Letter(out, x, y, "O", kLetterOColour);
  }
  if (s.CustomColours == 0 || !IsRosterIndex(s.CharacterId)) {
    return Sprite(out, x, y, IDB_DISC_RED);
  }
  Sprite(out, x, y, kOwnColourSprite[s.CharacterId]);
}

DrawList PlanGridBoard() {
  const SessionRecord& s = SessionState;
  const int32_t n = s.BoardSize;
  DrawList out;
  PlanBackground(out);
  PlanStatus(out);
  for (int32_t y = 1; y < n; ++y) {
    // With the upside-down rule the rows are shown in reverse: the row that pieces reach
    // first is at the top of the screen.
    const int32_t row = DrawsUpsideDown(s.AiNumber) ? n - y : y;
    for (int32_t x = 1; x < n; ++x) PlanGridCell(out, x, y, Grid[x][row]);
  }
  PlanPortraitAndTitle(out, 0);
  return out;
}

DrawList PlanEngineBoard() {
  const int32_t n = SessionState.BoardSize;
  DrawList out;
  PlanBackground(out);
  PlanStatus(out);
  if (EngineGameOpen() && n == kEngineBoardSize) {
    const uint8_t* const* cells = EngineBoardView();
    // Engine rows count from 0 at the bottom, its columns from 0 at the left; its side 0 is
    // the computer (player 2) and side 1 the human (player 1).
    for (int32_t y = 1; y < n; ++y) {
      for (int32_t x = 1; x < n; ++x) {
        const uint8_t v = cells[x - 1][n - 1 - y];
        if (v == 1) PlanPiece(out, x, y, 1);
        if (v == 0) PlanPiece(out, x, y, 2);
      }
    }
  }
  PlanPortraitAndTitle(out, 8);
  return out;
}

DrawList ComposeFrame() {
  const bool engine = FrameShowsEngineBoard();
  ComposeFrameLogic();
  return engine ? PlanEngineBoard() : PlanGridBoard();
}
