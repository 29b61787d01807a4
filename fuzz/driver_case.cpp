// A driver script of any content: it runs to its end or stops at its first malformed line, and
// whatever it does to the settings, the game and the save files keeps the session in range.
#include <filesystem>
#include <istream>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>

#include "cases.h"
#include "cli/driver.h"

namespace {

// Hands the script to the driver one line at a time, so that each line is judged against the
// session as the lines before it left it. Every run starts from the same generator state.
struct GatedScript : std::streambuf {
  std::string_view Rest;
  std::string Line = "seed 1\n";
  int ReplyCommands = 0;

  GatedScript(const uint8_t* data, size_t size) : Rest(reinterpret_cast<const char*>(data), size) {
    setg(Line.data(), Line.data(), Line.data() + Line.size());
  }

  int_type underflow() override {
    if (gptr() == egptr() && !NextLine()) return traits_type::eof();
    return traits_type::to_int_type(*gptr());
  }

  bool NextLine() {
    const size_t newline = Rest.find('\n');
    const std::string_view line = Rest.substr(0, newline == Rest.npos ? Rest.size() : newline + 1);
    std::string command;
    std::istringstream(std::string(line)) >> command;
    const bool reply =
        command == "click" || command == "key" || command == "paint" || command == "settle";
    // At most 48 commands that may run a reply; files only in the case's folder.
    if (line.empty() || (reply && (++ReplyCommands > 48 || RepliesAreSlow())) ||
        ((command == "load" || command == "save") && line.find('/') != std::string_view::npos)) {
      return false;
    }
    Line.assign(line);
    Rest.remove_prefix(Line.size());
    setg(Line.data(), Line.data(), Line.data() + Line.size());
    return true;
  }
};

}  // namespace

int RunDriverCase(const uint8_t* data, size_t size, const std::string& folder,
                  std::string* failure) {
  namespace fs = std::filesystem;
  if (size > kMaxCaseBytes) return 0;
  fs::remove_all(folder);  // no file of an earlier run
  fs::create_directory(folder);
  const fs::path previous = fs::current_path();
  fs::current_path(folder);
  GatedScript script(data, size);
  std::istream in(&script);
  std::ostringstream out;
  const int status = RunDriverScript(in, out, out);
  fs::current_path(previous);
  *failure = CheckSessionInvariants(false);
  return failure->empty() ? status : -1;
}
