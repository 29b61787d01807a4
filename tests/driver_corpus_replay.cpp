// Every driver script of the fuzz corpus, the seeds and each finding kept as a regression, runs
// again through the fuzz target's own case, with the driver's headless platform.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "cases.h"

namespace {

namespace fs = std::filesystem;

TEST(DriverCorpusReplay, EveryScriptOfTheCorpus) {
  const fs::path folder =
      fs::temp_directory_path() / ("kalvero-driver-corpus-" + std::to_string(getpid()));
  fs::create_directories(folder);
  int replayed = 0;
  for (const fs::directory_entry& entry :
       fs::directory_iterator(fs::path(KALVERO_FUZZ_CORPUS) / "driver")) {
    std::ifstream in(entry.path(), std::ios::binary);
    const std::vector<uint8_t> data{std::istreambuf_iterator<char>(in), {}};
    std::string failure;
    const int status = RunDriverCase(data.data(), data.size(), folder.string(), &failure);
    EXPECT_EQ(failure, "") << entry.path().filename();
    // Seeds named "malformed..." stop at a bad line, findings ("regression-...") may or may not;
    // the other seeds run to their end.
    const std::string name = entry.path().filename().string();
    if (name.starts_with("malformed")) {
      EXPECT_EQ(status, 2) << name;
    } else if (!name.starts_with("regression-")) {
      EXPECT_EQ(status, 0) << name;
    }
    ++replayed;
  }
  fs::remove_all(folder);
  EXPECT_GE(replayed, 10);
}

}  // namespace
