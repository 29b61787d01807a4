// The fast look-ahead against the straightforward one on random positions: same chosen column,
// same ColumnValue entries, and whole replies of PlayTurn alike. Where the straightforward one
// is too slow (big boards, deep looks), the fast one is compared with its simpler variants.
// KALVERO_DIFF_POSITIONS scales the run (default 1500 positions; 100000 for the long run):
//   KALVERO_DIFF_POSITIONS=100000 build/native/tests/kalvero_tests --gtest_filter='LookAheadDiff*'
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "grid_picture.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "opponents/fast_lookahead.h"
#include "opponents/new_game.h"
#include "opponents/openings.h"
#include "opponents/roster.h"
#include "opponents/turn.h"
#include "test_support.h"

namespace {

int32_t PositionsWanted() {
  const char* text = std::getenv("KALVERO_DIFF_POSITIONS");
  const int32_t n = text != nullptr ? std::atoi(text) : 0;
  return n > 0 ? n : 1500;
}

// One share of the run, in thousandths, at least one position.
int32_t Share(int32_t perMille) {
  return std::max(1, PositionsWanted() * perMille / 1000);
}

class LookAheadDiffTest : public CoreTest {
 protected:
  void TearDown() override {
    FastSettings = FastLookAheadSettings{};
    UsePlainLookAhead = false;
  }
};

struct Outcome {
  int32_t Chosen;
  int32_t ColumnValue[kGridSide];
  bool operator==(const Outcome& o) const {
    return Chosen == o.Chosen && std::memcmp(ColumnValue, o.ColumnValue, sizeof ColumnValue) == 0;
  }
};

// The lowest row of the column's pieces back to empty (the drop just made there).
void TakeBack(int32_t c) {
  for (int32_t r = 1; r < kGridSide; ++r) {
    if (Grid[c][r] != 0) {
      Grid[c][r] = 0;
      return;
    }
  }
}

// A random position of a game in progress on a side of s for strategy ai. Pieces cluster
// around a column (so lines and threats are near), some columns are stacked full, players
// sometimes move twice (lopsided counts), and unless `legal` lines may stay on the board.
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
    if (g() % 4 != 0) {
      c = centre + std::uniform_int_distribution<int32_t>(-spread, spread)(g);
      c = std::clamp(c, 1, s);
    }
    SessionState.CurrentPlayer = player;
    if (GridDrop(c) == 0) continue;
    if (legal && GridFindWinner() != 0) {
      TakeBack(c);
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

// Runs one look-ahead from the current reply state and puts that state back afterwards.
Outcome Run(int32_t depth, bool plain, const FastLookAheadSettings& settings) {
  int32_t saved[kGridSide];
  std::memcpy(saved, Turn.ColumnValue, sizeof saved);
  FastSettings = settings;
  Outcome out{};
  out.Chosen = plain ? PlainLookAhead(depth) : FastLookAhead(depth);
  std::memcpy(out.ColumnValue, Turn.ColumnValue, sizeof out.ColumnValue);
  std::memcpy(Turn.ColumnValue, saved, sizeof saved);
  std::memcpy(Grid, Turn.Snapshots[0], sizeof Grid);
  FastSettings = FastLookAheadSettings{};
  return out;
}

std::string Describe(int32_t s, int32_t ai, int32_t depth) {
  std::string text = "side " + std::to_string(s) + " strategy " + std::to_string(ai) + " depth " +
                     std::to_string(depth) + "\n";
  for (const std::string& row : GridRows()) text += row + "\n";
  return text;
}

// The deepest look the straightforward version affords on a side (at most ~20000 trials).
int32_t PlainDepthFor(int32_t s, std::mt19937& g) {
  const int32_t depth = 2 * (1 + static_cast<int32_t>(g() % 3));
  if (s <= 5) return depth;
  if (s <= 11) return std::min(depth, 4);
  return 2;
}

// A run of random positions: the fast look-ahead with the `Fast` settings against the plain
// one, or against the fast one with the `Reference` settings.
struct Batch {
  int32_t Positions, MinSide, MaxSide;
  bool PlainReference;
  FastLookAheadSettings Fast, Reference;
  int32_t Depth;  // 0: every level the reference affords on the side
};

// What the random positions covered: a line already reported at the root, a full column, a
// look-ahead score that is not 0.
struct Coverage {
  int32_t Lined, Full, Scored;
};
Coverage Covered;

void Observe(int32_t s, const Outcome& reference) {
  Covered.Lined += GridFindWinner() != 0;
  bool full = false;
  for (int32_t c = 1; c <= s; ++c) full = full || Grid[c][1] != 0;
  Covered.Full += full;
  bool scored = false;
  for (int32_t c = 1; c <= s; ++c)
    scored = scored || (reference.ColumnValue[c] < 0 && reference.ColumnValue[c] != kForbidden);
  Covered.Scored += scored || reference.Chosen != Turn.ShuffledColumns[0];
}

// The positions of a batch on which the two disagree, each reported as a failure unless the
// caller only wants to know that there is one (stopAfter 1).
int32_t Mismatches(const Batch& b, uint32_t seed, int32_t stopAfter) {
  std::mt19937 g(seed);
  int32_t mismatches = 0;
  for (int32_t i = 0; i < b.Positions && mismatches < stopAfter; ++i) {
    const int32_t s = std::uniform_int_distribution<int32_t>(b.MinSide, b.MaxSide)(g);
    const int32_t ai = i % kRosterSize;
    RandomPosition(g, s, ai, g() % 3 != 0);
    RandomTurn(g, s);
    int32_t depth = b.Depth;
    if (depth == 0) depth = b.PlainReference ? PlainDepthFor(s, g) : 2 * (1 + g() % 3);
    const Outcome fast = Run(depth, false, b.Fast);
    const Outcome reference = Run(depth, b.PlainReference, b.Reference);
    Observe(s, reference);
    if (fast == reference) continue;
    ++mismatches;
    if (stopAfter > 1) ADD_FAILURE() << Describe(s, ai, depth);
  }
  return mismatches;
}

constexpr FastLookAheadSettings kFull{};
constexpr FastLookAheadSettings kNoSharing{false, true, false};
constexpr FastLookAheadSettings kPlayedOut{true, false, false};
constexpr FastLookAheadSettings kBroken{true, true, true};

TEST_F(LookAheadDiffTest, FastMatchesPlainOnEveryStrategyLevelAndSmallToLargeSide) {
  Covered = {};
  const int32_t n = Share(700);
  EXPECT_EQ(Mismatches({n, 1, 19, true, kFull, kFull, 0}, 1, 10), 0);
  // The positions are worth comparing: lines already on the board, full columns and nonzero
  // scores all come up often (about 15%, 70% and 70% of the positions).
  EXPECT_GE(Covered.Lined, n / 20);
  EXPECT_GE(Covered.Full, n / 4);
  EXPECT_GE(Covered.Scored, n / 4);
}

TEST_F(LookAheadDiffTest, VariantsMatchPlainOnSmallBoards) {
  EXPECT_EQ(Mismatches({Share(50), 1, 7, true, kNoSharing, kFull, 0}, 2, 10), 0);
  EXPECT_EQ(Mismatches({Share(50), 1, 7, true, kPlayedOut, kFull, 0}, 3, 10), 0);
}

// Four plies on the big boards: a few hundred thousand plain trials each.
TEST_F(LookAheadDiffTest, FastMatchesPlainAtDurOnLargeBoards) {
  EXPECT_EQ(Mismatches({Share(2), 12, 19, true, kFull, kFull, 4}, 9, 10), 0);
}

TEST_F(LookAheadDiffTest, FastMatchesItsSimplerVariantsOnLargeBoards) {
  EXPECT_EQ(Mismatches({Share(130), 8, 19, false, kFull, kNoSharing, 0}, 4, 10), 0);
  EXPECT_EQ(Mismatches({Share(8), 12, 19, false, kFull, kNoSharing, 6}, 5, 10), 0);
  EXPECT_EQ(Mismatches({Share(60), 8, 14, false, kFull, kPlayedOut, 0}, 6, 10), 0);
}

// The comparison is sharp: a fast variant that lets a new line hide an older one met earlier in
// the scan disagrees on about one position in five, and is caught at once.
TEST_F(LookAheadDiffTest, CatchesAVariantWithTheWrongScanOrder) {
  EXPECT_GT(Mismatches({2000, 3, 9, true, kBroken, kFull, 0}, 7, 1), 0);
}

// Everything a reply reads or writes.
struct ReplyState {
  SessionRecord Session;
  uint32_t Random;
  int32_t Planned;
  TurnWork Work;
  uint8_t Cells[kGridSide][kGridSide];
};

ReplyState Capture() {
  ReplyState r{SessionState, RandomState, PlannedColumn, Turn, {}};
  std::memcpy(r.Cells, Grid, sizeof Grid);
  return r;
}

void Restore(const ReplyState& r) {
  SessionState = r.Session;
  RandomState = r.Random;
  PlannedColumn = r.Planned;
  Turn = r.Work;
  std::memcpy(Grid, r.Cells, sizeof Grid);
}

// The outcome of a reply; the look-ahead's scratch snapshots do not count.
bool SameReply(const ReplyState& a, const ReplyState& b) {
  return a.Session.GameResult == b.Session.GameResult &&
         a.Session.CurrentPlayer == b.Session.CurrentPlayer && a.Random == b.Random &&
         a.Planned == b.Planned &&
         std::memcmp(a.Work.ColumnValue, b.Work.ColumnValue, sizeof a.Work.ColumnValue) == 0 &&
         std::memcmp(a.Cells, b.Cells, sizeof a.Cells) == 0;
}

// A one-player game of random settings (every strategy and level, Challenge where the plain
// look-ahead affords it), from a fresh generator state.
void StartGame(std::mt19937& g, int32_t game) {
  const int32_t s = std::uniform_int_distribution<int32_t>(1, 12)(g);
  SessionState = SessionRecord{};
  SessionState.BoardSize = s + 1;
  SessionState.AiNumber = game % kRosterSize;
  SessionState.Level = static_cast<int32_t>(g() % 3);
  if (s > 9) SessionState.Level = std::min(SessionState.Level, 1);
  SessionState.Challenge = SessionState.Level == 2 && s <= 5 && g() % 2 == 0;
  NewGame();
  SeedRandom(g());
}

// Whole games: every reply made with the plain and with the fast look-ahead from the same state
// leaves the same board, result, player, column scores, plan and generator state.
TEST_F(LookAheadDiffTest, PlayTurnRepliesAreTheSameWithEitherLookAhead) {
  std::mt19937 g(8);
  const int32_t games = std::max(1, Share(140) / 10);
  for (int32_t game = 0; game < games; ++game) {
    StartGame(g, game);
    const int32_t s = CellsPerSide();
    for (int32_t move = 0; move < s * s && SessionState.GameResult == 0; ++move) {
      SessionState.PendingTurn = 1;
      const int32_t x = 30 * std::uniform_int_distribution<int32_t>(1, s)(g) + 5;
      PlayTurn(x);
      if (SessionState.PendingTurn != 2) continue;
      const ReplyState before = Capture();
      UsePlainLookAhead = true;
      PlayTurn(x);
      const ReplyState plain = Capture();
      Restore(before);
      UsePlainLookAhead = false;
      PlayTurn(x);
      ASSERT_TRUE(SameReply(Capture(), plain))
          << Describe(s, SessionState.AiNumber, LookAheadDepth()) << "plain reply:\n"
          << [&plain] {
               Restore(plain);
               std::string text;
               for (const std::string& row : GridRows()) text += row + "\n";
               return text;
             }();
    }
  }
}

}  // namespace
