// The session record: every setting of the program and the state of the one game being played.
// One instance for the whole process; every subsystem reads and writes its fields in place.
#pragma once

#include <cstdint>

constexpr int32_t kCellPixels = 30;       // a cell of the board, a side in logical pixels
constexpr int32_t kPlayerNameBytes = 26;  // the name's field in the save file
constexpr int32_t kTextBufferSize = 1000;

struct SessionRecord {
  // Persisted settings: their slots in the save file, initial values and ranges are the rows
  // of kStoredSettings below, and InitialSession() gives them their initial values.
  int32_t BoardSize;  // one more than the cells per side: 8 is a 7 x 7 board
  int32_t ShowImages;
  int32_t Smoothing;
  int32_t Level;     // 0 Facile, 1 Normal, 2 Dur; the statistics slot for two players
  int32_t GameMode;  // number of human players
  int32_t CustomColours;
  int32_t AiNumber;  // how the computer plays
  int32_t Challenge;
  int32_t CharacterId;  // who is shown as the opponent
  int32_t NormalTitle;
  int32_t AlwaysSquare;
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

// A value of a persisted setting that lies outside Low..High takes the initial value instead.
// Such values come only from a damaged save file or a driver script. The fields that index a
// table (the board, the level names, the statistics records, the roster and its weights) keep
// to the values the tables have. The display flags index nothing: they keep any value, and
// everything that reads them takes non-zero as on.
struct StoredRange {
  int32_t Low;
  int32_t High;
};
constexpr StoredRange kAnyValue = {INT32_MIN, INT32_MAX};

struct StoredSetting {
  const char* Name;  // as the driver's `set` names it
  int32_t SessionRecord::*Field;
  int32_t Initial;
  StoredRange Range;
};

// The persisted settings in the order of their slots: row k is slot k of the settings block.
constexpr int32_t kStoredSettingCount = 11;
// clang-format off
constexpr StoredSetting kStoredSettings[kStoredSettingCount] = {
    {"BoardSize",     &SessionRecord::BoardSize,     8, {2, 20}},
    {"ShowImages",    &SessionRecord::ShowImages,    1, kAnyValue},
    {"Smoothing",     &SessionRecord::Smoothing,     0, kAnyValue},
    {"Level",         &SessionRecord::Level,         0, {0, 2}},
    {"GameMode",      &SessionRecord::GameMode,      1, {1, 2}},
    {"CustomColours", &SessionRecord::CustomColours, 1, kAnyValue},
    {"AiNumber",      &SessionRecord::AiNumber,      0, {0, 13}},
    {"Challenge",     &SessionRecord::Challenge,     0, {0, 1}},
    {"CharacterId",   &SessionRecord::CharacterId,   0, {0, 13}},
    {"NormalTitle",   &SessionRecord::NormalTitle,   1, kAnyValue},
    {"AlwaysSquare",  &SessionRecord::AlwaysSquare,  0, kAnyValue},
};
// clang-format on

// Slots 0..9 are applied when the file is read; slot 10 waits in the block until the home
// dialog is first confirmed, and is then the AlwaysSquare flag.
constexpr int32_t kAlwaysSquareSlot = 10;
static_assert(kStoredSettings[kAlwaysSquareSlot].Field == &SessionRecord::AlwaysSquare);

// The record as the process starts.
constexpr SessionRecord InitialSession() {
  SessionRecord record{};
  for (const StoredSetting& setting : kStoredSettings) record.*setting.Field = setting.Initial;
  return record;
}

extern SessionRecord SessionState;

// The one scratch buffer into which texts are formatted before they are drawn or shown.
extern char TextBuffer[kTextBufferSize];

// Puts every field back to its static initial value (start of the driver, every test).
void ResetSessionState();

// Cells per side of the square board.
inline int32_t CellsPerSide() {
  return SessionState.BoardSize - 1;
}

// Size in pixels of the main window for a board: a cell per BoardSize, and the frame.
inline int32_t BaseWindowWidth(int32_t boardSize) {
  return kCellPixels * boardSize + 61;
}
inline int32_t BaseWindowHeight(int32_t boardSize) {
  return kCellPixels * boardSize + 79;
}
