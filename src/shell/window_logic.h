// The steps of the main window's handling that need no window: which messages pass while the
// home dialog is open, the dialogs after the first repaint, and the end of every repaint.
#pragma once

#include <cstdint>

// While the home dialog is open, the main window handles repaints only; every other message
// goes to the platform's default handling.
bool MessagePassesHomeDialog(bool isRepaint);

// What every message that reaches the main window does before its own handling.
struct WindowMessageStart {
  bool Passes = false;            // false: the home dialog holds it back for the default handling
  bool RefillBackground = false;  // the logical size has just settled (SettleLogicalSize)
  bool DestroyWindow = false;     // a dialog was cancelled: the window goes instead
  int32_t Section = 0;            // the statistics section of the settings as they are now
};

// Lets the message through the home dialog's gate, reads the client size into the logical
// size and the fit, and notes the section and a pending quit.
WindowMessageStart StartWindowMessage(bool isRepaint, int32_t clientWidth, int32_t clientHeight);

// Whether this repaint opens the home dialog (and maybe the characters dialog): the first
// repaint of the run, unless the dialog is already open.
bool RepaintOpensFirstDialogs();

// After the first dialogs: a repaint, and the logical size settles afresh; the window then
// takes the base size of the chosen board.
void FirstDialogsClosed();

// The last steps of every repaint: the pending second step of a move, the end of the first
// repaint, and one more repaint when the frame asked for it.
void EndRepaint();
