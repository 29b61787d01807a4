// Every input of the fuzz corpus, the seeds and each finding kept as a regression, runs again
// through its fuzz target's own case, with the driver's headless platform.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "cases.h"
#include "cli/platform_cli.h"

namespace {

namespace fs = std::filesystem;

// Runs each input of a corpus folder, with its file name; the seeds at least are there.
template <typename Run>
void ForEachInput(const char* corpus, Run run) {
  int inputs = 0;
  for (const auto& entry : fs::directory_iterator(fs::path(KALVERO_FUZZ_CORPUS) / corpus)) {
    std::ifstream in(entry.path(), std::ios::binary);
    run(entry.path().filename().string(),
        std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {}));
    ++inputs;
  }
  EXPECT_GE(inputs, 10);
}

TEST(CorpusReplay, SaveFiles) {
  const std::string folder = MakeScratchFolder("corpus-savefile");
  ForEachInput("savefile", [&](const std::string& name, const std::vector<uint8_t>& data) {
    DriverPlatform = DriverPlatformRecord{};
    EXPECT_EQ(RunSaveFileCase(data.data(), data.size(), folder), "") << name;
  });
}

TEST(CorpusReplay, DriverScripts) {
  const std::string folder = MakeScratchFolder("corpus-driver");
  ForEachInput("driver", [&](const std::string& name, const std::vector<uint8_t>& data) {
    std::string failure;
    const int status = RunDriverCase(data.data(), data.size(), folder, &failure);
    EXPECT_EQ(failure, "") << name;
    // Seeds named "malformed..." stop at a bad line with status 2, findings ("regression-...")
    // may or may not; the other seeds run to their end.
    const int expected = name.starts_with("malformed") ? 2 : 0;
    if (!name.starts_with("regression-")) {
      EXPECT_EQ(status, expected) << name;
    }
  });
}

}  // namespace
