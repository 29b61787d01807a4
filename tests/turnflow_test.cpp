// How clicks, keys and repaints drive a game, with either opponent, and how a game ends on screen.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "engine/engine.h"
#include "grid_picture.h"
#include "ground/platform.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/texts.h"
#include "opponents/new_game.h"
#include "opponents/turn.h"
#include "render/frame_logic.h"
#include "render/viewport.h"
#include "shell/turnflow.h"
#include "test_support.h"

namespace {

namespace fs = std::filesystem;

class TurnFlowTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    SeedRandom(2024);
    EngineSeededGenerator = true;
  }
  // Pieces on the referee's board and on the engine's.
  static int32_t Pieces() {
    int32_t n = 0;
    for (int c = 0; c < kGridSide; ++c)
      for (int r = 0; r < kGridSide; ++r)
        n += (Grid[c][r] != 0) + (c < 7 && r < 7 && EngineBoardView()[c][r] != kEngineEmpty);
    return n;
  }
  // One repaint without pixels, as the window runs it.
  void Repaint() {
    ComposeFrameLogic();
    status_ = ToUtf8(TextBuffer);
    RunPendingReplies();
    FinishRepaint();
  }
  std::string status_;
};

TEST_F(TurnFlowTest, EngineClickPlaysTheColumnLeftOfTheGrids) {
  SessionState.AiNumber = 10;
  NewGame();
  PlayAt(95);  // engine column 95 / 30 - 1 = 2
  EXPECT_EQ(SessionState.EngineSideToMove, 0);
  PlayAt(95);  // a second click before the repaint plays for the engine's side
  EXPECT_EQ(SessionState.EngineSideToMove, 1);
  EXPECT_EQ(EngineBoardView()[2][0], 1);
  EXPECT_EQ(EngineBoardView()[2][1], 0);
  EXPECT_EQ(Pieces(), 2);
}

TEST_F(TurnFlowTest, KeysBeyondTheBoardOrBelowOneAreIgnored) {
  // clang-format off
  struct Row { const char* Name; char Key; };
  const Row rows[] = {{"Beyond", '9'}, {"Zero", '0'}, {"ByteAbove127", static_cast<char>(0xE9)}};
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.BoardSize = 8;
    NewGame();
    PlayKey(static_cast<int8_t>(row.Key));
    EXPECT_EQ(FakePlatform.RepaintRequests, 0);
    EXPECT_EQ(SessionState.PendingTurn, 1);
    EXPECT_EQ(Pieces(), 0);
  });
}

TEST_F(TurnFlowTest, FinishedEngineGameMovesOntoTheGrid) {
  SessionState.AiNumber = 10;
  NewGame();
  // The human wins vertically in engine column 2 while the engine plays column 6.
  for (int i = 0; i < 7; ++i) EnginePlay(1 - i % 2, i % 2 == 0 ? 2 : 6);
  Repaint();
  EXPECT_EQ(SessionState.GameResult, 1);
  EXPECT_EQ(status_, "<Votre nom> a gagné!");
  EXPECT_EQ(SessionState.RepaintAgain, 0);     // cleared by the last step of the repaint
  EXPECT_EQ(FakePlatform.RepaintRequests, 1);  // ...after asking for one more
  EXPECT_EQ(GridPicture(), "......./......./......./..a..../..a...2/..a...2/..a...2");
  EXPECT_FALSE(FrameShowsEngineBoard());
  PlayAt(95);  // the next click starts a new game
  EXPECT_EQ(SessionState.GameResult, 0);
  EXPECT_EQ(StatsTable[40].Won, 1);
}

TEST_F(TurnFlowTest, EngineWinThatFillsTheBoardIsAWin) {
  SessionState.AiNumber = 10;
  SessionState.CharacterId = 3;
  NewGame();
  // Engine columns bottom to top: the engine's last piece, at the top of column 6, completes
  // its first line and fills the board.
  const char* columns[7] = {"0001001", "1100110", "1011100", "1100011",
                            "0101000", "1110100", "0010110"};
  for (int32_t k = 0; k < 48; ++k) EnginePlay(columns[k / 7][k % 7] - '0', k / 7);
  ASSERT_FALSE(EngineHasWon(0) || EngineHasWon(1));
  EnginePlay(0, 6);
  ASSERT_TRUE(EngineBoardFull() && EngineHasWon(0));
  Repaint();
  EXPECT_EQ(SessionState.GameResult, 2);
  EXPECT_EQ(status_, "Dr Robotnik a gagné!");
}

