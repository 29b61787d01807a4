#include "cli/platform_cli.h"

#include <cstdio>

#include "ground/platform.h"
#include "ground/texts.h"

DriverPlatformRecord DriverPlatform;

void RequestRepaint() {
  DriverPlatform.RepaintRequested = true;
}

void EndMessageLoop(int32_t) {
  DriverPlatform.LoopEnded = true;
}

// Messages go to standard error, so that standard output stays the script's own answers.
int32_t AskUser(const char* text, const char* title, uint32_t flags) {
  std::fprintf(stderr, "%s: %s\n", ToUtf8(title).c_str(), ToUtf8(text).c_str());
  return (flags & 0x0F) == kAskYesNo ? kAnswerYes : kAnswerOk;
}

// POSIX rename replaces the target in one step.
bool ReplaceFileWith(const char* from, const char* to) {
  return std::rename(from, to) == 0;
}
