// The start of every game: the game that ends is counted, the board cleared and the engine's
// game restarted, whatever the opponent.
#pragma once

// Counts the game that ends (its result in the record of the current settings) and starts the
// next one: game fields reset, board cleared, engine restarted, one game played counted.
void NewGame();

// Whether NewGame has started an engine game: before the first game there is none to play on.
bool EngineGameOpen();

// Gives back the engine's game if one is open (tests and the driver's end).
void EndEngineGame();
