// The Windows front end's own record: the handles that start-up sets once and that painting and
// the dialogs need. Only the *_win32.cpp files include this header.
#pragma once

#include <windows.h>

struct FrontEndRecord {
  HINSTANCE Instance = nullptr;
  HWND MainWindow = nullptr;
  HWND OpenDialog = nullptr;    // the modal dialog whose controls the dialog steps use
  bool BuffersCreated = false;  // the first repaint has created the off-screen surfaces
  bool Destroying = false;      // the main window is being destroyed: never destroy it twice
};

extern FrontEndRecord FrontEnd;
