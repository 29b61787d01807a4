// The search engine: a four-in-a-row player with a board of its own, used by the character that
// plays with strategy 10. One engine game exists at a time; players are 0 (the engine's side)
// and 1 (the human); cells hold 0, 1 or 2 (empty). Columns count from 0 at the left, rows from
// 0 at the bottom. The engine knows nothing of the session.
#pragma once

#include <cstdint>

constexpr int32_t kEngineEmpty = 2;
constexpr int32_t kEngineNoWinner = 2;
constexpr int32_t kEngineStackSlots = 17;  // search depth at most 16

// Board setup and memory (engine_board.cpp).
void EngineStart(int32_t width, int32_t height, int32_t lineLength);
void EngineRelease();
int32_t CountLines(int32_t width, int32_t height, int32_t lineLength);
void* AllocOrDie(int32_t size);

// Whether the engine has already seeded the process-wide generator from the clock; the engine
// does it once, at its first start in the process.
extern bool EngineSeededGenerator;

// Moves on the current position (engine_moves.cpp).
int32_t DropPiece(int32_t player, int32_t column);
void RescoreCell(int32_t player, int32_t column, int32_t row);
void PushPosition();
void PopPosition();
bool EnginePlay(int32_t player, int32_t column, int32_t* row = nullptr);
// Read-only cells of the current position: [column][row], row 0 at the bottom.
const uint8_t* const* EngineBoardView();
bool EngineHasWon(int32_t player);
bool EngineBoardFull();
void EngineLineEnds(int32_t* firstColumn, int32_t* firstRow, int32_t* lastColumn, int32_t* lastRow);

// Search (engine_search.cpp).
bool EngineChooseAndPlay(int32_t player, int32_t depth, int32_t* column = nullptr,
                         int32_t* row = nullptr);
int32_t SearchValue(int32_t player, int32_t depth, int32_t alpha, int32_t beta);

// Debugging (engine_moves.cpp): true if the current position's line scores, totals and winner
// agree with its cells, and, on the base position, the piece count as well.
bool EngineIsConsistent();
