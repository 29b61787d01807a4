// The entry points that the shell's Windows files share. Only the *_win32.cpp files include
// this header.
#pragma once

#include <windows.h>

#include "ground/front_end_win32.h"

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
