// Fuzz target: any bytes as a script of the headless driver.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cases.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string folder = MakeScratchFolder("driver-fuzz");
  std::string failure;
  if (RunDriverCase(data, size, folder, &failure) >= 0) return 0;
  std::fprintf(stderr, "driver_fuzz: %s\n", failure.c_str());
  std::abort();
}
