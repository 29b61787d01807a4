// The engine's board, its numbered lines, its moves and line scores, and its position stack.
#include <random>

#include "engine_fixture.h"

namespace {

struct Cell {
  int32_t column = -1, row = -1;
  bool operator==(const Cell&) const = default;
};

}  // namespace

TEST(CountLinesTest, KnownBoards) {
  struct Case {
    int32_t w, h, l, lines;
  } cases[] = {{8, 7, 4, 107}, {7, 6, 4, 69}, {3, 7, 4, 12}, {7, 3, 4, 12}, {3, 3, 4, 0}};
  for (const Case& c : cases) EXPECT_EQ(CountLines(c.w, c.h, c.l), c.lines) << c.w << c.h << c.l;
}

// A fresh game: every cell empty, every line open to both (totals 107 each), the search's
// column order from the middle out. Then each piece raises its owner's lines and kills the
// opponent's.
TEST_F(EngineTest, FreshGameAndItsFirstPieces) {
  const PositionCopy base = CopyCurrentPosition();
  EXPECT_EQ(base.cells, std::vector<uint8_t>(49, kEngineEmpty));
  EXPECT_EQ(base.winner, kEngineNoWinner);
  EXPECT_EQ(std::vector<int32_t>(Engine.ColumnOrder, Engine.ColumnOrder + Engine.PlayableColumns),
            (std::vector<int32_t>{3, 4, 2, 5, 1, 6, 0}));
  struct Step {
    int32_t player, column, row, total0, total1;
  } steps[] = {{-1, -1, -1, 107, 107}, {1, 3, 0, 100, 114}, {0, 3, 1, 109, 103}};
  for (const Step& s : steps) {
    int32_t row = -1;
    if (s.player >= 0) {
      ASSERT_TRUE(EnginePlay(s.player, s.column, &row));
    }
    EXPECT_EQ(row, s.row);
    EXPECT_EQ(Engine.PositionStack.Current->scoreTotal[0], s.total0);
    EXPECT_EQ(Engine.PositionStack.Current->scoreTotal[1], s.total1);
    EXPECT_TRUE(EngineIsConsistent());
  }
}

TEST_F(EngineTest, FirstCompletedLineDecidesTheWinnerForGood) {
  for (int32_t i = 0; i < 4; ++i) {
    EXPECT_FALSE(EngineHasWon(0));
    EnginePlay(0, 2);
  }
  EXPECT_TRUE(EngineHasWon(0));
  EXPECT_FALSE(EngineHasWon(1));
  EnginePlay(0, 2);
  for (int32_t i = 0; i < 4; ++i) EnginePlay(1, 5);  // the other side completes a line later
  EXPECT_TRUE(EngineHasWon(0));
  EXPECT_FALSE(EngineHasWon(1));
  EXPECT_TRUE(EngineIsConsistent());
}

TEST_F(EngineTest, RefusedMovesChangeNothingAndTheBoardFillsAt49) {
  for (int32_t i = 0; i < 7; ++i) ASSERT_TRUE(EnginePlay(i % 2, 4));
  const PositionCopy before = CopyCurrentPosition();
  EXPECT_EQ(DropPiece(0, 4), -1);
  for (int32_t column : {4, 7, -1}) EXPECT_FALSE(EnginePlay(1, column)) << column;
  EXPECT_EQ(CopyCurrentPosition(), before);
  for (int32_t n = 7; n < 49; ++n) {
    EXPECT_FALSE(EngineBoardFull()) << n;
    const int32_t column = n / 7 - 1 + (n / 7 > 4);  // columns 0..3, then 5, 6
    ASSERT_TRUE(EnginePlay(n % 3 == 0, column)) << n;
  }
  EXPECT_TRUE(EngineBoardFull());
}

TEST_F(EngineTest, LineEndsOfTheWinnersLowestNumberedLine) {
  struct Case {
    std::initializer_list<const char*> picture;
    Cell first, last;
  } cases[] = {
      {{".XXXX..", ".XOXO..", ".OXOX.."}, {1, 2}, {4, 2}},             // horizontal, left to right
      {{".X.....", ".OX....", ".OOX...", ".OOOX.."}, {4, 0}, {1, 3}},  // falling diagonal
      {{"...X...", "..XO...", ".XOO...", "XOOO..."}, {0, 0}, {3, 3}},  // rising diagonal
      {{".....X.", ".....X.", ".....X.", "O...OX."}, {5, 0}, {5, 3}},  // vertical, bottom up
      {{"XXXXX.."}, {0, 0}, {3, 0}},                                   // two lines: the lower index
      // One piece completes both diagonals: the rising family is numbered before the falling one.
      {{"...X...", "..XOX..", ".XOOOX.", "XOOXOOX"}, {0, 0}, {3, 3}},
      // The vertical line is completed first, but the horizontal one has the lower index.
      {{"XXXX...", "XOOO...", "XOOO...", "XOOO..."}, {0, 3}, {3, 3}},
  };
  for (const Case& c : cases) {
    SetUp();
    PlayPicture(c.picture);
    ASSERT_TRUE(EngineHasWon(0));
    Cell first, last;
    EngineLineEnds(&first.column, &first.row, &last.column, &last.row);
    EXPECT_TRUE(first == c.first && last == c.last) << *c.picture.begin();
  }
}

// Random games: before every move of the base position, a random sequence of pushes and drops
// (pieces of either side, full columns included) is popped again; every position met must keep
// the line score invariants and the base position must come back exactly.
TEST_F(EngineTest, PushDropPopAlwaysRestoresThePosition) {
  std::mt19937 random(20240604);
  for (int32_t game = 0; game < 100; ++game) {
    SetUp();
    while (!EngineBoardFull()) {
      const PositionCopy before = CopyCurrentPosition();
      const int32_t levels = 1 + static_cast<int32_t>(random() % 12);
      for (int32_t k = 0; k < levels; ++k) {
        PushPosition();
        DropPiece(static_cast<int32_t>(random() % 2), static_cast<int32_t>(random() % 7));
        ASSERT_TRUE(EngineIsConsistent());
      }
      for (int32_t k = 0; k < levels; ++k) PopPosition();
      ASSERT_EQ(Engine.PositionStack.Top, 0);
      ASSERT_EQ(CopyCurrentPosition(), before);
      EnginePlay(static_cast<int32_t>(random() % 2), static_cast<int32_t>(random() % 7));
      ASSERT_TRUE(EngineIsConsistent());
    }
  }
}
