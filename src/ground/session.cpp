#include "ground/session.h"

SessionRecord SessionState;
char TextBuffer[kTextBufferSize];

void ResetSessionState() {
  SessionState = SessionRecord{};
}