TEST_F(TurnFlowTest, CeilingRuleStrikesBeforeTheReplyAndOncePerGame) {
  SessionState.AiNumber = 6;
  NewGame();
  SetGrid("......./..2..../..1..../..2..../..1..../..2..../..1....");
  PlayAt(95);  // the human's piece reaches the top row
  Repaint();   // the ceiling strikes; the reply call finds the game over and starts a new one
  EXPECT_EQ(status_, "L'ordi réfléchit...");
  EXPECT_EQ(Pieces(), 0);
  EXPECT_EQ(StatsTable[24].Lost, 1);
  SetGrid("1....../2....../1....../2....../1....../2....../1......");  // in the new game
  Repaint();
  EXPECT_EQ(SessionState.GameResult, 2);
  const std::string struck = "a******/b******/a******/b******/a******/b******/a******";
  EXPECT_EQ(GridPicture(), struck);  // every cell marked once, empty ones too
  Repaint();                         // later repaints of the same game leave the marks alone
  EXPECT_EQ(GridPicture(), struck);
}

TEST_F(TurnFlowTest, StatusLineOfTheGridFrame) {
  // clang-format off
  struct Row { const char* Name; int32_t Mode, Level, Result, Pending, Character;
               const char* Expected; };
  const Row rows[] = {
    {"ThinkingBeatsResult", 1, 0, 2, 2, 7, "Mickey réfléchit..."},
    {"NoLevelNameNoStatus", 1, 7, 0, 1, 0, ""}, {"TwoPlayerDraw", 2, 0, 3, 1, 0, "Aucun gagnant!"},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    NewGame();
    SessionState.GameMode = row.Mode;
    SessionState.Level = row.Level;
    SessionState.GameResult = row.Result;
    SessionState.PendingTurn = row.Pending;
    SessionState.CharacterId = row.Character;
    ComposeFrameLogic();
    EXPECT_EQ(ToUtf8(TextBuffer), row.Expected);
  });
}

// A host asks ReplyPending before the end of a repaint to show the wait cursor, and the status
// line says that the computer thinks: both must hold exactly when RunPendingReplies then replies
// (and asks for a repaint), for either opponent and whether or not the engine's game is open.
TEST_F(TurnFlowTest, ReplyPendingIsTrueExactlyWhenTheRepaintReplies) {
  // clang-format off
  struct Row { const char* Name; int32_t Ai; bool NewGame, Click; int32_t Pending, EngineSide;
               bool Expected; };
  const Row rows[] = {
    {"SquareMoveAwaitsCheck",        3, true,  true,  -1, -1, true},
    {"SquareNoMove",                 3, true,  false, -1, -1, false},
    {"SquareEngineSideIsNotItsTurn", 3, true,  false,  1,  0, false},
    {"EngineAfterHumanMove",        10, true,  true,  -1, -1, true},
    {"EngineHumanToMove",           10, true,  false, -1,  1, false},
    {"EngineTurnGameNotOpen",       10, false, false,  1,  0, false},
    {"EngineIgnoresSquarePending",  10, true,  false,  2,  1, false},
  };
  // clang-format on
  ForEachRow(rows, [this](const Row& row) {
    SessionState.AiNumber = row.Ai;
    SessionState.GameMode = 1;
    if (row.NewGame) NewGame();
    if (row.Click) PlayAt(95);
    if (row.Pending >= 0) SessionState.PendingTurn = row.Pending;
    if (row.EngineSide >= 0) SessionState.EngineSideToMove = row.EngineSide;
    const bool pending = ReplyPending();
    ASSERT_EQ(pending, row.Expected);  // a reply in a game that is not open would not return
    FakePlatform.RepaintRequests = 0;
    Repaint();
    EXPECT_EQ(status_.find("réfléchit") != std::string::npos, pending) << "status: " << status_;
    EXPECT_EQ(FakePlatform.RepaintRequests > 0, pending) << "the repaint's reply disagrees";
  });
}

TEST_F(TurnFlowTest, CloseSessionCountsAStartedUndecidedGameOnceAndAlwaysSaves) {
  // clang-format off
  struct Row { const char* Name; int32_t Started, Result, QuitByMenu, Lost; };
  const Row rows[] = {{"InProgress", 1, 0, 0, 1}, {"AlreadyCountedByQuit", 1, 0, 1, 0},
                      {"NothingPlayed", 0, 0, 0, 0}, {"Decided", 1, 2, 0, 0}};
  // clang-format on
  // The save file goes to the working directory: a folder of this test's own.
  const fs::path previous = fs::current_path();
  const fs::path dir = fs::temp_directory_path() / ("kalvero-close-" + std::to_string(getpid()));
  fs::create_directories(dir);
  fs::current_path(dir);
  ForEachRow(rows, [](const Row& row) {
    fs::remove("Fichier de sauvegarde");
    SessionState.GameStarted = row.Started;
    SessionState.GameResult = row.Result;
    SessionState.QuitByMenu = row.QuitByMenu;
    CloseSession(StatsSection());
    EXPECT_EQ(StatsTable[0].Lost, row.Lost);
    EXPECT_EQ(FakePlatform.EndLoopCalls, 1);
    EXPECT_EQ(FakePlatform.EndLoopCode, 0);
    EXPECT_EQ(fs::file_size("Fichier de sauvegarde"), 1142u);
  });
  fs::current_path(previous);
  fs::remove_all(dir);
}

}  // namespace
