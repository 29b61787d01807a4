// The statistics dialog: the counters of the current settings, the share of wins, a verdict.
#include <windows.h>

#include "dialogs/dialog_steps.h"
#include "dialogs/dialogs_win32.h"
#include "ground/front_end_win32.h"

namespace {

HBRUSH Background = nullptr;  // created at each opening, released when the dialog goes

}  // namespace

INT_PTR CALLBACK StatsDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      FrontEnd.OpenDialog = dialog;
      Background = CreateSolidBrush(RGB(255, 192, 0));
      OpenStatsDialog();
      return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
      return reinterpret_cast<INT_PTR>(Background);
    case WM_COMMAND:
      FrontEnd.OpenDialog = dialog;
      StatsDialogCommand(LOWORD(wParam));
      return TRUE;
    case WM_DESTROY:
      DeleteObject(Background);
      Background = nullptr;
      return FALSE;
    default:
      return FALSE;
  }
}
