#include "shell/turnflow.h"

#include "engine/engine.h"
#include "ground/platform.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/roster.h"
#include "opponents/turn.h"
#include "render/viewport.h"

// A level outside 0..2 cannot survive loading, but would search at the shallowest depth.
int32_t EngineSearchDepth() {
  if (SessionState.Challenge != 0) return 8;
  switch (SessionState.Level) {
    case 1:
      return 4;
    case 2:
      return 6;
    default:
      return 2;
  }
}

void PlayAt(int32_t x) {
  SessionRecord& s = SessionState;
  if (PlaysWithEngine(s.AiNumber)) {
    if (s.GameResult != 0) {
      NewGame();
    } else if (EngineGameOpen() && EnginePlay(s.EngineSideToMove, x / kCellPixels - 1)) {
      s.EngineSideToMove = 1 - s.EngineSideToMove;
    }
  } else {
    PlayTurn(x);
  }
  RequestRepaint();
}

void PlayKey(int8_t c) {
  if (c < '1' || c > '0' + SessionState.BoardSize) return;
  PlayAt(kCellPixels * (c - '0'));
}

// Whether to reply is ReplyPending's decision alone, so that what a host or the status line
// shows beforehand is what happens here.
void RunPendingReplies() {
  SessionRecord& s = SessionState;
  if (!ReplyPending()) return;
  s.GameStarted = 1;
  if (PlaysWithEngine(s.AiNumber)) {
    EngineChooseAndPlay(0, EngineSearchDepth());
    RequestRepaint();
    s.EngineSideToMove = 1;
  } else {
    PlayTurn(MouseX);
    RequestRepaint();
    s.PendingTurn = 1;
  }
}

void CloseSession(int32_t section) {
  const SessionRecord& s = SessionState;
  if (s.GameStarted != 0 && s.GameResult == 0 && s.QuitByMenu == 0) CountLoss(section);
  WriteSaveFile();
  EndMessageLoop(0);
}
