// What a frame shows and where: board geometry, marked cells, the pieces of each player and
// character, the upside-down board, the engine's board, portrait, status and title.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "render/board_plan.h"
#include "render/frame_logic.h"
#include "resources/resource.h"
#include "test_support.h"

namespace {

class BoardPlanTest : public CoreTest {
 protected:
  void TearDown() override { EndEngineGame(); }

  static std::vector<DrawOp> OfKind(const DrawList& list, DrawKind kind) {
    std::vector<DrawOp> out;
    std::copy_if(list.begin(), list.end(), std::back_inserter(out),
                 [kind](const DrawOp& op) { return op.Kind == kind; });
    return out;
  }

  static const DrawOp* TextOp(const DrawList& list, const std::string& text) {
    for (const DrawOp& op : list) {
      if (op.Kind == DrawKind::Text && op.Text == text) return &op;
    }
    return nullptr;
  }

  static DrawList GridFrame() {
    ComposeFrameLogic();
    return PlanGridBoard();
  }
};

// What one cell shows, in a form that tests compare easily: the brush, then the sprite
// resource or the letter, or nothing.
struct CellLook {
  CellBrush Brush = CellBrush::None;
  int32_t Sprite = 0;
  std::string Letter;
  bool operator==(const CellLook&) const = default;
};

CellLook LookAt(const DrawList& list, int32_t x, int32_t y) {
  CellLook look;
  for (const DrawOp& op : list) {
    if (op.Kind == DrawKind::FillCell && op.Rect.X == 30 * x + 1 && op.Rect.Y == 30 * y + 1) {
      look.Brush = op.Brush;
    }
    if (op.Kind == DrawKind::Bitmap && op.Raster == RasterOp::Or && op.Rect.X == 30 * x + 6 &&
        op.Rect.Y == 30 * y + 6) {
      look.Sprite = op.Resource;
    }
    if (op.Kind == DrawKind::Text && op.At.X == 30 * x + 11 && op.At.Y == 30 * y + 7) {
      look.Letter = op.Text;
    }
  }
  return look;
}

TEST_F(BoardPlanTest, SevenCellBoardGeometry) {
  SessionState.Challenge = 1;
  const DrawList frame = GridFrame();
  const std::vector<DrawOp> lines = OfKind(frame, DrawKind::Line);
  ASSERT_EQ(lines.size(), 16u);  // 8 each way
  for (int32_t k = 1; k <= 8; ++k) {
    EXPECT_EQ(lines[2 * k - 2].From, (PixelPoint{30, 30 * k}));
    EXPECT_EQ(lines[2 * k - 2].To, (PixelPoint{240, 30 * k}));
    EXPECT_EQ(lines[2 * k - 1].From, (PixelPoint{30 * k, 30}));
    EXPECT_EQ(lines[2 * k - 1].To, (PixelPoint{30 * k, 240}));
  }
  struct Text {
    const char* text;
    PixelPoint at;
    uint32_t colour;
  };
  for (const Text& t :
       {Text{"Challenge", {231, 248}, Rgb(255, 0, 0)}, Text{"Facile", {0, 248}, Rgb(255, 128, 0)},
        Text{"Kalvero 4 v5.5 - Joueur 1", {60, 0}, Rgb(255, 192, 0)}}) {
    const DrawOp* op = TextOp(frame, t.text);
    ASSERT_NE(op, nullptr) << t.text;
    EXPECT_EQ(op->At, t.at) << t.text;
    EXPECT_EQ(op->Colour, t.colour) << t.text;
  }
  const DrawOp portrait = OfKind(frame, DrawKind::Bitmap).back();
  EXPECT_EQ(portrait.Resource, 30000);
  EXPECT_EQ(portrait.Rect, (PixelRect{250, 120, 31, 30}));
  EXPECT_EQ(portrait.Raster, RasterOp::Copy);
}

TEST_F(BoardPlanTest, BackgroundIsLaidBeforeAnythingElse) {
  SessionState.LogicalWidth = 293;
  SessionState.LogicalHeight = 254;
  const DrawList frame = GridFrame();
  ASSERT_GE(frame.size(), 3u);
  const DrawKind kinds[] = {DrawKind::FillBlack, DrawKind::CopyBackground, DrawKind::FillBlack};
  const PixelRect rects[] = {{0, 0, 293, 254}, {0, 0, 293, 254}, {0, 0, 293, 1}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(frame[i].Kind, kinds[i]) << i;
    EXPECT_EQ(frame[i].Rect, rects[i]) << i;
  }
  EXPECT_EQ(TextOp(frame, "Challenge"), nullptr);
}

TEST_F(BoardPlanTest, TitleAndPortraitFollowTheBoardSize) {
  struct Case {
    int32_t boardSize, characterId, titleX;
    PixelRect portrait;
  };
  // clang-format off
  const Case cases[] = {{5, 0, 0, {160, 75, 31, 30}}, {6, 10, 36, {190, 90, 23, 68}},
                        {11, 4, 96, {340, 165, 19, 39}}, {20, 13, 204, {610, 300, 32, 32}}};
  // clang-format on
  for (const Case& c : cases) {
    SessionState.BoardSize = c.boardSize;
    SessionState.CharacterId = c.characterId;
    const DrawList frame = GridFrame();
    EXPECT_EQ(OfKind(frame, DrawKind::Line).size(), 2u * c.boardSize);
    const DrawOp& title = frame.back();
    EXPECT_EQ(title.At, (PixelPoint{c.titleX, 0})) << c.boardSize;
    const DrawOp portrait = OfKind(frame, DrawKind::Bitmap).back();
    EXPECT_EQ(portrait.Resource, 30000 + c.characterId);
    EXPECT_EQ(portrait.Rect, c.portrait) << c.boardSize;
  }
}

TEST_F(BoardPlanTest, MarkedCellsGetTheirBrushAndAtMostOnePiece) {
  struct Case {
    uint8_t value;
    CellLook look;
  };
  const CellLook marked{CellBrush::LightGreen, 0, ""};
  // clang-format off
  const Case cases[] = {
    {0, {}}, {1, {CellBrush::None, IDB_DISC_GREEN, ""}}, {2, {CellBrush::None, IDB_DISC_RED, ""}},
    {3, {}}, {15, {}}, {16, marked}, {17, {CellBrush::SkyBlue, IDB_DISC_GREEN, ""}},
    {18, {CellBrush::Gold, IDB_DISC_RED, ""}}, {19, marked}, {33, marked}, {48, marked}, {49, {}},
  };
  // clang-format on
  for (const Case& c : cases) {
    Grid[3][5] = c.value;
    EXPECT_EQ(LookAt(GridFrame(), 3, 5), c.look) << int(c.value);
  }
}

TEST_F(BoardPlanTest, SpriteIsDrawnOverItsMask) {
  Grid[2][7] = 1;
  const std::vector<DrawOp> bitmaps = OfKind(GridFrame(), DrawKind::Bitmap);
  ASSERT_EQ(bitmaps.size(), 3u);  // mask, sprite, portrait
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(bitmaps[i].Resource, i == 0 ? IDB_DISC_MASK : IDB_DISC_GREEN);
    EXPECT_EQ(bitmaps[i].Raster, i == 0 ? RasterOp::And : RasterOp::Or);
    EXPECT_EQ(bitmaps[i].Rect, (PixelRect{66, 216, 20, 20}));
  }
}

