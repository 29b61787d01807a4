// The start of every game: the game that ends is counted, the board cleared and the engine's
// game restarted, whatever the opponent.
#pragma once

#include <cstdint>

// The engine's board in every game, whatever the settings: a line map of 8 columns, of which
// the first 7 take pieces, 7 rows and lines of 4. It is shown on the board of 7 x 7 cells, the
// BoardSize of 8 that the searching character needs.
constexpr int32_t kEngineWidth = 8;
constexpr int32_t kEngineColumns = kEngineWidth - 1;
constexpr int32_t kEngineRows = 7;
constexpr int32_t kEngineLineLength = 4;
constexpr int32_t kEngineBoardSize = kEngineColumns + 1;

// Counts the game that ends (its result in the record of the current settings) and starts the
// next one: game fields reset, board cleared, engine restarted, one game played counted.
void NewGame();

// Whether NewGame has started an engine game: before the first game there is none to play on.
bool EngineGameOpen();

// Gives back the engine's game if one is open (tests and the driver's end).
void EndEngineGame();
