// The test host of the portable core: a platform that records what the core asks of it, and a
// fixture that gives every test, and every row of a table, fresh global records.
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

// Resets the session record, the referee, the statistics and the fake platform.
void ResetAllGlobals();

class CoreTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetAllGlobals(); }

  // Runs `body` for every row of a table, each from a fresh fixture (the fixture's TearDown
  // and SetUp run again before it); a failure names its row by the row's Name.
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
