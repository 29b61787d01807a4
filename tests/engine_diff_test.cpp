// The game's search against the reference search on random positions: the same column and row,
// the same values of every root column against every kind of bound, the same number of
// positions searched, the same random draws and the same base position afterwards, at every
// depth of the game and beyond, on the game's board and on others. KALVERO_ENGINE_DIFF_POSITIONS
// scales the run (default 200 positions of the game's board); a long run:
//   KALVERO_ENGINE_DIFF_POSITIONS=5000 build/native/tests/kalvero_tests
//   --gtest_filter='EngineDiff*'
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>

#include "engine_fixture.h"

namespace {

int32_t PositionsWanted() {
  const char* text = std::getenv("KALVERO_ENGINE_DIFF_POSITIONS");
  const int32_t n = text != nullptr ? std::atoi(text) : 0;
  return n > 0 ? n : 200;
}

// One share of the run, in hundredths, at least one position.
int32_t Share(int32_t percent) {
  return std::max(1, PositionsWanted() * percent / 100);
}

class EngineDiffTest : public EngineTest {
 protected:
  void TearDown() override {
    EngineSearchFault = kSearchSound;
    EngineTest::TearDown();
  }
};

struct Board {
  int32_t width, height, lineLength;
};

void StartBoard(Board board) {
  EngineRelease();
  EngineStart(board.width, board.height, board.lineLength);
}

bool ColumnOpen(int32_t column) {
  return EngineBoardView()[column][Engine.Height - 1] == kEngineEmpty;
}

bool Completes(int32_t side, int32_t column) {
  PushPosition();
  DropPiece(side, column);
  const bool won = EngineHasWon(side);
  PopPosition();
  return won;
}

// Plays a random game of up to `moves` pieces from the empty board, player 1 first, and returns
// the side to move. Half of the pieces go into one favourite column, so full columns are common.
// The game stops before a completing move unless pastAWin: then it goes on after the winner, and
// the search starts from a position that already has one.
int32_t PlayRandomGame(std::mt19937& random, int32_t moves, bool pastAWin) {
  const int32_t columns = Engine.PlayableColumns;
  const int32_t favourite = static_cast<int32_t>(random() % columns);
  int32_t side = 1;
  for (int32_t n = 0; n < moves && !EngineBoardFull(); ++n, side = 1 - side) {
    int32_t c = random() % 2 == 0 ? favourite : static_cast<int32_t>(random() % columns);
    while (!ColumnOpen(c)) c = (c + 1) % columns;
    if (!pastAWin && Completes(side, c)) break;
    EnginePlay(side, c);
  }
  return side;
}

using ChooseAndPlay = bool (*)(int32_t player, int32_t depth, int32_t* column, int32_t* row);
using Search = int32_t (*)(int32_t player, int32_t depth, int32_t alpha, int32_t beta);

// Everything a search leaves behind that the game or a later search could notice.
struct Outcome {
  bool played;
  int32_t column, row;
  int64_t nodes;
  uint32_t randomState;
  int32_t top, pieces;
  PositionCopy base;
  bool operator==(const Outcome&) const = default;
};

Outcome Choose(ChooseAndPlay choose, int32_t side, int32_t depth, uint32_t seed) {
  Outcome o{};
  o.column = o.row = -1;
  SeedRandom(seed);
  const int64_t before = EngineNodesSearched;
  o.played = choose(side, depth, &o.column, &o.row);
  o.nodes = EngineNodesSearched - before;
  o.randomState = RandomState;
  o.top = Engine.PositionStack.Top;
  o.pieces = Engine.PositionStack.Slot[0].pieceCount;
  o.base = CopyCurrentPosition();
  return o;
}

struct Valued {
  int32_t value;
  int64_t nodes;
};

Valued Value(Search search, int32_t side, int32_t depth, int32_t beta) {
  const int64_t before = EngineNodesSearched;
  const int32_t value = search(side, depth, -kEngineInfinity, beta);
  return {value, EngineNodesSearched - before};
}

// The differences of the two searches on the base position for side at depth, "" if none: the
// move chosen with a given seed, then every root column valued against the bounds the root can
// meet (none, the column's own value and its neighbours, and one at random).
std::string Differences(int32_t side, int32_t depth, std::mt19937& random, bool rootValues) {
  std::ostringstream out;
  const PositionCopy start = CopyCurrentPosition();
  const int32_t pieces = Engine.PositionStack.Slot[0].pieceCount;
  const uint32_t seed = static_cast<uint32_t>(random());
  const Outcome plain = Choose(PlainEngineChooseAndPlay, side, depth, seed);
  RestoreBasePosition(start, pieces);
  const Outcome fast = Choose(EngineChooseAndPlay, side, depth, seed);
  RestoreBasePosition(start, pieces);
  if (!(plain == fast)) {
    out << "choice: column " << plain.column << "/" << fast.column << " row " << plain.row << "/"
        << fast.row << " nodes " << plain.nodes << "/" << fast.nodes << " random "
        << plain.randomState << "/" << fast.randomState << "; ";
  }
  for (int32_t c = 0; rootValues && c < Engine.PlayableColumns; ++c) {
    if (!ColumnOpen(c)) continue;
    PushPosition();
    DropPiece(side, c);
    const int64_t exact = PlainSearchValue(side, depth, -kEngineInfinity, kEngineInfinity);
    const int64_t someBound = exact + static_cast<int64_t>(random() % 41) - 20;
    for (int64_t beta : {int64_t{kEngineInfinity}, exact, exact - 1, exact + 1, someBound}) {
      if (beta < -kEngineInfinity || beta > kEngineInfinity) continue;
      const Valued p = Value(PlainSearchValue, side, depth, static_cast<int32_t>(beta));
      const Valued f = Value(SearchValue, side, depth, static_cast<int32_t>(beta));
      if (p.value != f.value || p.nodes != f.nodes) {
        out << "column " << c << " beta " << beta << ": value " << p.value << "/" << f.value
            << " nodes " << p.nodes << "/" << f.nodes << "; ";
      }
    }
    PopPosition();
  }
  return out.str();
}

struct RunCounts {
  int32_t compared = 0, different = 0;
};

// Random positions of the board, each searched at depths first..last by both searches.
RunCounts CompareOnRandomGames(Board board, int32_t positions, int32_t first, int32_t last,
                               uint32_t seed, bool report) {
  std::mt19937 random(seed);
  RunCounts counts;
  for (int32_t n = 0; n < positions; ++n) {
    StartBoard(board);
    const int32_t cells = (board.width - 1) * board.height;
    const bool pastAWin = n % 10 == 9;
    const int32_t side = PlayRandomGame(random, static_cast<int32_t>(random() % cells), pastAWin);
    for (int32_t depth = first; depth <= last; ++depth) {
      const std::string diff = Differences(side, depth, random, depth <= 6);
      ++counts.compared;
      counts.different += !diff.empty();
      if (report) {
        EXPECT_EQ(diff, "") << board.width << "x" << board.height << " line " << board.lineLength
                            << ", position " << n << ", depth " << depth;
      }
    }
  }
  return counts;
}

}  // namespace

