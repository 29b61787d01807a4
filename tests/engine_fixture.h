// What the engine's tests share: a fixture with a fresh engine game of the game's size, pictures
// of positions, copies of the current position, and the exact (unpruned) value of a move.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "ground/random.h"

class EngineTest : public ::testing::Test {
 protected:
  void SetUp() override {
    EngineRelease();               // harmless when no engine game is open
    EngineSeededGenerator = true;  // no clock seeding: the tests choose their seeds
    EngineAllocationsLeft = -1;
    EngineStart(8, 7, 4);
    SeedRandom(1);
  }
  void TearDown() override { EngineRelease(); }
};

// Seeds far apart: the generator's first draws after small neighbouring seeds are all alike.
inline uint32_t SpreadSeed(uint32_t n) {
  return (n + 1) * 2654435761u;
}

// Plays a picture onto the base position, rows from the top, 'X' player 0, 'O' player 1, '.'
// empty. Pieces go in row by row from the bottom, left to right, so the first line completed in
// that order decides the winner.
inline void PlayPicture(std::initializer_list<const char*> rowsFromTop) {
  std::vector<const char*> rows(rowsFromTop);
  for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
    for (int32_t c = 0; (*row)[c] != '\0'; ++c) {
      if ((*row)[c] == '.') continue;
      ASSERT_TRUE(EnginePlay((*row)[c] == 'X' ? 0 : 1, c)) << "column " << c;
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
  PositionCopy copy{};
  copy.cells.assign(s->cells[0], s->cells[0] + Engine.PlayableColumns * Engine.Height);
  for (int32_t p = 0; p < 2; ++p) {
    copy.lineScore[p].assign(s->lineScore[p], s->lineScore[p] + Engine.LineCount);
    copy.scoreTotal[p] = s->scoreTotal[p];
  }
  copy.winner = s->winner;
  return copy;
}

// Puts a copy back as the base position, with its piece count.
inline void RestoreBasePosition(const PositionCopy& copy, int32_t pieceCount) {
  EngineState* s = &Engine.PositionStack.Slot[0];
  std::copy(copy.cells.begin(), copy.cells.end(), s->cells[0]);
  for (int32_t p = 0; p < 2; ++p) {
    std::copy(copy.lineScore[p].begin(), copy.lineScore[p].end(), s->lineScore[p]);
    s->scoreTotal[p] = copy.scoreTotal[p];
  }
  s->winner = copy.winner;
  s->pieceCount = pieceCount;
}

// The value of the current position for p (who has just moved) by plain negamax without
// cut-offs: the oracle against which the pruned search is checked.
inline int32_t ExactValue(int32_t p, int32_t depth) {
  const PositionStackRecord& stack = Engine.PositionStack;
  if (stack.Top == depth) return stack.Current->scoreTotal[p] - stack.Current->scoreTotal[1 - p];
  int32_t best = -kEngineInfinity;
  for (int32_t c = 0; c < Engine.PlayableColumns; ++c) {
    PushPosition();
    if (DropPiece(1 - p, c) >= 0) {
      const int32_t v =
          stack.Current->winner == 1 - p ? kEngineInfinity - stack.Top : ExactValue(1 - p, depth);
      best = std::max(best, v);
    }
    PopPosition();
  }
  return -best;
}

// The value for p of playing an open column on the current position, searched to depth: by the
// engine's own search with the widest bounds, or exactly.
inline int32_t MoveValue(int32_t p, int32_t column, int32_t depth, bool exact = false) {
  PushPosition();
  DropPiece(p, column);
  const int32_t v =
      exact ? ExactValue(p, depth) : SearchValue(p, depth, -kEngineInfinity, kEngineInfinity);
  PopPosition();
  return v;
}
