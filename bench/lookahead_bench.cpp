// The computer's look-ahead, plain and fast side by side on the same fixed positions: early,
// middle and late games (the late ones with full columns) on the 12 x 12 and 19 x 19 boards.
// Each benchmark reports the median and maximum time of one reply over its positions. On 19 x
// 19 with Challenge the plain version would take about a minute per reply, so its time there is
// its measured cost per trial (at Dur, 4 plies) times the trials it would make (counted).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <vector>

#include "ground/session.h"
#include "opponents/fast_lookahead.h"
#include "opponents/referee.h"
#include "opponents/roster.h"
#include "opponents/turn.h"

namespace {

struct BenchPosition {
  uint8_t Cells[kGridSide][kGridSide];
  int32_t Side;
};

// A fixed game position: `pieces` drops clustered around the middle by a fixed generator,
// alternating players, skipping any drop that would complete a line (so the game goes on).
BenchPosition MakePosition(int32_t side, int32_t pieces, uint32_t seed) {
  GridClear();
  SessionState.BoardSize = side + 1;
  RunNeededFor(0, RunNeeded);
  uint32_t state = seed;
  auto next = [&state](uint32_t n) {
    state = state * 1664525u + 1013904223u;
    return (state >> 8) % n;
  };
  int32_t player = 1;
  for (int32_t placed = 0, tries = 0; placed < pieces && tries < 20 * pieces; ++tries) {
    const int32_t spread = 2 + placed / side;  // the game widens as it goes on
    int32_t c = side / 2 + 1 + static_cast<int32_t>(next(2 * spread + 1)) - spread;
    c = std::clamp(c, 1, side);
    SessionState.CurrentPlayer = player;
    if (GridDrop(c) == 0) continue;
    if (GridFindWinner() != 0) {
      for (int32_t r = 1; r <= side; ++r)
        if (Grid[c][r] != 0) {
          Grid[c][r] = 0;
          break;
        }
      continue;
    }
    ++placed;
    player = 3 - player;
  }
  BenchPosition p{};
  std::memcpy(p.Cells, Grid, sizeof Grid);
  p.Side = side;
  return p;
}

// Early, middle and late games: `count` positions per stage.
std::vector<BenchPosition> Positions(int32_t side, int32_t count) {
  std::vector<BenchPosition> out;
  const int32_t cells = side * side;
  const int32_t stages[3] = {side / 2, cells / 4, cells * 3 / 4};
  for (int32_t stage = 0; stage < 3; ++stage)
    for (int32_t k = 0; k < count; ++k)
      out.push_back(MakePosition(side, stages[stage] + 3 * k, 1000u * stage + 17u * k + 1u));
  return out;
}

// Puts a position and a strategy in place for one reply: the snapshot, the needs, a fixed
// column order and no column scores yet.
void Prepare(const BenchPosition& p, int32_t ai) {
  SessionState.BoardSize = p.Side + 1;
  SessionState.AiNumber = ai;
  RunNeededFor(ai, RunNeeded);
  std::memcpy(Grid, p.Cells, sizeof Grid);
  std::memcpy(Turn.Snapshots[0], p.Cells, sizeof Grid);
  for (int32_t k = 0; k < p.Side; ++k) Turn.ShuffledColumns[k] = (k * 7) % p.Side + 1;
  std::memset(Turn.ColumnValue, 0, sizeof Turn.ColumnValue);
}

// The processor time of the calling thread in milliseconds: replies are timed on their one
// core, unaffected by whatever else the machine runs meanwhile.
double ThreadMs() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

// One reply's time in milliseconds.
double TimeReply(bool plain, int32_t depth) {
  const double start = ThreadMs();
  benchmark::DoNotOptimize(plain ? PlainLookAhead(depth) : FastLookAhead(depth));
  return ThreadMs() - start;
}

// The fast reply's time on a position: the best of three runs, so that another process's
// interruptions (the machine is shared) do not count as the reply's own time.
double TimeFastReply(const BenchPosition& p, int32_t ai, int32_t depth) {
  double best = 1e9;
  for (int32_t run = 0; run < 3; ++run) {
    Prepare(p, ai);
    best = std::min(best, TimeReply(false, depth));
  }
  return best;
}

// The trials the plain version makes on a prepared position (the fast one counts them when
// it shares nothing).
int64_t PlainTrials(int32_t depth) {
  FastSettings.Transpositions = false;
  FastLookAhead(depth);
  FastSettings.Transpositions = true;
  return FastTrials;
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  const size_t n = v.size();
  return n % 2 == 1 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
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

// Plain results carried to the fast benchmarks of the same run, for the ratios.
double PlainMs12[kRosterSize];      // by strategy: total over the 12 x 12 positions
double PlainNsPerTrial19;           // measured at 19 x 19, 4 plies
constexpr int32_t kPerStage12 = 1;  // 3 positions: plain takes seconds each
constexpr int32_t kPerStage19 = 8;  // 24 positions
const int32_t kStrategies19[] = {0, 2, 3, 11, 12};

void BM_Plain12x12Challenge(benchmark::State& state) {
  const int32_t ai = static_cast<int32_t>(state.range(0));
  const auto positions = Positions(12, kPerStage12);
  std::vector<double> ms;
  for (auto _ : state) {
    for (const BenchPosition& p : positions) {
      Prepare(p, ai);
      ms.push_back(TimeReply(true, 6));
    }
  }
  double total = 0;
  for (double t : ms) total += t;
  PlainMs12[ai] = total / static_cast<double>(state.iterations());
  Report(state, ms);
}

void BM_Fast12x12Challenge(benchmark::State& state) {
  const int32_t ai = static_cast<int32_t>(state.range(0));
  const auto positions = Positions(12, kPerStage12);
  std::vector<double> ms;
  double total = 0;
  for (auto _ : state) {
    for (const BenchPosition& p : positions) {
      ms.push_back(TimeFastReply(p, ai, 6));
      total += ms.back();
    }
  }
  Report(state, ms);
  if (PlainMs12[ai] > 0) {
    state.counters["ratio"] = PlainMs12[ai] / (total / static_cast<double>(state.iterations()));
  }
}

// The plain version's cost per trial on the 19 x 19 positions, at 4 plies.
void BM_PlainTrialCost19x19(benchmark::State& state) {
  const auto positions = Positions(19, kPerStage19);
  double ms = 0;
  int64_t trials = 0;
  for (auto _ : state) {
    for (const BenchPosition& p : positions) {
      Prepare(p, 0);
      trials += PlainTrials(4);
      Prepare(p, 0);
      ms += TimeReply(true, 4);
    }
  }
  PlainNsPerTrial19 = ms * 1e6 / static_cast<double>(trials);
  state.counters["ns_per_trial"] = PlainNsPerTrial19;
  state.counters["trials"] = static_cast<double>(trials);
}

void BM_Fast19x19Challenge(benchmark::State& state) {
  const int32_t ai = static_cast<int32_t>(state.range(0));
  const auto positions = Positions(19, kPerStage19);
  std::vector<int64_t> trials;
  for (const BenchPosition& p : positions) {
    Prepare(p, ai);
    trials.push_back(PlainTrials(6));
  }
  std::vector<double> ms;
  double plainMs = 0, fastMs = 0;
  for (auto _ : state) {
    for (size_t k = 0; k < positions.size(); ++k) {
      ms.push_back(TimeFastReply(positions[k], ai, 6));
      fastMs += ms.back();
      plainMs += PlainNsPerTrial19 * static_cast<double>(trials[k]) * 1e-6;
    }
  }
  Report(state, ms);
  double allTrials = 0;
  for (int64_t t : trials) allTrials += static_cast<double>(t);
  state.counters["plain_trials_per_reply"] = allTrials / static_cast<double>(trials.size());
  state.counters["with_full_columns"] = WithFullColumns(positions);
  if (PlainNsPerTrial19 > 0) {
    state.counters["plain_est_ms"] = plainMs / static_cast<double>(ms.size());
    state.counters["ratio"] = plainMs / fastMs;
  }
}

void Strategies19(benchmark::internal::Benchmark* b) {
  for (int32_t ai : kStrategies19) b->Arg(ai);
}

BENCHMARK(BM_Plain12x12Challenge)->Arg(0)->Arg(3)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Fast12x12Challenge)->Arg(0)->Arg(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainTrialCost19x19)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Fast19x19Challenge)->Apply(Strategies19)->Unit(benchmark::kMillisecond);

}  // namespace
