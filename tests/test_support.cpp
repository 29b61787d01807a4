#include "test_support.h"

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

void ResetAllGlobals() {
  ResetProcessState();
  FakePlatform = FakePlatformRecord{};
}
