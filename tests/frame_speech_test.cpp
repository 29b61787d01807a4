// The frame in words: what each frame says after the one before, what it reads from the
// session and the board it shows, and the board described column by column.
#include <string>
#include <vector>

#include "engine/engine.h"
#include "ground/session.h"
#include "ground/texts.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "render/board_plan.h"
#include "render/frame_logic.h"
#include "render/frame_speech.h"
#include "shell/turnflow.h"
#include "test_support.h"

namespace {

using FrameSpeechTest = CoreTest;

struct Piece {
  int32_t X, Y, Player;
};

constexpr const char* kTitle1 = "Kalvero 4 v5.5 - Joueur 1";
constexpr const char* kTitle2 = "Kalvero 4 v5.5 - Joueur 2";

// A frame of a 7 x 7 board against Mario, with these pieces and lines.
SpokenFrame Frame(std::vector<Piece> pieces, const char* status, const char* title = kTitle1,
                  bool twoPlayers = false, bool challenge = false, int32_t columns = 7) {
  SpokenFrame frame;
  frame.Columns = columns;
  frame.Opponent = "Mario";
  frame.TwoPlayers = twoPlayers;
  frame.Challenge = challenge;
  frame.Status = status;
  frame.Title = title;
  for (const Piece& p : pieces) frame.Cells[p.X][p.Y] = static_cast<uint8_t>(p.Player);
  return frame;
}

std::string Utf8(const std::string& cp1252) {
  return ToUtf8(cp1252.c_str());
}

TEST_F(FrameSpeechTest, EachFrameSaysWhatIsNewInIt) {
  const auto thinking = Cp1252("Mario réfléchit...");
  const auto won = Cp1252("Mario a gagné!");
  const auto section = Cp1252("Stats n°1");
  // clang-format off
  struct Row { const char* Name; SpokenFrame Before, Now; const char* Said; };
  const Row rows[] = {
    {"NothingNewSaysNothing", Frame({{3, 7, 1}}, "Normal"), Frame({{3, 7, 1}}, "Normal"), ""},
    {"FirstFrameSaysStatusAndTitle", SpokenFrame{}, Frame({}, "Normal"),
     "Normal. Kalvero 4 v5.5 - Joueur 1."},
    {"TheHumansMoveWhileTheComputerThinks", Frame({}, "Normal"), Frame({{3, 7, 1}}, thinking),
     "Vous : colonne 3. Mario réfléchit..."},
    {"TheReplyOnTopOfIt", Frame({{3, 7, 1}}, thinking), Frame({{3, 7, 1}, {3, 6, 2}}, "Normal"),
     "Mario : colonne 3. Normal."},
    {"TwoRepliesAtOnceAreBothSaid", Frame({{3, 7, 1}}, thinking),
     Frame({{3, 7, 1}, {2, 7, 2}, {2, 6, 2}}, "Normal"), "Mario : colonne 2. Mario : colonne 2. Normal."},
    {"TheResult", Frame({{4, 7, 1}}, thinking), Frame({{4, 7, 1}, {5, 7, 2}}, won),
     "Mario : colonne 5. Mario a gagné!"},
    {"TwoPlayersByNumberAndWhoseTurn", Frame({}, section, kTitle1, true),
     Frame({{5, 7, 1}}, section, kTitle2, true),
     "Joueur 1 : colonne 5. Stats n°1. Kalvero 4 v5.5 - Joueur 2."},
    {"SecondPlayer", Frame({{5, 7, 1}}, section, kTitle2, true),
     Frame({{5, 7, 1}, {1, 7, 2}}, section, kTitle1, true),
     "Joueur 2 : colonne 1. Stats n°1. Kalvero 4 v5.5 - Joueur 1."},
    {"ANewGameClearsTheBoard", Frame({{4, 7, 1}, {5, 7, 2}}, won), Frame({}, "Normal"),
     "Nouvelle partie. Normal."},
    {"OnlyTheStatusChanges", Frame({}, "Normal"), Frame({}, "Dur"), "Dur."},
    {"ChallengeWhenItAppears", Frame({}, "Normal"), Frame({}, "Dur", kTitle1, false, true),
     "Dur. Challenge."},
    {"ChallengeNotAgain", Frame({}, "Dur", kTitle1, false, true),
     Frame({{1, 7, 1}}, "Dur", kTitle1, false, true), "Vous : colonne 1. Dur."},
    {"NoStatusLine", Frame({}, "Normal"), Frame({{2, 7, 1}}, ""), "Vous : colonne 2."},
    {"ANewBoardSizeCountsFromNothing", Frame({{1, 7, 1}}, "Normal"),
     Frame({{1, 9, 1}}, "Normal", kTitle1, false, false, 9), "Vous : colonne 1. Normal."},
  };
  // clang-format on
  ForEachRow(rows,
             [](const Row& row) { EXPECT_EQ(Utf8(SayFrame(row.Before, row.Now)), row.Said); });
}

TEST_F(FrameSpeechTest, BoardColumnByColumnFromWherePiecesArrive) {
  // clang-format off
  struct Row { const char* Name; SpokenFrame Frame; bool UpsideDown; const char* Said; };
  const Row rows[] = {
    {"Empty", Frame({}, "", kTitle1, false, false, 3), false,
     "De bas en haut. Colonne 1 : vide. Colonne 2 : vide. Colonne 3 : vide."},
    {"StackedFromTheBottom", Frame({{1, 3, 1}, {1, 2, 2}, {3, 3, 2}}, "", kTitle1, false, false, 3),
     false, "De bas en haut. Colonne 1 : vous, Mario. Colonne 2 : vide. Colonne 3 : Mario."},
    {"AHiddenPieceLeavesAGap", Frame({{2, 1, 1}}, "", kTitle1, false, false, 3), false,
     "De bas en haut. Colonne 1 : vide. Colonne 2 : vide, vide, vous. Colonne 3 : vide."},
    {"UpsideDownFromTheTop", Frame({{2, 1, 1}, {2, 2, 2}}, "", kTitle1, false, false, 3), true,
     "De haut en bas. Colonne 1 : vide. Colonne 2 : vous, Mario. Colonne 3 : vide."},
    {"TwoPlayers", Frame({{1, 2, 2}, {1, 1, 1}}, "", kTitle1, true, false, 2), false,
     "De bas en haut. Colonne 1 : joueur 2, joueur 1. Colonne 2 : vide."},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SpokenFrame frame = row.Frame;
    frame.UpsideDown = row.UpsideDown;
    EXPECT_EQ(Utf8(SayBoard(frame)), row.Said);
  });
}

