// Turns where the recorded games leave gaps: last-cell win, look-ahead scores, opening marks.
#include <cstring>
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

using PlayTurnTest = CoreTest;

TEST_F(PlayTurnTest, ComputerLineInTheLastFreeCellIsAWinNotADraw) {
  SessionState.AiNumber = 3;  // the computer's three in a row already wins
  SessionState.Level = 1;
  NewGame();
  SetGrid(".1./212/122");
  SeedRandom(12345);
  PlayTurn(35);
  ASSERT_EQ(SessionState.PendingTurn, 2) << "the human's column was refused";
  EXPECT_EQ(SessionState.GameResult, 0);  // the drop alone is never judged
  PlayTurn(35);
  EXPECT_EQ(GridPicture(), "11b/21b/12b");
  EXPECT_EQ(SessionState.GameResult, 2);
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

TEST_F(PlayTurnTest, OpeningRulesForbidTheNeighboursOfTheHumansColumn) {
  // The right neighbour is marked while h is at most the side less three, the left one from h 4.
  // clang-format off
  struct Row { const char* Name; int32_t H; std::vector<int32_t> Forbidden; };
  const Row rows[] = {{"LowH", 3, {4}}, {"Both", 4, {3, 5}}, {"OutsideH", -5, {}}};
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SetGrid("......./......./......./......./......./......./.......");
    EXPECT_EQ(OpeningPatterns(row.H), 0);  // an empty board holds no pattern
    std::vector<int32_t> forbidden;
    for (int32_t col = 0; col < kGridSide; ++col)
      if (Turn.ColumnValue[col] == kForbidden) forbidden.push_back(col);
    EXPECT_EQ(forbidden, row.Forbidden);
  });
}

}  // namespace