TEST_F(BoardPlanTest, UpsideDownBoardShowsTheLowestRowOnTop) {
  Grid[4][7] = 1;  // the row a piece reaches first
  Grid[4][1] = 2;
  SessionState.AiNumber = 13;
  SessionState.CharacterId = 13;
  const DrawList frame = GridFrame();
  EXPECT_EQ(LookAt(frame, 4, 1).Sprite, IDB_DISC_GREEN);
  EXPECT_EQ(LookAt(frame, 4, 7).Sprite, IDB_DISC_YELLOW);
  SessionState.AiNumber = 12;  // any other strategy: as stored
  const DrawList upright = GridFrame();
  EXPECT_EQ(LookAt(upright, 4, 7).Sprite, IDB_DISC_GREEN);
  EXPECT_EQ(LookAt(upright, 4, 1).Sprite, IDB_DISC_YELLOW);
}

TEST_F(BoardPlanTest, PieceByPlayerCharacterStrategyAndOptions) {
  struct Case {
    int32_t player, characterId, aiNumber, showImages, customColours;
    CellLook look;
  };
  const auto disc = [](int32_t sprite) { return CellLook{CellBrush::None, sprite, ""}; };
  const auto letter = [](const char* text) { return CellLook{CellBrush::None, 0, text}; };
  const CellLook none{};
  // The human: red for the character 12, else green, or the letter X. The computer's letters
  // are hidden by strategy 12, whoever is shown. Red for characters 0 and 4 or without own
  // colours; the characters' colours otherwise. Any other player value draws nothing.
  // clang-format off
  const Case cases[] = {
    {1, 12, 0, 0, 0, disc(IDB_DISC_RED)}, {1, 0, 0, 1, 1, disc(IDB_DISC_GREEN)},
    {1, 5, 12, 0, 1, letter("X")}, {2, 3, 12, 0, 1, none}, {2, 12, 0, 0, 1, letter("O")},
    {2, 6, 0, 1, 0, disc(IDB_DISC_RED)}, {2, 0, 0, 1, 1, disc(IDB_DISC_RED)},
    {2, 4, 0, 1, 1, disc(IDB_DISC_RED)}, {2, 1, 0, 1, 1, disc(IDB_DISC_BLUE)},
    {2, 7, 0, 1, 1, disc(IDB_DISC_BLUE)}, {2, 12, 0, 1, 1, disc(IDB_DISC_BLUE)},
    {2, 2, 0, 1, 1, disc(IDB_DISC_ORANGE)}, {2, 9, 0, 1, 1, disc(IDB_DISC_ORANGE)},
    {2, 3, 0, 1, 1, disc(IDB_DISC_SILVER)}, {2, 11, 0, 1, 1, disc(IDB_DISC_SILVER)},
    {2, 5, 0, 1, 1, disc(IDB_DISC_YELLOW)}, {2, 13, 0, 1, 1, disc(IDB_DISC_YELLOW)},
    {2, 6, 0, 1, 1, disc(IDB_DISC_MAGENTA)}, {2, 8, 0, 1, 1, disc(IDB_DISC_CYAN)},
    {2, 10, 0, 1, 1, disc(IDB_DISC_VIOLET)}, {0, 1, 0, 1, 1, none}, {3, 1, 0, 1, 1, none},
  };
  // clang-format on
  for (const Case& c : cases) {
    SessionState.CharacterId = c.characterId;
    SessionState.AiNumber = c.aiNumber;
    SessionState.ShowImages = c.showImages;
    SessionState.CustomColours = c.customColours;
    DrawList steps;
    PlanPiece(steps, 2, 3, c.player);
    SCOPED_TRACE(testing::Message() << "player " << c.player << " character " << c.characterId
                                    << " strategy " << c.aiNumber);
    EXPECT_EQ(LookAt(steps, 2, 3), c.look);
    if (c.look.Letter.empty()) continue;
    EXPECT_EQ(steps[0].Colour, c.look.Letter == "X" ? Rgb(0, 255, 0) : Rgb(255, 0, 0));
  }
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
  EXPECT_EQ(LookAt(frame, 1, 7).Sprite, IDB_DISC_GREEN);
  EXPECT_EQ(LookAt(frame, 1, 6).Sprite, IDB_DISC_VIOLET);
  EXPECT_EQ(OfKind(frame, DrawKind::Bitmap).size(), 5u);  // two pieces and the portrait
  EXPECT_EQ(frame.back().At, (PixelPoint{68, 0}));        // the engine board's title
  EXPECT_EQ(OfKind(frame, DrawKind::Bitmap).back().Rect, (PixelRect{250, 120, 23, 68}));
}

TEST_F(BoardPlanTest, StatusLineIsDrawnOnlyWhenThereIsOne) {
  SessionState.Level = 7;  // no level name: no status line
  const DrawList frame = GridFrame();
  for (const DrawOp& op : OfKind(frame, DrawKind::Text)) EXPECT_NE(op.At.Y, 248);
}

}  // namespace
