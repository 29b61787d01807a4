// Fuzz target: any bytes as a script of the headless driver.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cases.h"

namespace {

std::string Folder;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Folder = MakeScratchFolder("driver-fuzz");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string failure;
  if (RunDriverCase(data, size, Folder, &failure) < 0) {
    std::fprintf(stderr, "driver_fuzz: %s\n", failure.c_str());
    std::abort();
  }
  return 0;
}
