// The menu commands and the main window's repaint: questions, counts, toggles, window sizes.
#include <string>

#include "ground/platform.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "ground/texts.h"
#include "opponents/new_game.h"
#include "resources/resource.h"
#include "shell/menu_logic.h"
#include "shell/window_logic.h"
#include "test_support.h"

namespace {

class MenuLogicTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    NewGame();  // the first game, as the first repaint starts it
    FakePlatform = FakePlatformRecord{};
  }
};

const std::string kLose = "La partie sera perdue", kHome = "L'acceuil n'est accessible";

TEST_F(MenuLogicTest, CommandsAskOnlyForAGameInProgress) {
  // Game: 0 nothing played, 1 in progress, 2 decided. Question: nullptr when nothing is asked.
  // GoesOn: the home dialog follows, or the window is destroyed.
  // clang-format off
  enum Command { Restart, Home, Quit };
  struct Row { const char* Name; Command Which; int32_t Game, Answer; const std::string* Question;
               bool GoesOn; int32_t Losses, Played, Repaints; };
  const Row rows[] = {
    {"RestartNothingPlayed", Restart, 0, kAnswerYes, nullptr, true, 0, 1, 0},
    {"RestartDeclined", Restart, 1, kAnswerNo, &kLose, true, 0, 1, 0},
    {"RestartAbandons", Restart, 1, kAnswerYes, &kLose, true, 1, 2, 1},
    {"RestartAfterTheEnd", Restart, 2, kAnswerNo, nullptr, true, 0, 2, 1},
    {"HomeAfterTheEnd", Home, 2, kAnswerNo, nullptr, true, 0, 1, 0},
    {"HomeDeclined", Home, 1, kAnswerNo, &kHome, false, 0, 1, 0},
    {"HomeAbandons", Home, 1, kAnswerYes, &kHome, true, 1, 2, 0},
    {"QuitNothingPlayed", Quit, 0, kAnswerNo, nullptr, true, 0, 1, 0},
    {"QuitDeclined", Quit, 1, kAnswerNo, &kLose, false, 0, 1, 0},
    {"QuitAbandons", Quit, 1, kAnswerYes, &kLose, true, 1, 1, 0},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.GameStarted = row.Game > 0 ? 1 : 0;
    SessionState.GameResult = row.Game == 2 ? 1 : 0;
    FakePlatform.Answers = {row.Answer};
    bool goesOn = true;
    if (row.Which == Restart) MenuRestart(0);
    if (row.Which == Home) goesOn = MenuHomeStart(0);
    if (row.Which == Quit) goesOn = MenuQuit(0);
    EXPECT_EQ(goesOn, row.GoesOn);
    EXPECT_EQ(SessionState.QuitByMenu, row.Which == Quit && goesOn ? 1 : 0);
    ASSERT_EQ(FakePlatform.Questions.size(), row.Question ? 1u : 0u);
    if (row.Question) {
      EXPECT_EQ(ToUtf8(FakePlatform.Questions[0].c_str()).rfind(*row.Question, 0), 0u);
    }
    EXPECT_EQ(StatsTable[0].Lost, row.Losses);
    EXPECT_EQ(StatsTable[0].Played, row.Played);
    EXPECT_EQ(FakePlatform.RepaintRequests, row.Repaints);
  });
}

TEST_F(MenuLogicTest, HomeCountsTheNextGameInTheNewSettingsAndResizesOnlyForANewBoard) {
  // clang-format off
  struct Row { const char* Name; int32_t NewBoardSize; bool Resizes; };
  const Row rows[] = {{"SameBoard", 8, false}, {"NewBoard", 11, true}};
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.SettleCounter = 50;
    SessionState.Level = 2;  // chosen in the dialog: section 2
    SessionState.BoardSize = row.NewBoardSize;
    EXPECT_EQ(MenuHomeFinish(8), row.Resizes);
    EXPECT_EQ(StatsTable[2].Played, 1);
    EXPECT_EQ(SessionState.SettleCounter, row.Resizes ? 0 : 50);
    EXPECT_EQ(FakePlatform.RepaintRequests, 1);
  });
}

TEST_F(MenuLogicTest, TogglesFlipTheirFlagAndCheckMark) {
  // clang-format off
  struct Row { const char* Name; int32_t Command; int32_t SessionRecord::*Flag; int32_t Before;
               bool CheckedAfter; int32_t Repaints; };
  const Row rows[] = {
    {"ImagesOff", ID_GRAPHICS_IMAGES, &SessionRecord::ShowImages, 1, false, 1},
    {"DamagedImagesOn", ID_GRAPHICS_IMAGES, &SessionRecord::ShowImages, 2, true, 1},  // to -1
    {"DamagedImagesBack", ID_GRAPHICS_IMAGES, &SessionRecord::ShowImages, -1, true, 1},
    {"ColoursOn", ID_GRAPHICS_COLOURS, &SessionRecord::CustomColours, 0, true, 1},
    {"SmoothingOn", ID_GRAPHICS_SMOOTHING, &SessionRecord::Smoothing, 0, true, 1},
    {"SquareOff", ID_GRAPHICS_SQUARE, &SessionRecord::AlwaysSquare, 1, false, 1},
    {"DiscreetOn", ID_MENU_DISCREET, &SessionRecord::NormalTitle, 1, true, 0},  // checked at 0
    {"DiscreetOff", ID_MENU_DISCREET, &SessionRecord::NormalTitle, 0, false, 0},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.*row.Flag = row.Before;
    const MenuToggle* toggle = FindMenuToggle(row.Command);
    ASSERT_NE(toggle, nullptr);
    EXPECT_EQ(ApplyMenuToggle(*toggle), row.CheckedAfter);
    EXPECT_EQ(SessionState.*row.Flag, 1 - row.Before);
    EXPECT_EQ(MenuToggleChecked(*toggle), row.CheckedAfter);
    EXPECT_EQ(FakePlatform.RepaintRequests, row.Repaints);
  });
}

TEST_F(MenuLogicTest, RatioCommandsAddLogicalSizesToTheBaseSize) {
  SessionState.LogicalWidth = 293;
  SessionState.LogicalHeight = 254;
  EXPECT_EQ(RatioWindowSize(3), (WindowSize{887, 827}));
}

TEST_F(MenuLogicTest, ARepaintUnderTheFirstHomeDialogEndsTheFirstStart) {
  EXPECT_TRUE(RepaintOpensFirstDialogs());
  SessionState.HomeDialogOpen = 1;
  EXPECT_FALSE(RepaintOpensFirstDialogs());  // no second dialog
  EndRepaint();
  EXPECT_EQ(SessionState.FirstPaint, 0);  // the stored "Troujours carré" no longer applies
}

}  // namespace
