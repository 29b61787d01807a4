#include "shell/menu_logic.h"

#include <iterator>

#include "ground/platform.h"
#include "ground/savefile.h"
#include "opponents/new_game.h"
#include "resources/resource.h"

namespace {

constexpr auto kLoseQuestion =
    Cp1252("La partie sera perdue si vous continuez!\nÊtes-vous sûr(e)?");
constexpr auto kLoseTitle = Cp1252("Attention");
constexpr auto kHomeQuestion = Cp1252(
    "L'acceuil n'est accessible qu'en début de partie!\n"
    "Vous abandonnerez cette partie si vous continuez.\nÊtes-vous sûr(e)?");
constexpr auto kHomeTitle = Cp1252("Déception");

// Asks whether to abandon a game in progress and counts it lost when the answer is Yes.
// Returns false on No. Nothing is asked when no game is in progress.
bool ConfirmAbandon(const char* question, const char* title, int32_t section) {
  if (!GameIsAbandoned()) return true;
  if (AskUser(question, title, kAskYesNo | kAskExclamation) != kAnswerYes) return false;
  CountLoss(section);
  return true;
}

// clang-format off
constexpr MenuToggle kToggles[] = {
    {ID_GRAPHICS_IMAGES,    &SessionRecord::ShowImages,    false, true},
    {ID_GRAPHICS_COLOURS,   &SessionRecord::CustomColours, false, true},
    {ID_GRAPHICS_SMOOTHING, &SessionRecord::Smoothing,     false, true},
    {ID_GRAPHICS_SQUARE,    &SessionRecord::AlwaysSquare,  false, true},
    {ID_MENU_DISCREET,      &SessionRecord::NormalTitle,   true,  false},
};
// clang-format on

}  // namespace

bool GameIsAbandoned() {
  return SessionState.GameStarted != 0 && SessionState.GameResult == 0;
}

void MenuRestart(int32_t section) {
  if (SessionState.GameStarted == 0) return;
  if (!ConfirmAbandon(kLoseQuestion, kLoseTitle, section)) return;
  NewGame();
  RequestRepaint();
}

bool MenuHomeStart(int32_t section) {
  if (!GameIsAbandoned()) return true;
  if (!ConfirmAbandon(kHomeQuestion, kHomeTitle, section)) return false;
  NewGame();
  return true;
}

bool MenuHomeFinish(int32_t previousBoardSize) {
  RequestRepaint();
  NewGame();
  if (SessionState.BoardSize == previousBoardSize) return false;
  SessionState.SettleCounter = 0;
  return true;
}

void MenuHomeResized() {
  SessionState.SettleCounter = 0;
  RequestRepaint();
}

bool MenuQuit(int32_t section) {
  if (!ConfirmAbandon(kLoseQuestion, kLoseTitle, section)) return false;
  SessionState.QuitByMenu = 1;
  return true;
}

const MenuToggle* FindMenuToggle(int32_t command) {
  for (const MenuToggle& t : kToggles) {
    if (t.Command == command) return &t;
  }
  return nullptr;
}

const MenuToggle* MenuToggles(int32_t* count) {
  *count = static_cast<int32_t>(std::size(kToggles));
  return kToggles;
}

bool MenuToggleChecked(const MenuToggle& toggle) {
  return (SessionState.*toggle.Flag == 0) == toggle.CheckedWhenZero;
}

bool ApplyMenuToggle(const MenuToggle& toggle) {
  int32_t& flag = SessionState.*toggle.Flag;
  flag = 1 - flag;
  if (toggle.Repaints) RequestRepaint();
  return MenuToggleChecked(toggle);
}

int32_t RatioFactor(int32_t command) {
  switch (command) {
    case ID_GRAPHICS_RATIO_1X:
      return 1;
    case ID_GRAPHICS_RATIO_2X:
      return 2;
    case ID_GRAPHICS_RATIO_3X:
      return 3;
    case ID_GRAPHICS_RATIO_4X:
      return 4;
    default:
      return 0;
  }
}

WindowSize RatioWindowSize(int32_t factor) {
  const SessionRecord& s = SessionState;
  return {BaseWindowWidth(s.BoardSize) + (factor - 1) * s.LogicalWidth,
          BaseWindowHeight(s.BoardSize) + (factor - 1) * s.LogicalHeight};
}
