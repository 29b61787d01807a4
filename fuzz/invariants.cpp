#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "cases.h"
#include "ground/session.h"
#include "opponents/referee.h"

std::string CheckSessionInvariants(bool border) {
  const SessionRecord& s = SessionState;
  struct Range {
    const char* Name;
    int32_t Value, Low, High;
  };
  const Range ranges[] = {
      {"BoardSize", s.BoardSize, 2, 20},
      {"ShowImages", s.ShowImages, 0, 1},
      {"Smoothing", s.Smoothing, 0, 1},
      {"Level", s.Level, 0, 2},
      {"GameMode", s.GameMode, 1, 2},
      {"CustomColours", s.CustomColours, 0, 1},
      {"AiNumber", s.AiNumber, 0, 13},
      {"Challenge", s.Challenge, 0, 1},
      {"CharacterId", s.CharacterId, 0, 13},
      {"NormalTitle", s.NormalTitle, 0, 1},
      {"AlwaysSquare", s.AlwaysSquare, 0, 1},
      {"GameResult", s.GameResult, 0, 3},
      {"CurrentPlayer", s.CurrentPlayer, 1, 2},
      {"PendingTurn", s.PendingTurn, 0, 2},
      {"EngineSideToMove", s.EngineSideToMove, 0, 1},
  };
  for (const Range& r : ranges) {
    if (r.Value < r.Low || r.Value > r.High) {
      return std::string(r.Name) + " = " + std::to_string(r.Value) + " outside " +
             std::to_string(r.Low) + ".." + std::to_string(r.High);
    }
  }
  if (s.PlayerName[kPlayerNameBytes] != 0) return "PlayerName lost its terminating byte";
  if (strnlen(TextBuffer, kTextBufferSize) == kTextBufferSize) return "TextBuffer unterminated";
  if (!border) return {};
  // Column and row 0 and every index past the playable side never hold a piece or a mark.
  const int32_t side = s.BoardSize - 1;
  for (int32_t c = 0; c < kGridSide; ++c) {
    for (int32_t r = 0; r < kGridSide; ++r) {
      const bool inside = c >= 1 && c <= side && r >= 1 && r <= side;
      if (!inside && Grid[c][r] != 0) {
        return "Grid[" + std::to_string(c) + "][" + std::to_string(r) +
               "] = " + std::to_string(Grid[c][r]) + " outside the board of side " +
               std::to_string(side);
      }
      // A cell holds 0, 1 or 2, plus the mark of every winning line or ceiling strike on it.
      if (Grid[c][r] % kMark > 2) return "Grid cell with value " + std::to_string(Grid[c][r]);
    }
  }
  return {};
}

namespace {

std::string ScratchFolder;

void RemoveScratchFolder() {
  std::error_code error;
  std::filesystem::remove_all(ScratchFolder, error);
}

}  // namespace

std::string MakeScratchFolder(const char* target) {
  std::string name = std::string("/tmp/kalvero-") + target + "-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) std::abort();
  ScratchFolder = name;
  std::atexit(RemoveScratchFolder);
  return ScratchFolder;
}
