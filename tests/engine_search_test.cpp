// The engine's search: values of known positions, the random tie rule, the completing move, the
// pruned search against plain negamax on random positions, and the signature of the search.
#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "engine_fixture.h"

// Positions searched, counted at the link: the test binary routes every call of DropPiece made
// from another file of the program through this counter (tests/CMakeLists.txt, --wrap), so the
// engine carries no counter of its own. The move EngineChooseAndPlay finally plays counts too.
namespace {
int64_t PiecesDropped = 0;
}
extern "C" int32_t __real__Z9DropPieceii(int32_t player, int32_t column);
extern "C" int32_t __wrap__Z9DropPieceii(int32_t player, int32_t column) {
  const int32_t row = __real__Z9DropPieceii(player, column);
  PiecesDropped += row >= 0;
  return row;
}

namespace {

constexpr int32_t kLoss = -(kEngineInfinity - 2);  // the reply completes a line
constexpr int32_t kAny = INT32_MIN;  // in a table of values: not checked (never a value)

struct Choice {
  bool played = false;
  int32_t column = -1, row = -1;
  int64_t nodes = 0;  // positions searched
};

Choice ChooseAndPlay(int32_t player, int32_t depth) {
  Choice c;
  const int64_t before = PiecesDropped;
  c.played = EngineChooseAndPlay(player, depth, &c.column, &c.row);
  c.nodes = PiecesDropped - before - c.played;
  return c;
}

}  // namespace

// The value of every column for player 0, searched with the widest bounds, and the column it
// plays (-1: a tie, left to the tie test).
TEST_F(EngineTest, ValuesOfKnownPositions) {
  struct Case {
    const char* name;
    std::initializer_list<const char*> picture;
    std::initializer_list<int32_t> depths;
    int32_t column, values[7];
  } cases[] = {
      // clang-format off
      {"empty", {"......."}, {1}, -1, {6, 8, 10, 14, 14, 10, 8}},
      {"three in a row", {"XX.....", "OOO...."}, {2, 4, 6}, 3,
       {kLoss, kLoss, kLoss, kAny, kLoss, kLoss, kLoss}},
      // Filling the board leaves the opponent without a column: worth more than any win.
      {"last cell", {"O.OXOXX", "XOXXOOX", "XOXOXXO", "OOXXOOX", "OXOOXOO", "XOOXOOX", "OXOOXXX"},
       {2}, 1, {kAny, kEngineInfinity, kAny, kAny, kAny, kAny, kAny}},
      // clang-format on
  };

  for (const Case& c : cases) {
    for (int32_t depth : c.depths) {
      SetUp();
      PlayPicture(c.picture);
      ASSERT_FALSE(EngineHasWon(0) || EngineHasWon(1));
      for (int32_t column = 0; column < 7; ++column) {
        const int32_t want = c.values[column];
        if (want == kAny) continue;
        EXPECT_EQ(MoveValue(0, column, depth), want)
            << c.name << " depth " << depth << " column " << column;
      }
      if (c.column >= 0) {
        EXPECT_EQ(ChooseAndPlay(0, depth).column, c.column) << c.name;
      }
    }
  }
}

// Columns of equal value: the k-th replaces the one chosen so far when the number drawn, modulo
// 10000, is below 10000 / k. On the empty board at depth 1, columns 3 and 4 tie (one draw); with
// ".OO..X." columns 3, 2 and 5 tie in that search order (two draws; 3333 < 3333.33).
TEST_F(EngineTest, TiesFollowTheDraws) {
  struct Case {
    const char* picture;
    uint32_t seed;
    int32_t draws[2], column;  // the draws modulo 10000, -1 where none is made
  } cases[] = {
      {".......", 2654435761, {198, -1}, 4},   {".......", 1013904226, {7589, -1}, 3},
      {".......", 2027808452, {5140, -1}, 3},  {".OO..X.", 1013904226, {7589, 5989}, 3},
      {".OO..X.", 387276917, {2532, 9779}, 2}, {".OO..X.", 2654435761, {198, 3238}, 5},
      {".OO..X.", 17957, {5910, 3333}, 5},
  };
  for (const Case& c : cases) {
    SetUp();
    PlayPicture({c.picture});
    SeedRandom(c.seed);
    for (int32_t draw : c.draws) {
      if (draw >= 0) {
        ASSERT_EQ(RandomNext() % 10000, draw);
      }
    }
    const uint32_t afterTheDraws = RandomState;
    SeedRandom(c.seed);
    EXPECT_EQ(ChooseAndPlay(0, 1).column, c.column) << c.picture << " seed " << c.seed;
    EXPECT_EQ(RandomState, afterTheDraws) << c.picture << " seed " << c.seed;
  }
}

