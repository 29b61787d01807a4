// The save file's bytes and line ends, the presets, damaged files, failed saves, game counts.
#include <gtest/gtest.h>

#include <unistd.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ground/savefile.h"
#include "opponents/new_game.h"
#include "shell/turnflow.h"
#include "test_support.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

int32_t Slot(const Bytes& file, int k) {
  return static_cast<int32_t>(file[4 * k] | file[4 * k + 1] << 8 | file[4 * k + 2] << 16 |
                              static_cast<uint32_t>(file[4 * k + 3]) << 24);
}

class SaveFileTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  Bytes Read() const {
    std::ifstream in(path_, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
  }
  void Write(const Bytes& bytes) const {
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
  }
  void Reload() {
    ResetAllGlobals();
    LoadSaveFile(path_.c_str());
  }
  const fs::path dir_ = fs::temp_directory_path() / ("kalvero-save-" + std::to_string(getpid()));
  const std::string path_ = (dir_ / kSaveFileName).string();
};

TEST_F(SaveFileTest, FirstRunWritesTheDefaultFileAndLineEndsRoundTripByteForByte) {
  LoadSaveFile(path_.c_str());                                   // no file yet
  NewGame();                                                     // the first repaint
  SessionState.AlwaysSquare = SettingsBlock[kAlwaysSquareSlot];  // home dialog confirmed
  WriteSaveFile(path_.c_str());
  const Bytes file = Read();
  ASSERT_EQ(file.size(), 1142u);  // no byte 0x0A in this content
  const int32_t slots[] = {8, 1, 0, 0, 1, 1, 0, 0, 0, 1, 1};
  for (int k = 0; k < kSettingsSlots; ++k) EXPECT_EQ(Slot(file, k), k < 11 ? slots[k] : 0) << k;
  for (int at = 396; at < 1116; ++at) EXPECT_EQ(file[at], at == 396 ? 1 : 0) << at;  // 1 played
  EXPECT_EQ(std::string(file.begin() + 1116, file.end()), "<Votre nom>" + std::string(15, 0));
  EXPECT_TRUE(FakePlatform.Questions.empty());

  SessionState.BoardSize = 10;     // 0x0A: stored as 0x0D 0x0A
  SettingsBlock[20] = 0x0D0A1A0D;  // a lone 0x0D, 0x1A, and 0x0A 0x0D
  SettingsBlock[21] = 0x0A0A0A0A;
  StatsTable[3].Played = 0x1A1A;
  StatsTable[59].Unused[2] = 0x0D0A;
  WriteSaveFile(path_.c_str());
  const Bytes first = Read();
  EXPECT_EQ(first.size(), 1142u + 7);  // seven 0x0A bytes in the content
  EXPECT_EQ(Bytes(first.begin(), first.begin() + 5), (Bytes{0x0D, 0x0A, 0, 0, 0}));
  Reload();
  EXPECT_EQ(SessionState.BoardSize, 10);
  EXPECT_EQ(StatsTable[59].Unused[2], 0x0D0A);  // everything after the 0x1A bytes was read
  SessionState.AlwaysSquare = SettingsBlock[kAlwaysSquareSlot];  // home dialog confirmed
  WriteSaveFile(path_.c_str());  // every other value shows in the bytes
  EXPECT_EQ(Read(), first);
}

TEST_F(SaveFileTest, ShortLongOrMissingFileKeepsThePresetsOfWhatItLacks) {
  Bytes content(398, 0);  // ends inside record 0
  content[0] = 12;        // BoardSize
  content[4 * 6] = 5;     // AiNumber
  content[396] = 7;       // record 0 played
  Write(content);
  Reload();
  EXPECT_EQ(SessionState.BoardSize, 12);
  EXPECT_EQ(SessionState.AiNumber, 5);
  EXPECT_EQ(SessionState.GameMode, 1);  // slot 4 read as 0 lies outside 1..2: the initial value
  EXPECT_EQ(StatsTable[0].Played, 7);
  EXPECT_EQ(SettingsBlock[kAlwaysSquareSlot], 0);  // read from the file
  EXPECT_STREQ(SessionState.PlayerName, "<Votre nom>");

  content.resize(40);  // ends inside slot 10
  Write(content);
  Reload();
  EXPECT_EQ(SettingsBlock[kAlwaysSquareSlot], 1);  // the preset

  fs::remove(path_);  // no file: the fields keep their values
  ResetAllGlobals();
  SessionState.BoardSize = 15;
  LoadSaveFile(path_.c_str());
  EXPECT_EQ(SessionState.BoardSize, 15);
  EXPECT_EQ(SettingsBlock[kAlwaysSquareSlot], 1);
}

