// Speed of the engine's move choice at the game's depths (2, 4, 6 and 8; 8 is the challenge
// mode) over a fixed set of positions. One iteration chooses a move in every position; the
// "positions/s" counter is the number of pieces the search dropped per second.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "shell/random.h"

namespace {

// Columns played alternately from the empty board, the human (player 1) first; the side to move
// then searches. None of them holds a completed line or an immediate completing move.
const char* const kPositions[] = {
    "",                                            // empty board
    "3",          "343",         "32452",          // openings
    "3342422551", "43342215561", "3443322551106",  // middle games
};

struct SavedPosition {
  std::vector<uint8_t> cells;
  std::vector<int32_t> lineScore[2];
  int32_t scoreTotal[2];
  int16_t winner;
  int32_t pieceCount;
  int32_t side;  // the side to move
};

SavedPosition SetUpPosition(const char* moves) {
  EngineRelease();
  EngineStart(8, 7, 4);
  int32_t n = 0;
  for (; moves[n] != '\0'; ++n) EnginePlay(1 - n % 2, moves[n] - '0');
  const EngineState& base = Engine.PositionStack.Slot[0];
  SavedPosition saved{};
  saved.cells.assign(base.cells[0], base.cells[0] + 49);
  for (int32_t p = 0; p < 2; ++p)
    saved.lineScore[p].assign(base.lineScore[p], base.lineScore[p] + 107);
  saved.scoreTotal[0] = base.scoreTotal[0];
  saved.scoreTotal[1] = base.scoreTotal[1];
  saved.winner = base.winner;
  saved.pieceCount = base.pieceCount;
  saved.side = 1 - n % 2;
  return saved;
}

// Puts the saved position back as the base position of the open engine game.
void Restore(const SavedPosition& saved) {
  EngineState& base = Engine.PositionStack.Slot[0];
  std::memcpy(base.cells[0], saved.cells.data(), saved.cells.size());
  for (int32_t p = 0; p < 2; ++p) {
    std::memcpy(base.lineScore[p], saved.lineScore[p].data(), 107 * sizeof(int32_t));
    base.scoreTotal[p] = saved.scoreTotal[p];
  }
  base.winner = saved.winner;
  base.pieceCount = saved.pieceCount;
}

void EngineChooseAndPlayBench(benchmark::State& state) {
  const int32_t depth = static_cast<int32_t>(state.range(0));
  EngineSeededGenerator = true;
  std::vector<SavedPosition> positions;
  for (const char* moves : kPositions) positions.push_back(SetUpPosition(moves));
  const int64_t nodesBefore = EngineNodesSearched;
  for (auto _ : state) {
    for (const SavedPosition& saved : positions) {
      Restore(saved);
      SeedRandom(1);
      benchmark::DoNotOptimize(EngineChooseAndPlay(saved.side, depth));
    }
  }
  const double nodes = static_cast<double>(EngineNodesSearched - nodesBefore);
  state.counters["positions/s"] = benchmark::Counter(nodes, benchmark::Counter::kIsRate);
  state.counters["positions/iter"] = benchmark::Counter(nodes, benchmark::Counter::kAvgIterations);
  EngineRelease();
}

}  // namespace

BENCHMARK(EngineChooseAndPlayBench)->Arg(2)->Arg(4)->Arg(6)->Arg(8)->Unit(benchmark::kMicrosecond);
