// The fixed game positions that the look-ahead is timed on, shared by the Google Benchmark
// (lookahead_bench.cpp) and the plain timing program that also runs as WebAssembly
// (reply_time.cpp), so that both editions are timed on the very same boards.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "ground/session.h"
#include "opponents/lookahead.h"
#include "opponents/referee.h"
#include "opponents/roster.h"

struct BenchPosition {
  uint8_t Cells[kGridSide][kGridSide];
  int32_t Side;
};

// A fixed game position: `pieces` drops clustered around the middle by a fixed generator,
// alternating players, skipping any drop that would complete a line (so the game goes on).
inline BenchPosition MakePosition(int32_t side, int32_t pieces, uint32_t seed) {
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
inline std::vector<BenchPosition> Positions(int32_t side, int32_t count) {
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
inline void Prepare(const BenchPosition& p, int32_t ai) {
  SessionState.BoardSize = p.Side + 1;
  SessionState.AiNumber = ai;
  RunNeededFor(ai, RunNeeded);
  std::memcpy(Grid, p.Cells, sizeof Grid);
  std::memcpy(Turn.Snapshots[0], p.Cells, sizeof Grid);
  for (int32_t k = 0; k < p.Side; ++k) Turn.ShuffledColumns[k] = (k * 7) % p.Side + 1;
  std::memset(Turn.ColumnValue, 0, sizeof Turn.ColumnValue);
}

inline double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  const size_t n = v.size();
  return n % 2 == 1 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

// Dur with Challenge: the deepest look-ahead, 6 plies.
constexpr int32_t kChallengeDepth = 6;
constexpr int32_t kPerStage12 = 1;  // 3 positions
constexpr int32_t kPerStage19 = 8;  // 24 positions
inline constexpr int32_t kBenchStrategies[] = {0, 2, 3, 11, 12};
