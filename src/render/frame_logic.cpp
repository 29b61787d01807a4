#include "render/frame_logic.h"

#include <cstdio>

#include "engine/engine.h"
#include "ground/platform.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "ground/texts.h"
#include "opponents/bridge.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "opponents/roster.h"
#include "opponents/turn.h"

namespace {

constexpr auto kThinking = Cp1252("%s réfléchit...");
constexpr auto kEngineThinking = Cp1252("Coco réfléchit...");
constexpr auto kNoWinner = Cp1252("Aucun gagnant!");
constexpr auto kPlayerWon = Cp1252("Joueur %i a gagné!");
constexpr auto kNamedWon = Cp1252("%s a gagné!");
constexpr auto kSection = Cp1252("Stats n°%i");
constexpr const char* kLevelNames[] = {"Facile", "Normal", "Dur"};

template <typename... Args>
void Status(const char* format, Args... args) {
  std::snprintf(TextBuffer, sizeof TextBuffer, format, args...);
}

// With strategy 6 a piece in the top row ends the game as the computer's win, whoever placed
// it, and the whole square is marked; once per game.
void CeilingRule() {
  SessionRecord& s = SessionState;
  if (!HasCeilingRule(s.AiNumber) || s.CeilingStruck != 0) return;
  const int32_t n = CellsPerSide();
  bool touched = false;
  for (int32_t c = 1; c <= n; ++c) touched = touched || Grid[c][1] != 0;
  if (!touched) return;
  for (int32_t c = 1; c <= n; ++c)
    for (int32_t r = 1; r <= n; ++r) Grid[c][r] += kMark;
  s.GameResult = 2;
  s.CeilingStruck = 1;
}

void LevelOrSectionStatus() {
  const SessionRecord& s = SessionState;
  if (s.GameMode == 2) return Status(kSection, s.Level + 1);
  if (s.Level >= 0 && s.Level <= 2) Status("%s", kLevelNames[s.Level]);
}

void ResultStatus(int32_t result) {
  const SessionRecord& s = SessionState;
  if (result == 3) return Status("%s", kNoWinner.c_str());
  if (s.GameMode == 2) return Status(kPlayerWon, result);
  Status(kNamedWon, result == 2 ? RosterEntry(s.CharacterId).FullName.c_str() : s.PlayerName);
}

void GridFrame() {
  const SessionRecord& s = SessionState;
  CeilingRule();
  if (s.GameMode == 1 && ReplyPending()) {
    return Status(kThinking, RosterEntry(s.CharacterId).ShortName.c_str());
  }
  if (s.GameResult != 0) return ResultStatus(s.GameResult);
  LevelOrSectionStatus();
}

bool EngineBoardHasPiece() {
  const uint8_t* const* cells = EngineBoardView();
  for (int32_t c = 0; c < kEngineColumns; ++c)
    for (int32_t r = 0; r < kEngineRows; ++r)
      if (cells[c][r] != kEngineEmpty) return true;
  return false;
}

// The engine's game has ended when a side has won or the board is full: the result is set
// (a win overrides a full board) and the final position goes onto the referee's board.
void EngineGameEnds() {
  SessionRecord& s = SessionState;
  if (s.GameMode == 2) return ResultStatus(s.GameResult);
  s.RepaintAgain = 1;
  if (EngineBoardFull()) s.GameResult = 3;
  if (EngineHasWon(0)) {
    s.GameResult = 2;
  } else if (EngineHasWon(1)) {
    s.GameResult = 1;
  }
  ResultStatus(s.GameResult);
  GridFromEngine();
}

void EngineFrame() {
  SessionRecord& s = SessionState;
  if (EngineBoardHasPiece()) s.GameStarted = 1;
  if (s.GameMode == 1 && ReplyPending()) return Status("%s", kEngineThinking.c_str());
  if (EngineHasWon(0) || EngineHasWon(1) || EngineBoardFull()) return EngineGameEnds();
  LevelOrSectionStatus();
}

}  // namespace

bool FrameShowsEngineBoard() {
  const SessionRecord& s = SessionState;
  return PlaysWithEngine(s.AiNumber) && s.GameResult == 0 && s.BoardSize == kEngineBoardSize &&
         EngineGameOpen();
}

void ComposeFrameLogic() {
  TextBuffer[0] = 0;
  FrameShowsEngineBoard() ? EngineFrame() : GridFrame();
}

void FinishRepaint() {
  if (SessionState.RepaintAgain == 1) RequestRepaint();
  SessionState.RepaintAgain = 0;
}