TEST_F(EngineDiffTest, SameAsReferenceOnTheGameBoardAtDepthsOneToEight) {
  const RunCounts counts = CompareOnRandomGames({8, 7, 4}, Share(100), 1, 8, 1, true);
  EXPECT_EQ(counts.compared, Share(100) * 8);
}

// Deeper than the game goes, on a few positions.
TEST_F(EngineDiffTest, SameAsReferenceDeeper) {
  CompareOnRandomGames({8, 7, 4}, Share(3), 9, 10, 2, true);
  CompareOnRandomGames({6, 5, 4}, Share(3), 9, 12, 3, true);
}

// Other boards take the search's general path; the game's board its specialised one.
TEST_F(EngineDiffTest, SameAsReferenceOnOtherBoards) {
  const Board boards[] = {{2, 5, 3}, {4, 4, 3}, {6, 6, 4}, {8, 7, 3}, {8, 9, 5}, {10, 6, 4}};
  uint32_t seed = 10;
  for (const Board& board : boards) CompareOnRandomGames(board, Share(10), 1, 6, ++seed, true);
}

// The test notices a fast search that is wrong in only one of the subtle rules: a cut-off that
// also stops on a branch equal to the bound (which loses ties and searches fewer positions), or
// a winner replaced by whoever completes a line later.
TEST_F(EngineDiffTest, NoticesABrokenFastSearch) {
  for (SearchFault fault : {kSearchLooseCutoff, kSearchLastWinner}) {
    EngineSearchFault = fault;
    const RunCounts counts = CompareOnRandomGames({8, 7, 4}, 20, 1, 6, 7, false);
    EngineSearchFault = kSearchSound;
    EXPECT_GT(counts.different, 0) << "fault " << fault;
  }
}
