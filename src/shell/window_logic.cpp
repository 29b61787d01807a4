#include "shell/window_logic.h"

#include "ground/platform.h"
#include "ground/session.h"
#include "render/frame_logic.h"
#include "shell/turnflow.h"

bool MessagePassesHomeDialog(bool isRepaint) {
  return isRepaint || SessionState.HomeDialogOpen == 0;
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
