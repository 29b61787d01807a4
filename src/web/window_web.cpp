// The web page's main window: the entry points the page calls for each event (the messages of
// the Windows program), the platform services the core asks for, and the painting of each
// frame's plan. Every step of the game itself is the portable core's.
#include <emscripten/emscripten.h>

#include "ground/platform.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/roster.h"
#include "render/board_plan.h"
#include "render/viewport.h"
#include "shell/menu_commands.h"
#include "shell/turnflow.h"
#include "shell/window_host.h"
#include "shell/window_logic.h"
#include "web/page.h"

namespace {

struct WebWindowRecord {
  int32_t ClientWidth = 0;
  int32_t ClientHeight = 0;
  int32_t Section = 0;          // statistics section when the current message began
  bool BuffersCreated = false;  // the first repaint has started the game and the background
  bool Destroyed = false;       // the window is gone: no message reaches the game any more
};

WebWindowRecord Window;

void RefillBackground() {
  kv_refill_background(SessionState.LogicalWidth, SessionState.LogicalHeight);
}

// The steps every message takes first; false when it goes no further.
bool StartMessage(bool isRepaint) {
  if (Window.Destroyed) return false;
  const WindowMessageStart start =
      StartWindowMessage(isRepaint, Window.ClientWidth, Window.ClientHeight);
  if (!start.Passes) return false;
  if (start.RefillBackground && Window.BuffersCreated) RefillBackground();
  Window.Section = start.Section;
  if (start.DestroyWindow) {
    // A dialog was cancelled: the window goes, and the message is not handled any further.
    DestroyMainWindow();
    return false;
  }
  return true;
}

void DrawPlan(const DrawList& plan) {
  for (const DrawOp& op : plan) {
    const int32_t what =
        op.Kind == DrawKind::FillCell ? static_cast<int32_t>(op.Brush) : op.Resource;
    const int32_t x = op.Kind == DrawKind::Line ? op.From.X : op.Kind == DrawKind::Text ? op.At.X : op.Rect.X;
    const int32_t y = op.Kind == DrawKind::Line ? op.From.Y : op.Kind == DrawKind::Text ? op.At.Y : op.Rect.Y;
    kv_draw(static_cast<int32_t>(op.Kind), x, y, op.Rect.Width, op.Rect.Height, op.To.X, op.To.Y,
            what, static_cast<int32_t>(op.Raster), op.Colour, op.Text.data(),
            static_cast<int32_t>(op.Text.size()));
  }
}

void Present() {
  const PresentPlan plan = PlanPresentation();
  int32_t black[4 * 6];
  for (int32_t i = 0; i < plan.BlackCount; ++i) {
    const PixelRect& r = plan.Black[i];
    black[4 * i] = r.X;
    black[4 * i + 1] = r.Y;
    black[4 * i + 2] = r.Width;
    black[4 * i + 3] = r.Height;
  }
  const PixelRect& to = plan.Destination;
  kv_present(plan.Source.Width, plan.Source.Height, to.X, to.Y, to.Width, to.Height,
             SessionState.Smoothing, black, plan.BlackCount);
}

}  // namespace

void RequestRepaint() {
  kv_request_repaint();
}

// The page stops taking events once the call that asked for the end has returned, and stores
// the save file then.
void EndMessageLoop(int32_t code) {
  kv_end_program(code);
}

int32_t AskUser(const char* text, const char* title, uint32_t flags) {
  return kv_ask(text, title, flags);
}

void SetMenuCheck(int32_t command, bool checked) {
  kv_set_check(command, checked ? 1 : 0);
}

// The page sizes its window frame and reports the new client area at once (WebResized), as a
// window's new size reaches its handler before the resize returns.
void ResizeMainWindow(int32_t width, int32_t height) {
  kv_resize_window(width, height);
}

void DestroyMainWindow() {
  if (Window.Destroyed) return;
  Window.Destroyed = true;
  CloseSession(Window.Section);
}

extern "C" {

// The start of the program: the saved session, the generator, the title, the window at the
// size of the saved board and its first repaint (the first game and the settings dialogs).
EMSCRIPTEN_KEEPALIVE void WebStart() {
  Window = WebWindowRecord{};
  LoadSaveFile();
  SeedRandomFromClock();
  kv_set_title(SessionState.NormalTitle);
  ResizeMainWindow(BaseWindowWidth(SessionState.BoardSize),
                   BaseWindowHeight(SessionState.BoardSize));
  kv_request_repaint();
}

// The client area has a new size (also the first size of the window).
EMSCRIPTEN_KEEPALIVE void WebResized(int32_t clientWidth, int32_t clientHeight) {
  Window.ClientWidth = clientWidth > 0 ? clientWidth : 0;
  Window.ClientHeight = clientHeight > 0 ? clientHeight : 0;
  StartMessage(false);
}

// The first half of a repaint: the frame composed and presented. Returns 1 when the second
// half (WebFinishRepaint) is to follow.
EMSCRIPTEN_KEEPALIVE int32_t WebPaint() {
  if (!StartMessage(true)) return 0;
  if (SessionState.FirstPaint != 0 && !Window.BuffersCreated) {
    NewGame();
    Window.BuffersCreated = true;
    RefillBackground();
  }
  DrawPlan(ComposeFrame());
  Present();
  return 1;
}

// Whether the second half of this repaint makes the computer think: the page shows the wait
// cursor and lets the frame reach the screen first.
EMSCRIPTEN_KEEPALIVE int32_t WebReplyPending() {
  const SessionRecord& s = SessionState;
  const bool engine = PlaysWithEngine(s.AiNumber);
  return (s.PendingTurn == 2 && !engine) || (s.EngineSideToMove == 0 && engine) ? 1 : 0;
}

// The second half: the first dialogs, the pending reply, one more repaint if asked. It may
// wait for the player in a dialog. The check marks are set once the first dialogs are closed,
// as the Windows program sets them after its first update: confirming the home dialog the
// first time gives "Troujours carré" its stored value.
EMSCRIPTEN_KEEPALIVE void WebFinishRepaint() {
  const bool firstDialogs = RepaintOpensFirstDialogs();
  FinishRepaintSteps();
  if (firstDialogs) SetAllMenuChecks();
}

EMSCRIPTEN_KEEPALIVE void WebPointer(int32_t x, int32_t y) {
  if (StartMessage(false)) TrackPointer(x, y);
}

EMSCRIPTEN_KEEPALIVE void WebClick() {
  if (StartMessage(false)) PlayAt(MouseX);
}

EMSCRIPTEN_KEEPALIVE void WebChar(int32_t c) {
  if (StartMessage(false)) PlayKey(static_cast<int8_t>(c & 0xFF));
}

EMSCRIPTEN_KEEPALIVE void WebCommand(int32_t command) {
  if (StartMessage(false)) RunMenuCommand(command, Window.Section);
}

// Closing the window: the closing steps, as the close box does.
EMSCRIPTEN_KEEPALIVE void WebClose() {
  if (StartMessage(false)) DestroyMainWindow();
}

// The page is hidden or closing, and a tab may close without any close message: the save
// file is written as it stands, so that no setting, counter or name is lost.
EMSCRIPTEN_KEEPALIVE void WebStoreNow() {
  if (Window.Destroyed) return;
  WriteSaveFile();
  kv_store_files();
}

// The save file as it would be written now, for the page's export.
EMSCRIPTEN_KEEPALIVE void WebWriteSaveFile() {
  WriteSaveFile();
}
}
