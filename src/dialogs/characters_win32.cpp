// The characters dialog: the opponent, its strategy number and the player's name.
#include <windows.h>

#include <initializer_list>

#include "dialogs/dialog_steps.h"
#include "dialogs/dialogs_win32.h"
#include "ground/front_end_win32.h"
#include "render/graphics_win32.h"
#include "resources/resource.h"

namespace {

// Brushes of the open dialog: created when it opens, released when it goes.
struct CharactersBrushes {
  HBRUSH OkFill = nullptr;
  HBRUSH Amber = nullptr;
  HBRUSH PaleBlue = nullptr;
};

CharactersBrushes Brushes;

void CreateBrushes() {
  Brushes.OkFill = CreateSolidBrush(RGB(128, 0, 255));
  Brushes.Amber = CreateSolidBrush(RGB(255, 192, 0));
  Brushes.PaleBlue = CreateSolidBrush(RGB(192, 224, 255));
}

void ReleaseBrushes() {
  for (HBRUSH* b : {&Brushes.OkFill, &Brushes.Amber, &Brushes.PaleBlue}) {
    if (*b != nullptr) DeleteObject(*b);
    *b = nullptr;
  }
}

bool DrawOkButton(const DRAWITEMSTRUCT& item) {
  if (item.CtlID != IDOK) return false;
  FillRect(item.hDC, &item.rcItem, Brushes.OkFill);
  FrameRect(item.hDC, &item.rcItem, Brushes.Amber);
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, RGB(255, 255, 255));
  RECT text = item.rcItem;
  DrawTextA(item.hDC, OwnerDrawnLabel(DialogKind::Characters, IDOK), -1, &text,
            DT_CENTER | DT_VCENTER | DT_SINGLELINE);
  return true;
}

}  // namespace

INT_PTR CALLBACK CharactersDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      FrontEnd.OpenDialog = dialog;
      CreateBrushes();
      OpenCharactersDialog();
      return TRUE;
    case WM_DRAWITEM:
      return DrawOkButton(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)) ? TRUE : FALSE;
    case WM_CTLCOLORDLG:
      SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
      return reinterpret_cast<INT_PTR>(Graphics.DialogBrush);
    case WM_CTLCOLORLISTBOX:
      SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
      return reinterpret_cast<INT_PTR>(Brushes.Amber);
    case WM_CTLCOLORSTATIC:
      SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
      return reinterpret_cast<INT_PTR>(Brushes.PaleBlue);
    case WM_COMMAND:
      FrontEnd.OpenDialog = dialog;
      return CharactersDialogCommand(LOWORD(wParam)) ? TRUE : FALSE;
    case WM_DESTROY:
      ReleaseBrushes();
      return FALSE;
    default:
      return FALSE;
  }
}
