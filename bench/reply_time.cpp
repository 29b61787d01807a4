// One reply of the computer at Dur with Challenge on the fixed 19 x 19 positions, timed with
// the plain standard clock so that the same program runs natively and as WebAssembly in a
// browser, where Google Benchmark does not build. bench/web_measure.py runs both and compares.
//
//     kalvero4-reply-time [RUNS]
//
// Each reply counts the best of RUNS runs (5 unless told), as the machine is shared. The
// chosen columns are printed too: both editions must choose the same ones, or they are not
// doing the same work.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "positions.h"

namespace {

// Wall-clock milliseconds: in the browser, performance.now(), whose step the page's
// isolation decides (printed below, since it bounds what one reply's time can resolve).
double NowMs() {
  using namespace std::chrono;
  return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

double ClockStepMs() {
  double step = 1e9;
  for (int32_t k = 0; k < 20; ++k) {
    const double start = NowMs();
    double now = start;
    while (now == start) now = NowMs();
    step = std::min(step, now - start);
  }
  return step;
}

}  // namespace

int main(int argc, char** argv) {
  const int32_t runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  const std::vector<BenchPosition> positions = Positions(19, kPerStage19);
  std::printf("clock step: %.4f ms\n", ClockStepMs());
  std::printf("positions: %zu of 19 x 19, best of %d runs per reply\n", positions.size(),
              static_cast<int>(runs));
  std::vector<double> all;
  const double started = NowMs();
  for (int32_t ai : kBenchStrategies) {
    std::vector<double> ms;
    std::string columns;
    for (const BenchPosition& p : positions) {
      double best = 1e9;
      int32_t chosen = 0;
      for (int32_t run = 0; run < runs; ++run) {
        Prepare(p, ai);
        const double start = NowMs();
        chosen = LookAhead(kChallengeDepth);
        best = std::min(best, NowMs() - start);
      }
      ms.push_back(best);
      columns += ' ';
      columns += std::to_string(chosen);
    }
    all.insert(all.end(), ms.begin(), ms.end());
    double sum = 0;
    for (double t : ms) sum += t;
    std::printf("strategy %d: median %.3f ms, max %.3f ms, sum %.1f ms\n", static_cast<int>(ai),
                Median(ms), *std::max_element(ms.begin(), ms.end()), sum);
    std::printf("strategy %d columns:%s\n", static_cast<int>(ai), columns.c_str());
  }
  double sum = 0;
  for (double t : all) sum += t;
  std::printf("all: %zu replies, median %.3f ms, max %.3f ms, sum %.1f ms, whole run %.0f ms\n",
              all.size(), Median(all), *std::max_element(all.begin(), all.end()), sum,
              NowMs() - started);
  return 0;
}
