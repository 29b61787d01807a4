// The program's entry point: the saved session, the window class and the one main window, the
// check marks of the menu, the accelerators and the message loop.
#include <windows.h>

#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "render/graphics_win32.h"
#include "resources/resource.h"
#include "shell/menu_commands.h"
#include "shell/shell_win32.h"

// Strings are loaded into buffers of this many characters.
constexpr int kStringBufferSize = 100;

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int showState) {
  LoadSaveFile();
  SeedRandomFromClock();

  // The title and the icons follow "Discretos" as saved; the title never changes afterwards.
  const bool normalTitle = SessionState.NormalTitle != 0;
  char title[kStringBufferSize] = {};
  char className[kStringBufferSize] = {};
  LoadStringA(instance, normalTitle ? IDS_APP_TITLE : IDS_DISCREET_TITLE, title, kStringBufferSize);
  LoadStringA(instance, IDS_WINDOW_CLASS, className, kStringBufferSize);

  WNDCLASSEXA windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = MainWindowProc;
  windowClass.hInstance = instance;
  windowClass.hIcon =
      LoadIconA(instance, MAKEINTRESOURCEA(normalTitle ? IDI_KALVERO4 : IDI_DISCREET));
  windowClass.hIconSm = normalTitle ? LoadIconA(instance, MAKEINTRESOURCEA(IDI_SMALL)) : nullptr;
  windowClass.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  windowClass.lpszMenuName = MAKEINTRESOURCEA(IDR_MAINMENU);
  windowClass.lpszClassName = className;
  RegisterClassExA(&windowClass);

  CreateGraphicResources();

  FrontEnd.Instance = instance;
  FrontEnd.MainWindow = CreateWindowExA(0, className, title, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, 0,
                                        BaseWindowWidth(SessionState.BoardSize),
                                        BaseWindowHeight(SessionState.BoardSize), nullptr, nullptr,
                                        instance, nullptr);
  if (FrontEnd.MainWindow == nullptr) return 0;

  // The update delivers the first repaint at once: the first game, the home dialog and, for
  // one player, the characters dialog all run before it returns.
  ShowWindow(FrontEnd.MainWindow, showState);
  UpdateWindow(FrontEnd.MainWindow);
  SetAllMenuChecks();
  HACCEL accelerators = LoadAcceleratorsA(instance, MAKEINTRESOURCEA(IDR_ACCELERATORS));

  MSG message = {};
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    if (TranslateAcceleratorA(message.hwnd, accelerators, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  return static_cast<int>(message.wParam);
}
