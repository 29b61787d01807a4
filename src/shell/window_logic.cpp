#include "shell/window_logic.h"

#include "ground/platform.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "render/frame_logic.h"
#include "render/viewport.h"
#include "shell/turnflow.h"

bool MessagePassesHomeDialog(bool isRepaint) {
  return isRepaint || SessionState.HomeDialogOpen == 0;
}

WindowMessageStart StartWindowMessage(bool isRepaint, int32_t clientWidth, int32_t clientHeight) {
  WindowMessageStart start;
  start.Passes = MessagePassesHomeDialog(isRepaint);
  if (!start.Passes) return start;
  start.RefillBackground = SettleLogicalSize(clientWidth, clientHeight);
  FitDestination(clientWidth, clientHeight);
  start.Section = StatsSection();
  start.DestroyWindow = SessionState.QuitRequested != 0;
  return start;
}

bool RepaintOpensFirstDialogs() {
  return SessionState.FirstPaint != 0 && SessionState.HomeDialogOpen == 0;
}

void FirstDialogsClosed() {
  RequestRepaint();
  SessionState.SettleCounter = 0;
}

void EndRepaint() {
  RunPendingReplies();
  SessionState.FirstPaint = 0;
  FinishRepaint();
}