TEST_F(FrameSpeechTest, ReadsThePiecesTheFrameShows) {
  // Grid column 3: a value in row 7 (the bottom) and one in row 6, and what the screen shows
  // of them in screen rows 7 and 6 (rows 1 and 2 upside down).
  // clang-format off
  struct Row { const char* Name; int32_t Ai, ShowImages; uint8_t Bottom, Above;
               int32_t ScreenBottom, ScreenAbove; uint8_t Shown[2]; };
  const Row rows[] = {
    {"Upright", 0, 1, 1, 2, 7, 6, {1, 2}},
    {"UpsideDown", 13, 1, 1, 2, 1, 2, {1, 2}},
    {"HiddenLetters", 12, 0, 1, 2, 7, 6, {1, 0}},
    {"HiddenStrategyWithPictures", 12, 1, 1, 2, 7, 6, {1, 2}},
    {"LettersOfOtherStrategies", 0, 0, 2, 1, 7, 6, {2, 1}},
    {"MarkedPieces", 0, 1, kMark + 2, kMark + 1, 7, 6, {2, 1}},
    {"MarkedEmptyCell", 0, 1, kMark, 0, 7, 6, {0, 0}},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.AiNumber = row.Ai;
    SessionState.CharacterId = 4;
    SessionState.ShowImages = row.ShowImages;
    Grid[3][7] = row.Bottom;
    Grid[3][6] = row.Above;
    const SpokenFrame frame = SpokenFrameOf(ComposeFrame());
    ASSERT_EQ(frame.Columns, 7);
    EXPECT_EQ(frame.Cells[3][row.ScreenBottom], row.Shown[0]);
    EXPECT_EQ(frame.Cells[3][row.ScreenAbove], row.Shown[1]);
    int32_t pieces = 0;
    for (const auto& column : frame.Cells)
      for (uint8_t cell : column) pieces += cell != 0;
    EXPECT_EQ(pieces, (row.Shown[0] != 0) + (row.Shown[1] != 0));
    EXPECT_EQ(frame.UpsideDown, row.Ai == 13);
  });
}

