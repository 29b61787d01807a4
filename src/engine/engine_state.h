// The engine's private state, shared by the engine's own files and by its white-box tests.
// Nothing else in the program includes this header: the rest of the game goes through engine.h.
#pragma once

#include <cstdint>

#include "engine/engine.h"

// The largest value of the search; its negation is the smallest, so that negating a value never
// overflows (-2147483648 is never used).
constexpr int32_t kEngineInfinity = 2147483647;

// One position. The cells of all columns lie one after the other in one block that starts at
// cells[0], so a push copies them at once.
struct EngineState {
  uint8_t** cells;        // [column][row], row 0 at the bottom; PlayableColumns columns of H bytes
  int32_t* lineScore[2];  // per player, one score per line
  int32_t scoreTotal[2];  // per player, the sum of its lineScore
  int16_t winner;         // the player who first completed a line, or kEngineNoWinner
  int32_t pieceCount;     // kept up to date for the base position (slot 0) only
};

// Slot 0 is the real game; the slots above hold the positions of a search.
struct PositionStackRecord {
  EngineState Slot[kEngineStackSlots];
  int32_t Top;
  int32_t SlotsWithArrays;  // slots 0..SlotsWithArrays - 1 hold their arrays
  EngineState* Current;     // &Slot[Top]
};

struct EngineRecord {
  int32_t NominalWidth;     // W: the line map covers W columns
  int32_t PlayableColumns;  // W - 1: column W - 1 never receives a piece
  int32_t Height;
  int32_t LineLength;
  int32_t WinScore;  // 1 << LineLength, the score of a completed line
  int32_t LineCount;
  uint8_t*** LineMap;    // [column][row][line]: 1 if the line passes through the cell
  int32_t* ColumnOrder;  // the columns in the order the search tries them, middle first
  PositionStackRecord PositionStack;
};

extern EngineRecord Engine;

// Takes the arrays of one stack slot (cells and both line score arrays).
void TakeSlotArrays(EngineState* slot);