TEST_F(EngineTest, CompletesALineWithoutSearchOrDraw) {
  PlayPicture({".X....X", ".X....X", ".X....X"});
  EXPECT_EQ(ChooseAndPlay(0, 4).column, 1);  // the first completing column in search order
  SetUp();
  PlayPicture({"....XXX"});
  const uint32_t state = RandomState;
  const Choice choice = ChooseAndPlay(0, 6);
  EXPECT_EQ(choice.column, 3);
  EXPECT_EQ(choice.row, 0);
  EXPECT_EQ(choice.nodes, 1);
  EXPECT_TRUE(EngineHasWon(0));
  EXPECT_EQ(RandomState, state);
}

TEST_F(EngineTest, FullBoardPlaysNothing) {
  for (int32_t n = 0; n < 49; ++n) EnginePlay(n % 3 == 0, n % 7);
  const PositionCopy before = CopyCurrentPosition();
  const Choice choice = ChooseAndPlay(0, 4);
  EXPECT_FALSE(choice.played);
  EXPECT_EQ(choice.column, -1);
  EXPECT_EQ(CopyCurrentPosition(), before);
}

// On random positions: a root column valued against a bound b comes out exact when it reaches b
// and strictly below b otherwise; the move played is always among the best, every best column
// gets played for some seed, and the search leaves the stack at 0 with one piece added.
TEST_F(EngineTest, PrunedSearchAgreesWithPlainNegamax) {
  std::mt19937 random(4);
  int32_t checked = 0;
  for (int32_t trial = 0; trial < 120; ++trial) {
    std::vector<int32_t> moves(2 + random() % 24);
    for (int32_t& m : moves) m = static_cast<int32_t>(random() % 7);
    const auto replay = [this, &moves] {
      SetUp();
      for (size_t n = 0; n < moves.size(); ++n) EnginePlay(n % 2, moves[n]);
    };
    replay();
    const int32_t p = trial % 2, depth = 1 + trial % 5;
    std::map<int32_t, int32_t> exact;  // by open column
    bool completes = EngineHasWon(0) || EngineHasWon(1);
    for (int32_t c = 0; c < 7; ++c) {
      if (EngineBoardView()[c][6] != kEngineEmpty) continue;
      PushPosition();
      DropPiece(p, c);
      completes = completes || EngineHasWon(p);  // played at once, without search
      exact[c] = ExactValue(p, depth);
      PopPosition();
    }
    if (completes || exact.empty()) continue;
    int32_t best = -kEngineInfinity;
    for (const auto& [c, value] : exact) best = std::max(best, value);
    std::set<int32_t> bestColumns;
    for (const auto& [c, value] : exact) {
      if (value == best) bestColumns.insert(c);
      for (const auto& [bound, boundValue] : exact) {
        PushPosition();
        DropPiece(p, c);
        const int32_t v = SearchValue(p, depth, -kEngineInfinity, -boundValue);
        PopPosition();
        if (value >= boundValue) {
          EXPECT_EQ(v, value);
        } else {
          EXPECT_LT(v, boundValue);
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
      replay();
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
    const Choice choice = ChooseAndPlay(0, c.depth);
    EXPECT_EQ(choice.column, c.column) << c.moves << " depth " << c.depth;
    EXPECT_EQ(choice.nodes, c.nodes) << c.moves << " depth " << c.depth;
  }
}
