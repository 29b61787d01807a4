// A save file can hold any number in any slot. Whatever it holds, every later operation stays
// on its tables: the new game, the moves and replies of every strategy at every level, the
// frame's logic, status line and drawing plan, and the statistics record of the settings. Run
// under the sanitize preset, an index past an array stops the test.
#include <gtest/gtest.h>

#include <unistd.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "cases.h"
#include "dialogs/stats_logic.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/roster.h"
#include "render/board_plan.h"
#include "render/frame_logic.h"
#include "render/viewport.h"
#include "shell/turnflow.h"
#include "test_support.h"

namespace {

namespace fs = std::filesystem;

// One damaged slot of the settings block, or (slot -1) a name that fills its 26 bytes.
struct Damage {
  int Slot;
  int32_t Value;
};

// clang-format off
const Damage kDamages[] = {
    {0, 21}, {0, 1}, {0, 0}, {0, INT_MIN}, {0, INT_MAX},  // BoardSize
    {1, 2}, {2, -1}, {5, 7}, {9, 3}, {10, 2}, {10, -1},   // flags, AlwaysSquare's slot
    {3, 3}, {3, -1}, {3, INT_MAX},                        // Level
    {4, 0}, {4, 3}, {4, INT_MIN},                         // GameMode
    {4, 2},  // two players with the strategy number of the loop: sections up to 110
    {6, 14}, {6, -1}, {6, INT_MIN},                       // AiNumber
    {7, 2}, {7, -5},                                      // Challenge
    {8, 14}, {8, -1}, {8, INT_MAX},                       // CharacterId
    {-1, 0},                                              // name without its zero byte
};
// clang-format on

struct Play {
  int32_t Level, Challenge, BoardSize;
};

// Every level, Challenge at Dur; the largest board where the look-ahead is quick, the
// smallest useful one for the deepest look-ahead.
const Play kPlays[] = {{0, 0, 20}, {1, 0, 20}, {2, 0, 8}, {2, 1, 6}};

std::vector<uint8_t> Content(int32_t ai, const Play& play, const Damage& damage) {
  int32_t slots[kSettingsSlots] = {play.BoardSize, 1,  0, play.Level, 1, 1, ai,
                                   play.Challenge, ai, 1, 1};
  if (damage.Slot >= 0) slots[damage.Slot] = damage.Value;
  std::vector<uint8_t> bytes(kSaveContentBytes, 0);
  for (int k = 0; k < kSettingsSlots; ++k) {
    for (int b = 0; b < 4; ++b) bytes[4 * k + b] = static_cast<uint8_t>(slots[k] >> (8 * b));
  }
  const std::string name = damage.Slot < 0 ? std::string(kPlayerNameBytes, 'N') : "Anne";
  std::memcpy(&bytes[kSaveContentBytes - kPlayerNameBytes], name.data(), name.size());
  // A content byte 0x0A goes to the file after a 0x0D.
  std::vector<uint8_t> stored;
  for (uint8_t b : bytes) {
    if (b == 0x0A) stored.push_back(0x0D);
    stored.push_back(b);
  }
  return stored;
}

class StoredValuesTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    path_ = (fs::temp_directory_path() / ("kalvero-stored-" + std::to_string(getpid()))).string();
  }
  void TearDown() override { fs::remove(path_); }

  void Load(const std::vector<uint8_t>& stored) {
    std::ofstream(path_, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(stored.data()),
               static_cast<std::streamsize>(stored.size()));
    ResetAllGlobals();
    LoadSaveFile(path_.c_str());
  }

  std::string path_;
};

// What a repaint decides, then the drawing plan of its frame: every portrait it draws is one
// of the roster's.
std::string Repaint() {
  ComposeFrameLogic();
  const DrawList plan = FrameShowsEngineBoard() ? PlanEngineBoard() : PlanGridBoard();
  for (const DrawOp& op : plan) {
    const bool portraitRange = op.Resource >= kFirstPortrait && op.Resource < kFirstPortrait + 100;
    if (op.Kind == DrawKind::Bitmap && portraitRange && op.Resource >= kFirstPortrait + kRosterSize)
      return "portrait resource " + std::to_string(op.Resource);
  }
  RunPendingReplies();
  FinishRepaint();
  return CheckSessionInvariants(true);
}

// The record of the settings is in the table or nowhere, and counting in it touches no other.
std::string CountInTheSection() {
  const int32_t section = StatsSection();
  const StatsRecord* record = StatsRecordAt(section);
  if (record != nullptr && record != &StatsTable[section]) return "record of another section";
  StatsRecord before[kStatsRecords];
  std::memcpy(before, StatsTable, sizeof before);
  CountLoss(section);
  for (int32_t r = 0; r < kStatsRecords; ++r) {
    const int32_t expected = before[r].Lost + (r == section ? 1 : 0);
    if (StatsTable[r].Lost != static_cast<uint16_t>(expected)) {
      return "record " + std::to_string(r) + " changed by a loss in section " +
             std::to_string(section);
    }
  }
  const StatsTexts texts = StatsDialogTexts();
  if (texts.Played.empty() || texts.Mode.empty()) return "statistics texts missing";
  return {};
}

TEST_F(StoredValuesTest, EveryLaterOperationStaysInBounds) {
  for (const Damage& damage : kDamages) {
    for (int32_t ai = 0; ai < kRosterSize; ++ai) {
      for (const Play& play : kPlays) {
        SCOPED_TRACE("slot " + std::to_string(damage.Slot) + " = " + std::to_string(damage.Value) +
                     ", strategy " + std::to_string(ai) + ", level " + std::to_string(play.Level) +
                     ", challenge " + std::to_string(play.Challenge));
        Load(Content(ai, play, damage));
        ASSERT_EQ(CheckSessionInvariants(false), "");
        NewGame();
        // Columns 0 and S + 1 are refused; the rest are played in turn, with their replies.
        const int32_t side = CellsPerSide();
        for (int32_t move = 0; move < 4; ++move) {
          MouseX = 30 * ((3 * move) % (side + 2)) + 15;
          PlayAt(MouseX);
          for (int paint = 0; paint < 3; ++paint) ASSERT_EQ(Repaint(), "");
        }
        ASSERT_EQ(CountInTheSection(), "");
        EXPECT_EQ(std::strlen(SessionState.PlayerName), damage.Slot < 0 ? 26u : 4u);
      }
    }
  }
}

TEST_F(StoredValuesTest, AlwaysSquareSlotOutOfRangeTakesItsPreset) {
  // The home dialog makes slot 10 the AlwaysSquare flag; a stored 2 would stay checked forever.
  for (const int32_t stored : {2, -1, INT_MIN}) {
    Load(Content(0, kPlays[0], {10, stored}));
    EXPECT_EQ(SettingsBlock[kAlwaysSquareSlot], 1) << stored;
  }
  Load(Content(0, kPlays[0], {10, 0}));
  EXPECT_EQ(SettingsBlock[kAlwaysSquareSlot], 0);
}

}  // namespace
