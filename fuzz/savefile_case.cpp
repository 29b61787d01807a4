// A save file of any content: it loads into settings that keep every table index in range, a
// few games at those settings keep the board's border empty, and the file written afterwards
// reads back to exactly the blocks and the settings that were in memory.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "cases.h"
#include "engine/engine.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "shell/process_state.h"

namespace {

constexpr int kGames = 3;
constexpr int kActionsPerGame = 48;

// What a save file holds, in memory.
struct Saved {
  int32_t Settings[kSettingsSlots];
  StatsRecord Stats[kStatsRecords];
  int32_t Fields[kStoredSettingCount];
  char Name[kPlayerNameBytes];
};

Saved TakeSaved() {
  Saved saved;
  std::memset(&saved, 0, sizeof saved);  // padding too: the records are compared as bytes
  std::memcpy(saved.Settings, SettingsBlock, sizeof saved.Settings);
  std::memcpy(saved.Stats, StatsTable, sizeof saved.Stats);
  for (int32_t k = 0; k < kStoredSettingCount; ++k) {
    saved.Fields[k] = SessionState.*kStoredSettings[k].Field;
  }
  std::memcpy(saved.Name, SessionState.PlayerName, sizeof saved.Name);
  return saved;
}

}  // namespace

std::string RunSaveFileCase(const uint8_t* data, size_t size, const std::string& folder) {
  if (size > kMaxCaseBytes) return {};
  ResetProcessState();
  EngineSeededGenerator = true;  // the engine must not seed from the clock: runs repeat exactly
  const std::string in = folder + "/input", out = folder + "/output";
  std::ofstream(in, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  LoadSaveFile(in.c_str());
  if (std::string failure = CheckSessionInvariants(false); !failure.empty()) {
    return "after loading: " + failure;
  }

  uint32_t seed = 2166136261u;
  for (size_t i = 0; i < size; ++i) seed = (seed ^ data[i]) * 16777619u;
  SeedRandom(seed);
  // Slow settings play their games one level lower; the file still stores the loaded ones.
  const int32_t level = SessionState.Level, challenge = SessionState.Challenge;
  if (RepliesAreSlow()) {
    SessionState.Level = 1;
    SessionState.Challenge = 0;
  }
  size_t next = 0;
  const auto nextByte = [&]() -> uint8_t { return size == 0 ? 0 : data[size - 1 - next++ % size]; };
  for (int game = 0; game < kGames; ++game) {
    if (std::string failure = PlayGame(nextByte, kActionsPerGame); !failure.empty()) {
      return failure + " in game " + std::to_string(game);
    }
  }
  SessionState.Level = level;
  SessionState.Challenge = challenge;

  std::remove(out.c_str());
  WriteSaveFile(out.c_str());
  const Saved written = TakeSaved();
  ResetProcessState();
  LoadSaveFile(out.c_str());
  const Saved read = TakeSaved();
  EndEngineGame();
  return std::memcmp(&written, &read, sizeof read) == 0 ? "" : "the file reads back otherwise";
}
