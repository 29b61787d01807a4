// The engine's search: values of known positions, the completing move, the random tie rule,
// and the pruned search checked against plain negamax on random positions.
#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "engine_fixture.h"

namespace {

constexpr int32_t kLossOnReply = -(kEngineInfinity - 2);

struct Choice {
  bool played = false;
  int32_t column = -1, row = -1;
};

Choice ChooseAndPlay(int32_t player, int32_t depth) {
  Choice c;
  c.played = EngineChooseAndPlay(player, depth, &c.column, &c.row);
  return c;
}

std::vector<int32_t> OpenColumns() {
  std::vector<int32_t> open;
  for (int32_t c = 0; c < 7; ++c) {
    if (EngineBoardView()[c][6] == kEngineEmpty) open.push_back(c);
  }
  return open;
}

bool HasCompletingMove(int32_t p) {
  bool completes = false;
  for (int32_t c : OpenColumns()) {
    PushPosition();
    DropPiece(p, c);
    completes = completes || EngineHasWon(p);
    PopPosition();
  }
  return completes;
}

}  // namespace

TEST_F(EngineTest, DepthOneValuesOnTheEmptyBoard) {
  const int32_t values[7] = {6, 8, 10, 14, 14, 10, 8};
  for (int32_t c = 0; c < 7; ++c) EXPECT_EQ(MoveValue(0, c, 1), values[c]) << "column " << c;
}

// Columns 3 and 4 tie at 14: column 4 replaces column 3 when the one number drawn, modulo 10000,
// is below 10000 / 2.
TEST_F(EngineTest, TieOnTheEmptyBoardFollowsTheDraw) {
  std::set<int32_t> seen;
  for (uint32_t n = 0; n < 20; ++n) {
    SetUp();
    const uint32_t seed = SpreadSeed(n);
    SeedRandom(seed);
    const int32_t draw = RandomNext() % 10000;
    const uint32_t afterOneDraw = RandomState;
    SeedRandom(seed);
    const Choice choice = ChooseAndPlay(0, 1);
    EXPECT_EQ(choice.column, draw < 5000 ? 4 : 3) << "seed " << seed;
    EXPECT_EQ(RandomState, afterOneDraw);
    seen.insert(choice.column);
  }
  EXPECT_EQ(seen, (std::set<int32_t>{3, 4}));
}

// Three columns tie at 8 (2, 3 and 5; 3 comes first in the search order). The second tied column
// replaces the first when the first draw, modulo 10000, is below 5000; the third replaces the one
// chosen when the second draw is below 3333.33, which the remainder 3333 is.
TEST_F(EngineTest, ThreeWayTieFollowsBothDraws) {
  struct Case {
    uint32_t seed;
    int32_t draws[2], column;
  } cases[] = {{1013904226, {7589, 5989}, 3},
               {387276917, {2532, 9779}, 2},
               {2654435761, {198, 3238}, 5},
               {17957, {5910, 3333}, 5}};
  for (const Case& c : cases) {
    SetUp();
    PlayPicture({".OO..X."});
    SeedRandom(c.seed);
    ASSERT_EQ(RandomNext() % 10000, c.draws[0]);
    ASSERT_EQ(RandomNext() % 10000, c.draws[1]);
    const uint32_t afterTwoDraws = RandomState;
    SeedRandom(c.seed);
    EXPECT_EQ(ChooseAndPlay(0, 1).column, c.column) << "seed " << c.seed;
    EXPECT_EQ(RandomState, afterTwoDraws);
  }
}

TEST_F(EngineTest, AnswersAMiddlePieceOnTop) {
  struct Case {
    int32_t depth, value;
  } cases[] = {{1, 6}, {2, -18}};
  for (const Case& c : cases) {
    SetUp();
    EnginePlay(1, 3);
    for (int32_t column = 0; column < 7; ++column) {
      const int32_t v = MoveValue(0, column, c.depth);
      if (column == 3) {
        EXPECT_EQ(v, c.value);
      } else {
        EXPECT_LT(v, c.value) << "column " << column;
      }
    }
    EXPECT_EQ(ChooseAndPlay(0, c.depth).column, 3);
  }
}

TEST_F(EngineTest, BlocksAThreeInARow) {
  for (int32_t depth : {2, 4, 6}) {
    SetUp();
    PlayPicture({"XX.....", "OOO...."});
    for (int32_t column = 0; column < 7; ++column) {
      if (column == 3) continue;
      EXPECT_EQ(MoveValue(0, column, depth), kLossOnReply) << "column " << column;
    }
    EXPECT_EQ(ChooseAndPlay(0, depth).column, 3) << "depth " << depth;
  }
}

TEST_F(EngineTest, CompletesALineWithoutSearchOrDraw) {
  PlayPicture({".X....X", ".X....X", ".X....X"});
  EXPECT_EQ(ChooseAndPlay(0, 4).column, 1);  // the first completing column in search order
  SetUp();
  PlayPicture({"....XXX"});
  const uint32_t state = RandomState;
  const int64_t nodes = EngineNodesSearched;
  const Choice choice = ChooseAndPlay(0, 6);
  EXPECT_EQ(choice.column, 3);
  EXPECT_EQ(choice.row, 0);
  EXPECT_TRUE(EngineHasWon(0));
  EXPECT_EQ(RandomState, state);
  EXPECT_EQ(EngineNodesSearched - nodes, 1);
}

