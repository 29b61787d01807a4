// The save file and the game counters. Everything the program remembers between runs lives in
// one binary file in the working directory: the settings block, the statistics table and the
// player's name, 1142 bytes of content stored with a text stream's line ends.
#pragma once

#include <cstdint>

constexpr const char* kSaveFileName = "Fichier de sauvegarde";
constexpr int32_t kSettingsSlots = 99;
constexpr int32_t kStatsRecords = 60;
constexpr int32_t kSaveContentBytes = kSettingsSlots * 4 + kStatsRecords * 12 + 26;  // 1142
constexpr int32_t kAlwaysSquareSlot = 10;

// One record of the statistics: six unsigned 16-bit counters that wrap from 65535 to 0.
struct StatsRecord {
  uint16_t Played;
  uint16_t Won;        // won by player 1, the human in one-player games
  uint16_t Lost;       // won by player 2, or abandoned
  uint16_t Unused[3];  // kept and written back as read
};

extern int32_t SettingsBlock[kSettingsSlots];
extern StatsRecord StatsTable[kStatsRecords];

// The record of the current settings: 4 x AiNumber + Level + Challenge + 56 x (GameMode - 1).
// Records 0..55 hold the one-player games, 56..58 the three two-player sections.
int32_t StatsSection();

// The record of a section, or nullptr for a section outside the table. A section can only fall
// outside it through a two-player game with a strategy number left over from a damaged file;
// such games are not counted anywhere.
StatsRecord* StatsRecordAt(int32_t section);

// Presets the counters, the name and slot 10, reads the file if it can be opened, and applies
// slots 0..9 to the session. Silent: a missing or short file leaves the presets in place.
// Stored values outside their ranges are replaced as ClampStoredSettings says; slot 10 outside
// 0..1 takes its preset 1.
void LoadSaveFile(const char* path = kSaveFileName);

// Copies the settings into slots 0..10 and writes the file. The new content goes to a temporary
// file beside it that then replaces the old one in one step, so a failed write never leaves a
// torn file. When the file cannot be written the user is told and the old file stays.
void WriteSaveFile(const char* path = kSaveFileName);

// Counts one abandoned game as lost in the record of a section.
void CountLoss(int32_t section);

// Replaces every stored setting that lies outside its range by its initial value. Values
// outside the ranges can only come from a damaged file (or a driver script); taking them as
// read would index the roster and the boards out of bounds.
void ClampStoredSettings();
