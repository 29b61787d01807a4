// The decisions of the menu commands and of the main window's repaint: what is asked, what is
// counted, the toggles and their check marks, the window sizes.
#include <gtest/gtest.h>

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
  void TearDown() override { EndGame(); }
  static void EndGame() { EndEngineGame(); }

  // A game in the state named: 0 nothing played, 1 in progress, 2 decided.
  static void GameIn(int32_t state) {
    SessionState.GameStarted = state > 0 ? 1 : 0;
    SessionState.GameResult = state == 2 ? 1 : 0;
  }

  static const StatsRecord& Record(int32_t section) { return StatsTable[section]; }
};

const std::string kLoseQuestion = "La partie sera perdue si vous continuez!\nÊtes-vous sûr(e)?";
const std::string kHomeQuestion =
    "L'acceuil n'est accessible qu'en début de partie!\nVous abandonnerez cette partie si vous "
    "continuez.\nÊtes-vous sûr(e)?";

// "&Recommencer", the home command and "&Quitter" on a game in each state: 0 nothing played,
// 1 in progress, 2 decided.
TEST_F(MenuLogicTest, CommandsAskOnlyForAGameInProgress) {
  enum Command { Restart, Home, Quit };
  struct Case {
    Command command;
    int32_t game, answer;
    const std::string* question;  // nullptr: nothing asked
    bool goesOn;                  // the command's answer: go on (Home) or quit (Quit)
    int32_t losses, played, repaints;
  };
  const std::string* const lose = &kLoseQuestion;
  const std::string* const home = &kHomeQuestion;
  const Case cases[] = {
      {Restart, 0, kAnswerYes, nullptr, true, 0, 1, 0},  // nothing played: nothing at all
      {Restart, 1, kAnswerNo, lose, true, 0, 1, 0},
      {Restart, 1, kAnswerYes, lose, true, 1, 2, 1},
      {Restart, 2, kAnswerNo, nullptr, true, 0, 2, 1},  // decided: a new game without asking
      {Home, 0, kAnswerYes, nullptr, true, 0, 1, 0},
      {Home, 2, kAnswerNo, nullptr, true, 0, 1, 0},  // decided: nothing to abandon
      {Home, 1, kAnswerNo, home, false, 0, 1, 0},
      {Home, 1, kAnswerYes, home, true, 1, 2, 0},  // counted lost, then a new game
      {Quit, 0, kAnswerNo, nullptr, true, 0, 1, 0},
      {Quit, 2, kAnswerNo, nullptr, true, 0, 1, 0},
      {Quit, 1, kAnswerNo, lose, false, 0, 1, 0},
      {Quit, 1, kAnswerYes, lose, true, 1, 1, 0},
  };
  for (const Case& c : cases) {
    SetUp();
    GameIn(c.game);
    FakePlatform.Answers = {c.answer};
    SCOPED_TRACE(testing::Message()
                 << "command " << c.command << " game " << c.game << " answer " << c.answer);
    bool goesOn = true;
    if (c.command == Restart) MenuRestart(0);
    if (c.command == Home) goesOn = MenuHomeStart(0);
    if (c.command == Quit) {
      goesOn = MenuQuit(0);
      EXPECT_EQ(SessionState.QuitByMenu, goesOn ? 1 : 0);
    }
    EXPECT_EQ(goesOn, c.goesOn);
    ASSERT_EQ(FakePlatform.Questions.size(), c.question ? 1u : 0u);
    if (c.question) {
      EXPECT_EQ(ToUtf8(FakePlatform.Questions[0].c_str()), *c.question);
    }
    EXPECT_EQ(Record(0).Lost, c.losses);
    EXPECT_EQ(Record(0).Played, c.played);
    if (c.command == Restart) {
      EXPECT_EQ(FakePlatform.RepaintRequests, c.repaints);
    }
    EndGame();
  }
}

TEST_F(MenuLogicTest, HomeCountsTheNextGameInTheNewSettingsAndResizesOnlyForANewBoard) {
  struct Case {
    int32_t newBoardSize;
    bool resizes;
  };
  for (const Case c : {Case{8, false}, Case{11, true}}) {
    SetUp();
    SessionState.SettleCounter = 50;
    SessionState.Level = 2;  // chosen in the dialog: section 2
    SessionState.BoardSize = c.newBoardSize;
    EXPECT_EQ(MenuHomeFinish(8), c.resizes);
    EXPECT_EQ(Record(2).Played, 1);
    EXPECT_EQ(SessionState.SettleCounter, c.resizes ? 0 : 50);
    EXPECT_EQ(FakePlatform.RepaintRequests, 1);
    if (c.resizes) {
      EXPECT_EQ(BaseWindowWidth(SessionState.BoardSize), 391);
      EXPECT_EQ(BaseWindowHeight(SessionState.BoardSize), 409);
      SessionState.SettleCounter = 3;  // messages of the resize itself
      MenuHomeResized();
      EXPECT_EQ(SessionState.SettleCounter, 0);
      EXPECT_EQ(FakePlatform.RepaintRequests, 2);
    }
    EndGame();
  }
}

