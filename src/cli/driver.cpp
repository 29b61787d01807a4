#include "cli/driver.h"

#include <charconv>
#include <cstring>
#include <istream>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/platform_cli.h"
#include "engine/engine.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "ground/texts.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "render/frame_logic.h"
#include "render/viewport.h"
#include "shell/menu_logic.h"
#include "shell/process_state.h"
#include "shell/turnflow.h"

namespace {

// A malformed line: its message, reported with the line number.
struct ScriptError {
  std::string Message;
};

struct DriverState {
  std::string Status;  // the status line of the most recent paint, Windows-1252
  std::ostream* Out = nullptr;
};

DriverState Driver;

std::vector<std::string_view> SplitWords(std::string_view line) {
  std::vector<std::string_view> words;
  size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    const size_t start = i;
    while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
    if (i > start) words.push_back(line.substr(start, i - start));
  }
  return words;
}

template <typename Number>
Number ParseNumber(std::string_view word) {
  if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
  Number value{};
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (word.empty() || error != std::errc{} || end != word.data() + word.size()) {
    throw ScriptError{"not a number in range: '" + std::string(word) + "'"};
  }
  return value;
}

// The one argument of a command, which must be there and be alone.
std::string_view OnlyArgument(const std::vector<std::string_view>& words) {
  if (words.size() < 2) throw ScriptError{"missing argument to '" + std::string(words[0]) + "'"};
  if (words.size() > 2) throw ScriptError{"too many arguments to '" + std::string(words[0]) + "'"};
  return words[1];
}

void NoArgument(const std::vector<std::string_view>& words) {
  if (words.size() > 1) throw ScriptError{"'" + std::string(words[0]) + "' takes no argument"};
}

// UTF-8 to Windows-1252 for names typed in a script; characters beyond U+00FF become '?'.
std::string FromUtf8(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if ((c == 0xC2 || c == 0xC3) && i + 1 < text.size()) {
      out += static_cast<char>(((c & 0x1F) << 6) | (static_cast<unsigned char>(text[++i]) & 0x3F));
    } else if ((c & 0xC0) == 0xC0) {
      out += '?';
    }
  }
  return out;
}

// `set FIELD VALUE`: a persisted setting, then the same range rule as a loaded file.
void SetField(std::string_view line, const std::vector<std::string_view>& words) {
  if (words.size() < 2) throw ScriptError{"missing field to 'set'"};
  if (words[1] == "PlayerName") {
    const size_t at = line.find("PlayerName") + std::strlen("PlayerName");
    std::string_view rest = line.substr(at);
    while (!rest.empty() && (rest.front() == ' ' || rest.front() == '\t')) rest.remove_prefix(1);
    const std::string name = FromUtf8(rest);
    std::memset(SessionState.PlayerName, 0, sizeof SessionState.PlayerName);
    std::memcpy(SessionState.PlayerName, name.data(),
                name.size() < kPlayerNameBytes ? name.size() : kPlayerNameBytes);
    return;
  }
  struct Field {
    std::string_view Name;
    int32_t SessionRecord::*Member;
  };
  static constexpr Field kFields[] = {
      {"BoardSize", &SessionRecord::BoardSize},
      {"ShowImages", &SessionRecord::ShowImages},
      {"Smoothing", &SessionRecord::Smoothing},
      {"Level", &SessionRecord::Level},
      {"GameMode", &SessionRecord::GameMode},
      {"CustomColours", &SessionRecord::CustomColours},
      {"AiNumber", &SessionRecord::AiNumber},
      {"Challenge", &SessionRecord::Challenge},
      {"CharacterId", &SessionRecord::CharacterId},
      {"NormalTitle", &SessionRecord::NormalTitle},
      {"AlwaysSquare", &SessionRecord::AlwaysSquare},
  };
  for (const Field& f : kFields) {
    if (words[1] != f.Name) continue;
    if (words.size() != 3) throw ScriptError{"'set " + std::string(f.Name) + "' takes one value"};
    SessionState.*f.Member = ParseNumber<int32_t>(words[2]);
    ClampStoredSettings();
    return;
  }
  throw ScriptError{"unknown field '" + std::string(words[1]) + "'"};
}

// One repaint of the main window without pixels.
void Paint() {
  DriverPlatform.RepaintRequested = false;
  ComposeFrameLogic();
  Driver.Status = TextBuffer;
  RunPendingReplies();
  FinishRepaint();
}

