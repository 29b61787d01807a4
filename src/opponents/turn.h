// Turn processing on the referee's board: every move of a game not played by the search engine
// goes through PlayTurn, in two calls. The first drops the human's piece; the second, at the
// next repaint, judges it and, against the computer, plays the computer's reply.
#pragma once

#include <cstdint>

#include "opponents/lookahead.h"  // the reply's working state, Turn

// Plays or judges a move at logical x (column x / kCellPixels), or starts a new game when the last
// one is over. See the header comment for the two calls of a move.
void PlayTurn(int32_t x);

// Whether the end of this repaint makes the computer reply (RunPendingReplies in the turn flow
// replies exactly then): a move on the referee's board awaits its second call, or it is the
// engine's turn in an engine game that is open. The status line then says the computer thinks,
// and a host shows the wait cursor and lets the frame reach the screen first. At most one of
// the two is pending, as they are for different opponents.
bool ReplyPending();

// How many plies the look-ahead plays out at the current settings: 2 at Normal, 4 at Dur, 6
// with Challenge. Facile never reaches the look-ahead.
int32_t LookAheadDepth();
