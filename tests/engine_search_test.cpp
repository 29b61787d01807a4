// The engine's search: values of known positions, the random tie rule, the completing move, the
// pruned search against plain negamax on random positions, and the signature of the search.
#include <map>
#include <random>
#include <set>

#include "engine_fixture.h"

// Positions searched, counted at the link: the test binary routes every call of DropPiece made
// from another file through this counter (tests/CMakeLists.txt, --wrap), so the engine carries
// no counter of its own.
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
constexpr int32_t kAny = INT32_MIN;                // in a table of values: not checked

struct Choice {
  int32_t column = -1, row = -1;
  int64_t nodes = 0;  // positions searched, the move played not included
};

Choice ChooseAndPlay(int32_t player, int32_t depth) {
  Choice c;
  const int64_t before = PiecesDropped;
  const bool played = EngineChooseAndPlay(player, depth, &c.column, &c.row);
  c.nodes = PiecesDropped - before - played;
  return c;
}

// The value for p of playing column c, by the engine's search from the bounds given.
int32_t MoveValue(int32_t p, int32_t c, int32_t depth, int32_t beta = kEngineInfinity) {
  PushPosition();
  DropPiece(p, c);
  const int32_t v = SearchValue(p, depth, -kEngineInfinity, beta);
  PopPosition();
  return v;
}

}  // namespace

// The value of every column for player 0 and the column it plays (-1: a tie).
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
      for (int32_t column = 0; column < 7; ++column) {
        if (c.values[column] == kAny) continue;
        EXPECT_EQ(MoveValue(0, column, depth), c.values[column])
            << c.name << " depth " << depth << " column " << column;
      }
      if (c.column < 0) continue;
      EXPECT_EQ(ChooseAndPlay(0, depth).column, c.column) << c.name;
    }
  }
}

// The k-th column of equal value replaces the choice when the draw, modulo 10000, is below
// 10000 / k. Empty board at depth 1: columns 3 and 4 tie (one draw); ".OO..X.": 3, 2 and 5 tie in
// that order (two draws). Seed 17957 draws 5910, then 3333: below 10000 / 3, so column 5.
TEST_F(EngineTest, TiesFollowTheDraws) {
  struct Case {
    const char* picture;
    uint32_t seed;
    int32_t draws, column;
  } cases[] = {
      {".......", 2654435761, 1, 4}, {".......", 1013904226, 1, 3}, {".......", 2027808452, 1, 3},
      {".OO..X.", 1013904226, 2, 3}, {".OO..X.", 387276917, 2, 2},  {".OO..X.", 2654435761, 2, 5},
      {".OO..X.", 17957, 2, 5},
  };
  for (const Case& c : cases) {
    SetUp();
    PlayPicture({c.picture});
    SeedRandom(c.seed);
    for (int32_t n = 0; n < c.draws; ++n) RandomNext();
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
  const Choice choice = ChooseAndPlay(0, 6);
  EXPECT_TRUE(choice.column == 3 && choice.row == 0 && EngineHasWon(0));
  EXPECT_EQ(choice.nodes, 1);
  EXPECT_EQ(RandomState, 1u);
}

// On random positions: a root column valued against a bound b comes out exact when it reaches b
// and strictly below b otherwise, and the columns played over many seeds are the best ones.
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
    std::set<int32_t> bestColumns, played;
    for (const auto& [c, value] : exact) {
      if (value == best) bestColumns.insert(c);
      for (const auto& [bound, boundValue] : exact) {
        const int32_t v = MoveValue(p, c, depth, -boundValue);
        EXPECT_TRUE(value >= boundValue ? v == value : v < boundValue)
            << "trial " << trial << " column " << c << " exact " << value << " bound " << boundValue
            << ": " << v;
      }
    }
    for (uint32_t n = 0; n < 40; ++n) {
      SeedRandom(SpreadSeed(n));
      played.insert(ChooseAndPlay(p, depth).column);
      replay();
    }
    EXPECT_EQ(played, bestColumns) << "trial " << trial;
    ++checked;
  }
  EXPECT_GT(checked, 40);
}

// Moves chosen and positions searched on fixed positions with a fixed seed: a lost cut-off, for
// instance, searches more positions for the same moves.
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
