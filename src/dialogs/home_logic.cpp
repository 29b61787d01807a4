#include "dialogs/home_logic.h"

#include "dialogs/dialog_text.h"
#include "ground/savefile.h"
#include "ground/session.h"

namespace {

constexpr LevelLabels kOnePlayerLabels = {"Niveau", {"Facile", "Normal", "Dur"}};
constexpr LevelLabels kTwoPlayerLabels = {"Stats", {"Case 1", "Case 2", "Case 3"}};

}  // namespace

const LevelLabels& LevelLabelsFor(bool twoPlayers) {
  return twoPlayers ? kTwoPlayerLabels : kOnePlayerLabels;
}

bool ChallengeIsInconsistent(bool challenge, bool hard, bool twoPlayers) {
  return challenge && (!hard || twoPlayers);
}

int32_t CellsShownFor(int32_t boardSize) {
  return boardSize - 1;
}

CellsVerdict CheckCellsText(const char* text, int32_t* boardSize) {
  const int32_t typed = ReadLeadingNumber(text);
  const int32_t n = typed < INT32_MAX ? typed + 1 : typed;
  *boardSize = n;
  if (n < 2 || n > 20) return CellsVerdict::OutOfRange;
  if (n < 5) return CellsVerdict::AskFirst;
  return CellsVerdict::Accept;
}

void AcceptHomeChoice(const HomeChoice& choice) {
  SessionRecord& s = SessionState;
  s.BoardSize = choice.BoardSize;
  s.Challenge = choice.Challenge ? 1 : 0;
  s.GameMode = choice.OnePlayer ? 1 : 2;
  s.Level = choice.FirstLevel ? 0 : choice.SecondLevel ? 1 : 2;
  s.HomeDialogOpen = 0;
  if (s.FirstPaint != 0) s.AlwaysSquare = SettingsBlock[kAlwaysSquareSlot];
  s.FirstPaint = 0;
}

bool CharactersDialogFollows() {
  if (SessionState.GameMode == 1) return true;
  SessionState.AiNumber = 0;
  return false;
}
