// Every command of the main window's menu and accelerators: the decisions come from the
// portable menu logic; here the dialogs are opened, the check marks set and the window sized.
#include <windows.h>

#include "dialogs/dialogs_win32.h"
#include "dialogs/home_logic.h"
#include "ground/session.h"
#include "resources/resource.h"
#include "shell/menu_logic.h"
#include "shell/shell_win32.h"

namespace {

void OpenDialog(HWND owner, int32_t resource, DLGPROC procedure) {
  DialogBoxParamA(FrontEnd.Instance, MAKEINTRESOURCEA(resource), owner, procedure, 0);
}

void HomeCommand(HWND window, int32_t section) {
  if (!MenuHomeStart(section)) return;
  const int32_t previousBoardSize = SessionState.BoardSize;
  RunSettingsDialogs(window);
  if (!MenuHomeFinish(previousBoardSize)) return;
  ResizeMainWindow(window, BaseWindowWidth(SessionState.BoardSize),
                   BaseWindowHeight(SessionState.BoardSize));
  MenuHomeResized();
}

}  // namespace

void RunSettingsDialogs(HWND owner) {
  OpenDialog(owner, IDD_HOME, HomeDialogProc);
  if (CharactersDialogFollows()) {
    OpenDialog(owner, IDD_CHARACTERS, CharactersDialogProc);
  }
}

void ResizeMainWindow(HWND window, int32_t width, int32_t height) {
  SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

bool HandleMenuCommand(HWND window, int32_t command, int32_t section) {
  if (const MenuToggle* toggle = FindMenuToggle(command)) {
    const bool checked = ApplyMenuToggle(*toggle);
    CheckMenuItem(GetMenu(window), static_cast<UINT>(command), checked ? MF_CHECKED : MF_UNCHECKED);
    if (command == ID_MENU_DISCREET) {
      MessageBoxA(nullptr, kDiscreetNotice, kDiscreetNoticeTitle, MB_OK | MB_ICONEXCLAMATION);
    }
    return true;
  }
  if (const int32_t factor = RatioFactor(command); factor != 0) {
    const WindowSize size = RatioWindowSize(factor);
    ResizeMainWindow(window, size.Width, size.Height);
    return true;
  }
  switch (command) {
    case ID_MENU_HOME:
      HomeCommand(window, section);
      return true;
    case ID_MENU_RESTART:
      MenuRestart(section);
      return true;
    case ID_MENU_STATS:
      OpenDialog(window, IDD_STATS, StatsDialogProc);
      return true;
    case ID_MENU_ABOUT:
      OpenDialog(window, IDD_ABOUT, AboutDialogProc);
      return true;
    case ID_MENU_QUIT:
      if (MenuQuit(section)) DestroyWindow(window);
      return true;
    default:
      return false;
  }
}
