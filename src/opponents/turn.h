// Turn processing on the referee's board: every move of a game not played by the search engine
// goes through PlayTurn, in two calls. The first drops the human's piece; the second, at the
// next repaint, judges it and, against the computer, plays the computer's reply.
#pragma once

#include <cstdint>

#include "opponents/referee.h"

constexpr int32_t kForbidden = -10000;  // a column that the opening rules forbid

// The working state of one call, kept visible for the tests and the faster look-ahead.
struct TurnWork {
  int32_t ShuffledColumns[kGridSide];  // entries 0..S-1: the columns 1..S in a random order
  int32_t ColumnValue[kGridSide];      // per column: kForbidden or its lowest negative score
  uint8_t Snapshots[6][kGridSide][kGridSide];
};

extern TurnWork Turn;

// Plays or judges a move at logical x (column x / kCellPixels), or starts a new game when the last
// one is over. See the header comment for the two calls of a move.
void PlayTurn(int32_t x);

// How many plies the look-ahead plays out at the current settings: 2 at Normal, 4 at Dur, 6
// with Challenge. Facile never reaches the look-ahead.
int32_t LookAheadDepth();

// The column the look-ahead chooses (0 when no candidate scores above kForbidden), scoring the
// candidates in Turn.ShuffledColumns order under snapshot 0 and keeping the lowest negative
// scores in Turn.ColumnValue. Leaves Grid and CurrentPlayer changed.
int32_t LookAhead(int32_t depth);

// When set, LookAhead runs PlainLookAhead instead of the fast version: a switch for the tests
// and the benchmarks, which compare the two. The game leaves it off.
extern bool UsePlainLookAhead;

// The straightforward look-ahead: every trial copies the board, drops and scans it whole. It
// stays the reference for the faster version.
int32_t PlainLookAhead(int32_t depth);
