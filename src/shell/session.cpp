#include "shell/session.h"

SessionRecord SessionState;
char TextBuffer[kTextBufferSize];

void ResetSessionState() {
  SessionState = SessionRecord{};
}
