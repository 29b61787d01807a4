// Speed of the engine's move choice at the game's depths (2, 4, 6 and 8; 8 is the challenge
// mode) over a fixed set of positions, the reference search and the game's side by side:
//   build/native/bench/kalvero_bench --benchmark_filter=Engine
// Both search the same positions (the "positions/iter" counters agree), so the ratio of their
// times is the speed-up.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "ground/random.h"

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

using ChooseAndPlay = bool (*)(int32_t player, int32_t depth, int32_t* column, int32_t* row);

// One iteration chooses a move in every fixed position with the given search. Counters: pieces
// dropped (or counted) by the search per second, and the time of one move (one whole choice).
void RunChooseAndPlay(benchmark::State& state, ChooseAndPlay choose) {
  const int32_t depth = static_cast<int32_t>(state.range(0));
  EngineSeededGenerator = true;
  std::vector<SavedPosition> positions;
  for (const char* moves : kPositions) positions.push_back(SetUpPosition(moves));
  const int64_t nodesBefore = EngineNodesSearched;
  for (auto _ : state) {
    for (const SavedPosition& saved : positions) {
      Restore(saved);
      SeedRandom(1);
      benchmark::DoNotOptimize(choose(saved.side, depth, nullptr, nullptr));
    }
  }
  const double nodes = static_cast<double>(EngineNodesSearched - nodesBefore);
  const double moves = static_cast<double>(state.iterations() * positions.size());
  state.counters["positions/s"] = benchmark::Counter(nodes, benchmark::Counter::kIsRate);
  state.counters["positions/iter"] = benchmark::Counter(nodes, benchmark::Counter::kAvgIterations);
  state.counters["s/move"] =
      benchmark::Counter(moves, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  EngineRelease();
}

// The reference search, pushing a copy of the position for every move.
void EnginePlainBench(benchmark::State& state) {
  RunChooseAndPlay(state, PlainEngineChooseAndPlay);
}

// The game's search: moves made and unmade in place, the last two plies counted.
void EngineFastBench(benchmark::State& state) {
  RunChooseAndPlay(state, EngineChooseAndPlay);
}

}  // namespace

BENCHMARK(EnginePlainBench)->Arg(2)->Arg(4)->Arg(6)->Arg(8)->Unit(benchmark::kMicrosecond);
BENCHMARK(EngineFastBench)->Arg(2)->Arg(4)->Arg(6)->Arg(8)->Unit(benchmark::kMicrosecond);
