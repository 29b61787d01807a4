// The referee of the square board: drops pieces, finds a winning run of the length each side
// needs, and marks it. Columns and rows are 1..S (S = BoardSize - 1), row 1 at the top; index 0
// and every index above S form a border that always holds 0.
#pragma once

#include <cstdint>

constexpr int32_t kGridSide = 22;
constexpr uint8_t kMark = 16;  // added to every cell of a winning line

// Indexed [column][row]; each column is 22 consecutive bytes.
extern uint8_t Grid[kGridSide][kGridSide];

// Equal neighbour pairs that win, by cell value 0, 1, 2: a winning line of value v has
// RunNeeded[v] + 1 cells. Entry 0 is read at every empty cell and must stay at least 1.
extern int32_t RunNeeded[3];

// Writes CurrentPlayer into the lowest empty cell of the column. Returns CurrentPlayer, or 0
// when the column is outside 1..S or full (nothing changes then).
int32_t GridDrop(int32_t column);

// The value (1 or 2) of the first winning run in scan order, 0 if there is none.
int32_t GridFindWinner();

// Adds the mark to every cell of the run that GridFindWinner reports; nothing if there is none.
void GridMarkWinner();

// Every cell of the board and its border back to 0.
void GridClear();