TEST_F(FrameSpeechTest, ReadsTheLinesOfTheFrame) {
  SessionState.CharacterId = 4;
  SessionState.Level = 1;
  SessionState.Challenge = 1;
  SpokenFrame frame = SpokenFrameOf(ComposeFrame());
  EXPECT_EQ(frame.Status, "Normal");
  EXPECT_EQ(frame.Title, kTitle1);
  EXPECT_TRUE(frame.Challenge);
  EXPECT_EQ(frame.Opponent, "Mario");
  EXPECT_FALSE(frame.TwoPlayers);

  SessionState.Challenge = 0;
  SessionState.GameMode = 2;
  SessionState.CurrentPlayer = 2;
  frame = SpokenFrameOf(ComposeFrame());
  EXPECT_EQ(Utf8(frame.Status), "Stats n°2");
  EXPECT_EQ(frame.Title, kTitle2);
  EXPECT_FALSE(frame.Challenge);
  EXPECT_TRUE(frame.TwoPlayers);
}

TEST_F(FrameSpeechTest, TheEngineBoardIsReadAsShown) {
  SessionState.AiNumber = 10;
  SessionState.CharacterId = 10;
  NewGame();
  ASSERT_TRUE(EnginePlay(1, 2));  // the human, engine column 2: screen column 3, bottom row
  ASSERT_TRUE(EnginePlay(0, 2));  // the engine on top of it
  ASSERT_TRUE(FrameShowsEngineBoard());
  const SpokenFrame frame = SpokenFrameOf(ComposeFrame());
  EXPECT_EQ(frame.Cells[3][7], 1);
  EXPECT_EQ(frame.Cells[3][6], 2);
  EXPECT_EQ(Utf8(SayBoard(frame)).substr(0, 60),
            "De bas en haut. Colonne 1 : vide. Colonne 2 : vide. Colonne ");
  EXPECT_NE(Utf8(SayBoard(frame)).find("Colonne 3 : vous, Coco."), std::string::npos);
}

// A key, the repaint that shows the move, the reply at its end and the repaint that shows
// the reply: what each frame says, through the turn flow as the window drives it.
TEST_F(FrameSpeechTest, AMoveAndItsReplyThroughTheTurnFlow) {
  SessionState.CharacterId = 4;
  SessionState.AiNumber = 4;
  SessionState.Level = 1;
  NewGame();
  SpokenFrame before = SpokenFrameOf(ComposeFrame());
  EXPECT_EQ(Utf8(SayFrame(SpokenFrame{}, before)), "Normal. Kalvero 4 v5.5 - Joueur 1.");
  PlayKey('3');
  SpokenFrame now = SpokenFrameOf(ComposeFrame());
  EXPECT_EQ(Utf8(SayFrame(before, now)), "Vous : colonne 3. Mario réfléchit...");
  RunPendingReplies();
  before = now;
  now = SpokenFrameOf(ComposeFrame());
  const std::string said = Utf8(SayFrame(before, now));
  EXPECT_EQ(said.rfind("Mario : colonne ", 0), 0u) << said;
  EXPECT_TRUE(said.ends_with(". Normal.")) << said;
  PlayKey('9');  // beyond the board: refused, nothing new to say
  EXPECT_EQ(SayFrame(now, SpokenFrameOf(ComposeFrame())), "");
}

}  // namespace