TEST_F(MenuLogicTest, QuitCountsExactlyOneLossAfterYes) {
  struct Case {
    int32_t game;
    int32_t answer;
    bool quits;
    int32_t losses;
  };
  const Case cases[] = {
      {0, kAnswerNo, true, 0},
      {2, kAnswerNo, true, 0},
      {1, kAnswerNo, false, 0},
      {1, kAnswerYes, true, 1},
  };
  for (const Case& c : cases) {
    SetUp();
    GameIn(c.game);
    FakePlatform.Answers = {c.answer};
    EXPECT_EQ(MenuQuit(0), c.quits);
    EXPECT_EQ(SessionState.QuitByMenu, c.quits ? 1 : 0);
    EXPECT_EQ(Record(0).Lost, c.losses);
    EndGame();
  }
}

TEST_F(MenuLogicTest, TogglesFlipTheirFlagAndCheckMark) {
  struct Case {
    int32_t command;
    int32_t SessionRecord::*flag;
    int32_t before;
    bool checkedAfter;
    int32_t repaints;
  };
  const Case cases[] = {
      {ID_GRAPHICS_IMAGES, &SessionRecord::ShowImages, 1, false, 1},
      {ID_GRAPHICS_COLOURS, &SessionRecord::CustomColours, 0, true, 1},
      {ID_GRAPHICS_SMOOTHING, &SessionRecord::Smoothing, 0, true, 1},
      {ID_GRAPHICS_SQUARE, &SessionRecord::AlwaysSquare, 1, false, 1},
      {ID_MENU_DISCREET, &SessionRecord::NormalTitle, 1, true, 0},  // checked when now 0
      {ID_MENU_DISCREET, &SessionRecord::NormalTitle, 0, false, 0},
  };
  for (const Case& c : cases) {
    SetUp();
    SessionState.*c.flag = c.before;
    const MenuToggle* toggle = FindMenuToggle(c.command);
    ASSERT_NE(toggle, nullptr) << c.command;
    EXPECT_EQ(ApplyMenuToggle(*toggle), c.checkedAfter) << c.command;
    EXPECT_EQ(SessionState.*c.flag, 1 - c.before);
    EXPECT_EQ(MenuToggleChecked(*toggle), c.checkedAfter);
    EXPECT_EQ(FakePlatform.RepaintRequests, c.repaints) << c.command;
    EndGame();
  }
  for (int32_t other : {ID_MENU_HOME, ID_MENU_QUIT, ID_GRAPHICS_RATIO_2X, 12345}) {
    EXPECT_EQ(FindMenuToggle(other), nullptr) << other;
  }
}

TEST_F(MenuLogicTest, CheckMarksAtStartFollowTheSettings) {
  // No save file, home dialog confirmed: images, colours and square on; smoothing and the
  // discreet title off.
  SessionState.AlwaysSquare = 1;
  int32_t count = 0;
  const MenuToggle* toggles = MenuToggles(&count);
  ASSERT_EQ(count, 5);
  for (int32_t i = 0; i < count; ++i) {
    const bool expected =
        toggles[i].Command != ID_GRAPHICS_SMOOTHING && toggles[i].Command != ID_MENU_DISCREET;
    EXPECT_EQ(MenuToggleChecked(toggles[i]), expected) << toggles[i].Command;
  }
}

TEST_F(MenuLogicTest, RatioCommandsAddLogicalSizes) {
  struct Case {
    int32_t command, factor;
    WindowSize size;
  };
  const Case cases[] = {
      {ID_GRAPHICS_RATIO_1X, 1, {301, 319}},
      {ID_GRAPHICS_RATIO_2X, 2, {594, 573}},
      {ID_GRAPHICS_RATIO_3X, 3, {887, 827}},
      {ID_GRAPHICS_RATIO_4X, 4, {1180, 1081}},
  };
  SessionState.LogicalWidth = 293;
  SessionState.LogicalHeight = 254;
  const int32_t counter = SessionState.SettleCounter;
  for (const Case& c : cases) {
    EXPECT_EQ(RatioFactor(c.command), c.factor);
    EXPECT_EQ(RatioWindowSize(c.factor), c.size) << c.command;
  }
  EXPECT_EQ(SessionState.SettleCounter, counter);
  EXPECT_EQ(RatioFactor(ID_MENU_HOME), 0);
}

TEST_F(MenuLogicTest, RepaintSequenceDecisions) {
  // While the home dialog is open only repaints pass.
  EXPECT_TRUE(MessagePassesHomeDialog(false));
  SessionState.HomeDialogOpen = 1;
  EXPECT_TRUE(MessagePassesHomeDialog(true));
  EXPECT_FALSE(MessagePassesHomeDialog(false));
  // ... and a repaint meanwhile opens no second dialog, yet ends the first start, so that
  // the confirmation then leaves "Troujours carré" as it is.
  EXPECT_FALSE(RepaintOpensFirstDialogs());
  EndRepaint();
  EXPECT_EQ(SessionState.FirstPaint, 0);
  SessionState.HomeDialogOpen = 0;
  EXPECT_FALSE(RepaintOpensFirstDialogs());
  SessionState.FirstPaint = 1;
  EXPECT_TRUE(RepaintOpensFirstDialogs());
  SessionState.SettleCounter = 40;
  FakePlatform = FakePlatformRecord{};
  FirstDialogsClosed();
  EXPECT_EQ(SessionState.SettleCounter, 0);
  EXPECT_EQ(FakePlatform.RepaintRequests, 1);
  // One more repaint when the frame asked for it, once.
  SessionState.RepaintAgain = 1;
  EndRepaint();
  EXPECT_EQ(FakePlatform.RepaintRequests, 2);
  EXPECT_EQ(SessionState.RepaintAgain, 0);
}

}  // namespace
