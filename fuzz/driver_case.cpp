// A driver script of any content: it runs to its end or stops at its first malformed line, and
// whatever it does to the settings, the game and the save files keeps the session in range.
#include <unistd.h>

#include <filesystem>
#include <istream>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

#include "cases.h"
#include "cli/driver.h"
#include "ground/session.h"
#include "opponents/roster.h"
#include "shell/process_state.h"

namespace {

// Commands that may run a computer's reply, and how many of them one script may give.
constexpr int kMaxReplyCommands = 48;

// Every run starts from the same generator state, so that an input repeats exactly.
constexpr std::string_view kPrelude = "seed 1\n";

std::string_view FirstWord(std::string_view line, size_t* end) {
  size_t i = 0;
  while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
  size_t j = i;
  while (j < line.size() && line[j] != ' ' && line[j] != '\t') ++j;
  *end = j;
  return line.substr(i, j - i);
}

// The look-ahead at Dur on a large board, or with Challenge beyond nine columns, takes from a
// tenth of a second to minutes a reply under the sanitizers, the engine's deepest search
// (Challenge) about a second.
bool SlowSettings() {
  const SessionRecord& s = SessionState;
  if (PlaysWithEngine(s.AiNumber)) return s.Challenge != 0;  // whatever the level
  return s.Level == 2 && s.BoardSize > (s.Challenge != 0 ? 9 : 13);
}

// Hands the script to the driver one line at a time, so that each line is judged against the
// session as the lines before it left it.
class GatedScript : public std::streambuf {
 public:
  GatedScript(const uint8_t* data, size_t size)
      : rest_(reinterpret_cast<const char*>(data), size), prelude_(true) {}

 protected:
  int_type underflow() override {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    if (!NextLine()) return traits_type::eof();
    setg(line_.data(), line_.data(), line_.data() + line_.size());
    return traits_type::to_int_type(*gptr());
  }

 private:
  bool NextLine() {
    if (prelude_) {
      prelude_ = false;
      line_ = kPrelude;
      return true;
    }
    if (rest_.empty()) return false;
    const size_t newline = rest_.find('\n');
    const size_t length = newline == std::string_view::npos ? rest_.size() : newline + 1;
    const std::string_view line = rest_.substr(0, length);
    size_t end = 0;
    const std::string_view command = FirstWord(line, &end);
    if (command == "click" || command == "key" || command == "paint" || command == "settle") {
      if (++replyCommands_ > kMaxReplyCommands || SlowSettings()) return false;
    }
    // Files are read and written in the case's folder only.
    if ((command == "load" || command == "save") &&
        line.substr(end).find('/') != std::string_view::npos) {
      return false;
    }
    line_.assign(line);
    rest_.remove_prefix(length);
    return true;
  }

  std::string_view rest_;
  std::string line_;
  bool prelude_;
  int replyCommands_ = 0;
};

// Output that goes nowhere.
class NullBuffer : public std::streambuf {
 protected:
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

}  // namespace

int RunDriverCase(const uint8_t* data, size_t size, const std::string& folder,
                  std::string* failure) {
  namespace fs = std::filesystem;
  if (size > kMaxCaseBytes) return 0;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    fs::remove_all(entry.path(), error);
  }
  const fs::path previous = fs::current_path();
  fs::current_path(folder);
  ResetProcessState();
  GatedScript script(data, size);
  std::istream in(&script);
  NullBuffer nowhere;
  std::ostream out(&nowhere);
  const int status = RunDriverScript(in, out, out);
  fs::current_path(previous);
  *failure = CheckSessionInvariants(false);
  if (failure->empty() && status != 0 && status != 2) {
    *failure = "exit status " + std::to_string(status);
  }
  return failure->empty() ? status : -1;
}
