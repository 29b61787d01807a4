// The main window's side of the menu commands: the dialogs run modally over it, the check
// marks of its menu, its size, and its destruction.
#include <windows.h>

#include "dialogs/dialogs_win32.h"
#include "resources/resource.h"
#include "shell/shell_win32.h"
#include "shell/window_host.h"

void RunDialog(DialogKind kind) {
  struct Template {
    int32_t Resource;
    DLGPROC Procedure;
  };
  static constexpr Template kTemplates[] = {
      {IDD_HOME, HomeDialogProc},
      {IDD_CHARACTERS, CharactersDialogProc},
      {IDD_STATS, StatsDialogProc},
      {IDD_ABOUT, AboutDialogProc},
  };
  const Template& t = kTemplates[static_cast<int>(kind)];
  DialogBoxParamA(FrontEnd.Instance, MAKEINTRESOURCEA(t.Resource), FrontEnd.MainWindow, t.Procedure,
                  0);
}

void SetMenuCheck(int32_t command, bool checked) {
  CheckMenuItem(GetMenu(FrontEnd.MainWindow), static_cast<UINT>(command),
                checked ? MF_CHECKED : MF_UNCHECKED);
}

void ResizeMainWindow(int32_t width, int32_t height) {
  SetWindowPos(FrontEnd.MainWindow, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

void DestroyMainWindow() {
  DestroyWindow(FrontEnd.MainWindow);
}
