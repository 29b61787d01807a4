// What a frame shows and where: board, marked cells, pieces, the engine's board, texts, portrait.
#include <algorithm>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

#include "engine/engine.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "render/board_plan.h"
#include "render/frame_logic.h"
#include "resources/resource.h"
#include "test_support.h"

namespace {

using BoardPlanTest = CoreTest;

std::vector<DrawOp> OfKind(const DrawList& list, DrawKind kind) {
  std::vector<DrawOp> out;
  std::copy_if(list.begin(), list.end(), std::back_inserter(out),
               [kind](const DrawOp& op) { return op.Kind == kind; });
  return out;
}

// What one cell shows: its brush, then its sprite (-1 for one not drawn right over its mask)
// or its letter, or nothing.
struct CellLook {
  CellBrush Brush = CellBrush::None;
  int32_t Sprite = 0;
  std::string Letter;
  bool operator==(const CellLook&) const = default;
};

CellLook Disc(int32_t sprite) {
  return {CellBrush::None, sprite, ""};
}

CellLook LookAt(const DrawList& list, int32_t x, int32_t y) {
  CellLook look;
  const PixelRect sprite{30 * x + 6, 30 * y + 6, 20, 20};
  for (size_t i = 0; i < list.size(); ++i) {
    const DrawOp& op = list[i];
    if (op.Kind == DrawKind::FillCell && op.Rect == PixelRect{30 * x + 1, 30 * y + 1, 29, 29}) {
      look.Brush = op.Brush;
    }
    if (op.Kind == DrawKind::Bitmap && op.Raster == RasterOp::Or && op.Rect == sprite) {
      const bool masked = i > 0 && list[i - 1].Kind == DrawKind::Bitmap &&
                          list[i - 1].Resource == IDB_DISC_MASK &&
                          list[i - 1].Raster == RasterOp::And && list[i - 1].Rect == sprite;
      look.Sprite = masked ? op.Resource : -1;
    }
    if (op.Kind == DrawKind::Text && op.At == PixelPoint{30 * x + 11, 30 * y + 7}) {
      look.Letter = op.Text;
    }
  }
  return look;
}

TEST_F(BoardPlanTest, FrameFromBackgroundToTitleFollowsTheBoardSize) {
  // Challenge: where "Challenge" is drawn; the status line starts at x 0 on the same line.
  // clang-format off
  struct Row { const char* Name; int32_t BoardSize, CharacterId, TitleX; PixelPoint Challenge;
               PixelRect Portrait; };
  const Row rows[] = {{"FiveKeepsTheTitleLeft", 5, 0, 0, {141, 158}, {160, 75, 31, 30}},
                      {"SixShiftsIt", 6, 10, 36, {171, 188}, {190, 90, 23, 68}},
                      {"Seven", 8, 0, 60, {231, 248}, {250, 120, 31, 30}},
                      {"Largest", 20, 13, 204, {591, 608}, {610, 300, 32, 32}}};
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.BoardSize = row.BoardSize;
    SessionState.CharacterId = row.CharacterId;
    SessionState.Challenge = 1;
    SessionState.LogicalWidth = 293;
    SessionState.LogicalHeight = 254;
    ComposeFrameLogic();
    const DrawList frame = PlanGridBoard();
    // The background first: black, the background picture, then the top pixel row black again.
    ASSERT_GE(frame.size(), 3u);
    const DrawKind kinds[] = {DrawKind::FillBlack, DrawKind::CopyBackground, DrawKind::FillBlack};
    const PixelRect rects[] = {{0, 0, 293, 254}, {0, 0, 293, 254}, {0, 0, 293, 1}};
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(frame[i].Kind, kinds[i]) << i;
      EXPECT_EQ(frame[i].Rect, rects[i]) << i;
    }
    const int32_t n = row.BoardSize;
    const std::vector<DrawOp> lines = OfKind(frame, DrawKind::Line);
    ASSERT_EQ(lines.size(), 2u * n);  // n each way, framing the cells
    for (int32_t k = 1; k <= n; ++k) {
      EXPECT_EQ(lines[2 * k - 2].From, (PixelPoint{30, 30 * k}));
      EXPECT_EQ(lines[2 * k - 2].To, (PixelPoint{30 * n, 30 * k}));
      EXPECT_EQ(lines[2 * k - 1].From, (PixelPoint{30 * k, 30}));
      EXPECT_EQ(lines[2 * k - 1].To, (PixelPoint{30 * k, 30 * n}));
    }
    // Each line carries the board pen's colour, for a host that has no pen of its own.
    for (const DrawOp& line : lines) EXPECT_EQ(line.Colour, Rgb(0, 192, 255));
    using Text = std::tuple<std::string, PixelPoint, uint32_t>;
    std::vector<Text> texts;
    for (const DrawOp& op : OfKind(frame, DrawKind::Text))
      texts.emplace_back(op.Text, op.At, op.Colour);
    EXPECT_EQ(texts, (std::vector<Text>{
                         {"Challenge", row.Challenge, Rgb(255, 0, 0)},
                         {"Facile", {0, row.Challenge.Y}, Rgb(255, 128, 0)},
                         {"Kalvero 4 v5.5 - Joueur 1", {row.TitleX, 0}, Rgb(255, 192, 0)}}));
    const DrawOp portrait = OfKind(frame, DrawKind::Bitmap).back();
    EXPECT_EQ(portrait.Resource, 30000 + row.CharacterId);
    EXPECT_EQ(portrait.Rect, row.Portrait);
    EXPECT_EQ(portrait.Raster, RasterOp::Copy);
  });
}

