// The soak run: many random games through the headless driver in one process, each with fresh
// random settings (every strategy and level, Challenge, two players, board sizes), the engine
// released and restarted by every new game, now and then a save, a load, an abandon or a
// closing. The script is written while it runs, one line at a time, so every move is chosen
// for the position that the lines before it left. After every repaint the session's invariants
// are checked; at the end the counters of the statistics must add up to the games played.
//
//   kalvero4-soak [--games N] [--seed S] [--report K]
//
// Prints the resident memory every K games and the totals at the end. Exit status 0 when
// every check held, 1 otherwise (with the current game's script on standard error).
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include "cases.h"
#include "cli/driver.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/roster.h"

namespace {

struct Options {
  int64_t Games = 10000;
  uint32_t Seed = 1;
  int64_t Report = 1000;
};

// What the statistics must hold at the end, counted from the events the script caused.
struct Expected {
  unsigned long long Played = 0, Won = 0, Lost = 0;
  bool operator==(const Expected&) const = default;
};

struct Tally {
  long long Games = 0, WonByOne = 0, WonByTwo = 0, NoWinner = 0, Unfinished = 0, Abandoned = 0;
};

double ResidentMegabytes() {
  std::ifstream statm("/proc/self/statm");
  long pages = 0, resident = 0;
  statm >> pages >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576.0;
}

[[noreturn]] void Fail(const std::string& what, const std::vector<std::string>& script) {
  std::cerr << "kalvero4-soak: " << what << "\nscript of the current game:\n";
  for (const std::string& line : script) std::cerr << "  " << line;
  std::exit(1);
}

// Writes the driver's script one line at a time, looking at the session between lines.
class SoakScript : public std::streambuf {
 public:
  explicit SoakScript(const Options& options) : options_(options), random_(options.Seed) {}

  const Tally& Totals() const { return tally_; }
  const Expected& Counted() const { return expected_; }

 protected:
  int_type underflow() override {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    if (pending_.empty()) Refill();
    if (pending_.empty()) return traits_type::eof();
    line_ = pending_.front();
    pending_.pop_front();
    script_.push_back(line_);
    setg(line_.data(), line_.data(), line_.data() + line_.size());
    return traits_type::to_int_type(*gptr());
  }

 private:
  int32_t Draw(int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(random_);
  }
  bool Chance(int32_t oneIn) { return Draw(1, oneIn) == 1; }
  void Say(const std::string& line) { pending_.push_back(line + "\n"); }

  // Called once every line given so far has run.
  void Refill() {
    const SessionRecord& s = SessionState;
    if (playing_) {
      if (std::string broken = CheckSessionInvariants(true); !broken.empty()) Fail(broken, script_);
      const bool ceiling = CeilingStruckOnTheHumansMove();
      if (!ceiling && (s.GameResult != 0 || turns_ >= turnLimit_)) return EndGame();
      if (!ceiling && (s.GameStarted == 0 || !Chance(300))) return Turn();
      // A ceiling struck, or "Recommencer" on a game in progress: one more game, lost.
      ++(ceiling ? tally_.WonByTwo : tally_.Abandoned);
      ++expected_.Played;
      ++expected_.Lost;
      playing_ = false;
      return ceiling ? StartGame() : Say("restart");
    }
    if (tally_.Games == options_.Games) {
      if (!finished_) {  // one more game counts the result of the last one
        finished_ = true;
        Count();
        Say("newgame");
      }
      return;
    }
    StartGame();
  }

  // The result of the game that ends is counted by the next new game.
  void Count() {
    ++expected_.Played;
    expected_.Won += SessionState.GameResult == 1;
    expected_.Lost += SessionState.GameResult == 2;
  }

  void StartGame() {
    const SessionRecord& s = SessionState;
    ++tally_.Games;
    if (tally_.Games % options_.Report == 0) {
      std::printf("games %lld: resident %.1f MB\n", tally_.Games, ResidentMegabytes());
      std::fflush(stdout);
    }
    script_.clear();
    if (tally_.Games % 97 == 0) {
      Say("save soak.sav");
      Say("load soak.sav");
    }
    if (tally_.Games % 500 == 0) {
      // Closing the window saves; a started, undecided game is lost.
      if (s.GameStarted != 0 && s.GameResult == 0) ++expected_.Lost;
      Say("close");
    }
    const bool twoPlayers = Chance(6);
    const int32_t ai = twoPlayers ? 0 : Draw(0, kRosterSize - 1);
    const int32_t level = Draw(0, 2);
    const int32_t challenge = !twoPlayers && level == 2 && Chance(2) ? 1 : 0;
    int32_t board = Draw(2, 20);
    if (PlaysWithEngine(ai) && !Chance(4)) board = 8;  // its games end on the board of 7
    // The look-ahead's time grows as the columns to the power of the depth: Dur stays within
    // twelve columns and Challenge within eight.
    if (!PlaysWithEngine(ai) && level == 2) board = Draw(2, challenge != 0 ? 9 : 13);
    Say("seed " + std::to_string(random_()));
    const int32_t character = Draw(0, kRosterSize - 1), images = Draw(0, 1), colours = Draw(0, 1);
    const std::pair<const char*, int32_t> settings[] = {
        {"GameMode", twoPlayers ? 2 : 1}, {"AiNumber", ai},          {"Level", level},
        {"Challenge", challenge},         {"BoardSize", board},      {"CharacterId", character},
        {"ShowImages", images},           {"CustomColours", colours}};
    for (const auto& [field, value] : settings)
      Say("set " + std::string(field) + " " + std::to_string(value));
    if (Chance(50)) Say("set PlayerName Joueur n°" + std::to_string(tally_.Games));
    Count();
    Say("newgame");
    playing_ = true;
    turns_ = 0;
    turnLimit_ = (board - 1) * (board - 1) + 4;
  }

