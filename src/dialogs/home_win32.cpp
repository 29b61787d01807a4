// The home dialog: number of players, level or statistics slot, board size and challenge.
#include <windows.h>

#include <initializer_list>

#include "dialogs/dialog_steps.h"
#include "dialogs/dialogs_win32.h"
#include "ground/front_end_win32.h"
#include "resources/resource.h"

namespace {

constexpr COLORREF kBackgroundColour = RGB(220, 184, 255);

// Brushes of the open dialog: created when it opens, released when it goes.
struct HomeBrushes {
  HBRUSH Ok = nullptr;
  HBRUSH NotOk = nullptr;
  HBRUSH Frame = nullptr;
  HBRUSH Background = nullptr;
};

HomeBrushes Brushes;

void CreateBrushes() {
  Brushes.Ok = CreateSolidBrush(RGB(255, 128, 128));
  Brushes.NotOk = CreateSolidBrush(RGB(128, 128, 255));
  Brushes.Frame = CreateSolidBrush(RGB(0, 0, 0));
  Brushes.Background = CreateSolidBrush(kBackgroundColour);
}

void ReleaseBrushes() {
  for (HBRUSH* b : {&Brushes.Ok, &Brushes.NotOk, &Brushes.Frame, &Brushes.Background}) {
    if (*b != nullptr) DeleteObject(*b);
    *b = nullptr;
  }
}

// Both push buttons look the same in every state: a coloured face, a black frame, the text.
bool DrawButton(const DRAWITEMSTRUCT& item) {
  if (item.CtlID != IDOK && item.CtlID != IDCANCEL) return false;
  const bool ok = item.CtlID == IDOK;
  FillRect(item.hDC, &item.rcItem, ok ? Brushes.Ok : Brushes.NotOk);
  FrameRect(item.hDC, &item.rcItem, Brushes.Frame);
  SetBkMode(item.hDC, TRANSPARENT);
  RECT text = item.rcItem;
  DrawTextA(item.hDC, OwnerDrawnLabel(DialogKind::Home, ok ? IDOK : IDCANCEL), -1, &text,
            DT_CENTER | DT_VCENTER | DT_SINGLELINE);
  return true;
}

}  // namespace

INT_PTR CALLBACK HomeDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      FrontEnd.OpenDialog = dialog;
      CreateBrushes();
      OpenHomeDialog();
      return TRUE;  // the dialog manager chooses the focus
    case WM_DRAWITEM:
      return DrawButton(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)) ? TRUE : FALSE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      SetBkColor(reinterpret_cast<HDC>(wParam), kBackgroundColour);
      return reinterpret_cast<INT_PTR>(Brushes.Background);
    case WM_COMMAND:
      FrontEnd.OpenDialog = dialog;
      HomeDialogCommand(LOWORD(wParam));
      return TRUE;
    case WM_DESTROY:
      ReleaseBrushes();
      return FALSE;
    default:
      return FALSE;
  }
}
