// The engine's board, its numbered lines, its moves and line scores, and its position stack.
#include "engine_fixture.h"

// A fresh game: every cell empty, every line open to both (107 each), the columns tried from the
// middle out. Then each piece raises its owner's lines and kills the opponent's.
TEST_F(EngineTest, FreshGameAndItsFirstPieces) {
  EXPECT_EQ(CopyCurrentPosition().cells, std::vector<uint8_t>(49, kEngineEmpty));
  EXPECT_EQ(Engine.PositionStack.Current->winner, kEngineNoWinner);
  EXPECT_EQ(std::vector<int32_t>(Engine.ColumnOrder, Engine.ColumnOrder + Engine.PlayableColumns),
            (std::vector<int32_t>{3, 4, 2, 5, 1, 6, 0}));
  struct Step {
    int32_t player, column, row, total0, total1;
  } steps[] = {{-1, -1, -1, 107, 107}, {1, 3, 0, 100, 114}, {0, 3, 1, 109, 103}};
  for (const Step& s : steps) {
    int32_t row = -1;
    ASSERT_TRUE(s.player < 0 || EnginePlay(s.player, s.column, &row));
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
  EnginePlay(0, 2);
  for (int32_t i = 0; i < 4; ++i) EnginePlay(1, 5);  // the other side completes a line later
  EXPECT_TRUE(EngineHasWon(0));
  EXPECT_FALSE(EngineHasWon(1));
}

// Refused moves change nothing; the board fills at 49 pieces, and then the engine plays nothing.
TEST_F(EngineTest, RefusedMovesAndTheFullBoard) {
  for (int32_t i = 0; i < 7; ++i) ASSERT_TRUE(EnginePlay(i % 2, 4));
  const PositionCopy before = CopyCurrentPosition();
  EXPECT_EQ(DropPiece(0, 4), -1);
  for (int32_t column : {4, 7, -1}) EXPECT_FALSE(EnginePlay(1, column)) << column;
  EXPECT_EQ(CopyCurrentPosition(), before);
  for (int32_t n = 7; n < 49; ++n) {
    EXPECT_FALSE(EngineBoardFull()) << n;
    ASSERT_TRUE(EnginePlay(n % 3 == 0, n / 7 - 1 + (n / 7 > 4))) << n;  // columns 0..3, 5, 6
  }
  EXPECT_TRUE(EngineBoardFull());
  const PositionCopy full = CopyCurrentPosition();
  int32_t column = 0;
  EXPECT_FALSE(EngineChooseAndPlay(0, 4, &column));
  EXPECT_EQ(column, 0);
  EXPECT_EQ(CopyCurrentPosition(), full);
}

TEST_F(EngineTest, LineEndsOfTheWinnersLowestNumberedLine) {
  struct Case {
    std::initializer_list<const char*> picture;
    int32_t ends[4];  // first column, row, last column, row
  } cases[] = {
      {{".XXXX..", ".XOXO..", ".OXOX.."}, {1, 2, 4, 2}},             // horizontal, left to right
      {{".X.....", ".OX....", ".OOX...", ".OOOX.."}, {4, 0, 1, 3}},  // falling diagonal
      {{"...X...", "..XO...", ".XOO...", "XOOO..."}, {0, 0, 3, 3}},  // rising diagonal
      {{".....X.", ".....X.", ".....X.", "O...OX."}, {5, 0, 5, 3}},  // vertical, bottom up
      {{"XXXXX.."}, {0, 0, 3, 0}},                                   // two lines: the lower index
      // One piece completes both diagonals: the rising family is numbered before the falling one.
      {{"...X...", "..XOX..", ".XOOOX.", "XOOXOOX"}, {0, 0, 3, 3}},
      // The vertical line is completed first, but the horizontal one has the lower index.
      {{"XXXX...", "XOOO...", "XOOO...", "XOOO..."}, {0, 3, 3, 3}},
  };
  for (const Case& c : cases) {
    SetUp();
    PlayPicture(c.picture);
    ASSERT_TRUE(EngineHasWon(0));
    int32_t ends[4];
    EngineLineEnds(&ends[0], &ends[1], &ends[2], &ends[3]);
    EXPECT_TRUE(std::equal(ends, ends + 4, c.ends)) << *c.picture.begin();
  }
}
