// The home dialog: number of players, level or statistics slot, board size and challenge.
#include <windows.h>

#include <cstdio>

#include "dialogs/dialogs_win32.h"
#include "dialogs/home_logic.h"
#include "ground/session.h"
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

bool IsChecked(HWND dialog, int id) {
  return SendDlgItemMessageA(dialog, id, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void SetChecked(HWND dialog, int id, bool checked) {
  SendDlgItemMessageA(dialog, id, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void SetLevelLabels(HWND dialog, bool twoPlayers) {
  const LevelLabels& labels = LevelLabelsFor(twoPlayers);
  SetDlgItemTextA(dialog, IDC_HOME_LEVEL_GROUP, labels.Group);
  SetDlgItemTextA(dialog, IDC_HOME_LEVEL_1, labels.Levels[0]);
  SetDlgItemTextA(dialog, IDC_HOME_LEVEL_2, labels.Levels[1]);
  SetDlgItemTextA(dialog, IDC_HOME_LEVEL_3, labels.Levels[2]);
}

void Open(HWND dialog) {
  const SessionRecord& s = SessionState;
  char cells[16];
  std::snprintf(cells, sizeof cells, "%i", CellsShownFor(s.BoardSize));
  SetDlgItemTextA(dialog, IDC_HOME_CELLS, cells);
  Brushes.Ok = CreateSolidBrush(RGB(255, 128, 128));
  Brushes.NotOk = CreateSolidBrush(RGB(128, 128, 255));
  Brushes.Frame = CreateSolidBrush(RGB(0, 0, 0));
  Brushes.Background = CreateSolidBrush(kBackgroundColour);
  SessionState.HomeDialogOpen = 1;
  for (int id = IDC_HOME_LEVEL_1; id <= IDC_HOME_TWO_PLAYERS; ++id) SetChecked(dialog, id, false);
  SetChecked(dialog, IDC_HOME_LEVEL_3 + s.GameMode, true);
  SetChecked(dialog, IDC_HOME_LEVEL_1 + s.Level, true);
  SetChecked(dialog, IDC_HOME_CHALLENGE, s.Challenge != 0);
  SetLevelLabels(dialog, s.GameMode == 2);
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
  DrawTextA(item.hDC, ok ? "Ok" : "Pas Ok", -1, &text, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
  return true;
}

// "OK": the board size is checked (with a question for the smallest boards), then every
// choice goes into the session. Returns false while the dialog must stay open.
bool Confirm(HWND dialog) {
  char text[100] = {};
  GetDlgItemTextA(dialog, IDC_HOME_CELLS, text, sizeof text);
  int32_t boardSize = 0;
  switch (CheckCellsText(text, &boardSize)) {
    case CellsVerdict::OutOfRange:
      MessageBoxA(dialog, kCellsRangeMessage, kCellsRangeTitle, MB_OK | MB_ICONSTOP);
      return false;
    case CellsVerdict::AskFirst:
      if (MessageBoxA(dialog, kTinyBoardQuestion, kTinyBoardTitle, MB_YESNO | MB_ICONINFORMATION) !=
          IDYES) {
        return false;
      }
      break;
    case CellsVerdict::Accept:
      break;
  }
  AcceptHomeChoice({boardSize, IsChecked(dialog, IDC_HOME_CHALLENGE),
                    IsChecked(dialog, IDC_HOME_ONE_PLAYER), IsChecked(dialog, IDC_HOME_LEVEL_1),
                    IsChecked(dialog, IDC_HOME_LEVEL_2)});
  return true;
}

void Command(HWND dialog, int id) {
  SetLevelLabels(dialog, IsChecked(dialog, IDC_HOME_TWO_PLAYERS));
  if (id == IDCANCEL) {
    // "Pas OK", Escape and the close box end the program. HomeDialogOpen stays set, so the
    // main window handles nothing but repaints until the loop ends.
    EndDialog(dialog, IDCANCEL);
    PostQuitMessage(0);
    SessionState.QuitRequested = 1;
    return;
  }
  if (ChallengeIsInconsistent(IsChecked(dialog, IDC_HOME_CHALLENGE),
                              IsChecked(dialog, IDC_HOME_LEVEL_3),
                              IsChecked(dialog, IDC_HOME_TWO_PLAYERS))) {
    MessageBoxA(dialog, kChallengeMessage, kChallengeTitle, MB_OK | MB_ICONINFORMATION);
    SetChecked(dialog, IDC_HOME_CHALLENGE, false);
  }
  if (id == IDOK && Confirm(dialog)) EndDialog(dialog, IDOK);
}

}  // namespace

INT_PTR CALLBACK HomeDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      Open(dialog);
      return TRUE;  // the dialog manager chooses the focus
    case WM_DRAWITEM:
      return DrawButton(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)) ? TRUE : FALSE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      SetBkColor(reinterpret_cast<HDC>(wParam), kBackgroundColour);
      return reinterpret_cast<INT_PTR>(Brushes.Background);
    case WM_COMMAND:
      Command(dialog, LOWORD(wParam));
      return TRUE;
    case WM_DESTROY:
      ReleaseBrushes();
      return FALSE;
    default:
      return FALSE;
  }
}