TEST_F(BoardPlanTest, GridCellsByValueAndStrategy) {
  // A value in grid column 3, row 5, and the screen row that shows it: upside down with
  // strategy 13, so that the row a piece reaches first is on top.
  const CellLook marked{CellBrush::LightGreen, 0, ""};
  // clang-format off
  struct Row { const char* Name; int32_t Ai; uint8_t Value; int32_t ScreenRow; CellLook Look; };
  const Row rows[] = {
    {"Empty", 0, 0, 5, {}}, {"Piece1", 0, 1, 5, Disc(IDB_DISC_GREEN)},
    {"Piece2", 0, 2, 5, Disc(IDB_DISC_RED)}, {"Unknown", 0, 3, 5, {}},
    {"MarkedEmpty", 0, 16, 5, marked}, {"MarkedPiece1", 0, 17, 5, {CellBrush::SkyBlue, IDB_DISC_GREEN, ""}},
    {"MarkedPiece2", 0, 18, 5, {CellBrush::Gold, IDB_DISC_RED, ""}}, {"MarkedTwice", 0, 33, 5, marked},
    {"HighestMarked", 0, 48, 5, marked}, {"BeyondTheMarks", 0, 49, 5, {}},
    {"UpsideDown", 13, 1, 3, Disc(IDB_DISC_GREEN)},
    {"UpsideDownMarked", 13, 18, 3, {CellBrush::Gold, IDB_DISC_RED, ""}},
    {"OtherStrategiesUpright", 12, 1, 5, Disc(IDB_DISC_GREEN)},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.AiNumber = row.Ai;
    Grid[3][5] = row.Value;
    ComposeFrameLogic();
    EXPECT_EQ(LookAt(PlanGridBoard(), 3, row.ScreenRow), row.Look);
  });
}

// A marked cell's step carries its brush's colour, so that a host paints it without a table of
// its own: sky blue under the first player's line, gold under the second's, light green elsewhere.
TEST_F(BoardPlanTest, MarkedCellsCarryTheirBrushColour) {
  // clang-format off
  struct Row { const char* Name; uint8_t Value; CellBrush Brush; uint32_t Colour; };
  const Row rows[] = {{"FirstPlayersLine", 17, CellBrush::SkyBlue, Rgb(0, 160, 255)},
                      {"SecondPlayersLine", 18, CellBrush::Gold, Rgb(255, 210, 0)},
                      {"EmptyMarked", 16, CellBrush::LightGreen, Rgb(128, 255, 128)},
                      {"MarkedTwice", 33, CellBrush::LightGreen, Rgb(128, 255, 128)}};
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    Grid[2][4] = row.Value;
    ComposeFrameLogic();
    const std::vector<DrawOp> fills = OfKind(PlanGridBoard(), DrawKind::FillCell);
    ASSERT_EQ(fills.size(), 1u);
    EXPECT_EQ(fills[0].Brush, row.Brush);
    EXPECT_EQ(fills[0].Colour, row.Colour);
  });
}

