// The save file's format and line ends, the presets, damaged files, and the game counting.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ground/savefile.h"
#include "ground/session.h"
#include "ground/texts.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "test_support.h"

namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<uint8_t>;

Bytes ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

void WriteAll(const fs::path& path, const Bytes& bytes) {
  std::ofstream out(path, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

class SaveFileTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    dir_ = fs::temp_directory_path() /
           ("kalvero-save-" + std::to_string(getpid()) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    path_ = (dir_ / "Fichier de sauvegarde").string();
  }
  void TearDown() override {
    fs::permissions(dir_, fs::perms::owner_all, fs::perm_options::add);
    fs::remove_all(dir_);
  }
  fs::path dir_;
  std::string path_;
};

uint32_t Slot(const Bytes& content, int k) {
  return content[4 * k] | content[4 * k + 1] << 8 | content[4 * k + 2] << 16 |
         static_cast<uint32_t>(content[4 * k + 3]) << 24;
}
uint16_t Counter(const Bytes& content, int record, int index) {
  const size_t at = 396 + 12 * record + 2 * index;
  return static_cast<uint16_t>(content[at] | content[at + 1] << 8);
}

TEST_F(SaveFileTest, FirstRunWritesTheDefaultFile) {
  LoadSaveFile(path_.c_str());                                   // no file yet
  NewGame();                                                     // the first repaint
  SessionState.AlwaysSquare = SettingsBlock[kAlwaysSquareSlot];  // home dialog confirmed
  WriteSaveFile(path_.c_str());
  const Bytes file = ReadAll(path_);
  ASSERT_EQ(file.size(), 1142u);  // no byte 0x0A in this content
  const uint32_t slots[] = {8, 1, 0, 0, 1, 1, 0, 0, 0, 1, 1};
  for (int k = 0; k < 11; ++k) EXPECT_EQ(Slot(file, k), slots[k]) << "slot " << k;
  for (int k = 11; k < 99; ++k) EXPECT_EQ(Slot(file, k), 0u) << "slot " << k;
  for (int r = 0; r < 60; ++r)
    for (int i = 0; i < 6; ++i) EXPECT_EQ(Counter(file, r, i), r == 0 && i == 0 ? 1 : 0);
  const std::string name(file.begin() + 1116, file.end());
  EXPECT_EQ(name, std::string("<Votre nom>") + std::string(15, '\0'));
  EXPECT_TRUE(FakePlatform.Questions.empty());
}

TEST_F(SaveFileTest, LineEndsRoundTripByteForByte) {
  LoadSaveFile(path_.c_str());
  SessionState.BoardSize = 10;     // 0x0A: stored as 0x0D 0x0A
  SettingsBlock[20] = 0x0D0A1A0D;  // a lone 0x0D, 0x1A, and 0x0A 0x0D
  SettingsBlock[21] = 0x0A0A0A0A;
  StatsTable[3].Played = 0x1A1A;
  StatsTable[3].Won = 26;
  StatsTable[59].Unused[2] = 0x0D0A;
  WriteSaveFile(path_.c_str());
  const Bytes first = ReadAll(path_);
  EXPECT_EQ(first.size(), 1142u + 7);  // seven 0x0A bytes in the content
  EXPECT_EQ(Bytes(first.begin(), first.begin() + 5), (Bytes{0x0D, 0x0A, 0, 0, 0}));

  ResetAllGlobals();
  LoadSaveFile(path_.c_str());
  EXPECT_EQ(SessionState.BoardSize, 10);
  EXPECT_EQ(StatsTable[59].Unused[2], 0x0D0A);  // everything after the 0x1A bytes was read
  WriteSaveFile(path_.c_str());  // every other value shows in the bytes written again
  EXPECT_EQ(ReadAll(path_), first);
}

TEST_F(SaveFileTest, ShortOrMissingFileKeepsThePresetsOfWhatItLacks) {
  Bytes content(1142, 0);
  content[0] = 12;                                                 // BoardSize
  content[4 * 6] = 5;                                              // AiNumber
  content[396] = 7;                                                // record 0 played
  WriteAll(path_, Bytes(content.begin(), content.begin() + 398));  // ends inside record 0
  LoadSaveFile(path_.c_str());
  EXPECT_EQ(SessionState.BoardSize, 12);
  EXPECT_EQ(SessionState.AiNumber, 5);
  EXPECT_EQ(SessionState.GameMode, 1);  // slot 4 read as 0 lies outside 1..2: the initial value
  EXPECT_EQ(StatsTable[0].Played, 7);
  EXPECT_EQ(SettingsBlock[kAlwaysSquareSlot], 0);  // read from the file
  EXPECT_STREQ(SessionState.PlayerName, "<Votre nom>");

  WriteAll(path_, Bytes(content.begin(), content.begin() + 40));  // ends inside slot 10
  ResetAllGlobals();
  LoadSaveFile(path_.c_str());
  EXPECT_EQ(SettingsBlock[kAlwaysSquareSlot], 1);  // the preset

  fs::remove(path_);  // no file at all: the fields keep their values, the rest the presets
  ResetAllGlobals();
  SessionState.BoardSize = 15;
  LoadSaveFile(path_.c_str());
  EXPECT_EQ(SessionState.BoardSize, 15);
  EXPECT_EQ(SettingsBlock[kAlwaysSquareSlot], 1);
  EXPECT_STREQ(SessionState.PlayerName, "<Votre nom>");
}

struct StoredCase {
  int32_t Slot, Stored;
  int32_t SessionRecord::*Field;
  int32_t Expected;
};

TEST_F(SaveFileTest, OutOfRangeStoredValuesFallBackToTheirInitialValues) {
  // clang-format off
  const StoredCase cases[] = {
    {0, 21, &SessionRecord::BoardSize, 8},    {0, 1, &SessionRecord::BoardSize, 8},
    {0, 20, &SessionRecord::BoardSize, 20},   {0, 2, &SessionRecord::BoardSize, 2},
    {1, 2, &SessionRecord::ShowImages, 1},    {2, -1, &SessionRecord::Smoothing, 0},
    {3, 3, &SessionRecord::Level, 0},         {3, 2, &SessionRecord::Level, 2},
    {4, 3, &SessionRecord::GameMode, 1},      {4, 2, &SessionRecord::GameMode, 2},
    {5, 7, &SessionRecord::CustomColours, 1}, {6, 14, &SessionRecord::AiNumber, 0},
    {6, -2147483647 - 1, &SessionRecord::AiNumber, 0}, {6, 13, &SessionRecord::AiNumber, 13},
    {7, 2, &SessionRecord::Challenge, 0},     {8, 99, &SessionRecord::CharacterId, 0},
    {9, 5, &SessionRecord::NormalTitle, 1},   {9, 0, &SessionRecord::NormalTitle, 0},
  };
  // clang-format on
  for (const StoredCase& c : cases) {
    ResetAllGlobals();
    LoadSaveFile(path_.c_str());  // presets
    SessionState.*c.Field = -12345;
    SettingsBlock[kAlwaysSquareSlot] = SessionState.AlwaysSquare;
    WriteSaveFile(path_.c_str());
    Bytes file = ReadAll(path_);
    // Overwrite the slot directly: a value outside 0..255 could change the line ends.
    for (int b = 0; b < 4; ++b)
      file[4 * c.Slot + b] = static_cast<uint8_t>(static_cast<uint32_t>(c.Stored) >> (8 * b));
    WriteAll(path_, file);
    ResetAllGlobals();
    LoadSaveFile(path_.c_str());
    EXPECT_EQ(SessionState.*c.Field, c.Expected) << "slot " << c.Slot << " stored " << c.Stored;
  }
}

TEST_F(SaveFileTest, NameWithoutItsZeroByteStaysTerminated) {
  Bytes content(1142, 0);
  content[0] = 8;
  content[16] = 1;
  for (int i = 1116; i < 1142; ++i) content[i] = 'Z';
  WriteAll(path_, content);
  LoadSaveFile(path_.c_str());
  EXPECT_EQ(std::string(SessionState.PlayerName), std::string(26, 'Z'));
  WriteSaveFile(path_.c_str());
  EXPECT_EQ(ReadAll(path_), content);
}

TEST_F(SaveFileTest, LongFileIsReadUpToItsContent) {
  Bytes content(1142 + 5000, 0x0A);  // the content, then line ends it must not read
  std::fill(content.begin(), content.begin() + 1142, 0);
  content[0] = 9;
  content[16] = 2;
  WriteAll(path_, content);
  LoadSaveFile(path_.c_str());
  EXPECT_EQ(SessionState.BoardSize, 9);
  EXPECT_EQ(SessionState.GameMode, 2);
}

// The whole message of a failed save, as the core hands it to the platform (Windows-1252).
const std::string kWriteFailureText =
    Cp1252(
        "Impossible d'écrire le fichier de sauvegarde.\nCelui-ci pourrait être déjà utilisé par "
        "quelqu'un d'autre, interdit ou tout simplement faux.\nEssayez de le supprimer.")
        .c_str();

// A save that fails tells the user once, leaves whatever was in the file's place as it was,
// and leaves no temporary file of its own behind.
void ExpectFailedSave(const std::string& path, const Bytes& old) {
  WriteSaveFile(path.c_str());
  ASSERT_EQ(FakePlatform.Questions.size(), 1u);
  EXPECT_EQ(FakePlatform.Questions[0], kWriteFailureText);
  if (fs::is_regular_file(path)) {
    EXPECT_EQ(ReadAll(path), old);
  }
}

TEST_F(SaveFileTest, FailedSavesTellTheUserAndKeepTheOldFile) {
  const Bytes old{1, 2, 3};
  struct Case {
    const char* What;
    void (*Prepare)(const std::string& path, const Bytes& old);
    bool FolderAtTemporary;  // the temporary's name is taken by a folder the save leaves alone
  };
  const Case cases[] = {
      {"a folder in the file's place",
       [](const std::string& path, const Bytes&) { fs::create_directories(path + "/inside"); },
       false},
      {"a folder in the temporary file's place",
       [](const std::string& path, const Bytes& bytes) {
         WriteAll(path, bytes);
         fs::create_directories(path + ".tmp");
       },
       true},
      {"a full disk: writing the temporary file fails",
       [](const std::string& path, const Bytes& bytes) {
         WriteAll(path, bytes);
         fs::create_symlink("/dev/full", path + ".tmp");
       },
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.What);
    ResetAllGlobals();
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    c.Prepare(path_, old);
    ExpectFailedSave(path_, old);
    const fs::file_status temporary = fs::symlink_status(path_ + ".tmp");
    EXPECT_EQ(fs::exists(temporary), c.FolderAtTemporary);
  }
}

TEST_F(SaveFileTest, ReadOnlyFileOrFolderTellsTheUserAndKeepsTheOldFile) {
  if (geteuid() == 0) GTEST_SKIP() << "root writes into read-only files and folders";
  const Bytes old{1, 2, 3};
  WriteAll(path_, old);
  fs::permissions(path_, fs::perms::owner_read);
  ExpectFailedSave(path_, old);

  ResetAllGlobals();
  fs::permissions(path_, fs::perms::owner_read | fs::perms::owner_write);
  fs::permissions(dir_, fs::perms::owner_read | fs::perms::owner_exec);
  ExpectFailedSave(path_, old);
  EXPECT_FALSE(fs::exists(path_ + ".tmp"));
}

TEST_F(SaveFileTest, TemporaryLeftByAnInterruptedSaveIsReplaced) {
  WriteAll(path_ + ".tmp", Bytes(5000, 0x0A));  // a save cut short once left this behind
  WriteSaveFile(path_.c_str());
  EXPECT_TRUE(FakePlatform.Questions.empty());
  EXPECT_FALSE(fs::exists(path_ + ".tmp"));
  EXPECT_EQ(ReadAll(path_).size(), 1142u);
}

class StatsTest : public CoreTest {};

TEST_F(StatsTest, SectionFollowsTheSettings) {
  struct Case {
    int32_t Mode, Ai, Level, Challenge, Section;
  };
  const Case cases[] = {{1, 0, 0, 0, 0},  {1, 0, 2, 1, 3},  {1, 3, 2, 1, 15}, {1, 13, 2, 1, 55},
                        {2, 0, 1, 0, 57}, {2, 0, 2, 0, 58}, {1, 10, 1, 0, 41}};
  for (const Case& c : cases) {
    SessionState.GameMode = c.Mode;
    SessionState.AiNumber = c.Ai;
    SessionState.Level = c.Level;
    SessionState.Challenge = c.Challenge;
    EXPECT_EQ(StatsSection(), c.Section);
  }
}

TEST_F(StatsTest, NewGameCountsTheResultInTheRecordOfTheSettingsAtThatMoment) {
  NewGame();               // first game, level 0
  SessionState.Level = 2;  // changed in the home dialog before the next game
  // Results 1 won, 2 lost, 3 neither; [played, won, lost] of record 2 after each new game.
  const int32_t after[3][3] = {{1, 1, 0}, {2, 1, 1}, {3, 1, 1}};
  for (int32_t result = 1; result <= 3; ++result) {
    SessionState.GameResult = result;
    NewGame();
    const StatsRecord& r = StatsTable[2];
    EXPECT_EQ((std::vector<int32_t>{r.Played, r.Won, r.Lost}),
              std::vector<int32_t>(after[result - 1], after[result - 1] + 3))
        << result;
  }
  EXPECT_EQ(StatsTable[0].Played, 1);
  EXPECT_EQ(StatsTable[0].Won, 0);
}

TEST_F(StatsTest, NewGameResetsTheGameAndClearsTheBoard) {
  SessionRecord& s = SessionState;
  s.CurrentPlayer = s.PendingTurn = 2;
  s.EngineSideToMove = 0;
  s.GameStarted = 1;
  s.GameResult = 3;
  Grid[3][7] = 18;
  Grid[21][21] = 1;
  NewGame();
  EXPECT_EQ((std::vector<int32_t>{s.CurrentPlayer, s.PendingTurn, s.EngineSideToMove, s.GameStarted,
                                  s.GameResult, Grid[3][7], Grid[21][21]}),
            (std::vector<int32_t>{1, 1, 1, 0, 0, 0, 0}));
}

TEST_F(StatsTest, CountersWrap) {
  StatsTable[5].Played = 65535;
  StatsTable[5].Lost = 65535;
  SessionState.AiNumber = 1;
  SessionState.Level = 1;
  NewGame();
  CountLoss(5);
  EXPECT_EQ(StatsTable[5].Played, 0);
  EXPECT_EQ(StatsTable[5].Lost, 0);
}

TEST_F(StatsTest, SectionOutsideTheTableCountsNothing) {
  SessionState.GameMode = 2;
  SessionState.AiNumber = 13;  // possible only from a damaged file
  SessionState.GameResult = 1;
  const StatsRecord before[kStatsRecords] = {};
  NewGame();
  CountLoss(StatsSection());
  CountLoss(-1);
  EXPECT_EQ(StatsRecordAt(StatsSection()), nullptr);
  EXPECT_EQ(std::memcmp(before, StatsTable, sizeof StatsTable), 0);
}

}  // namespace
