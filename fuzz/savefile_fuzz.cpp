// Fuzz target: any bytes as the save file, then a few games and the file written again.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cases.h"
#include "cli/platform_cli.h"

namespace {

std::string Folder;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Folder = MakeScratchFolder("savefile-fuzz");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The driver's headless platform answers the core's questions (and takes its repaints).
  DriverPlatform = DriverPlatformRecord{};
  const std::string failure = RunSaveFileCase(data, size, Folder);
  if (!failure.empty()) {
    std::fprintf(stderr, "savefile_fuzz: %s\n", failure.c_str());
    std::abort();
  }
  return 0;
}
