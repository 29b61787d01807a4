// Fuzz target: any bytes as a script of the headless driver.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "cases.h"

namespace {

std::string Folder;

void RemoveFolder() {
  std::error_code error;
  std::filesystem::remove_all(Folder, error);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  char name[] = "/tmp/kalvero-driver-fuzz-XXXXXX";
  if (mkdtemp(name) == nullptr) std::abort();
  Folder = name;
  std::atexit(RemoveFolder);
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
