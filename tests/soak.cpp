// kalvero4-soak [GAMES [SEED]]: random games at random settings (damaged ones too), now and then
// a save and a load, every repaint checked; the peak memory printed each 1000 games stays flat.
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

int main(int argc, char** argv) {
  const long games = argc > 1 ? std::atol(argv[1]) : 10000;
  std::mt19937 random(argc > 2 ? static_cast<uint32_t>(std::atol(argv[2])) : 1);
  const std::string save = MakeScratchFolder("soak") + "/soak.sav";
  ResetProcessState();
  DriverPlatform = DriverPlatformRecord{};
  EngineSeededGenerator = true;  // runs repeat exactly for a seed
  SeedRandom(random());
  // Mostly clicks and keys on the columns; one action in a hundred may be any.
  const auto nextByte = [&] {
    const uint32_t r = random();
    return static_cast<uint8_t>(r % 100 == 0 ? r >> 8 : (r >> 8) % 0xC0);
  };
  for (long game = 1; game <= games; ++game) {
    // Each setting within its range and one value either side (the display flags -1..2), applied
    // as a file's; slow settings play one level lower.
    for (const StoredSetting& setting : kStoredSettings) {
      const bool flag = setting.Range.Low == kAnyValue.Low;
      const int32_t low = flag ? -1 : setting.Range.Low - 1,
                    high = flag ? 2 : setting.Range.High + 1;
      ApplyStoredSetting(setting, std::uniform_int_distribution<int32_t>(low, high)(random));
    }
    if (RepliesAreSlow()) {
      SessionState.Level = 1;
      SessionState.Challenge = 0;
    }
    if (game % 97 == 0) {
      WriteSaveFile(save.c_str());
      LoadSaveFile(save.c_str());
    }
    const int32_t side = SessionState.BoardSize - 1;
    if (const std::string failure = PlayGame(nextByte, side * side + 4); !failure.empty()) {
      std::fprintf(stderr, "kalvero4-soak: game %ld: %s\n", game, failure.c_str());
      return 1;
    }
    if (game % 1000 == 0) {
      rusage usage{};
      getrusage(RUSAGE_SELF, &usage);
      std::printf("games %ld: peak resident %.1f MB\n", game, usage.ru_maxrss / 1024.0);
    }
  }
  std::printf("games %ld: every check held\n", games);
  return 0;
}
