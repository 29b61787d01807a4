#include "ground/session.h"

constinit SessionRecord SessionState = InitialSession();
char TextBuffer[kTextBufferSize];

void ResetSessionState() {
  SessionState = InitialSession();
}