TEST_F(EngineTest, FullBoardPlaysNothing) {
  for (int32_t n = 0; n < 49; ++n) EnginePlay(n % 3 == 0, n % 7);
  const PositionCopy before = CopyCurrentPosition();
  const Choice choice = ChooseAndPlay(0, 4);
  EXPECT_FALSE(choice.played);
  EXPECT_EQ(choice.column, -1);
  EXPECT_EQ(CopyCurrentPosition(), before);
}

// Filling the board leaves the opponent without a column: worth more than any win.
TEST_F(EngineTest, LastCellIsWorthMoreThanAWin) {
  PlayPicture({"O.OXOXX", "XOXXOOX", "XOXOXXO", "OOXXOOX", "OXOOXOO", "XOOXOOX", "OXOOXXX"});
  ASSERT_FALSE(EngineHasWon(0) || EngineHasWon(1));
  EXPECT_EQ(MoveValue(0, 1, 2), kEngineInfinity);
  EXPECT_EQ(ChooseAndPlay(0, 2).column, 1);
  EXPECT_TRUE(EngineBoardFull());
}

// On random positions: a root column valued against a bound b comes out exact when it reaches b
// and strictly below b otherwise; the move played is always among the best, every best column
// gets played for some seed, and the search leaves the stack at 0 with one piece added.
TEST_F(EngineTest, PrunedSearchAgreesWithPlainNegamax) {
  std::mt19937 random(4);
  int32_t checked = 0;
  for (int32_t trial = 0; trial < 120; ++trial) {
    SetUp();
    const int32_t moves = 2 + static_cast<int32_t>(random() % 24);
    for (int32_t n = 0; n < moves; ++n) EnginePlay(n % 2, static_cast<int32_t>(random() % 7));
    const int32_t p = trial % 2, depth = 1 + trial % 5;
    const std::vector<int32_t> open = OpenColumns();
    if (EngineHasWon(0) || EngineHasWon(1) || open.empty() || HasCompletingMove(p)) continue;
    std::map<int32_t, int32_t> exact;
    int32_t best = -kEngineInfinity;
    for (int32_t c : open) best = std::max(best, exact[c] = MoveValue(p, c, depth, true));
    std::set<int32_t> bestColumns;
    for (int32_t c : open) {
      if (exact[c] == best) bestColumns.insert(c);
      for (int32_t bound : open) {
        PushPosition();
        DropPiece(p, c);
        const int32_t v = SearchValue(p, depth, -kEngineInfinity, -exact[bound]);
        PopPosition();
        if (exact[c] >= exact[bound]) {
          EXPECT_EQ(v, exact[c]);
        } else {
          EXPECT_LT(v, exact[bound]);
        }
      }
    }
    const PositionCopy before = CopyCurrentPosition();
    const int32_t pieces = Engine.PositionStack.Current->pieceCount;
    std::set<int32_t> played;
    for (uint32_t n = 0; n < 40; ++n) {
      SeedRandom(SpreadSeed(n));
      const Choice choice = ChooseAndPlay(p, depth);
      ASSERT_TRUE(choice.played);
      ASSERT_EQ(Engine.PositionStack.Top, 0);
      EXPECT_EQ(EngineBoardView()[choice.column][choice.row], p);
      EXPECT_EQ(Engine.PositionStack.Current->pieceCount, pieces + 1);
      PositionCopy after = CopyCurrentPosition();
      after.cells[choice.column * 7 + choice.row] = kEngineEmpty;
      EXPECT_EQ(after.cells, before.cells);
      played.insert(choice.column);
      RestoreBasePosition(before, pieces);
    }
    EXPECT_EQ(played, bestColumns) << "trial " << trial;
    ++checked;
  }
  EXPECT_GT(checked, 40);
}

// The signature of the search: moves chosen and positions searched on fixed positions with a
// fixed seed. A change here is a change of the engine's behaviour, even when every other test
// passes (a lost cut-off, for instance, searches more positions for the same moves).
TEST_F(EngineTest, SearchSignature) {
  struct Case {
    const char* moves;  // columns played alternately, the human's first
    int32_t depth, column;
    int64_t nodes;
  } cases[] = {
      {"", 2, 2, 50},      {"", 4, 5, 477},      {"", 6, 2, 4695},      {"", 8, 4, 45848},
      {"3", 2, 3, 20},     {"3", 4, 3, 206},     {"3", 6, 3, 2675},     {"3", 8, 3, 29974},
      {"34325", 2, 3, 20}, {"34325", 4, 3, 235}, {"34325", 6, 3, 1637}, {"34325", 8, 5, 18377},
  };
  for (const Case& c : cases) {
    SetUp();
    for (int32_t n = 0; c.moves[n] != '\0'; ++n) EnginePlay(1 - n % 2, c.moves[n] - '0');
    SeedRandom(SpreadSeed(0));
    const int64_t before = EngineNodesSearched;
    const int32_t column = ChooseAndPlay(0, c.depth).column;
    EXPECT_EQ(column, c.column) << c.moves << " depth " << c.depth;
    EXPECT_EQ(EngineNodesSearched - before, c.nodes) << c.moves << " depth " << c.depth;
  }
}
