// Every command of the main window's menu and accelerators, carried out through the window
// host: the decisions of shell/menu_logic.h, the dialogs, the check marks and the window size.
#pragma once

#include <cstdint>

// Carries out a command; false for a number that is no command of the menu.
bool RunMenuCommand(int32_t command, int32_t section);

// The check marks of every toggle, from the session (at start, after the first dialogs).
void SetAllMenuChecks();

// The home dialog, then the characters dialog for one player (for two, strategy 0).
void RunSettingsDialogs();

// What a repaint does once its frame is on the window: at the first repaint the settings
// dialogs and the window sized for the chosen board, then the pending second step of a move,
// and one more repaint when the frame asked for it.
void FinishRepaintSteps();
