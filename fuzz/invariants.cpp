#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "cases.h"
#include "ground/savefile.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "opponents/roster.h"
#include "render/frame_logic.h"
#include "shell/menu_logic.h"
#include "shell/turnflow.h"

namespace {

std::string OutsideRange(const char* name, int32_t value, int32_t low, int32_t high) {
  if (value >= low && value <= high) return {};
  return std::string(name) + " = " + std::to_string(value) + " outside " + std::to_string(low) +
         ".." + std::to_string(high) + "; ";
}

// Nothing outside the board; a cell holds 0, 1 or 2 and the mark of each line over it.
std::string CheckGrid() {
  const int32_t side = SessionState.BoardSize - 1;
  for (int32_t c = 0; c < kGridSide; ++c) {
    for (int32_t r = 0; r < kGridSide; ++r) {
      const bool inside = c >= 1 && c <= side && r >= 1 && r <= side;
      if ((!inside && Grid[c][r] != 0) || Grid[c][r] % kMark > 2) {
        return "Grid[" + std::to_string(c) + "][" + std::to_string(r) + "] holds " +
               std::to_string(Grid[c][r]);
      }
    }
  }
  return {};
}

std::vector<std::string> ScratchFolders;

}  // namespace

std::string CheckSessionInvariants(bool border) {
  const SessionRecord& s = SessionState;
  std::string wrong;
  for (const StoredSetting& setting : kStoredSettings) {
    wrong += OutsideRange(setting.Name, s.*setting.Field, setting.Range.Low, setting.Range.High);
  }
  wrong += OutsideRange("GameResult", s.GameResult, 0, 3);
  wrong += OutsideRange("CurrentPlayer", s.CurrentPlayer, 1, 2);
  wrong += OutsideRange("PendingTurn", s.PendingTurn, 0, 2);
  wrong += OutsideRange("EngineSideToMove", s.EngineSideToMove, 0, 1);
  if (s.PlayerName[kPlayerNameBytes] != 0) wrong += "PlayerName unterminated";
  if (strnlen(TextBuffer, kTextBufferSize) == kTextBufferSize) wrong += "TextBuffer unterminated";
  return !wrong.empty() || !border ? wrong : CheckGrid();
}

// The look-ahead at Dur on a large board or with Challenge beyond nine columns, the engine's
// deepest search.
bool RepliesAreSlow() {
  const SessionRecord& s = SessionState;
  if (PlaysWithEngine(s.AiNumber)) return s.Challenge != 0;  // whatever the level
  return s.Level == 2 && s.BoardSize > (s.Challenge != 0 ? 9 : 13);
}

std::string PlayGame(const std::function<uint8_t()>& nextByte, int32_t actions) {
  NewGame();
  for (int32_t action = 0; action < actions && SessionState.GameResult == 0; ++action) {
    const uint8_t b = nextByte();
    const int32_t column = b % (SessionState.BoardSize + 2);  // one column either side too
    if (b < 0x80) {
      PlayAt(kCellPixels * column + b % kCellPixels);
    } else if (b < 0xC0) {
      PlayKey(static_cast<int8_t>('0' + column));
    } else if (b & 1) {
      MenuRestart(StatsSection());
    } else {
      PlayKey(static_cast<int8_t>(b));
    }
    for (int paint = 0; paint < 3; ++paint) {  // as the window repaints, without pixels
      ComposeFrameLogic();
      RunPendingReplies();
      FinishRepaint();
      if (std::string failure = CheckSessionInvariants(true); !failure.empty()) {
        return failure + " (action " + std::to_string(action) + ")";
      }
    }
  }
  return {};
}

std::string MakeScratchFolder(const char* target) {
  std::string name = std::string("/tmp/kalvero-") + target + "-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) std::abort();
  if (ScratchFolders.empty()) {
    std::atexit([] {
      std::error_code error;
      for (const std::string& folder : ScratchFolders) std::filesystem::remove_all(folder, error);
    });
  }
  ScratchFolders.push_back(name);
  return name;
}
