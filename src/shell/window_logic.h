// The steps of the main window's handling that need no window: which messages pass while the
// home dialog is open, the dialogs after the first repaint, and the end of every repaint.
#pragma once

#include <cstdint>

// While the home dialog is open, the main window handles repaints only; every other message
// goes to the platform's default handling.
bool MessagePassesHomeDialog(bool isRepaint);

// Whether this repaint opens the home dialog (and maybe the characters dialog): the first
// repaint of the run, unless the dialog is already open.
bool RepaintOpensFirstDialogs();

// After the first dialogs: a repaint, and the logical size settles afresh; the window then
// takes the base size of the chosen board.
void FirstDialogsClosed();

// The last steps of every repaint: the pending second step of a move, the end of the first
// repaint, and one more repaint when the frame asked for it.
void EndRepaint();