void PrintGrid() {
  const int32_t s = CellsPerSide();
  for (int32_t r = 1; r <= s; ++r) {
    for (int32_t c = 1; c <= s; ++c) *Driver.Out << (c > 1 ? " " : "") << int(Grid[c][r]);
    *Driver.Out << '\n';
  }
}

void PrintEngine() {
  // Before the first game there is no engine game: its board reads empty.
  const uint8_t* const* cells = EngineGameOpen() ? EngineBoardView() : nullptr;
  for (int32_t r = 6; r >= 0; --r) {
    for (int32_t c = 0; c < 7; ++c) {
      *Driver.Out << (c > 0 ? " " : "") << (cells != nullptr ? int(cells[c][r]) : kEngineEmpty);
    }
    *Driver.Out << '\n';
  }
}

void PrintState() {
  const SessionRecord& s = SessionState;
  *Driver.Out << "GameResult=" << s.GameResult << " CurrentPlayer=" << s.CurrentPlayer
              << " PendingTurn=" << s.PendingTurn << " EngineSideToMove=" << s.EngineSideToMove
              << " GameStarted=" << s.GameStarted << " RepaintAgain=" << s.RepaintAgain
              << " RepaintRequested=" << (DriverPlatform.RepaintRequested ? 1 : 0) << '\n';
}

void RunCommand(std::string_view line) {
  const std::vector<std::string_view> words = SplitWords(line);
  if (words.empty() || words[0].front() == '#') return;
  const std::string_view command = words[0];
  if (command == "seed") {
    SeedRandom(ParseNumber<uint32_t>(OnlyArgument(words)));
    EngineSeededGenerator = true;
  } else if (command == "rand") {
    NoArgument(words);
    *Driver.Out << RandomNext() << '\n';
  } else if (command == "set") {
    SetField(line, words);
  } else if (command == "newgame") {
    NoArgument(words);
    NewGame();
  } else if (command == "move") {
    MouseX = ParseNumber<int32_t>(OnlyArgument(words));
  } else if (command == "click") {
    NoArgument(words);
    PlayAt(MouseX);
  } else if (command == "key") {
    const std::string_view key = OnlyArgument(words);
    if (key.size() != 1) throw ScriptError{"'key' takes one character"};
    PlayKey(static_cast<int8_t>(key[0]));
  } else if (command == "paint") {
    NoArgument(words);
    Paint();
  } else if (command == "settle") {
    NoArgument(words);
    for (int i = 0; i < 100 && DriverPlatform.RepaintRequested; ++i) Paint();
  } else if (command == "restart") {
    NoArgument(words);
    MenuRestart(StatsSection());
  } else if (command == "close") {
    NoArgument(words);
    CloseSession(StatsSection());
  } else if (command == "load" || command == "save") {
    const std::string path(OnlyArgument(words));
    command == "load" ? LoadSaveFile(path.c_str()) : WriteSaveFile(path.c_str());
  } else if (command == "grid") {
    NoArgument(words);
    PrintGrid();
  } else if (command == "engine") {
    NoArgument(words);
    PrintEngine();
  } else if (command == "state") {
    NoArgument(words);
    PrintState();
  } else if (command == "stats") {
    const int32_t r = ParseNumber<int32_t>(OnlyArgument(words));
    const StatsRecord* record = StatsRecordAt(r);
    if (record == nullptr) throw ScriptError{"no statistics record " + std::to_string(r)};
    *Driver.Out << record->Played << ' ' << record->Won << ' ' << record->Lost << '\n';
  } else if (command == "status") {
    NoArgument(words);
    *Driver.Out << ToUtf8(Driver.Status.c_str()) << '\n';
  } else {
    throw ScriptError{"unknown command '" + std::string(command) + "'"};
  }
}

}  // namespace

int RunDriverScript(std::istream& in, std::ostream& out, std::ostream& err) {
  ResetProcessState();
  SeedRandomFromClock();
  Driver = DriverState{};
  Driver.Out = &out;
  DriverPlatform = DriverPlatformRecord{};
  std::string line;
  int status = 0;
  for (int number = 1; std::getline(in, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    try {
      RunCommand(line);
    } catch (const ScriptError& e) {
      err << "kalvero4-cli: line " << number << ": " << e.Message << '\n';
      status = 2;
      break;
    }
  }
  out.flush();
  EndEngineGame();
  return status;
}
