#include "test_support.h"

#include <cstdio>

#include "ground/platform.h"
#include "shell/process_state.h"

FakePlatformRecord FakePlatform;

void RequestRepaint() {
  ++FakePlatform.RepaintRequests;
}

void EndMessageLoop(int32_t code) {
  ++FakePlatform.EndLoopCalls;
  FakePlatform.EndLoopCode = code;
}

int32_t AskUser(const char* text, const char*, uint32_t) {
  const size_t asked = FakePlatform.Questions.size();
  FakePlatform.Questions.emplace_back(text);
  return asked < FakePlatform.Answers.size() ? FakePlatform.Answers[asked] : kAnswerYes;
}

// The real file system: the save tests look at the files themselves.
bool ReplaceFileWith(const char* from, const char* to) {
  return std::rename(from, to) == 0;
}

void ResetAllGlobals() {
  ResetProcessState();
  FakePlatform = FakePlatformRecord{};
}
