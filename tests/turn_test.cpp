// Turn processing on the square board: the two calls of a move, the reply pipeline and its
// order, the random move's rules, the opening rules, and the end of a game.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
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

constexpr std::string_view kEmpty = "......./......./......./......./......./......./.......";

class PlayTurnTest : public CoreTest {
 protected:
  // A one-player game in progress on the given board, waiting for the human's move.
  static void Start(std::string_view board, int32_t ai = 0, int32_t level = 1) {
    SessionState.AiNumber = ai;
    SessionState.Level = level;
    NewGame();
    SetGrid(board);
    SeedRandom(12345);
  }
};

TEST_F(PlayTurnTest, ReplyOnKnownPositions) {
  // clang-format off
  struct Row { const char* Name; int32_t Ai, Level; const char* Board; int32_t Human;
               const char* After; int32_t Result; };
  const Row rows[] = {
    // The human's own line is judged by the second call, which then makes no reply.
    {"HumansLine", 0, 1, "......./......./......./......./......./......./111....", 4,
                         "......./......./......./......./......./......./aaaa...", 1},
    // The left one of two winning columns; winning beats blocking; blocking even at Facile.
    {"WinsInTheLeftColumn", 0, 1, "......./......./......./......./2.....2/2.....2/21....2", 2,
                                  "......./......./......./b....../b.....2/b1....2/b1....2", 2},
    {"WinsRatherThanBlocks", 0, 0, "......./......./......./......./......2/1.....2/1.....2", 1,
                                   "......./......./......./......b/1.....b/1.....b/1.....b", 2},
    {"BlocksEvenAtFacile", 0, 0, "......./......./......./......./......./......./11...2.", 3,
                                 "......./......./......./......./......./......./1112.2.", 0},
    // Strategy 3: the computer's three in a row is already a win.
    {"ThreeWinsForStrategy3", 3, 1, "......./......./......./......./......./......./1.22..1", 7,
                                    "......./......./......./......./......./......1/1bbb..1", 2},
    // Strategy 11 needs five: four of the computer's own make no immediate win.
    {"Strategy11NeedsFive", 11, 1, "......./......./......./......./......./......./2222...", 7,
                                   "......./......./......./......./......./......./bbbbb.1", 2},
    // Strategy 8 at Normal plays the column, or the column of the row, with the largest surplus
    // of the human's pieces; columns before rows on equal surpluses.
    {"Strategy8RowSurplus", 8, 1, "......./......./......./......./......./......./1.1....", 5,
                                  "......./......./......./......./......./......./1.1.1.2", 0},
    {"Strategy8ColumnsFirst", 8, 1, "......./......./......./......./......./......./..1.1..", 3,
                                    "......./......./......./......./..2..../..1..../..1.1..", 0},
    // A computer move that completes a line in the last free cell is a win, not a draw.
    {"LastCellWinIsAWin", 3, 1, ".1./212/122", 1, "11b/21b/12b", 2},
    // The human fills the board without a line: the random move gives up, nobody wins.
    {"HumanFillsTheBoard", 0, 1, ".21/212/121", 1, "121/212/121", 3},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    Start(row.Board, row.Ai, row.Level);
    PlayTurn(30 * row.Human + 5);
    ASSERT_EQ(SessionState.PendingTurn, 2) << "the human's column was refused";
    EXPECT_EQ(SessionState.GameResult, 0);  // the drop alone is never judged
    PlayTurn(30 * row.Human + 5);
    EXPECT_EQ(GridPicture(), row.After);
    EXPECT_EQ(SessionState.GameResult, row.Result);
  });
}

TEST_F(PlayTurnTest, LookAheadKeepsTheLowestNegativeScores) {
  // Three open human pieces: two winning answers after any computer move but the blocks.
  SetGrid("......./......./......./......./......./......./.111...");
  RunNeededFor(0, RunNeeded);
  for (int32_t k = 0; k < 7; ++k) Turn.ShuffledColumns[k] = k + 1;
  std::memcpy(Turn.Snapshots[0], Grid, sizeof Grid);
  EXPECT_EQ(LookAhead(2), 1);  // the first of the best in shuffled order
  // Columns 1 and 5 block one end; the human still completes at the other: -8 = -W2 each.
  // Every other column leaves both ends open: -16.
  const int32_t expected[] = {0, -8, -16, -16, -16, -8, -16, -16};
  for (int32_t c = 1; c <= 7; ++c) EXPECT_EQ(Turn.ColumnValue[c], expected[c]) << c;
}

TEST_F(PlayTurnTest, SecondClickBeforeTheRepaintRepliesTwice) {
  Start(kEmpty, 0, 0);
  PlayTurn(95);
  PlayTurn(95);  // a second click: judges and replies at once
  PlayTurn(95);  // the repaint's call: judges and replies again
  const std::string picture = GridPicture();
  EXPECT_EQ(std::count(picture.begin(), picture.end(), '1'), 1);
  EXPECT_EQ(std::count(picture.begin(), picture.end(), '2'), 2);
}

TEST_F(PlayTurnTest, OpeningPatterns) {
  // clang-format off
  struct Row { const char* Name; std::string_view Board; int32_t H, PlannedBefore, Chosen;
               std::vector<int32_t> Forbidden; int32_t PlannedAfter; };
  const Row rows[] = {
    {"NeighbourMarksLowH", kEmpty, 3, 0, 0, {4}, 0},
    {"NeighbourMarksBoth", kEmpty, 4, 0, 0, {3, 5}, 0},
    {"OutsideHMarksNothing", kEmpty, -5, 0, 0, {}, 0},
    {"BottomPairRight", "......./......./......./......./......./......./.11....", 6, 0, 3, {5}, 0},
    {"BottomPairLeft", "......./......./......./......./......./......./.....22", 1, 0, 6, {2}, 0},
    {"PlannedIsPlayed", kEmpty, 1, 6, 6, {2}, 0},
    {"BottomPairBeforePlanned", "......./......./......./......./......./......./.11....", 1, 6, 3, {2}, 6},
    {"RisingDiagonalChooses", "......./......./......./......./......./.12..../121....", 0, 0, 3, {1}, 0},
    {"FallingDiagonalChooses", "......./......./......./......./......./.22..../121....", 0, 0, 3, {1}, 0},
    {"MarksPlansThenChooses", "......./......./......./......./......./.1...../1.2.1..", 0, 0, 2, {1, 3}, 1},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SetGrid(row.Board);
    PlannedColumn = row.PlannedBefore;
    EXPECT_EQ(OpeningPatterns(row.H), row.Chosen);
    std::vector<int32_t> forbidden;
    for (int32_t col = 0; col < kGridSide; ++col)
      if (Turn.ColumnValue[col] == kForbidden) forbidden.push_back(col);
    EXPECT_EQ(forbidden, row.Forbidden);
    EXPECT_EQ(PlannedColumn, row.PlannedAfter);
  });
}

TEST_F(PlayTurnTest, ForbiddenChoiceGivesWayToTheRandomMove) {
  // The human plays column 4: rule 1 marks 3 and 5, then the bottom pair chooses 3.
  Start("......./......./......./......./......./......./.22....", 7, 2);
  PlayTurn(30 * 4);
  PlayTurn(30 * 4);
  const std::vector<std::string> rows = GridRows();
  EXPECT_EQ(rows[6].substr(0, 4), ".221");
  EXPECT_NE(rows[5][2], '2');  // nothing played on top of column 3
}

}  // namespace
