// The look-ahead against a straightforward reference on random positions: the same chosen column
// and ColumnValue entries. The reference puts the board back, drops and lets the referee scan
// the whole board for every trial. KALVERO_DIFF_POSITIONS scales the run (default 400):
//   KALVERO_DIFF_POSITIONS=50000 build/native/tests/kalvero_tests --gtest_filter='LookAheadDiff*'
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "grid_picture.h"
#include "ground/session.h"
#include "opponents/lookahead.h"
#include "opponents/roster.h"
#include "test_support.h"

namespace {

// The reference: below the position in snapshot ply - 1, every column in shuffled order for the
// mover of the ply, adding the mover's weight whenever the referee reports the mover's line.
void ReferencePly(int32_t ply, int32_t depth, const int32_t* weights, bool cut, int32_t* score) {
  const int32_t mover = ply % 2 == 1 ? 2 : 1;
  for (int32_t k = 0; k < CellsPerSide(); ++k) {
    std::memcpy(Grid, Turn.Snapshots[ply - 1], sizeof Grid);
    SessionState.CurrentPlayer = mover;
    GridDrop(Turn.ShuffledColumns[k]);
    const bool line = GridFindWinner() == mover;
    if (line) *score += mover == 2 ? weights[ply - 1] : -weights[ply - 1];
    if (ply < depth && !(cut && line)) {
      std::memcpy(Turn.Snapshots[ply], Grid, sizeof Grid);
      ReferencePly(ply + 1, depth, weights, cut, score);
    }
  }
}

int32_t ReferenceLookAhead(int32_t depth) {
  const int32_t ai = SessionState.AiNumber;
  int32_t best = kForbidden, chosen = 0;
  for (int32_t k = 0; k < CellsPerSide(); ++k) {
    const int32_t c1 = Turn.ShuffledColumns[k];
    int32_t score = 0;
    std::memcpy(Grid, Turn.Snapshots[0], sizeof Grid);
    SessionState.CurrentPlayer = 2;
    GridDrop(c1);
    if (GridFindWinner() == 2) score += PlyWeights[ai][0];
    std::memcpy(Turn.Snapshots[1], Grid, sizeof Grid);
    ReferencePly(2, depth, PlyWeights[ai], CutsBelowLines(ai), &score);
    if (score < 0 && score < Turn.ColumnValue[c1]) Turn.ColumnValue[c1] = score;
    if (score > best) {
      best = score;
      chosen = c1;
    }
  }
  return chosen;
}

// One share of the run, in thousandths, at least one position.
int32_t Share(int32_t perMille) {
  const char* text = std::getenv("KALVERO_DIFF_POSITIONS");
  const int32_t n = text != nullptr && std::atoi(text) > 0 ? std::atoi(text) : 400;
  return std::max(1, n * perMille / 1000);
}

// A random position on a side of s for strategy ai: pieces cluster around a column, some columns
// fill up, players sometimes move twice, and unless `legal` lines may stay on the board.
void RandomPosition(std::mt19937& g, int32_t s, int32_t ai, bool legal) {
  GridClear();
  SessionState.BoardSize = s + 1;
  SessionState.AiNumber = ai;
  RunNeededFor(ai, RunNeeded);
  const int32_t pieces = std::uniform_int_distribution<int32_t>(0, s * s)(g);
  const int32_t centre = std::uniform_int_distribution<int32_t>(1, s)(g);
  const int32_t spread = std::uniform_int_distribution<int32_t>(0, s)(g);
  int32_t player = 1 + static_cast<int32_t>(g() % 2), last = centre;
  for (int32_t i = 0; i < pieces; ++i) {
    int32_t c = last;
    if (g() % 4 != 0)
      c = std::clamp(centre + std::uniform_int_distribution<int32_t>(-spread, spread)(g), 1, s);
    SessionState.CurrentPlayer = player;
    std::memcpy(Turn.Snapshots[0], Grid, sizeof Grid);
    if (GridDrop(c) == 0) continue;
    if (legal && GridFindWinner() != 0) {  // taken back
      std::memcpy(Grid, Turn.Snapshots[0], sizeof Grid);
      continue;
    }
    last = c;
    if (g() % 8 != 0) player = 3 - player;
  }
}

// Fresh reply state: a random column order and, now and then, forbidden or negative entries.
void RandomTurn(std::mt19937& g, int32_t s) {
  for (int32_t k = 0; k < s; ++k) Turn.ShuffledColumns[k] = k + 1;
  std::shuffle(Turn.ShuffledColumns, Turn.ShuffledColumns + s, g);
  std::memset(Turn.ColumnValue, 0, sizeof Turn.ColumnValue);
  for (int32_t c = 1; c <= s; ++c) {
    const uint32_t r = g() % 16;
    if (r == 0) Turn.ColumnValue[c] = kForbidden;
    if (r == 1) Turn.ColumnValue[c] = -static_cast<int32_t>(g() % 40);
  }
  std::memcpy(Turn.Snapshots[0], Grid, sizeof Grid);
}

// One look-ahead: the column chosen, then ColumnValue[1..s]; the reply state is put back.
std::vector<int32_t> Run(int32_t s, int32_t depth, bool reference) {
  int32_t saved[kGridSide];
  std::memcpy(saved, Turn.ColumnValue, sizeof saved);
  std::vector<int32_t> out{reference ? ReferenceLookAhead(depth) : LookAhead(depth)};
  out.insert(out.end(), Turn.ColumnValue + 1, Turn.ColumnValue + s + 1);
  std::memcpy(Turn.ColumnValue, saved, sizeof saved);
  std::memcpy(Grid, Turn.Snapshots[0], sizeof Grid);
  return out;
}

// The deepest look the reference affords on a side (at most ~20000 trials).
int32_t ReferenceDepthFor(int32_t s, std::mt19937& g) {
  return std::min(2 * (1 + static_cast<int32_t>(g() % 3)), s <= 5 ? 6 : s <= 11 ? 4 : 2);
}

// Positions with a line already on the board, with a full column, with a nonzero score.
struct Coverage {
  int32_t Lined = 0, Full = 0, Scored = 0;
};

class LookAheadDiffTest : public CoreTest {};

// Random positions of sides minSide..maxSide, every strategy in turn, at `depth` (0: as deep as
// the reference affords).
Coverage Compare(int32_t positions, int32_t minSide, int32_t maxSide, int32_t depth,
                 uint32_t seed) {
  std::mt19937 g(seed);
  Coverage covered;
  for (int32_t i = 0, mismatches = 0; i < positions && mismatches < 10; ++i) {
    const int32_t s = std::uniform_int_distribution<int32_t>(minSide, maxSide)(g);
    const int32_t ai = i % kRosterSize;
    RandomPosition(g, s, ai, g() % 3 != 0);
    RandomTurn(g, s);
    const int32_t d = depth != 0 ? depth : ReferenceDepthFor(s, g);
    const std::vector<int32_t> reference = Run(s, d, true), fast = Run(s, d, false);
    covered.Full += std::any_of(Grid + 1, Grid + s + 1, [](const auto& col) { return col[1]; });
    covered.Lined += GridFindWinner() != 0;
    covered.Scored += reference[0] != Turn.ShuffledColumns[0] ||
                      std::any_of(reference.begin() + 1, reference.end(),
                                  [](int32_t v) { return v < 0 && v != kForbidden; });
    if (fast == reference) continue;
    ++mismatches;
    std::string board;
    for (const std::string& row : GridRows()) board += row + "\n";
    EXPECT_EQ(fast, reference) << "side " << s << " strategy " << ai << " depth " << d
                               << ", the column chosen, then the column values\n"
                               << board;
  }
  return covered;
}

}  // namespace

// Lines on the board, full columns and nonzero scores come up often (about 15%, 70%, 70%).
TEST_F(LookAheadDiffTest, SameAsTheReferenceOnEveryStrategyDepthAndSide) {
  const int32_t n = Share(800);
  const Coverage covered = Compare(n, 1, 19, 0, 1);
  EXPECT_GE(covered.Lined, n / 20);
  EXPECT_GE(covered.Full, n / 4);
  EXPECT_GE(covered.Scored, n / 4);
}

// Six plies on the game's own board, four on the big boards.
TEST_F(LookAheadDiffTest, SameAsTheReferenceDeepOnLargerBoards) {
  Compare(Share(40), 7, 7, 6, 2);
  Compare(Share(5), 12, 19, 4, 3);
}
