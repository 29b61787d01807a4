// The turn flow: clicks and keys become moves, the second step of a move runs at the end of the
// repaint that shows it, and closing the window counts a game in progress and saves.
#pragma once

#include <cstdint>

// Plays the human's move at logical x for the current opponent, or starts a new game when the
// last one is over; then asks for a repaint.
void PlayAt(int32_t x);

// Plays the column that a character key names: "1" the first column, and the characters after
// "9" the further ones. Keys below "1" or beyond the board's last column + 1 are ignored.
void PlayKey(int8_t c);

// The second step of a move, if one is pending (ReplyPending, opponents/turn.h): the check and
// the computer's reply, or the engine's move. Called at the end of every repaint.
void RunPendingReplies();

// The closing steps when the main window is destroyed: a started, undecided game that the menu
// has not already counted is lost; the save file is written; the message loop ends.
void CloseSession(int32_t section);

// The engine's search depth for the current settings: 2, 4 or 6 by level, 8 in challenge mode.
int32_t EngineSearchDepth();
