#include "shell/menu_logic.h"

#include "shell/platform.h"
#include "shell/savefile.h"
#include "shell/session.h"
#include "shell/texts.h"

namespace {

constexpr auto kLoseQuestion =
    Cp1252("La partie sera perdue si vous continuez!\nÊtes-vous sûr(e)?");
constexpr auto kLoseTitle = Cp1252("Attention");

}  // namespace

bool GameIsAbandoned() {
  return SessionState.GameStarted != 0 && SessionState.GameResult == 0;
}

void MenuRestart(int32_t section) {
  if (SessionState.GameStarted == 0) return;
  if (SessionState.GameResult == 0) {
    if (AskUser(kLoseQuestion, kLoseTitle, kAskYesNo | kAskExclamation) != kAnswerYes) return;
    CountLoss(section);
  }
  NewGame();
  RequestRepaint();
}
