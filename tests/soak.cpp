// The soak run: many random games in one process, played on the core as the window plays them,
// each at fresh random settings (every strategy and level, Challenge, two players, every board
// size, damaged display flags), with the engine's game released and started again by every
// new game and now and then a save and a load. Every repaint checks the session's invariants;
// at the end no statistics record may hold more results than games played. The resident memory
// is printed every REPORT games: it must stay flat.
//
//   kalvero4-soak GAMES SEED [REPORT]
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

#include "cases.h"
#include "cli/platform_cli.h"
#include "engine/engine.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/roster.h"
#include "shell/process_state.h"

namespace {

double ResidentMegabytes() {
  std::ifstream statm("/proc/self/statm");
  long pages = 0, resident = 0;
  statm >> pages >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576.0;
}

// Settings drawn at random within what keeps a reply quick: the look-ahead's time grows as the
// columns to the power of its depth.
void DrawSettings(std::mt19937& random) {
  const auto draw = [&](int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(random);
  };
  SessionRecord& s = SessionState;
  s.GameMode = draw(1, 6) == 1 ? 2 : 1;
  s.AiNumber = s.GameMode == 2 ? 0 : draw(0, kRosterSize - 1);
  s.CharacterId = draw(0, kRosterSize - 1);
  s.Level = draw(0, 2);
  s.Challenge = s.GameMode == 1 && s.Level == 2 && draw(0, 1) == 1;
  s.BoardSize = PlaysWithEngine(s.AiNumber) && draw(0, 3) != 0 ? 8 : draw(2, 20);
  if (!PlaysWithEngine(s.AiNumber) && s.Level == 2) s.BoardSize = draw(2, s.Challenge ? 9 : 13);
  s.ShowImages = draw(-1, 2);
  s.CustomColours = draw(-1, 2);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: kalvero4-soak GAMES SEED [REPORT]\n");
    return 2;
  }
  const long games = std::atol(argv[1]), report = argc > 3 ? std::atol(argv[3]) : 1000;
  std::mt19937 random(static_cast<uint32_t>(std::atol(argv[2])));
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
    if (game % report == 0) std::printf("games %ld: resident %.1f MB\n", game, ResidentMegabytes());
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
