// A save file of any content: it loads into settings that stay in their ranges, a few games at
// those settings keep every index on the board, and the file written afterwards reads back to
// exactly the blocks in memory.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "cases.h"
#include "engine/engine.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/roster.h"
#include "render/frame_logic.h"
#include "render/viewport.h"
#include "shell/menu_logic.h"
#include "shell/process_state.h"
#include "shell/turnflow.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Games per input, and actions per game before it is left unfinished.
constexpr int kGames = 3;
constexpr int kActionsPerGame = 48;

struct Blocks {
  int32_t Settings[kSettingsSlots];
  StatsRecord Stats[kStatsRecords];
  char Name[kPlayerNameBytes];
  int32_t Fields[10];
};

Blocks TakeBlocks() {
  Blocks b;
  std::memcpy(b.Settings, SettingsBlock, sizeof b.Settings);
  std::memcpy(b.Stats, StatsTable, sizeof b.Stats);
  std::memcpy(b.Name, SessionState.PlayerName, sizeof b.Name);
  const SessionRecord& s = SessionState;
  const int32_t fields[10] = {s.BoardSize,   s.ShowImages,    s.Smoothing, s.Level,
                              s.GameMode,    s.CustomColours, s.AiNumber,  s.Challenge,
                              s.CharacterId, s.NormalTitle};
  std::memcpy(b.Fields, fields, sizeof b.Fields);
  return b;
}

std::string CompareBlocks(const Blocks& a, const Blocks& b) {
  if (std::memcmp(a.Settings, b.Settings, sizeof a.Settings) != 0) return "settings block";
  if (std::memcmp(a.Stats, b.Stats, sizeof a.Stats) != 0) return "statistics table";
  if (std::memcmp(a.Name, b.Name, sizeof a.Name) != 0) return "player's name";
  if (std::memcmp(a.Fields, b.Fields, sizeof a.Fields) != 0) return "settings of the session";
  return {};
}

// Whether a reply at these settings takes more than a few milliseconds under the sanitizers:
// the look-ahead at Dur on a large board or with Challenge beyond nine columns, and the
// engine's deepest search.
bool SlowReplies() {
  const SessionRecord& s = SessionState;
  if (PlaysWithEngine(s.AiNumber)) return s.Challenge != 0;  // whatever the level
  return s.Level == 2 && s.BoardSize > (s.Challenge != 0 ? 9 : 13);
}

// One repaint without pixels, as the window does it.
std::string Repaint() {
  ComposeFrameLogic();
  RunPendingReplies();
  FinishRepaint();
  return CheckSessionInvariants(true);
}

// Plays games for the current settings, each action taken from the next byte.
std::string PlayGames(const uint8_t* data, size_t size) {
  size_t next = 0;
  auto byte = [&]() -> uint8_t { return size == 0 ? 0 : data[size - 1 - next++ % size]; };
  for (int game = 0; game < kGames; ++game) {
    NewGame();
    for (int action = 0; action < kActionsPerGame && SessionState.GameResult == 0; ++action) {
      const uint8_t b = byte();
      const int32_t column = b % (SessionState.BoardSize + 2);  // one column either side too
      switch (b >> 6) {
        case 0:
        case 1:
          MouseX = 30 * column + b % 30;
          PlayAt(MouseX);
          break;
        case 2:
          PlayKey(static_cast<int8_t>('0' + column));
          break;
        default:
          if (b & 1) {
            MenuRestart(StatsSection());
          } else {
            PlayKey(static_cast<int8_t>(b));
          }
      }
      for (int paint = 0; paint < 3; ++paint) {
        if (std::string failure = Repaint(); !failure.empty()) {
          return failure + " (game " + std::to_string(game) + ", action " + std::to_string(action) +
                 ")";
        }
      }
    }
  }
  return {};
}

Bytes ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

}  // namespace

std::string RunSaveFileCase(const uint8_t* data, size_t size, const std::string& folder) {
  if (size > kMaxCaseBytes) return {};
  ResetProcessState();
  EngineSeededGenerator = true;  // the engine must not seed from the clock: runs repeat exactly
  const std::string in = folder + "/input", out = folder + "/output";
  {
    std::ofstream file(in, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  LoadSaveFile(in.c_str());
  if (std::string failure = CheckSessionInvariants(false); !failure.empty()) {
    return "after loading: " + failure;
  }
  // Slot 10 becomes the AlwaysSquare flag when the home dialog is first confirmed.
  if (const int32_t slot = SettingsBlock[kAlwaysSquareSlot]; slot != 0 && slot != 1) {
    return "after loading: slot 10 = " + std::to_string(slot);
  }

  uint32_t seed = 2166136261u;
  for (size_t i = 0; i < size; ++i) seed = (seed ^ data[i]) * 16777619u;
  SeedRandom(seed);
  // Slow settings play their games one level lower; the file still stores the loaded ones.
  const int32_t level = SessionState.Level, challenge = SessionState.Challenge;
  if (SlowReplies()) {
    SessionState.Level = 1;
    SessionState.Challenge = 0;
  }
  if (std::string failure = PlayGames(data, size); !failure.empty()) return failure;
  SessionState.Level = level;
  SessionState.Challenge = challenge;

  std::remove(out.c_str());
  WriteSaveFile(out.c_str());
  if (std::filesystem::exists(out + ".tmp")) return "temporary file left behind";
  const Bytes stored = ReadAll(out);
  // Each content byte 0x0A is stored after an added 0x0D; nothing else changes the length.
  size_t lineEnds = 0;
  for (size_t i = 0; i < stored.size(); ++i) {
    if (stored[i] != 0x0A) continue;
    if (i == 0 || stored[i - 1] != 0x0D) return "byte 0x0A stored without its 0x0D";
    ++lineEnds;
  }
  if (stored.size() != static_cast<size_t>(kSaveContentBytes) + lineEnds) {
    return "stored " + std::to_string(stored.size()) + " bytes with " + std::to_string(lineEnds) +
           " line ends";
  }
  const Blocks written = TakeBlocks();
  ResetProcessState();
  LoadSaveFile(out.c_str());
  if (std::string which = CompareBlocks(written, TakeBlocks()); !which.empty()) {
    return "the " + which + " read back differs from the one written";
  }
  EndEngineGame();
  return {};
}