  // With the ceiling rule, a human piece in the top row ends the game in the repaint that shows
  // it, and the reply step of the same repaint, finding the game decided, starts the next one:
  // the record of the settings counts one more game played and lost during the turn. Any
  // other change of the counters during a turn is a fault.
  bool CeilingStruckOnTheHumansMove() {
    if (turns_ == 0) return false;
    const StatsRecord& now = StatsTable[StatsSection()];
    if (now.Played == before_.Played && now.Lost == before_.Lost && now.Won == before_.Won) {
      return false;
    }
    const bool ceiling = HasCeilingRule(SessionState.AiNumber) &&
                         now.Played == static_cast<uint16_t>(before_.Played + 1) &&
                         now.Lost == static_cast<uint16_t>(before_.Lost + 1) &&
                         now.Won == before_.Won && SessionState.GameResult == 0;
    if (!ceiling) Fail("the statistics changed during a turn", script_);
    return true;
  }

  void Turn() {
    ++turns_;
    before_ = StatsTable[StatsSection()];
    const int32_t side = SessionState.BoardSize - 1;
    if (Chance(8)) {
      Say("key " + std::string(1, static_cast<char>('0' + Draw(1, side + 1))));
    } else {
      // Now and then a column beside the board, which is refused.
      const int32_t column = Chance(12) ? (Chance(2) ? 0 : side + 1) : Draw(1, side);
      Say("move " + std::to_string(30 * column + Draw(0, 29)));
      Say("click");
    }
    Say("settle");
    if (Chance(20)) {
      static const char* const kLooks[] = {"status", "grid", "engine", "state", "stats 0"};
      Say(kLooks[Draw(0, 4)]);
    }
  }

  void EndGame() {
    long long* const byResult[] = {&tally_.Unfinished, &tally_.WonByOne, &tally_.WonByTwo,
                                   &tally_.NoWinner};
    ++*byResult[SessionState.GameResult];
    playing_ = false;
    Refill();
  }

  const Options options_;
  std::mt19937 random_;
  std::deque<std::string> pending_;
  std::string line_;
  std::vector<std::string> script_;
  Tally tally_;
  Expected expected_;
  bool playing_ = false, finished_ = false;
  int32_t turns_ = 0, turnLimit_ = 0;
  StatsRecord before_{};  // the counters of the settings' record before the current turn
};

Options ParseOptions(int argc, char** argv) {
  Options o;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string flag = argv[i];
    const long long value = std::atoll(argv[i + 1]);
    if (flag == "--games" && value > 0) {
      o.Games = value;
    } else if (flag == "--seed") {
      o.Seed = static_cast<uint32_t>(value);
    } else if (flag == "--report" && value > 0) {
      o.Report = value;
    } else {
      std::cerr << "usage: kalvero4-soak [--games N] [--seed S] [--report K]\n";
      std::exit(2);
    }
  }
  return o;
}

}  // namespace

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  const Options options = ParseOptions(argc, argv);
  char name[] = "/tmp/kalvero-soak-XXXXXX";
  if (mkdtemp(name) == nullptr) return 1;
  const fs::path folder = name;
  fs::current_path(folder);  // "close" writes the save file in the working directory

  const auto started = std::chrono::steady_clock::now();
  SoakScript script(options);
  std::istream in(&script);
  std::ostream out(nullptr);  // what the script prints is not kept
  std::ostringstream errors;
  const int status = RunDriverScript(in, out, errors);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  fs::current_path("/");
  fs::remove_all(folder);
  if (status != 0) Fail("the driver stopped: " + errors.str(), {});

  Expected stored;
  for (const StatsRecord& r : StatsTable) {
    stored.Played += r.Played;
    stored.Won += r.Won;
    stored.Lost += r.Lost;
  }
  const Expected& counted = script.Counted();
  const Tally& t = script.Totals();
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf(
      "games %lld in %.1f s: player 1 won %lld, player 2 won %lld, no winner %lld, unfinished "
      "%lld, abandoned %lld\nstatistics: played %llu, won %llu, lost %llu\npeak resident %.1f "
      "MB, now %.1f MB\n",
      t.Games, seconds, t.WonByOne, t.WonByTwo, t.NoWinner, t.Unfinished, t.Abandoned,
      stored.Played, stored.Won, stored.Lost, static_cast<double>(usage.ru_maxrss) / 1024.0,
      ResidentMegabytes());
  // Each record's counters wrap at 65536; below that many games the sums are exact.
  if (counted.Played < 65536 && !(stored == counted)) {
    std::fprintf(stderr,
                 "kalvero4-soak: the statistics hold %llu/%llu/%llu played/won/lost, the games "
                 "gave %llu/%llu/%llu\n",
                 stored.Played, stored.Won, stored.Lost, counted.Played, counted.Won, counted.Lost);
    return 1;
  }
  return 0;
}
