#include "dialogs/dialog_steps.h"

#include <cstdio>

#include "dialogs/characters_logic.h"
#include "dialogs/dialog_host.h"
#include "dialogs/home_logic.h"
#include "dialogs/stats_logic.h"
#include "ground/platform.h"
#include "ground/session.h"
#include "opponents/roster.h"
#include "resources/resource.h"

namespace {

// The home dialog's edit is read into a buffer of this many bytes.
constexpr int32_t kCellsTextBytes = 100;

void SetNumber(int32_t control, int32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "%i", value);
  SetDialogText(control, text);
}

void SetLevelLabels(bool twoPlayers) {
  const LevelLabels& labels = LevelLabelsFor(twoPlayers);
  SetDialogText(IDC_HOME_LEVEL_GROUP, labels.Group);
  SetDialogText(IDC_HOME_LEVEL_1, labels.Levels[0]);
  SetDialogText(IDC_HOME_LEVEL_2, labels.Levels[1]);
  SetDialogText(IDC_HOME_LEVEL_3, labels.Levels[2]);
}

// Cancelling the home or the characters dialog ends the program. HomeDialogOpen stays as it
// is, so while the home dialog was open the main window handles nothing but repaints until
// the loop ends.
void CancelEndsTheProgram() {
  EndOpenDialog(kCancelControl);
  EndMessageLoop(0);
  SessionState.QuitRequested = 1;
}

// "OK" of the home dialog: the board size is checked (with a question for the smallest
// boards), then every choice goes into the session. Returns false while the dialog must stay
// open.
bool ConfirmHome() {
  int32_t boardSize = 0;
  switch (CheckCellsText(DialogText(IDC_HOME_CELLS, kCellsTextBytes).c_str(), &boardSize)) {
    case CellsVerdict::OutOfRange:
      AskFromDialog(kCellsRangeMessage, kCellsRangeTitle, kAskOk | kAskStop, BoxOwner::Dialog);
      return false;
    case CellsVerdict::AskFirst:
      if (AskFromDialog(kTinyBoardQuestion, kTinyBoardTitle, kAskYesNo | kAskInformation,
                        BoxOwner::Dialog) != kAnswerYes) {
        return false;
      }
      break;
    case CellsVerdict::Accept:
      break;
  }
  AcceptHomeChoice({boardSize, DialogChecked(IDC_HOME_CHALLENGE),
                    DialogChecked(IDC_HOME_ONE_PLAYER), DialogChecked(IDC_HOME_LEVEL_1),
                    DialogChecked(IDC_HOME_LEVEL_2)});
  return true;
}

// "OK" of the characters dialog. Returns true when the dialog ends.
bool ConfirmCharacters(int32_t index) {
  const std::string name = DialogText(IDC_CHARACTERS_NAME, kNameCharacters + 1);
  const std::string strategy = DialogText(IDC_CHARACTERS_AI_NUMBER, 3);  // two characters
  switch (AcceptCharactersOk(index, name.c_str(), strategy.c_str())) {
    case StrategyVerdict::OutOfRange:
      AskFromDialog(kStrategyRangeMessage, kStrategyRangeTitle, kAskOk | kAskInformation,
                    BoxOwner::None);
      return false;
    case StrategyVerdict::AskCocoBoard:
      if (AskFromDialog(kCocoBoardMessage, kCocoBoardTitle, kAskOkCancel | kAskExclamation,
                        BoxOwner::None) != kAnswerOk) {
        return false;
      }
      UseEngineBoardSize();
      break;
    case StrategyVerdict::Accept:
      break;
  }
  EndOpenDialog(kOkControl);
  return true;
}

}  // namespace

void OpenHomeDialog() {
  const SessionRecord& s = SessionState;
  SetNumber(IDC_HOME_CELLS, CellsShownFor(s.BoardSize));
  SessionState.HomeDialogOpen = 1;
  for (int32_t id = IDC_HOME_LEVEL_1; id <= IDC_HOME_TWO_PLAYERS; ++id) SetDialogChecked(id, false);
  SetDialogChecked(IDC_HOME_LEVEL_3 + s.GameMode, true);
  SetDialogChecked(IDC_HOME_LEVEL_1 + s.Level, true);
  SetDialogChecked(IDC_HOME_CHALLENGE, s.Challenge != 0);
  SetLevelLabels(s.GameMode == 2);
}

