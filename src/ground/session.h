// The session record: every setting of the program and the state of the one game being played.
// One instance for the whole process; every subsystem reads and writes its fields in place.
#pragma once

#include <cstdint>

constexpr int32_t kPlayerNameBytes = 26;  // the name's field in the save file
constexpr int32_t kTextBufferSize = 1000;

struct SessionRecord {
  // Persisted settings (slots 0..10 of the save file's settings block).
  int32_t BoardSize = 8;  // one more than the cells per side: 8 is a 7 x 7 board
  int32_t ShowImages = 1;
  int32_t Smoothing = 0;
  int32_t Level = 0;     // 0 Facile, 1 Normal, 2 Dur; the statistics slot for two players
  int32_t GameMode = 1;  // number of human players
  int32_t CustomColours = 1;
  int32_t AiNumber = 0;  // how the computer plays
  int32_t Challenge = 0;
  int32_t CharacterId = 0;  // who is shown as the opponent
  int32_t NormalTitle = 1;
  int32_t AlwaysSquare = 0;
  // The name ends at its first zero byte or at the end of its 26 bytes; the extra byte keeps
  // it a terminated C string whatever the save file held.
  char PlayerName[kPlayerNameBytes + 1] = "<Votre nom>";

  // The current game.
  int32_t GameResult = 0;  // 0 goes on, 1 or 2 the winner, 3 no winner
  int32_t CurrentPlayer = 1;
  int32_t PendingTurn = 0;       // 0 before the first game, 1 waiting, 2 a move awaits its check
  int32_t EngineSideToMove = 1;  // strategy 10 only: 1 the human, 0 the engine
  int32_t GameStarted = 0;
  int32_t RepaintAgain = 0;
  // The ceiling rule of strategy 6 has struck in this game. Painting checks the rule at every
  // frame; applied twice, its marks would turn the board light green and then blank.
  int32_t CeilingStruck = 0;

  // The application shell.
  int32_t FirstPaint = 1;
  int32_t HomeDialogOpen = 0;
  int32_t QuitRequested = 0;
  int32_t QuitByMenu = 0;
  int32_t SettleCounter = 1;
  int32_t LogicalWidth = 639;   // LogicalSize, width W
  int32_t LogicalHeight = 446;  // LogicalSize, height H
};

extern SessionRecord SessionState;

// The one scratch buffer into which texts are formatted before they are drawn or shown.
extern char TextBuffer[kTextBufferSize];

// Puts every field back to its static initial value (start of the driver, every test).
void ResetSessionState();

// Cells per side of the square board.
inline int32_t CellsPerSide() {
  return SessionState.BoardSize - 1;
}

// Size in pixels of the main window for a board: 30 x BoardSize + 61 by 30 x BoardSize + 79.
inline int32_t BaseWindowWidth(int32_t boardSize) {
  return 30 * boardSize + 61;
}
inline int32_t BaseWindowHeight(int32_t boardSize) {
  return 30 * boardSize + 79;
}
