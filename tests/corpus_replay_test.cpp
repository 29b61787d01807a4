// Every save file of the fuzz corpus, the seeds and each finding kept as a regression, runs
// again through the fuzz target's own case: load, a few games, write and read back.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "cases.h"
#include "test_support.h"

namespace {

namespace fs = std::filesystem;

class CorpusReplayTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    folder_ = fs::temp_directory_path() / ("kalvero-corpus-" + std::to_string(getpid()));
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }
  fs::path folder_;
};

TEST_F(CorpusReplayTest, EverySaveFileOfTheCorpus) {
  int replayed = 0;
  for (const fs::directory_entry& entry :
       fs::directory_iterator(fs::path(KALVERO_FUZZ_CORPUS) / "savefile")) {
    std::ifstream in(entry.path(), std::ios::binary);
    const std::vector<uint8_t> data{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(RunSaveFileCase(data.data(), data.size(), folder_.string()), "")
        << entry.path().filename();
    ++replayed;
  }
  EXPECT_GE(replayed, 10);  // the seeds at least
}

}  // namespace
