// The statistics dialog: the counters of the current settings, the share of wins, a verdict.
#include <windows.h>

#include "dialogs/dialogs_win32.h"
#include "dialogs/stats_logic.h"
#include "resources/resource.h"

namespace {

HBRUSH Background = nullptr;  // created at each opening, released when the dialog goes

void Open(HWND dialog) {
  Background = CreateSolidBrush(RGB(255, 192, 0));
  const StatsTexts texts = StatsDialogTexts();
  SetDlgItemTextA(dialog, IDC_STATS_PLAYED, texts.Played.c_str());
  SetDlgItemTextA(dialog, IDC_STATS_WON, texts.Won.c_str());
  SetDlgItemTextA(dialog, IDC_STATS_LOST, texts.Lost.c_str());
  SetDlgItemTextA(dialog, IDC_STATS_VERDICT, texts.Verdict.c_str());
  SetDlgItemTextA(dialog, IDC_STATS_SHARE, texts.Share.c_str());
  SetDlgItemTextA(dialog, IDC_STATS_MODE, texts.Mode.c_str());
}

}  // namespace

INT_PTR CALLBACK StatsDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      Open(dialog);
      return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
      return reinterpret_cast<INT_PTR>(Background);
    case WM_COMMAND:
      // Only "Oké!" (or Enter) closes it; Escape does nothing.
      if (LOWORD(wParam) == IDOK) EndDialog(dialog, IDOK);
      return TRUE;
    case WM_DESTROY:
      DeleteObject(Background);
      Background = nullptr;
      return FALSE;
    default:
      return FALSE;
  }
}
