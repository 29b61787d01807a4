// The web page's main window: the entry points the page calls for each event (the messages of
// the Windows program), the platform services the core asks for, and the painting of each
// frame's plan. Every step of the game itself is the portable core's.
#include <emscripten/emscripten.h>

#include <cstdio>

#include "ground/platform.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/turn.h"
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

// Where a step starts: a line at its first end, a text at its place, the rest at its rectangle.
PixelPoint Anchor(const DrawOp& op) {
  switch (op.Kind) {
    case DrawKind::Line:
      return op.From;
    case DrawKind::Text:
      return op.At;
    default:
      return {op.Rect.X, op.Rect.Y};
  }
}

// Each step goes to the page as numbers: kind, anchor, size, the line's other end, the brush or
// picture, the raster operation, the colour and the text.
void DrawPlan(const DrawList& plan) {
  for (const DrawOp& op : plan) {
    const PixelPoint at = Anchor(op);
    const int32_t what =
        op.Kind == DrawKind::FillCell ? static_cast<int32_t>(op.Brush) : op.Resource;
    kv_draw(static_cast<int32_t>(op.Kind), at.X, at.Y, op.Rect.Width, op.Rect.Height, op.To.X,
            op.To.Y, what, static_cast<int32_t>(op.Raster), op.Colour, op.Text.data(),
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

// The first half of a repaint: its message steps, the first game and background at the first
// one, then the frame composed and presented. False when the repaint goes no further.
bool PaintFrame() {
  kv_repaint_begins();
  if (!StartMessage(true)) return false;
  if (SessionState.FirstPaint != 0 && !Window.BuffersCreated) {
    NewGame();
    Window.BuffersCreated = true;
    RefillBackground();
  }
  DrawPlan(ComposeFrame());
  Present();
  return true;
}

// Messages that the Windows program's handler takes no further than its first steps, but
// counts there: the logical size follows the client area for the first ten messages after
// start or a new board. The page delivers each event with the messages Windows delivers around
// it, so that the size settles after as many of the player's actions as on Windows.
void PassingMessages(int32_t count) {
  for (int32_t i = 0; i < count; ++i) StartMessage(false);
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

// The browser's file system replaces a file in one step, as the C library's rename does.
bool ReplaceFileWith(const char* from, const char* to) {
  return std::rename(from, to) == 0;
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
// size of the saved board, and its first repaint at once (the first game, the first frame, the
// settings dialogs), as showing the window delivers it; then the check marks, which thus show
// the settings as the home dialog left them.
EMSCRIPTEN_KEEPALIVE void WebStart() {
  Window = WebWindowRecord{};
  LoadSaveFile();
  SeedRandomFromClock();
  kv_set_title(SessionState.NormalTitle);
  ResizeMainWindow(BaseWindowWidth(SessionState.BoardSize),
                   BaseWindowHeight(SessionState.BoardSize));
  if (PaintFrame()) FinishRepaintSteps();
  SetAllMenuChecks();
}

// Messages with no handling of their own, such as the release of a key that was an accelerator.
EMSCRIPTEN_KEEPALIVE void WebPassingMessages(int32_t count) {
  PassingMessages(count);
}

// The client area has a new size (also the first size of the window): on Windows three
// messages see the old client area (the position changing, the size limits, the frame's
// calculation), then two the new one (the position changed, the size).
EMSCRIPTEN_KEEPALIVE void WebResized(int32_t clientWidth, int32_t clientHeight) {
  PassingMessages(3);
  Window.ClientWidth = clientWidth > 0 ? clientWidth : 0;
  Window.ClientHeight = clientHeight > 0 ? clientHeight : 0;
  PassingMessages(2);
}

// The first half of a repaint: the frame composed and presented. Returns 1 when the second
// half (WebFinishRepaint) is to follow.
EMSCRIPTEN_KEEPALIVE int32_t WebPaint() {
  return PaintFrame() ? 1 : 0;
}

// Whether the second half of this repaint makes the computer think: the page shows the wait
// cursor and lets the frame reach the screen first.
EMSCRIPTEN_KEEPALIVE int32_t WebReplyPending() {
  return ReplyPending() ? 1 : 0;
}

// The second half: the first dialogs, the pending reply, one more repaint if asked. It may
// wait for the player in a dialog.
EMSCRIPTEN_KEEPALIVE void WebFinishRepaint() {
  FinishRepaintSteps();
}

// A pointer move: the hit test and the cursor's question come first.
EMSCRIPTEN_KEEPALIVE void WebPointer(int32_t x, int32_t y) {
  PassingMessages(2);
  if (StartMessage(false)) TrackPointer(x, y);
}

// The left button: pressed (the click), then released.
EMSCRIPTEN_KEEPALIVE void WebClick() {
  if (StartMessage(false)) PlayAt(MouseX);
  PassingMessages(1);
}

// A character key: pressed, its character, released.
EMSCRIPTEN_KEEPALIVE void WebChar(int32_t c) {
  PassingMessages(1);
  if (StartMessage(false)) PlayKey(static_cast<int8_t>(c & 0xFF));
  PassingMessages(1);
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
