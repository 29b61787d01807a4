#include "shell/menu_commands.h"

#include "dialogs/dialog_host.h"
#include "dialogs/home_logic.h"
#include "ground/platform.h"
#include "ground/session.h"
#include "resources/resource.h"
#include "shell/menu_logic.h"
#include "shell/window_host.h"
#include "shell/window_logic.h"

namespace {

void HomeCommand(int32_t section) {
  if (!MenuHomeStart(section)) return;
  const int32_t previousBoardSize = SessionState.BoardSize;
  RunSettingsDialogs();
  if (!MenuHomeFinish(previousBoardSize)) return;
  ResizeMainWindow(BaseWindowWidth(SessionState.BoardSize),
                   BaseWindowHeight(SessionState.BoardSize));
  MenuHomeResized();
}

}  // namespace

void RunSettingsDialogs() {
  RunDialog(DialogKind::Home);
  if (CharactersDialogFollows()) RunDialog(DialogKind::Characters);
}

void SetAllMenuChecks() {
  int32_t count = 0;
  const MenuToggle* toggles = MenuToggles(&count);
  for (int32_t i = 0; i < count; ++i) {
    SetMenuCheck(toggles[i].Command, MenuToggleChecked(toggles[i]));
  }
}

bool RunMenuCommand(int32_t command, int32_t section) {
  if (const MenuToggle* toggle = FindMenuToggle(command)) {
    SetMenuCheck(command, ApplyMenuToggle(*toggle));
    if (command == ID_MENU_DISCREET) {
      // A box of its own, owned by no window.
      AskFromDialog(kDiscreetNotice, kDiscreetNoticeTitle, kAskOk | kAskExclamation,
                    BoxOwner::None);
    }
    return true;
  }
  if (const int32_t factor = RatioFactor(command); factor != 0) {
    const WindowSize size = RatioWindowSize(factor);
    ResizeMainWindow(size.Width, size.Height);
    return true;
  }
  switch (command) {
    case ID_MENU_HOME:
      HomeCommand(section);
      return true;
    case ID_MENU_RESTART:
      MenuRestart(section);
      return true;
    case ID_MENU_STATS:
      RunDialog(DialogKind::Stats);
      return true;
    case ID_MENU_ABOUT:
      RunDialog(DialogKind::About);
      return true;
    case ID_MENU_QUIT:
      if (MenuQuit(section)) DestroyMainWindow();
      return true;
    default:
      return false;
  }
}

void FinishRepaintSteps() {
  if (RepaintOpensFirstDialogs()) {
    RunSettingsDialogs();
    FirstDialogsClosed();
    ResizeMainWindow(BaseWindowWidth(SessionState.BoardSize),
                     BaseWindowHeight(SessionState.BoardSize));
  }
  EndRepaint();
}
