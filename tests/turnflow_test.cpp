// The turn flow, the game effects of painting and the engine bridge: how clicks, keys and
// repaints drive a game, and how a game ends on screen.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "grid_picture.h"
#include "ground/platform.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/texts.h"
#include "opponents/bridge.h"
#include "opponents/new_game.h"
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
  int32_t Pieces() {
    int32_t n = 0;
    for (int c = 1; c < kGridSide; ++c)
      for (int r = 1; r < kGridSide; ++r) n += Grid[c][r] != 0;
    return n;
  }
  int32_t EnginePieces() {
    const uint8_t* const* cells = EngineBoardView();
    int32_t n = 0;
    for (int c = 0; c < 7; ++c)
      for (int r = 0; r < 7; ++r) n += cells[c][r] != kEngineEmpty;
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

TEST_F(TurnFlowTest, ClickPlaysTheColumnUnderThePointerAndRepaintsEvenWhenRefused) {
  NewGame();
  PlayAt(MouseX);  // no pointer move yet: refused
  EXPECT_EQ(Pieces(), 0);
  EXPECT_EQ(SessionState.PendingTurn, 1);
  EXPECT_EQ(FakePlatform.RepaintRequests, 1);
  MouseX = 95;
  PlayAt(MouseX);
  EXPECT_EQ(Grid[3][7], 1);
  EXPECT_EQ(FakePlatform.RepaintRequests, 2);
}

TEST_F(TurnFlowTest, EngineClickPlaysTheColumnLeftOfTheGrids) {
  SessionState.AiNumber = 10;
  NewGame();
  PlayAt(MouseX);  // no pointer move yet: engine column -1, refused
  EXPECT_EQ(EnginePieces(), 0);
  EXPECT_EQ(SessionState.EngineSideToMove, 1);
  PlayAt(95);  // engine column 95 / 30 - 1 = 2
  EXPECT_EQ(EngineBoardView()[2][0], 1);
  EXPECT_EQ(SessionState.EngineSideToMove, 0);
  PlayAt(95);  // a second click before the repaint plays for the engine's side
  EXPECT_EQ(EngineBoardView()[2][1], 0);
  EXPECT_EQ(SessionState.EngineSideToMove, 1);
}

TEST_F(TurnFlowTest, KeysNameColumnsFromOne) {
  struct Case {
    char Key;
    int32_t BoardSize, Column, Repaints;  // Column: where a piece lands, 0 for none
  };
  const Case cases[] = {{'1', 8, 1, 1},  {'7', 8, 7, 1}, {'8', 8, 0, 1},   {'9', 8, 0, 0},
                        {'0', 8, 0, 0},  {' ', 8, 0, 0}, {':', 11, 10, 1}, {';', 11, 0, 1},
                        {'<', 11, 0, 0}, {'1', 2, 1, 1}, {'2', 2, 0, 1},   {'3', 2, 0, 0}};
  for (const Case& c : cases) {
    ResetAllGlobals();
    SessionState.BoardSize = c.BoardSize;
    NewGame();
    PlayKey(c.Key);
    EXPECT_EQ(FakePlatform.RepaintRequests, c.Repaints) << c.Key;
    EXPECT_EQ(Pieces(), c.Column == 0 ? 0 : 1) << c.Key;
    if (c.Column != 0) {
      EXPECT_EQ(Grid[c.Column][c.BoardSize - 1], 1) << c.Key;
    }
  }
  ResetAllGlobals();
  NewGame();
  PlayKey(static_cast<int8_t>(0xE9));  // a byte above 127 reads as negative: ignored
  EXPECT_EQ(FakePlatform.RepaintRequests, 0);
}

TEST_F(TurnFlowTest, EngineDepthFollowsLevelAndChallenge) {
  const int32_t expected[2][3] = {{2, 4, 6}, {8, 8, 8}};  // [Challenge][Level]
  for (int32_t k = 0; k < 6; ++k) {
    SessionState.Challenge = k / 3;
    SessionState.Level = k % 3;
    EXPECT_EQ(EngineSearchDepth(), expected[k / 3][k % 3]) << k;
  }
}

TEST_F(TurnFlowTest, RepaintJudgesAndRepliesThenWaits) {
  NewGame();
  PlayAt(95);
  Repaint();
  EXPECT_EQ(status_, "L'ordi réfléchit...");
  EXPECT_EQ(SessionState.PendingTurn, 1);
  EXPECT_EQ(SessionState.GameStarted, 1);
  EXPECT_EQ(Pieces(), 2);
  Repaint();
  EXPECT_EQ(status_, "Facile");
}

TEST_F(TurnFlowTest, EngineGameRepliesAtTheRepaint) {
  SessionState.AiNumber = 10;
  SessionState.CharacterId = 10;
  NewGame();
  PlayAt(125);
  ASSERT_TRUE(FrameShowsEngineBoard());
  Repaint();
  EXPECT_EQ(status_, "Coco réfléchit...");
  EXPECT_EQ(EnginePieces(), 2);
  EXPECT_EQ(SessionState.EngineSideToMove, 1);
  EXPECT_EQ(SessionState.GameStarted, 1);
}

TEST_F(TurnFlowTest, FinishedEngineGameMovesOntoTheGrid) {
  SessionState.AiNumber = 10;
  NewGame();
  // The human wins vertically in engine column 2 while the engine plays column 6.
  for (int i = 0; i < 3; ++i) {
    EnginePlay(1, 2);
    EnginePlay(0, 6);
  }
  EnginePlay(1, 2);
  Repaint();
  EXPECT_EQ(SessionState.GameResult, 1);
  EXPECT_EQ(status_, "<Votre nom> a gagné!");
  EXPECT_EQ(SessionState.RepaintAgain, 0);     // cleared by the last step of the repaint
  EXPECT_EQ(FakePlatform.RepaintRequests, 1);  // ...after asking for one more
  for (int r = 4; r <= 7; ++r) EXPECT_EQ(Grid[3][r], 17) << r;
  for (int r = 5; r <= 7; ++r) EXPECT_EQ(Grid[7][r], 2) << r;
  EXPECT_FALSE(FrameShowsEngineBoard());
  Repaint();
  EXPECT_EQ(status_, "<Votre nom> a gagné!");
  PlayAt(95);  // the next click starts a new game
  EXPECT_EQ(SessionState.GameResult, 0);
  EXPECT_EQ(StatsTable[40].Won, 1);
}

TEST_F(TurnFlowTest, EngineWinThatFillsTheBoardIsAWin) {
  SessionState.AiNumber = 10;
  SessionState.CharacterId = 3;
  NewGame();
  // Columns bottom to top; nobody has four in a row until the engine's last piece at the top
  // of column 6 completes a line and fills the board.
  const char* columns[7] = {"0001001", "1100110", "1011100", "1100011",
                            "0101000", "1110100", "0010110"};
  for (int32_t c = 0; c < 7; ++c) {
    for (int32_t r = 0; r < 7; ++r) {
      if (c == 6 && r == 6) break;
      EnginePlay(columns[c][r] - '0', c);
    }
  }
  ASSERT_FALSE(EngineHasWon(0) || EngineHasWon(1));
  EnginePlay(0, 6);
  ASSERT_TRUE(EngineBoardFull());
  ASSERT_TRUE(EngineHasWon(0));
  Repaint();
  EXPECT_EQ(SessionState.GameResult, 2);
  EXPECT_EQ(status_, "Dr Robotnik a gagné!");
}

TEST_F(TurnFlowTest, BridgeMapsEngineCellsOntoTheGrid) {
  SessionState.AiNumber = 10;
  NewGame();
  EnginePlay(1, 0);                                  // bottom left
  for (int i = 0; i < 6; ++i) EnginePlay(i % 2, 6);  // column 6 up to row 5
  EnginePlay(1, 6);                                  // row 6, top right
  GridFromEngine();
  EXPECT_EQ(Grid[1][7], 1);
  EXPECT_EQ(Grid[7][7], 2);  // engine side 0 becomes the computer's 2
  EXPECT_EQ(Grid[7][1], 1);
  EXPECT_EQ(SessionState.RepaintAgain, 1);
  EXPECT_EQ(RunNeeded[0], 3);
  EXPECT_EQ(RunNeeded[2], 3);
}

TEST_F(TurnFlowTest, CeilingRuleStrikesOncePerGame) {
  SessionState.AiNumber = 6;
  NewGame();
  SetGrid({"..1....", "..2....", "..1....", "..2....", "..1....", "..2....", "..1...."});
  Repaint();
  EXPECT_EQ(SessionState.GameResult, 2);
  EXPECT_EQ(Grid[3][1], 17);
  EXPECT_EQ(Grid[1][1], 16);
  EXPECT_EQ(Grid[7][7], 16);
  Repaint();  // later repaints of the same game leave the marks alone
  EXPECT_EQ(Grid[3][1], 17);
  PlayAt(30);
  SetGrid({"1......", "2......", "1......", "2......", "1......", "2......", "1......"});
  Repaint();
  EXPECT_EQ(Grid[1][1], 17);  // a new game can be ended by the ceiling again
}

TEST_F(TurnFlowTest, CeilingEndsTheGameBeforeTheReply) {
  SessionState.AiNumber = 6;
  NewGame();
  SetGrid({".......", "..2....", "..1....", "..2....", "..1....", "..2....", "..1...."});
  PlayAt(95);  // the human's piece reaches the top row
  Repaint();   // the ceiling strikes; the reply call finds the game over and starts a new one
  EXPECT_EQ(status_, "L'ordi réfléchit...");
  EXPECT_EQ(SessionState.GameResult, 0);
  EXPECT_EQ(Pieces(), 0);
  EXPECT_EQ(StatsTable[24].Lost, 1);
}

struct StatusCase {
  const char* Name;
  int32_t Mode, Level, Result, Pending, Character;
  const char* Expected;
};

TEST_F(TurnFlowTest, StatusLineOfTheGridFrame) {
  // clang-format off
  const StatusCase cases[] = {
    {"Thinking", 1, 0, 0, 2, 7, "Mickey réfléchit..."},
    {"ThinkingBeatsResult", 1, 0, 2, 2, 7, "Mickey réfléchit..."},
    {"ComputerWon", 1, 1, 2, 1, 11, "Fred Pierrafeu a gagné!"},
    {"HumanWon", 1, 1, 1, 1, 11, "<Votre nom> a gagné!"},
    {"Draw", 1, 1, 3, 1, 0, "Aucun gagnant!"},
    {"TwoPlayerWinner", 2, 1, 2, 2, 0, "Joueur 2 a gagné!"},
    {"TwoPlayerDraw", 2, 0, 3, 1, 0, "Aucun gagnant!"},
    {"Facile", 1, 0, 0, 1, 0, "Facile"},
    {"Normal", 1, 1, 0, 1, 0, "Normal"},
    {"Dur", 1, 2, 0, 1, 0, "Dur"},
    {"Section", 2, 1, 0, 2, 0, "Stats n°2"},
  };
  // clang-format on
  for (const StatusCase& c : cases) {
    ResetAllGlobals();
    NewGame();
    SessionState.GameMode = c.Mode;
    SessionState.Level = c.Level;
    SessionState.GameResult = c.Result;
    SessionState.PendingTurn = c.Pending;
    SessionState.CharacterId = c.Character;
    ComposeFrameLogic();
    EXPECT_EQ(ToUtf8(TextBuffer), c.Expected) << c.Name;
  }
}

class CloseSessionTest : public TurnFlowTest {
 protected:
  void SetUp() override {
    TurnFlowTest::SetUp();
    previous_ = fs::current_path();
    dir_ = fs::temp_directory_path() / ("kalvero-close-" + std::to_string(getpid()));
    fs::create_directories(dir_);
    fs::current_path(dir_);
  }
  void TearDown() override {
    fs::current_path(previous_);
    fs::remove_all(dir_);
  }
  fs::path previous_, dir_;
};

TEST_F(CloseSessionTest, CountsAStartedGameOnceAndSaves) {
  struct Case {
    int32_t Started, Result, QuitByMenu, Lost;
  };
  const Case cases[] = {{1, 0, 0, 1}, {1, 0, 1, 0}, {0, 0, 0, 0}, {1, 2, 0, 0}};
  for (const Case& c : cases) {
    ResetAllGlobals();
    fs::remove("Fichier de sauvegarde");
    SessionState.GameStarted = c.Started;
    SessionState.GameResult = c.Result;
    SessionState.QuitByMenu = c.QuitByMenu;
    CloseSession(StatsSection());
    EXPECT_EQ(StatsTable[0].Lost, c.Lost);
    EXPECT_EQ(FakePlatform.EndLoopCalls, 1);
    EXPECT_EQ(FakePlatform.EndLoopCode, 0);
    EXPECT_EQ(fs::file_size("Fichier de sauvegarde"), 1142u);
  }
}

}  // namespace
