// The test host: a platform that records what the core asks of it, and a fresh-state fixture.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

struct FakePlatformRecord {
  int32_t RepaintRequests = 0;
  int32_t EndLoopCalls = 0;
  int32_t EndLoopCode = -1;
  std::vector<std::string> Questions;  // the texts of AskUser, in order
  std::vector<int32_t> Answers;        // answers to give, in order; kAnswerYes when exhausted
};

extern FakePlatformRecord FakePlatform;

void ResetAllGlobals();

class CoreTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetAllGlobals(); }

  // Runs `body` for every row from a fresh fixture; a failure names its row by the row's Name.
  template <typename Rows, typename Body>
  void ForEachRow(const Rows& rows, Body body) {
    for (const auto& row : rows) {
      TearDown();
      SetUp();
      SCOPED_TRACE(row.Name);
      body(row);
    }
  }
};
