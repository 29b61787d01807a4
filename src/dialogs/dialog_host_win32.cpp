// The controls of the open dialog for the portable dialog steps: the real controls of the
// dialog window that received the message being handled.
#include <windows.h>

#include <vector>

#include "dialogs/dialog_host.h"
#include "ground/front_end_win32.h"

bool DialogChecked(int32_t control) {
  return SendDlgItemMessageA(FrontEnd.OpenDialog, control, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void SetDialogChecked(int32_t control, bool checked) {
  SendDlgItemMessageA(FrontEnd.OpenDialog, control, BM_SETCHECK,
                      checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

std::string DialogText(int32_t control, int32_t capacity) {
  if (capacity <= 0) return {};
  std::vector<char> text(static_cast<size_t>(capacity), '\0');
  GetDlgItemTextA(FrontEnd.OpenDialog, control, text.data(), capacity);
  return text.data();
}

void SetDialogText(int32_t control, const char* text) {
  SetDlgItemTextA(FrontEnd.OpenDialog, control, text);
}

void AddDialogListEntry(int32_t control, const char* text) {
  SendDlgItemMessageA(FrontEnd.OpenDialog, control, LB_ADDSTRING, 0,
                      reinterpret_cast<LPARAM>(text));
}

int32_t DialogListSelection(int32_t control) {
  return static_cast<int32_t>(
      SendDlgItemMessageA(FrontEnd.OpenDialog, control, LB_GETCURSEL, 0, 0));
}

void SetDialogListSelection(int32_t control, int32_t index) {
  SendDlgItemMessageA(FrontEnd.OpenDialog, control, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

void EndOpenDialog(int32_t result) {
  EndDialog(FrontEnd.OpenDialog, result);
}

int32_t AskFromDialog(const char* text, const char* title, uint32_t flags, BoxOwner owner) {
  return MessageBoxA(owner == BoxOwner::Dialog ? FrontEnd.OpenDialog : nullptr, text, title, flags);
}
