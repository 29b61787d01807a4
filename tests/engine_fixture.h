// What the engine's tests share: a fresh 8 x 7 game per test, pictures of positions, copies of
// the current position, and the exact value of a position by plain negamax.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "ground/random.h"
#include "ground/test_hooks.h"

class EngineTest : public ::testing::Test {
 protected:
  void SetUp() override {
    EngineRelease();               // harmless when no engine game is open
    EngineSeededGenerator = true;  // no clock seeding: the tests choose their seeds
    TestHooks = TestHooksRecord{};
    EngineStart(8, 7, 4);
    SeedRandom(1);
  }
  void TearDown() override { EngineRelease(); }
};

// Seeds far apart: the generator's first draws after small neighbouring seeds are all alike.
inline uint32_t SpreadSeed(uint32_t n) {
  return (n + 1) * 2654435761u;
}

// Rows from the top, 'X' player 0, 'O' player 1, '.' empty; played row by row from the bottom,
// left to right, so the first line completed in that order decides the winner.
inline void PlayPicture(std::initializer_list<const char*> rowsFromTop) {
  for (auto row = std::rbegin(rowsFromTop); row != std::rend(rowsFromTop); ++row) {
    for (int32_t c = 0; (*row)[c] != '\0'; ++c) {
      if ((*row)[c] == '.') continue;
      ASSERT_TRUE(EnginePlay((*row)[c] == 'X' ? 0 : 1, c)) << c;
    }
  }
}

struct PositionCopy {
  std::vector<uint8_t> cells;
  std::vector<int32_t> lineScore[2];
  int32_t scoreTotal[2];
  int16_t winner;
  bool operator==(const PositionCopy&) const = default;
};

inline PositionCopy CopyCurrentPosition() {
  const EngineState* s = Engine.PositionStack.Current;
  return {{s->cells[0], s->cells[0] + Engine.PlayableColumns * Engine.Height},
          {{s->lineScore[0], s->lineScore[0] + Engine.LineCount},
           {s->lineScore[1], s->lineScore[1] + Engine.LineCount}},
          {s->scoreTotal[0], s->scoreTotal[1]},
          s->winner};
}

// The value of the current position for p (who has just moved) by negamax without cut-offs.
inline int32_t ExactValue(int32_t p, int32_t depth) {
  const PositionStackRecord& stack = Engine.PositionStack;
  if (stack.Top == depth) return stack.Current->scoreTotal[p] - stack.Current->scoreTotal[1 - p];
  int32_t best = -kEngineInfinity;
  for (int32_t c = 0; c < Engine.PlayableColumns; ++c) {
    PushPosition();
    if (DropPiece(1 - p, c) >= 0) {
      best = std::max(best, stack.Current->winner == 1 - p ? kEngineInfinity - stack.Top
                                                           : ExactValue(1 - p, depth));
    }
    PopPosition();
  }
  return -best;
}
