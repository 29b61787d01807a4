// The decisions of the menu commands that need no window: what a command does to the session,
// which confirmation it asks, what it counts. The window asks and applies.
#pragma once

#include <cstdint>

// Whether leaving the current game abandons it: a piece has been played and nothing is decided.
bool GameIsAbandoned();

// "&Recommencer": nothing before the first piece; a game in progress is confirmed and counted
// as lost in `section`; then a new game and a repaint.
void MenuRestart(int32_t section);
