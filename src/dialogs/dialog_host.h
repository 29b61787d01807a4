// The controls of the dialog that is open, as each host shows them. The dialogs' own steps
// (what opening fills in, what each button does) are portable and run over these; the Windows
// front end reads and writes real controls, the web page its form elements, the tests a record.
// Controls are addressed by their numbers in resources/resource.h; texts are Windows-1252.
#pragma once

#include <cstdint>
#include <string>

// Every dialog's OK and Cancel buttons, with the numbers Windows gives them; Enter and Escape
// send these.
constexpr int32_t kOkControl = 1;
constexpr int32_t kCancelControl = 2;

bool DialogChecked(int32_t control);
void SetDialogChecked(int32_t control, bool checked);

// The control's text, cut to capacity - 1 characters as a buffer of `capacity` bytes holds it.
std::string DialogText(int32_t control, int32_t capacity);
void SetDialogText(int32_t control, const char* text);

// List boxes: entries are added at the end; the selection is an index, -1 for none.
void AddDialogListEntry(int32_t control, const char* text);
int32_t DialogListSelection(int32_t control);
void SetDialogListSelection(int32_t control, int32_t index);

// Closes the open dialog once the current step returns; `result` is the button that closed it.
void EndOpenDialog(int32_t result);

// A modal message box asked by the open dialog: owned by the dialog (which cannot be used while
// it shows), or with no owner at all, as each dialog has always asked its questions.
enum class BoxOwner { Dialog, None };
int32_t AskFromDialog(const char* text, const char* title, uint32_t flags, BoxOwner owner);
