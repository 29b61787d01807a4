// The computer's whole reply on the square board (the call of PlayTurn that judges the human's
// move and answers it: immediate win and block, then the look-ahead), at the settings where the
// look-ahead matters.
#include <benchmark/benchmark.h>

#include "ground/random.h"
#include "ground/session.h"
#include "opponents/referee.h"
#include "opponents/turn.h"
#include "shell/process_state.h"

namespace {

// A middle-game position: the lower third of the board filled in a fixed pattern that holds no
// line and offers neither side an immediate one (for 7, 12 and 19 cells a side), so that the
// reply goes on to the look-ahead.
void MiddleGame(int32_t cells) {
  GridClear();
  for (int32_t c = 1; c <= cells; ++c) {
    for (int32_t r = cells; r > cells - cells / 3; --r) {
      Grid[c][r] = static_cast<uint8_t>((c + 2 * r) / 2 % 2 + 1);
    }
  }
}

// One reply of the computer; arguments: cells a side, level, challenge.
void BM_Reply(benchmark::State& state) {
  const int32_t cells = static_cast<int32_t>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    ResetProcessState();
    SessionState.BoardSize = cells + 1;
    SessionState.Level = static_cast<int32_t>(state.range(1));
    SessionState.Challenge = static_cast<int32_t>(state.range(2));
    SessionState.PendingTurn = 2;  // the human has just moved
    MiddleGame(cells);
    SeedRandom(42);
    state.ResumeTiming();
    PlayTurn(30);
    benchmark::DoNotOptimize(Grid);
  }
}

BENCHMARK(BM_Reply)
    ->ArgNames({"cells", "level", "challenge"})
    ->Args({7, 1, 0})
    ->Args({7, 2, 0})
    ->Args({7, 2, 1})
    ->Args({19, 2, 0})
    ->Args({19, 2, 1})
    ->Unit(benchmark::kMillisecond);

}  // namespace
