// The dialogs in the page: the portable dialog steps run over the page's form elements, and a
// dialog's modal loop waits for the player's next command without blocking the browser.
#include <initializer_list>
#include <string>
#include <vector>

#include "dialogs/dialog_host.h"
#include "dialogs/dialog_steps.h"
#include "shell/window_host.h"
#include "web/page.h"

namespace {

bool DialogEnded = false;

}  // namespace

bool DialogChecked(int32_t control) {
  return kv_dialog_checked(control) != 0;
}

void SetDialogChecked(int32_t control, bool checked) {
  kv_dialog_set_checked(control, checked ? 1 : 0);
}

std::string DialogText(int32_t control, int32_t capacity) {
  if (capacity <= 0) return {};
  std::vector<char> text(static_cast<size_t>(capacity), '\0');
  kv_dialog_text(control, text.data(), capacity);
  text.back() = '\0';
  return text.data();
}

void SetDialogText(int32_t control, const char* text) {
  kv_dialog_set_text(control, text);
}

void AddDialogListEntry(int32_t control, const char* text) {
  kv_list_add(control, text);
}

int32_t DialogListSelection(int32_t control) {
  return kv_list_selection(control);
}

void SetDialogListSelection(int32_t control, int32_t index) {
  kv_list_set_selection(control, index);
}

void EndOpenDialog(int32_t) {
  DialogEnded = true;
}

// In the page every box is modal over the whole window, dialog or not.
int32_t AskFromDialog(const char* text, const char* title, uint32_t flags, BoxOwner) {
  return kv_ask(text, title, flags);
}

// The page builds the dialog from its template, then shows on the owner-drawn buttons what the
// Windows dialogs draw there.
void RunDialog(DialogKind kind) {
  kv_dialog_open(DialogTemplate(kind));
  for (const int32_t control : {kOkControl, kCancelControl}) {
    if (const char* label = OwnerDrawnLabel(kind, control)) kv_dialog_set_text(control, label);
  }
  DialogEnded = false;
  OpenDialogSteps(kind);
  while (!DialogEnded) RunDialogCommand(kind, kv_dialog_wait());
  kv_dialog_close();
}
