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

class CorpusReplay : public ::testing::Test {
 protected:
  void SetUp() override { folder_ = MakeScratchFolder("corpus"); }
  void TearDown() override { fs::remove_all(folder_); }

  // Each input of a corpus folder, with its file name.
  template <typename Run>
  void ForEachInput(const char* corpus, Run run) {
    int inputs = 0;
    for (const fs::directory_entry& entry :
         fs::directory_iterator(fs::path(KALVERO_FUZZ_CORPUS) / corpus)) {
      std::ifstream in(entry.path(), std::ios::binary);
      const std::vector<uint8_t> data{std::istreambuf_iterator<char>(in), {}};
      run(entry.path().filename().string(), data);
      ++inputs;
    }
    EXPECT_GE(inputs, 10);  // the seeds at least
  }
  std::string folder_;
};

TEST_F(CorpusReplay, SaveFiles) {
  ForEachInput("savefile", [&](const std::string& name, const std::vector<uint8_t>& data) {
    DriverPlatform = DriverPlatformRecord{};
    EXPECT_EQ(RunSaveFileCase(data.data(), data.size(), folder_), "") << name;
  });
}

TEST_F(CorpusReplay, DriverScripts) {
  ForEachInput("driver", [&](const std::string& name, const std::vector<uint8_t>& data) {
    std::string failure;
    const int status = RunDriverCase(data.data(), data.size(), folder_, &failure);
    EXPECT_EQ(failure, "") << name;
    // Seeds named "malformed..." stop at a bad line, findings ("regression-...") may or may
    // not; the other seeds run to their end.
    if (name.starts_with("malformed")) {
      EXPECT_EQ(status, 2) << name;
    } else if (!name.starts_with("regression-")) {
      EXPECT_EQ(status, 0) << name;
    }
  });
}

}  // namespace