TEST_F(BoardPlanTest, PieceByPlayerCharacterStrategyAndOptions) {
  const auto letter = [](const char* text) { return CellLook{CellBrush::None, 0, text}; };
  // The human's red sprite and the computer's colour follow the character shown; the hiding of
  // the computer's letters follows the strategy number.
  // clang-format off
  struct Row { const char* Name; int32_t Player, CharacterId, AiNumber, ShowImages, CustomColours;
               CellLook Look; };
  const Row rows[] = {
    {"HumanOfCharacter12IsRedEvenWithoutImages", 1, 12, 0, 0, 0, Disc(IDB_DISC_RED)},
    {"HumanIsGreen", 1, 0, 0, 1, 1, Disc(IDB_DISC_GREEN)},
    {"HumanLetterIsNeverHidden", 1, 5, 12, 0, 1, letter("X")},
    {"Strategy12HidesTheComputersLetters", 2, 3, 12, 0, 1, {}},
    {"Character12ShowsItsLetters", 2, 12, 0, 0, 1, letter("O")},
    {"Strategy12ShowsTheComputersSprites", 2, 8, 12, 1, 1, Disc(IDB_DISC_CYAN)},
    {"WithoutOwnColoursRed", 2, 6, 0, 1, 0, Disc(IDB_DISC_RED)},
    {"NoPlayer", 0, 1, 0, 1, 1, {}}, {"NoThirdPlayer", 3, 1, 0, 1, 1, {}},
    // Each character's own colour; neighbours in the roster differ, the last one too.
    {"Own1", 2, 1, 0, 1, 1, Disc(IDB_DISC_BLUE)}, {"Own2", 2, 2, 0, 1, 1, Disc(IDB_DISC_ORANGE)},
    {"Own13", 2, 13, 0, 1, 1, Disc(IDB_DISC_YELLOW)},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.CharacterId = row.CharacterId;
    SessionState.AiNumber = row.AiNumber;
    SessionState.ShowImages = row.ShowImages;
    SessionState.CustomColours = row.CustomColours;
    DrawList steps;
    PlanPiece(steps, 2, 3, row.Player);
    EXPECT_EQ(LookAt(steps, 2, 3), row.Look);
    if (!row.Look.Letter.empty()) {
      EXPECT_EQ(steps[0].Colour, row.Look.Letter == "X" ? Rgb(0, 255, 0) : Rgb(255, 0, 0));
    }
  });
}

TEST_F(BoardPlanTest, EngineBoardIsShownWithItsRowsFromTheBottom) {
  SessionState.AiNumber = 10;
  SessionState.CharacterId = 10;
  NewGame();
  ASSERT_TRUE(EnginePlay(1, 0));  // the human, engine column 0, bottom row
  ASSERT_TRUE(EnginePlay(0, 0));  // the engine on top of it
  ASSERT_TRUE(FrameShowsEngineBoard());
  ComposeFrameLogic();
  const DrawList frame = PlanEngineBoard();
  EXPECT_EQ(LookAt(frame, 1, 7), Disc(IDB_DISC_GREEN));
  EXPECT_EQ(LookAt(frame, 1, 6), Disc(IDB_DISC_VIOLET));
  EXPECT_EQ(OfKind(frame, DrawKind::Bitmap).size(), 5u);  // two pieces and the portrait
  EXPECT_EQ(frame.back().At, (PixelPoint{68, 0}));        // the engine board's title
  EXPECT_EQ(OfKind(frame, DrawKind::Bitmap).back().Rect, (PixelRect{250, 120, 23, 68}));
}

}  // namespace