// A stored value, and the value its field takes and a game later writes back: what lies outside
// a table takes the field's initial value; the display flags and slot 10 keep what was read.
TEST_F(SaveFileTest, StoredValuesAreAppliedAsTheirRangesSay) {
  // clang-format off
  struct Case { int32_t Slot, Stored, Applied; };
  const Case cases[] = {
      {0, 21, 8}, {0, 1, 8}, {0, 20, 20}, {0, 2, 2},                          // BoardSize
      {1, 2, 2}, {2, 2, 2}, {5, 2, 2}, {9, -1, -1}, {1, INT_MIN, INT_MIN},    // the display flags
      {10, 2, 2}, {10, -1, -1}, {3, 3, 0}, {3, 2, 2}, {4, 3, 1}, {4, 2, 2},   // 10, Level, GameMode
      {6, 14, 0}, {6, INT_MIN, 0}, {6, 13, 13}, {7, 2, 0},                    // AiNumber, Challenge
      {8, 99, 0}, {8, -1, 0}, {8, 13, 13}};                                   // CharacterId
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE("slot " + std::to_string(c.Slot) + " stored " + std::to_string(c.Stored));
    ResetAllGlobals();
    WriteSaveFile(path_.c_str());  // the initial settings
    Bytes file = Read();
    for (int b = 0; b < 4; ++b) file[4 * c.Slot + b] = static_cast<uint8_t>(c.Stored >> (8 * b));
    Write(file);  // the value itself, whatever line ends its bytes would need
    Reload();
    int32_t& applied = c.Slot == kAlwaysSquareSlot ? SessionState.AlwaysSquare
                                                   : SessionState.*kStoredSettings[c.Slot].Field;
    if (c.Slot == kAlwaysSquareSlot) applied = SettingsBlock[kAlwaysSquareSlot];  // home dialog
    EXPECT_EQ(applied, c.Applied);
    NewGame();
    PlayAt(kCellPixels + 5);
    WriteSaveFile(path_.c_str());
    EXPECT_EQ(Slot(Read(), c.Slot), c.Applied);
  }
}

// A save replaces the file whole or not at all: when it cannot, the user is told once and the
// old file stays as it was. No temporary file of the save's own is left behind.
TEST_F(SaveFileTest, SaveReplacesTheFileWholeOrNotAtAll) {
  using Path = const std::string&;
  // clang-format off
  struct Case { const char* What; void (*Obstruct)(Path file); bool Fails; };
  const Case cases[] = {
      {"a folder in the file's place",
       [](Path f) { fs::remove(f); fs::create_directories(f + "/inside"); }, true},
      {"a folder at the temporary", [](Path f) { fs::create_directories(f + ".tmp"); }, true},
      {"a full disk", [](Path f) { fs::create_symlink("/dev/full", f + ".tmp"); }, true},
      {"a left-over temporary", [](Path f) { std::ofstream(f + ".tmp") << "\n\n"; }, false}};
  // clang-format on
  const Bytes old{1, 2, 3};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.What);
    TearDown();
    SetUp();
    Write(old);
    c.Obstruct(path_);
    const bool folderAtTemporary = fs::is_directory(path_ + ".tmp");
    WriteSaveFile(path_.c_str());
    EXPECT_EQ(FakePlatform.Questions.size(), c.Fails ? 1u : 0u);
    const bool file = fs::is_regular_file(path_);  // not the folder put in its place
    EXPECT_EQ(file ? Read().size() : 0, file ? (c.Fails ? old.size() : 1142u) : 0);
    EXPECT_EQ(fs::exists(fs::symlink_status(path_ + ".tmp")), folderAtTemporary);
  }
}

TEST_F(SaveFileTest, NewGameCountsTheResultInTheRecordOfTheSettingsAtThatMoment) {
  NewGame();               // first game, level 0
  SessionState.Level = 2;  // changed in the home dialog before the next game
  // Results 1 won, 2 lost, 3 neither: record 2 [played, won, lost] after the game counting each.
  const std::vector<int32_t> after[3] = {{1, 1, 0}, {2, 1, 1}, {3, 1, 1}};
  for (int32_t result = 1; result <= 3; ++result) {
    SessionState.GameResult = result;
    NewGame();
    const StatsRecord& r = StatsTable[2];
    EXPECT_EQ((std::vector<int32_t>{r.Played, r.Won, r.Lost}), after[result - 1]) << result;
  }
  EXPECT_EQ(StatsTable[0].Played, 1);  // the first game, at level 0, with no result
  EXPECT_EQ(StatsTable[0].Won + StatsTable[0].Lost, 0);
}

}  // namespace
