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
    const std::vector<uint8_t> data(std::istreambuf_iterator<char>(in), {});
    run(entry.path().filename().string(), data, MakeScratchFolder(corpus));
    ++inputs;
  }
  EXPECT_GE(inputs, 10);
}

TEST(CorpusReplay, SaveFiles) {
  ForEachInput("savefile", [](const std::string& name, const auto& data, const std::string& dir) {
    DriverPlatform = DriverPlatformRecord{};
    EXPECT_EQ(RunSaveFileCase(data.data(), data.size(), dir), "") << name;
  });
}

// Seeds named "malformed..." stop at a bad line with status 2, findings ("regression-...") may
// or may not; the other seeds run to their end.
TEST(CorpusReplay, DriverScripts) {
  ForEachInput("driver", [](const std::string& name, const auto& data, const std::string& dir) {
    std::string failure;
    const int status = RunDriverCase(data.data(), data.size(), dir, &failure);
    EXPECT_EQ(failure, "") << name;
    const int expected = name.starts_with("malformed") ? 2 : 0;
    EXPECT_TRUE(name.starts_with("regression-") || status == expected) << name << ": " << status;
  });
}

}  // namespace
