// What the menu commands and the repaint ask of the main window, beyond the platform's own
// services: each host (the Windows front end, the web page) defines these once.
#pragma once

#include <cstdint>

#include "dialogs/dialog_steps.h"

// Runs a dialog modally over the main window; returns when it has ended.
void RunDialog(DialogKind kind);

// Shows or clears the check mark of a menu entry.
void SetMenuCheck(int32_t command, bool checked);

// Gives the main window a new outer size, its position kept.
void ResizeMainWindow(int32_t width, int32_t height);

// Destroys the main window; the closing steps (CloseSession) run as it goes.
void DestroyMainWindow();
