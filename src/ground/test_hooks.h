// Seams through which the tests lead the program into states it never reaches on demand. The
// game leaves every field at its initial value; ResetProcessState puts them back.
#pragma once

#include <cstdint>

struct TestHooksRecord {
  // While negative, AllocOrDie asks the standard library for every block; otherwise it hands
  // out that many more blocks and then acts as if the standard library had none left.
  int32_t AllocationsLeft = -1;
};

inline TestHooksRecord TestHooks;
