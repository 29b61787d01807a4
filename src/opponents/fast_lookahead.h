// The fast look-ahead: the same scores as the straightforward one, computed without copying or
// rescanning the board. Each empty cell keeps, for both players, the scan key of the earliest
// line a piece there would complete; a trial then only compares two keys. Subtree scores are
// shared between transposed positions, and the last two plies are counted instead of played.
#pragma once

#include <cstdint>

// Switches for the tests and the benchmarks; the game keeps the defaults.
struct FastLookAheadSettings {
  bool Transpositions = true;   // share subtree scores between equal positions
  bool CountLastPlies = true;   // count the last two plies instead of playing them
  bool WrongScanOrder = false;  // deliberately broken: a new line always hides an older one
};

extern FastLookAheadSettings FastSettings;

// Trial drops the straightforward look-ahead would have made in the last FastLookAhead call.
// Exact only with Transpositions off (a shared subtree is not counted again).
extern int64_t FastTrials;

// Same contract as PlainLookAhead: scores the candidates of Turn.ShuffledColumns under snapshot
// 0, keeps the lowest negative scores in Turn.ColumnValue and returns the chosen column. Leaves
// Grid and CurrentPlayer untouched. Settings it does not model (a board side above 19, needs
// below 2, a depth outside 2..6) go to PlainLookAhead, which does change them.
int32_t FastLookAhead(int32_t depth);
