// The about box: the icon, the title line and a credit line on the dialogs' light blue.
#include <windows.h>

#include "dialogs/dialog_steps.h"
#include "dialogs/dialogs_win32.h"
#include "ground/front_end_win32.h"
#include "render/graphics_win32.h"

INT_PTR CALLBACK AboutDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
      return reinterpret_cast<INT_PTR>(Graphics.DialogBrush);
    case WM_COMMAND:
      FrontEnd.OpenDialog = dialog;
      AboutDialogCommand(LOWORD(wParam));
      return TRUE;
    default:
      return FALSE;
  }
}
