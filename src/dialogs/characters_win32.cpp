// The characters dialog: the opponent, its strategy number and the player's name.
#include <windows.h>

#include <cstdio>

#include "dialogs/characters_logic.h"
#include "dialogs/dialogs_win32.h"
#include "ground/front_end_win32.h"
#include "ground/session.h"
#include "opponents/roster.h"
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

void SetNumber(HWND dialog, int id, int32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "%i", value);
  SetDlgItemTextA(dialog, id, text);
}

void Open(HWND dialog) {
  Brushes.OkFill = CreateSolidBrush(RGB(128, 0, 255));
  Brushes.Amber = CreateSolidBrush(RGB(255, 192, 0));
  Brushes.PaleBlue = CreateSolidBrush(RGB(192, 224, 255));
  for (const Character& c : Roster) {
    SendDlgItemMessageA(dialog, IDC_CHARACTERS_LIST, LB_ADDSTRING, 0,
                        reinterpret_cast<LPARAM>(c.FullName));
  }
  SetNumber(dialog, IDC_CHARACTERS_AI_NUMBER, SessionState.AiNumber);
  SetDlgItemTextA(dialog, IDC_CHARACTERS_NAME, SessionState.PlayerName);
  SendDlgItemMessageA(dialog, IDC_CHARACTERS_LIST, LB_SETCURSEL,
                      static_cast<WPARAM>(SessionState.CharacterId), 0);
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
  DrawTextA(item.hDC, "Ok", 2, &text, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
  return true;
}

// The message boxes of this dialog have no owner window.
int Tell(const char* text, const char* title, UINT flags) {
  return MessageBoxA(nullptr, text, title, flags);
}

// Returns TRUE when the dialog ends with OK.
INT_PTR Command(HWND dialog, int id) {
  const int32_t index =
      static_cast<int32_t>(SendDlgItemMessageA(dialog, IDC_CHARACTERS_LIST, LB_GETCURSEL, 0, 0));
  switch (id) {
    case IDC_CHARACTERS_LIST: {
      // Choosing a character proposes its own strategy number and shows it behind the dialog.
      if (const char* description = SelectCharacter(index)) {
        SetDlgItemTextA(dialog, IDC_CHARACTERS_DESCRIPTION, description);
      }
      SetNumber(dialog, IDC_CHARACTERS_AI_NUMBER, index);
      InvalidateRect(FrontEnd.MainWindow, nullptr, FALSE);
      return FALSE;
    }
    case IDC_CHARACTERS_HELP:
      Tell(kCharactersHelp, kCharactersHelpTitle, MB_OK | MB_ICONINFORMATION);
      return FALSE;
    case IDCANCEL:
      EndDialog(dialog, IDCANCEL);
      PostQuitMessage(0);
      SessionState.QuitRequested = 1;
      return FALSE;
    case IDOK: {
      char name[kNameCharacters + 1] = {};
      char strategy[3] = {};  // at most two characters
      GetDlgItemTextA(dialog, IDC_CHARACTERS_NAME, name, sizeof name);
      GetDlgItemTextA(dialog, IDC_CHARACTERS_AI_NUMBER, strategy, sizeof strategy);
      switch (AcceptCharactersOk(index, name, strategy)) {
        case StrategyVerdict::OutOfRange:
          Tell(kStrategyRangeMessage, kStrategyRangeTitle, MB_OK | MB_ICONINFORMATION);
          return FALSE;
        case StrategyVerdict::AskCocoBoard:
          if (Tell(kCocoBoardMessage, kCocoBoardTitle, MB_OKCANCEL | MB_ICONEXCLAMATION) != IDOK) {
            return FALSE;
          }
          UseEngineBoardSize();
          break;
        case StrategyVerdict::Accept:
          break;
      }
      EndDialog(dialog, IDOK);
      return TRUE;
    }
    default:
      return FALSE;
  }
}

}  // namespace

INT_PTR CALLBACK CharactersDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      Open(dialog);
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
      return Command(dialog, LOWORD(wParam));
    case WM_DESTROY:
      ReleaseBrushes();
      return FALSE;
    default:
      return FALSE;
  }
}
