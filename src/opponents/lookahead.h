// The computer's look-ahead on the referee's board, and the working state of one reply that the
// turn processing fills, the opening rules mark and the look-ahead scores under.
//
// The look-ahead plays out every line of plies 1 to depth (the computer's moves at odd plies,
// the human's at even ones) below each candidate column, and scores a candidate by the weights
// of its strategy for every trial after which the referee reports the mover's line. It does so
// without copying or rescanning the board: each empty cell keeps, for both players, the scan key
// of the earliest line a piece there would complete, so a trial only compares two keys; scores
// below plies 3 and 4 are shared between transposed positions, and the last two plies are
// counted from per-column masks of threats instead of played.
#pragma once

#include <cstdint>

#include "opponents/referee.h"

constexpr int32_t kForbidden = -10000;  // a column that the opening rules forbid

// The working state of one reply; nothing in it outlives the call of PlayTurn that fills it.
struct TurnWork {
  int32_t ShuffledColumns[kGridSide];  // entries 0..S-1: the columns 1..S in a random order
  int32_t ColumnValue[kGridSide];      // per column: kForbidden or its lowest negative score
  uint8_t Snapshots[6][kGridSide][kGridSide];
};

extern TurnWork Turn;

// The column the look-ahead chooses (0 when no candidate scores above kForbidden): the first
// candidate of Turn.ShuffledColumns with the highest score, every trial starting from snapshot
// 0. Keeps each candidate's score in Turn.ColumnValue when it is negative and lower than the
// entry. Grid, the snapshots and CurrentPlayer stay untouched. Needs a side of 1..19, a depth
// of 2..6 and RunNeeded of the strategy (at least 2 for each player), as PlayTurn sets it.
int32_t LookAhead(int32_t depth);