void HomeDialogCommand(int32_t control) {
  SetLevelLabels(DialogChecked(IDC_HOME_TWO_PLAYERS));
  if (control == kCancelControl) return CancelEndsTheProgram();
  if (ChallengeIsInconsistent(DialogChecked(IDC_HOME_CHALLENGE), DialogChecked(IDC_HOME_LEVEL_3),
                              DialogChecked(IDC_HOME_TWO_PLAYERS))) {
    AskFromDialog(kChallengeMessage, kChallengeTitle, kAskOk | kAskInformation, BoxOwner::Dialog);
    SetDialogChecked(IDC_HOME_CHALLENGE, false);
  }
  if (control == kOkControl && ConfirmHome()) EndOpenDialog(kOkControl);
}

void OpenCharactersDialog() {
  for (const Character& c : Roster) AddDialogListEntry(IDC_CHARACTERS_LIST, c.FullName.c_str());
  SetNumber(IDC_CHARACTERS_AI_NUMBER, SessionState.AiNumber);
  SetDialogText(IDC_CHARACTERS_NAME, SessionState.PlayerName);
  SetDialogListSelection(IDC_CHARACTERS_LIST, SessionState.CharacterId);
}

bool CharactersDialogCommand(int32_t control) {
  const int32_t index = DialogListSelection(IDC_CHARACTERS_LIST);
  switch (control) {
    case IDC_CHARACTERS_LIST:
      // Choosing a character proposes its own strategy number and shows it behind the dialog.
      if (const char* description = SelectCharacter(index)) {
        SetDialogText(IDC_CHARACTERS_DESCRIPTION, description);
      }
      SetNumber(IDC_CHARACTERS_AI_NUMBER, index);
      RequestRepaint();
      return false;
    case IDC_CHARACTERS_HELP:
      AskFromDialog(kCharactersHelp, kCharactersHelpTitle, kAskOk | kAskInformation,
                    BoxOwner::None);
      return false;
    case kCancelControl:
      CancelEndsTheProgram();
      return false;
    case kOkControl:
      return ConfirmCharacters(index);
    default:
      return false;
  }
}

void OpenStatsDialog() {
  const StatsTexts texts = StatsDialogTexts();
  SetDialogText(IDC_STATS_PLAYED, texts.Played.c_str());
  SetDialogText(IDC_STATS_WON, texts.Won.c_str());
  SetDialogText(IDC_STATS_LOST, texts.Lost.c_str());
  SetDialogText(IDC_STATS_VERDICT, texts.Verdict.c_str());
  SetDialogText(IDC_STATS_SHARE, texts.Share.c_str());
  SetDialogText(IDC_STATS_MODE, texts.Mode.c_str());
}

void StatsDialogCommand(int32_t control) {
  // Only "Oké!" (or Enter) closes it; Escape does nothing.
  if (control == kOkControl) EndOpenDialog(kOkControl);
}

void AboutDialogCommand(int32_t control) {
  if (control == kOkControl || control == kCancelControl) EndOpenDialog(control);
}

int32_t DialogTemplate(DialogKind kind) {
  switch (kind) {
    case DialogKind::Home:
      return IDD_HOME;
    case DialogKind::Characters:
      return IDD_CHARACTERS;
    case DialogKind::Stats:
      return IDD_STATS;
    case DialogKind::About:
      return IDD_ABOUT;
  }
  return 0;
}

const char* OwnerDrawnLabel(DialogKind kind, int32_t control) {
  if (kind == DialogKind::Home && control == kOkControl) return "Ok";
  if (kind == DialogKind::Home && control == kCancelControl) return "Pas Ok";
  if (kind == DialogKind::Characters && control == kOkControl) return "Ok";
  return nullptr;
}

void OpenDialogSteps(DialogKind kind) {
  switch (kind) {
    case DialogKind::Home:
      return OpenHomeDialog();
    case DialogKind::Characters:
      return OpenCharactersDialog();
    case DialogKind::Stats:
      return OpenStatsDialog();
    case DialogKind::About:
      return;
  }
}

void RunDialogCommand(DialogKind kind, int32_t control) {
  switch (kind) {
    case DialogKind::Home:
      return HomeDialogCommand(control);
    case DialogKind::Characters:
      CharactersDialogCommand(control);
      return;
    case DialogKind::Stats:
      return StatsDialogCommand(control);
    case DialogKind::About:
      return AboutDialogCommand(control);
  }
}
