// The engine's move: a fixed-depth negamax search with alpha-beta cut-offs over the incremental
// line scores, the columns tried middle first, and a random choice among columns of equal value.
// Every move tried is pushed, played, valued and popped; only the chosen move is played on the
// base position.
#include <cassert>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "ground/random.h"

namespace {

// The root's choice so far: the best value, its column, and how many columns share it.
struct RootChoice {
  int32_t Best = -kEngineInfinity;
  int32_t Chosen = -1;
  int32_t Ties = 0;
};

// A better value replaces the choice. The k-th column of equal value replaces it with
// probability about 1/k, so that every column sharing the best value is about equally likely
// to be played; that draws one number.
void ConsiderRootColumn(RootChoice* choice, int32_t value, int32_t c) {
  if (value > choice->Best) {
    *choice = RootChoice{value, c, 1};
  } else if (value == choice->Best && RandomNext() % 10000 < 10000.0 / ++choice->Ties) {
    choice->Chosen = c;
  }
}

}  // namespace

// Values the current position for player, the side that has just moved, looking until the
// stack top reaches depth. A line completed by the move that brought the stack top to k is
// worth kEngineInfinity - k to its owner (a nearer win is worth more); a position where the side
// to move has no column left is worth kEngineInfinity to the side that has just moved. Leaves the
// stack as it found it.
int32_t SearchValue(int32_t player, int32_t depth, int32_t alpha, int32_t beta) {
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
    // A completed line ends the branch: it is never searched further nor valued by its totals.
    const int32_t value = stack->Current->winner == o ? kEngineInfinity - stack->Top
                                                      : SearchValue(o, depth, -beta, -alpha);
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

// Chooses a move for player (only its lowest bit counts) by a search of depth plies (1..16,
// the engine's own move included) and plays it on the base position; stores the column and
// row through the pointers given. A move that completes a line is played at once, without
// search or random draw. False, and nothing played, when every column is full.
bool EngineChooseAndPlay(int32_t player, int32_t depth, int32_t* column, int32_t* row) {
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
    if (Engine.PositionStack.Current->winner == p) {
      PopPosition();
      choice.Chosen = c;
      break;
    }
    ConsiderRootColumn(&choice, SearchValue(p, depth, -kEngineInfinity, -choice.Best), c);
    PopPosition();
  }
  if (choice.Chosen < 0) return false;
  const int32_t landed = DropPiece(p, choice.Chosen);
  if (column != nullptr) *column = choice.Chosen;
  if (row != nullptr) *row = landed;
  return true;
}
