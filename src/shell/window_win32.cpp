// The main window's handler, and the four services the portable core asks of the platform.
#include <windows.h>

#include "ground/platform.h"
#include "ground/session.h"
#include "render/frame_logic.h"
#include "render/graphics_win32.h"
#include "render/viewport.h"
#include "shell/menu_commands.h"
#include "shell/shell_win32.h"
#include "shell/turnflow.h"
#include "shell/window_logic.h"

FrontEndRecord FrontEnd;

void RequestRepaint() {
  InvalidateRect(FrontEnd.MainWindow, nullptr, FALSE);
}

void EndMessageLoop(int32_t code) {
  PostQuitMessage(code);
}

int32_t AskUser(const char* text, const char* title, uint32_t flags) {
  return MessageBoxA(FrontEnd.MainWindow, text, title, flags);
}

// Paths in the ANSI code page, like fopen's. The copy flag lets the move cross volumes.
bool ReplaceFileWith(const char* from, const char* to) {
  return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED) != 0;
}

namespace {

// The repaint: the frame is composed and presented first, so that the screen shows the last
// move at once; the dialogs of the first start and the computer's reply follow, all under the
// wait cursor.
void Repaint(HWND window) {
  HCURSOR previous = GetCursor();
  SetCursor(Graphics.WaitCursor);
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(window, &paint);
  if (SessionState.FirstPaint != 0 && !FrontEnd.BuffersCreated) {
    FirstPaintSetup(dc);
    FrontEnd.BuffersCreated = true;
  }
  if (FrameShowsEngineBoard()) {
    PaintEngineBoard();
  } else {
    PaintGridBoard();
  }
  PresentBackBuffer(dc);
  EndPaint(window, &paint);
  FinishRepaintSteps();
  SetCursor(previous);
}

}  // namespace

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  RECT client = {};
  GetClientRect(window, &client);
  const WindowMessageStart start =
      StartWindowMessage(message == WM_PAINT, client.right, client.bottom);
  if (!start.Passes) return DefWindowProcA(window, message, wParam, lParam);
  if (start.RefillBackground) RefillBackground();
  const int32_t section = start.Section;
  if (start.DestroyWindow && IsWindow(window) && !FrontEnd.Destroying) {
    // A dialog was cancelled: the window goes, and the closing steps run during its
    // destruction. The message that brought us here is not handled any further.
    FrontEnd.Destroying = true;
    DestroyWindow(window);
    return 0;
  }

  switch (message) {
    case WM_DESTROY:
      FrontEnd.Destroying = true;
      CloseSession(section);
      return 0;
    case WM_PAINT:
      Repaint(window);
      return 0;
    case WM_ERASEBKGND:
      return 1;  // every frame covers the whole client area
    case WM_ACTIVATEAPP:
    case WM_KEYDOWN:
      return 0;  // keys arrive as WM_CHAR
    case WM_CHAR:
      PlayKey(static_cast<int8_t>(wParam & 0xFF));
      return 0;
    case WM_COMMAND:
      if (RunMenuCommand(LOWORD(wParam), section)) return 0;
      return DefWindowProcA(window, message, wParam, lParam);
    case WM_MOUSEMOVE:
      TrackPointer(static_cast<int32_t>(lParam & 0xFFFF),
                   static_cast<int32_t>((lParam >> 16) & 0xFFFF));
      return 0;
    case WM_LBUTTONDOWN:
      PlayAt(MouseX);
      return 0;
    default:
      return DefWindowProcA(window, message, wParam, lParam);
  }
}
