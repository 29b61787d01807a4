// The entry points that the shell's Windows files share. Only the *_win32.cpp files include
// this header.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ground/front_end_win32.h"

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// The home dialog, then the characters dialog for one player (for two, strategy 0).
void RunSettingsDialogs(HWND owner);

// A menu command or accelerator; false for a number that is no command of the menu.
bool HandleMenuCommand(HWND window, int32_t command, int32_t section);

// The window's outer size, its position kept.
void ResizeMainWindow(HWND window, int32_t width, int32_t height);
