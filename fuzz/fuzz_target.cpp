// Fuzz target: any bytes as the save file (then a few games and the file written again), or with
// KALVERO_FUZZ_DRIVER as a script of the headless driver.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cases.h"
#include "cli/platform_cli.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string folder = MakeScratchFolder("fuzz");
  DriverPlatform = DriverPlatformRecord{};  // the headless platform answers the core
  std::string failure;
#ifdef KALVERO_FUZZ_DRIVER
  RunDriverCase(data, size, folder, &failure);
#else
  failure = RunSaveFileCase(data, size, folder);
#endif
  if (failure.empty()) return 0;
  std::fprintf(stderr, "fuzz: %s\n", failure.c_str());
  std::abort();
}
