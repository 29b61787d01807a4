// Turn processing on the square board: the two calls of a move, the reply pipeline and its
// order, the random move's rules, and the end of a game.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "grid_picture.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "opponents/new_game.h"
#include "opponents/openings.h"
#include "opponents/roster.h"
#include "opponents/turn.h"
#include "test_support.h"

namespace {

class PlayTurnTest : public CoreTest {
 protected:
  // A one-player game in progress on the given board, waiting for the human's move.
  void Start(const std::vector<std::string>& rows, int32_t ai = 0, int32_t level = 1) {
    SessionState.AiNumber = ai;
    SessionState.Level = level;
    NewGame();
    SetGrid(rows);
    SeedRandom(12345);
  }
  // The human's click in a column, then the reply at the repaint.
  void HumanPlays(int32_t column) {
    PlayTurn(30 * column + 5);
    ASSERT_EQ(SessionState.PendingTurn, 2) << "column " << column << " refused";
    PlayTurn(30 * column + 5);
    SessionState.PendingTurn = 1;
  }
};

const std::vector<std::string> kEmpty7 = {".......", ".......", ".......", ".......",
                                          ".......", ".......", "......."};

TEST_F(PlayTurnTest, RefusedColumnsChangeNothing) {
  for (int32_t x : {0, 29, -5, -30, 240, 1000}) {
    Start(kEmpty7);
    PlayTurn(x);
    EXPECT_EQ(SessionState.PendingTurn, 1) << x;
    EXPECT_EQ(GridRows(), kEmpty7) << x;
  }
  Start({"1......", "2......", "1......", "2......", "1......", "2......", "1......"});
  PlayTurn(30);
  EXPECT_EQ(SessionState.PendingTurn, 1);
}

TEST_F(PlayTurnTest, FirstCallOnlyDropsTheHumansPieceYetDrawsTheShuffle) {
  Start(kEmpty7);
  const uint32_t before = RandomState;
  PlayTurn(95);  // column 3
  EXPECT_EQ(SessionState.PendingTurn, 2);
  EXPECT_EQ(GridRows().back(), "..1....");
  EXPECT_EQ(SessionState.GameResult, 0);
  EXPECT_NE(RandomState, before);  // even the human's drop draws the column order
  std::vector<int32_t> order(Turn.ShuffledColumns, Turn.ShuffledColumns + 7);
  std::sort(order.begin(), order.end());
  EXPECT_EQ(order, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(PlayTurnTest, ClickAfterTheEndStartsANewGameOnly) {
  Start(kEmpty7);
  SessionState.GameResult = 2;
  Grid[4][7] = 18;
  PlayTurn(95);
  EXPECT_EQ(GridRows(), kEmpty7);
  EXPECT_EQ(SessionState.GameResult, 0);
  EXPECT_EQ(SessionState.PendingTurn, 1);
  EXPECT_EQ(StatsTable[1].Lost, 1);  // counted in the record of the settings (level 1)
}

struct ReplyCase {
  const char* Name;
  int32_t Ai, Level, Challenge;
  std::vector<std::string> Board;  // before the human's move
  int32_t HumanColumn;
  std::vector<std::string> After;  // after the reply
  int32_t Result;
};

// Cases print as their names in test listings.
void PrintTo(const ReplyCase& c, std::ostream* out) {
  *out << c.Name;
}

class ReplyTest : public PlayTurnTest, public ::testing::WithParamInterface<ReplyCase> {};

TEST_P(ReplyTest, ChoosesTheExpectedColumn) {
  const ReplyCase& c = GetParam();
  SessionState.Challenge = c.Challenge;
  Start(c.Board, c.Ai, c.Level);
  HumanPlays(c.HumanColumn);
  EXPECT_EQ(GridRows(), c.After);
  EXPECT_EQ(SessionState.GameResult, c.Result);
}

// clang-format off
const ReplyCase kReplyCases[] = {
  // The left one of two winning columns; winning beats blocking.
  {"WinsInTheLeftColumn", 0, 1, 0,
   {".......", ".......", ".......", ".......", "2.....2", "2.....2", "21....2"}, 2,
   {".......", ".......", ".......", "b......", "b.....2", "b1....2", "b1....2"}, 2},
  {"WinsRatherThanBlocks", 0, 0, 0,
   {".......", ".......", ".......", ".......", "......2", "1.....2", "1.....2"}, 1,
   {".......", ".......", ".......", "......b", "1.....b", "1.....b", "1.....b"}, 2},
  {"BlocksEvenAtFacile", 0, 0, 0,
   {".......", ".......", ".......", ".......", ".......", ".......", "11...2."}, 3,
   {".......", ".......", ".......", ".......", ".......", ".......", "1112.2."}, 0},
  // Strategy 3: the computer's three in a row is already a win.
  {"RobotnikWinsWithThree", 3, 1, 0,
   {".......", ".......", ".......", ".......", ".......", ".......", "1.22..1"}, 7,
   {".......", ".......", ".......", ".......", ".......", "......1", "1bbb..1"}, 2},
  // Strategy 11 needs five: four of the computer's own make no immediate win.
  {"FredNeedsFive", 11, 1, 0,
   {".......", ".......", ".......", ".......", ".......", ".......", "2222..."}, 7,
   {".......", ".......", ".......", ".......", ".......", ".......", "bbbbb.1"}, 2},
  // A computer move that completes a line in the last free cell is a win, not a draw.
  {"LastCellWinIsAWin", 3, 1, 0,
   {".1.", "212", "122"}, 1,
   {"11b", "21b", "12b"}, 2},
};
// clang-format on

std::string ReplyCaseName(const ::testing::TestParamInfo<ReplyCase>& param) {
  return param.param.Name;
}

INSTANTIATE_TEST_SUITE_P(Cases, ReplyTest, ::testing::ValuesIn(kReplyCases), ReplyCaseName);

TEST_F(PlayTurnTest, PlainLookAheadKeepsTheLowestNegativeScores) {
  // Three open human pieces: two winning answers after any computer move but the blocks.
  SessionState.AiNumber = 0;
  SessionState.Level = 1;
  SetGrid({".......", ".......", ".......", ".......", ".......", ".......", ".111..."});
  RunNeededFor(0, RunNeeded);
  for (int32_t k = 0; k < 7; ++k) Turn.ShuffledColumns[k] = k + 1;
  std::memset(Turn.ColumnValue, 0, sizeof Turn.ColumnValue);
  std::memcpy(Turn.Snapshots[0], Grid, sizeof Grid);
  const int32_t chosen = PlainLookAhead(2);
  // Columns 1 and 5 block one end; the human still completes at the other: -8 = -W2 each.
  // Every other column leaves both ends open: -16.
  const int32_t expected[] = {0, -8, -16, -16, -16, -8, -16, -16};
  for (int32_t c = 1; c <= 7; ++c) EXPECT_EQ(Turn.ColumnValue[c], expected[c]) << c;
  EXPECT_EQ(chosen, 1);  // the first of the best in shuffled order
}

TEST_F(PlayTurnTest, HumanFillingTheBoardEndsInADrawAfterTwoThousandTries) {
  Start({"..1", "212", "121"}, 0, 1);
  const std::vector<std::string> before = {"2.1", "212", "121"};
  SetGrid({".21", "212", "121"});
  PlayTurn(30);  // the last free cell
  EXPECT_EQ(SessionState.PendingTurn, 2);
  const uint32_t seed = RandomState;
  PlayTurn(30);
  EXPECT_EQ(SessionState.GameResult, 3);
  // One shuffle of 3 columns (at least 3 draws) plus 2001 tries of the random move.
  uint32_t replay = seed;
  int draws = 0;
  while (replay != RandomState && draws < 10000) {
    replay = replay * 214013u + 2531011u;
    ++draws;
  }
  EXPECT_GE(draws, 3 + 2001);
  EXPECT_LE(draws, 3 + 2001 + 20);
}

TEST_F(PlayTurnTest, TwoPlayerGameAlternatesAndStaysOnTheWinner) {
  SessionState.GameMode = 2;
  NewGame();
  const int32_t columns[] = {1, 2, 1, 2, 1, 2, 1};
  int32_t expectedPlayer = 1;
  for (int32_t c : columns) {
    EXPECT_EQ(SessionState.CurrentPlayer, expectedPlayer);
    PlayTurn(30 * c);
    PlayTurn(30 * c);
    SessionState.PendingTurn = 1;
    expectedPlayer = 3 - expectedPlayer;
  }
  EXPECT_EQ(SessionState.GameResult, 1);
  EXPECT_EQ(SessionState.CurrentPlayer, 1);
  EXPECT_EQ(Grid[1][4], 17);
}

TEST_F(PlayTurnTest, SecondClickBeforeTheRepaintRepliesTwice) {
  Start(kEmpty7, 0, 0);
  PlayTurn(95);
  PlayTurn(95);  // a second click: judges and replies at once
  PlayTurn(95);  // the repaint's call: judges and replies again
  std::string cells;
  for (const std::string& row : GridRows()) cells += row;
  EXPECT_EQ(std::count(cells.begin(), cells.end(), '2'), 2);
}

struct SurplusCase {
  std::vector<std::string> Board;
  int32_t Expected;
};

TEST_F(PlayTurnTest, SurplusCountPrefersColumnsThenRowsThenLowerNumbers) {
  const SurplusCase cases[] = {
      {{".......", ".......", ".......", ".......", ".......", "..1....", "..1...."}, 3},
      {{".......", ".......", ".......", ".......", ".......", ".......", "1.1.1.."}, 7},
      {{".......", ".......", ".......", ".......", ".......", ".......", "......."}, 1},
      {{".......", ".......", ".......", ".......", ".......", "2......", "2....1."}, 6},
  };
  for (const SurplusCase& c : cases) {
    SetGrid(c.Board);
    EXPECT_EQ(SurplusCount(), c.Expected);
  }
}

struct PatternCase {
  const char* Name;
  std::vector<std::string> Board;
  int32_t H;
  int32_t PlannedBefore;
  int32_t Chosen;
  std::vector<int32_t> Forbidden;
  int32_t PlannedAfter;
};

TEST_F(PlayTurnTest, OpeningPatterns) {
  // clang-format off
  const PatternCase cases[] = {
    {"NeighbourMarksLowH", {".......", ".......", ".......", ".......", ".......", ".......", "......."}, 3, 0, 0, {4}, 0},
    {"NeighbourMarksBoth", {".......", ".......", ".......", ".......", ".......", ".......", "......."}, 4, 0, 0, {3, 5}, 0},
    {"BottomPairRight", {".......", ".......", ".......", ".......", ".......", ".......", ".11...."}, 6, 0, 3, {5}, 0},
    {"BottomPairLeft", {".......", ".......", ".......", ".......", ".......", ".......", ".....22"}, 1, 0, 6, {2}, 0},
    {"PlannedIsPlayed", {".......", ".......", ".......", ".......", ".......", ".......", "......."}, 1, 6, 6, {2}, 0},
    {"BottomPairBeforePlanned", {".......", ".......", ".......", ".......", ".......", ".......", ".11...."}, 1, 6, 3, {2}, 6},
    {"RisingDiagonalChooses", {".......", ".......", ".......", ".......", ".......", ".12....", "121...."}, 0, 0, 3, {1}, 0},
    {"FallingDiagonalChooses", {".......", ".......", ".......", ".......", ".......", ".22....", "121...."}, 0, 0, 3, {1}, 0},
    {"MarksPlansThenChooses", {".......", ".......", ".......", ".......", ".......", ".1.....", "1.2.1.."}, 0, 0, 2, {1, 3}, 1},
    {"OutsideHMarksNothing", {".......", ".......", ".......", ".......", ".......", ".......", "......."}, -5, 0, 0, {}, 0},
  };
  // clang-format on
  for (const PatternCase& c : cases) {
    SetGrid(c.Board);
    std::memset(Turn.ColumnValue, 0, sizeof Turn.ColumnValue);
    PlannedColumn = c.PlannedBefore;
    EXPECT_EQ(OpeningPatterns(c.H), c.Chosen) << c.Name;
    std::vector<int32_t> forbidden;
    for (int32_t col = 0; col < kGridSide; ++col)
      if (Turn.ColumnValue[col] == kForbidden) forbidden.push_back(col);
    EXPECT_EQ(forbidden, c.Forbidden) << c.Name;
    EXPECT_EQ(PlannedColumn, c.PlannedAfter) << c.Name;
  }
}

TEST_F(PlayTurnTest, ForbiddenChoiceGivesWayToTheRandomMove) {
  // Rule 2 chooses column 3, which rule 1 has marked (h = 4 marks 3 and 5).
  Start({".......", ".......", ".......", ".......", ".......", ".......", ".22...."}, 7, 2);
  PlayTurn(30 * 4);  // human drops in column 4
  PlayTurn(30 * 4);  // the reply: the bottom-pair rule chooses 3, forbidden by the neighbour mark
  const std::string bottom = GridRows().back();
  EXPECT_EQ(bottom.substr(0, 4), ".221");
  EXPECT_NE(GridRows()[5][2], '2');  // nothing played on top of column 3
}

}  // namespace
