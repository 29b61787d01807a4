// The reference search: the engine's move exactly as the algorithm states it, every move tried
// on a pushed copy of the position. Too slow for the game's deepest search; kept so that the
// fast search (engine_search.cpp) can be checked and measured against it.
#include <cassert>

#include "engine/engine.h"
#include "engine/engine_state.h"

// Values the current position for player, the side that has just moved, looking until the
// stack top reaches depth. A line completed by the move that brought the stack top to k is
// worth kEngineInfinity - k to its owner; a position where the side to move has no column left
// is worth kEngineInfinity to the side that has just moved. Leaves the stack as it found it.
int32_t PlainSearchValue(int32_t player, int32_t depth, int32_t alpha, int32_t beta) {
  PositionStackRecord* stack = &Engine.PositionStack;
  const int32_t p = player, o = 1 - player;
  if (stack->Top == depth) return stack->Current->scoreTotal[p] - stack->Current->scoreTotal[o];
  int32_t best = -kEngineInfinity;
  for (int32_t i = 0; i < Engine.PlayableColumns; ++i) {
    PushPosition();
    if (DropPiece(o, Engine.ColumnOrder[i]) < 0) {
      PopPosition();
      continue;
    }
    ++EngineNodesSearched;
    // A completed line ends the branch: it is never searched further nor valued by its totals.
    const int32_t value = stack->Current->winner == o ? kEngineInfinity - stack->Top
                                                      : PlainSearchValue(o, depth, -beta, -alpha);
    if (value > best) {
      best = value;
      if (value > alpha) alpha = value;
    }
    PopPosition();
    // Strictly greater: a branch that only equals the bound is valued exactly, so the root sees
    // every real tie and no false one.
    if (best > beta) break;
  }
  return -best;
}

// Chooses and plays a move exactly as EngineChooseAndPlay does, by the reference search.
bool PlainEngineChooseAndPlay(int32_t player, int32_t depth, int32_t* column, int32_t* row) {
  assert(Engine.PositionStack.Top == 0 && depth >= 1 && depth < kEngineStackSlots);
  const int32_t p = player & 1;
  RootChoice choice;
  for (int32_t i = 0; i < Engine.PlayableColumns; ++i) {
    const int32_t c = Engine.ColumnOrder[i];
    PushPosition();
    if (DropPiece(p, c) < 0) {
      PopPosition();
      continue;
    }
    ++EngineNodesSearched;
    if (Engine.PositionStack.Current->winner == p) {
      PopPosition();
      choice.Chosen = c;
      break;
    }
    ConsiderRootColumn(&choice, PlainSearchValue(p, depth, -kEngineInfinity, -choice.Best), c);
    PopPosition();
  }
  if (choice.Chosen < 0) return false;
  const int32_t landed = DropPiece(p, choice.Chosen);
  if (column != nullptr) *column = choice.Chosen;
  if (row != nullptr) *row = landed;
  return true;
}
