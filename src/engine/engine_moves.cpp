// Moves on the engine's board: dropping a piece with the incremental update of both players'
// line scores, the position stack of the search, and the operations through which the rest of
// the game plays and looks at the engine's board.
#include <cassert>
#include <cstring>

#include "engine/engine.h"
#include "engine/engine_state.h"

// Drops a piece of player (0 or 1) into a playable column of the current position. Returns the
// row where it landed, or -1 (nothing changed) if the column is full.
int32_t DropPiece(int32_t player, int32_t column) {
  EngineState* position = Engine.PositionStack.Current;
  uint8_t* cells = position->cells[column];
  for (int32_t row = 0; row < Engine.Height; ++row) {
    if (cells[row] != kEngineEmpty) continue;
    cells[row] = static_cast<uint8_t>(player);
    ++position->pieceCount;
    RescoreCell(player, column, row);
    return row;
  }
  return -1;
}

// Updates both players' line scores and totals for a new piece of p at (column, row): each line
// through the cell doubles for p and dies for the opponent. The first line to reach WinScore
// decides the winner, who stays the winner for the rest of this position's game.
void RescoreCell(int32_t player, int32_t column, int32_t row) {
  EngineState* position = Engine.PositionStack.Current;
  const int32_t p = player, o = 1 - player;
  const uint8_t* lines = Engine.LineMap[column][row];
  int32_t* mine = position->lineScore[p];
  int32_t* theirs = position->lineScore[o];
  for (int32_t i = 0; i < Engine.LineCount; ++i) {
    if (lines[i] == 0) continue;
    position->scoreTotal[p] += mine[i];
    mine[i] *= 2;  // a dead line stays 0
    position->scoreTotal[o] -= theirs[i];
    theirs[i] = 0;
    if (mine[i] == Engine.WinScore && position->winner == kEngineNoWinner) {
      position->winner = static_cast<int16_t>(p);
    }
  }
}

// Makes a copy of the current position the new current position, one slot up. A slot's arrays
// are taken the first time the stack reaches it and reused afterwards. The piece count is not
// copied: only the base position keeps one.
void PushPosition() {
  PositionStackRecord* stack = &Engine.PositionStack;
  const EngineState* below = stack->Current;
  EngineState* slot = &stack->Slot[++stack->Top];
  if (stack->Top >= stack->SlotsWithArrays) {
    TakeSlotArrays(slot);
    ++stack->SlotsWithArrays;
  }
  std::memcpy(slot->cells[0], below->cells[0], Engine.PlayableColumns * Engine.Height);
  for (int32_t p = 0; p < 2; ++p) {
    std::memcpy(slot->lineScore[p], below->lineScore[p], Engine.LineCount * sizeof(int32_t));
    slot->scoreTotal[p] = below->scoreTotal[p];
  }
  slot->winner = below->winner;
  stack->Current = slot;
}

// Makes the position one slot down current again, exactly as it was before the matching push.
void PopPosition() {
  PositionStackRecord* stack = &Engine.PositionStack;
  stack->Current = &stack->Slot[--stack->Top];
}

// Plays a piece of player (only its lowest bit counts) into column of the base position; stores
// the landing row through row when given. False, and nothing changes, for a column outside the
// board or a full one. The caller stops playing once somebody has won.
bool EnginePlay(int32_t player, int32_t column, int32_t* row) {
  if (column < 0 || column >= Engine.PlayableColumns) return false;
  const int32_t landed = DropPiece(player & 1, column);
  assert(EngineIsConsistent());
  if (landed < 0) return false;
  if (row != nullptr) *row = landed;
  return true;
}

const uint8_t* const* EngineBoardView() {
  return Engine.PositionStack.Current->cells;
}

bool EngineHasWon(int32_t player) {
  return Engine.PositionStack.Current->winner == player;
}

bool EngineBoardFull() {
  return Engine.PositionStack.Current->pieceCount == Engine.Height * Engine.PlayableColumns;
}

// The two ends of the winner's completed line with the lowest index: the first end is the cell
// met first reading rows upwards and each row left to right, the last end the cell met first
// reading rows downwards and each row right to left. Only while somebody has won.
void EngineLineEnds(int32_t* firstColumn, int32_t* firstRow, int32_t* lastColumn,
                    int32_t* lastRow) {
  const EngineState* position = Engine.PositionStack.Current;
  assert(position->winner != kEngineNoWinner);
  const int32_t* scores = position->lineScore[position->winner];
  int32_t line = 0;
  while (scores[line] != Engine.WinScore) ++line;
  const int32_t columns = Engine.PlayableColumns, height = Engine.Height;
  bool found = false;
  for (int32_t r = 0; r < height && !found; ++r) {
    for (int32_t c = 0; c < columns && !found; ++c) {
      if (Engine.LineMap[c][r][line] == 0) continue;
      *firstColumn = c;
      *firstRow = r;
      found = true;
    }
  }
  found = false;
  for (int32_t r = height - 1; r >= 0 && !found; --r) {
    for (int32_t c = columns - 1; c >= 0 && !found; --c) {
      if (Engine.LineMap[c][r][line] == 0) continue;
      *lastColumn = c;
      *lastRow = r;
      found = true;
    }
  }
}

// The score the invariants require for player p on line i, counted from the cells.
static int32_t ExpectedLineScore(const EngineState* position, int32_t p, int32_t i) {
  int32_t own = 0, opposing = 0;
  for (int32_t c = 0; c < Engine.PlayableColumns; ++c) {
    for (int32_t r = 0; r < Engine.Height; ++r) {
      if (Engine.LineMap[c][r][i] == 0) continue;
      const int32_t cell = position->cells[c][r];
      if (cell == p) ++own;
      if (cell == 1 - p) ++opposing;
    }
  }
  return opposing > 0 ? 0 : 1 << own;
}

// True if every column holds pieces from the bottom up without a gap; counts them.
static bool CellsAreStacked(const EngineState* position, int32_t* pieces) {
  *pieces = 0;
  for (int32_t c = 0; c < Engine.PlayableColumns; ++c) {
    for (int32_t r = 0; r < Engine.Height; ++r) {
      const int32_t cell = position->cells[c][r];
      if (cell > kEngineEmpty) return false;
      if (cell != kEngineEmpty && r > 0 && position->cells[c][r - 1] == kEngineEmpty) return false;
      if (cell != kEngineEmpty) ++*pieces;
    }
  }
  return true;
}

bool EngineIsConsistent() {
  const EngineState* position = Engine.PositionStack.Current;
  int32_t pieces = 0;
  if (!CellsAreStacked(position, &pieces)) return false;
  if (Engine.PositionStack.Top == 0 && position->pieceCount != pieces) return false;
  bool completed[2] = {false, false};
  for (int32_t p = 0; p < 2; ++p) {
    int32_t total = 0;
    for (int32_t i = 0; i < Engine.LineCount; ++i) {
      const int32_t score = position->lineScore[p][i];
      if (score != ExpectedLineScore(position, p, i)) return false;
      total += score;
      completed[p] = completed[p] || score == Engine.WinScore;
    }
    if (total != position->scoreTotal[p]) return false;
  }
  // Who completed a line first can't be told from the cells, only that somebody did.
  if (position->winner == kEngineNoWinner) return !completed[0] && !completed[1];
  return position->winner < 2 && completed[position->winner];
}
