// The computer's whole reply on the square board with the straightforward look-ahead (every
// trial copies the board, drops and scans it whole), at the settings where it matters.
#include <benchmark/benchmark.h>

#include <cstring>

#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/referee.h"
#include "opponents/roster.h"
#include "opponents/turn.h"
#include "shell/process_state.h"

namespace {

// A middle-game position: the lower half of the board filled in a fixed pattern that holds no
// line, with room above.
void MiddleGame(int32_t cells) {
  GridClear();
  for (int32_t c = 1; c <= cells; ++c) {
    for (int32_t r = cells; r > cells - cells / 3; --r) {
      Grid[c][r] = static_cast<uint8_t>(((c + (r / 2)) / 2) % 2 + 1);
    }
  }
}

// One reply of the computer with the plain look-ahead; arguments: cells a side, level,
// challenge.
void BM_PlainReply(benchmark::State& state) {
  const int32_t cells = static_cast<int32_t>(state.range(0));
  int64_t trials = 0;
  for (auto _ : state) {
    state.PauseTiming();
    ResetProcessState();
    SessionState.BoardSize = cells + 1;
    SessionState.Level = static_cast<int32_t>(state.range(1));
    SessionState.Challenge = static_cast<int32_t>(state.range(2));
    MiddleGame(cells);
    RunNeededFor(0, RunNeeded);
    SeedRandom(42);
    for (int32_t k = 0; k < cells; ++k) Turn.ShuffledColumns[k] = k + 1;
    std::memcpy(Turn.Snapshots[0], Grid, sizeof Grid);
    state.ResumeTiming();
    benchmark::DoNotOptimize(PlainLookAhead(LookAheadDepth()));
    int64_t perPly = 1;
    for (int32_t p = 0; p < LookAheadDepth(); ++p) {
      perPly *= cells;
      trials += perPly;
    }
  }
  state.counters["trials/s"] =
      benchmark::Counter(static_cast<double>(trials), benchmark::Counter::kIsRate);
}

BENCHMARK(BM_PlainReply)
    ->ArgNames({"cells", "level", "challenge"})
    ->Args({7, 1, 0})
    ->Args({7, 2, 0})
    ->Args({7, 2, 1})
    ->Args({19, 2, 0})
    ->Unit(benchmark::kMillisecond);

}  // namespace
