// The computer's look-ahead with Challenge (6 plies) on fixed positions: early, middle and late
// games (the late ones with full columns) on the 12 x 12 and 19 x 19 boards. Each benchmark
// reports the median and maximum time of one reply over its positions.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <vector>

#include "positions.h"

namespace {

// The processor time of the calling thread in milliseconds: replies are timed on their one
// core, unaffected by whatever else the machine runs meanwhile.
double ThreadMs() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

// A reply's time on a position in milliseconds: the best of three runs, so that another
// process's interruptions (the machine is shared) do not count as the reply's own time.
double TimeReply(const BenchPosition& p, int32_t ai, int32_t depth) {
  double best = 1e9;
  for (int32_t run = 0; run < 3; ++run) {
    Prepare(p, ai);
    const double start = ThreadMs();
    benchmark::DoNotOptimize(LookAhead(depth));
    best = std::min(best, ThreadMs() - start);
  }
  return best;
}

// How many of the positions have a full column.
int32_t WithFullColumns(const std::vector<BenchPosition>& positions) {
  int32_t n = 0;
  for (const BenchPosition& p : positions) {
    bool full = false;
    for (int32_t c = 1; c <= p.Side; ++c) full = full || p.Cells[c][1] != 0;
    n += full;
  }
  return n;
}

void Report(benchmark::State& state, const std::vector<double>& ms) {
  state.counters["median_ms"] = Median(ms);
  state.counters["max_ms"] = *std::max_element(ms.begin(), ms.end());
  state.counters["replies"] = static_cast<double>(ms.size());
}

// Replies on the positions of one side for the strategy of the benchmark's argument.
void BM_Challenge(benchmark::State& state, int32_t side, int32_t perStage) {
  const int32_t ai = static_cast<int32_t>(state.range(0));
  const auto positions = Positions(side, perStage);
  std::vector<double> ms;
  for (auto _ : state) {
    for (const BenchPosition& p : positions) ms.push_back(TimeReply(p, ai, kChallengeDepth));
  }
  Report(state, ms);
  state.counters["with_full_columns"] = WithFullColumns(positions);
}

void Strategies(benchmark::internal::Benchmark* b) {
  for (int32_t ai : kBenchStrategies) b->Arg(ai);
}

BENCHMARK_CAPTURE(BM_Challenge, 12x12, 12, kPerStage12)
    ->Arg(0)
    ->Arg(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Challenge, 19x19, 19, kPerStage19)
    ->Apply(Strategies)
    ->Unit(benchmark::kMillisecond);

}  // namespace
