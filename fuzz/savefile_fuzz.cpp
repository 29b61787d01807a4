// Fuzz target: any bytes as the save file, then a few games and the file written again.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cases.h"
#include "cli/platform_cli.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string folder = MakeScratchFolder("savefile-fuzz");
  DriverPlatform = DriverPlatformRecord{};  // the headless platform answers the core
  const std::string failure = RunSaveFileCase(data, size, folder);
  if (failure.empty()) return 0;
  std::fprintf(stderr, "savefile_fuzz: %s\n", failure.c_str());
  std::abort();
}
