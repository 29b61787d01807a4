// The soak run: many random games in one process, played on the core as the window plays them,
// each at fresh random settings (damaged ones too), with the engine's game released and started
// again by every new game and now and then a save and a load. Every repaint checks the session's
// invariants; at the end no statistics record may hold more results than games played. The peak
// resident memory, printed every REPORT games, must stay flat.
//
//   kalvero4-soak [GAMES [SEED [REPORT]]]     (10,000 games, seed 1, report every 1,000)
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "cases.h"
#include "cli/platform_cli.h"
#include "engine/engine.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "shell/process_state.h"

namespace {

// Every persisted setting at random, within its range and one value either side (the display
// flags from -1 to 2); what lies outside takes the initial value, as from a damaged file.
// Settings whose replies are slow play one level lower.
void DrawSettings(std::mt19937& random) {
  for (const StoredSetting& setting : kStoredSettings) {
    const bool flag = setting.Range.Low == kAnyValue.Low;
    const int32_t low = flag ? -1 : setting.Range.Low - 1, high = flag ? 2 : setting.Range.High + 1;
    ApplyStoredSetting(setting, std::uniform_int_distribution<int32_t>(low, high)(random));
  }
  if (RepliesAreSlow()) {
    SessionState.Level = 1;
    SessionState.Challenge = 0;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const long games = argc > 1 ? std::atol(argv[1]) : 10000;
  const long report = argc > 3 ? std::atol(argv[3]) : 1000;
  std::mt19937 random(argc > 2 ? static_cast<uint32_t>(std::atol(argv[2])) : 1);
  const std::string save = MakeScratchFolder("soak") + "/soak.sav";
  ResetProcessState();
  DriverPlatform = DriverPlatformRecord{};  // the headless platform: every question answered Yes
  EngineSeededGenerator = true;             // runs repeat exactly for a seed
  SeedRandom(random());
  // Mostly clicks and keys on the columns; one action in a hundred may be any, "Recommencer" too.
  const auto nextByte = [&] {
    const uint32_t r = random();
    return static_cast<uint8_t>(r % 100 == 0 ? r >> 8 : (r >> 8) % 0xC0);
  };
  for (long game = 1; game <= games; ++game) {
    DrawSettings(random);
    if (game % 97 == 0) {
      WriteSaveFile(save.c_str());
      LoadSaveFile(save.c_str());
    }
    const int32_t side = SessionState.BoardSize - 1;
    if (const std::string failure = PlayGame(nextByte, side * side + 4); !failure.empty()) {
      std::fprintf(stderr, "kalvero4-soak: game %ld, strategy %d, level %d, board %d: %s\n", game,
                   SessionState.AiNumber, SessionState.Level, SessionState.BoardSize,
                   failure.c_str());
      return 1;
    }
    if (game % report == 0) {
      rusage usage{};
      getrusage(RUSAGE_SELF, &usage);
      std::printf("games %ld: peak resident %.1f MB\n", game, usage.ru_maxrss / 1024.0);
    }
  }
  // Each new game counts one game played and at most one result in the same record.
  for (int32_t r = 0; r < kStatsRecords; ++r) {
    const StatsRecord& record = StatsTable[r];
    if (record.Won + record.Lost > record.Played) {
      std::fprintf(stderr, "kalvero4-soak: record %d holds %d won and %d lost of %d played\n", r,
                   record.Won, record.Lost, record.Played);
      return 1;
    }
  }
  std::printf("games %ld: every check held\n", games);
  return 0;
}
