// The dialogs' steps as every front end runs them: over a set of fake controls that a test
// fills as a player would, with the boxes answered from the test's list.
#include <map>
#include <string>
#include <vector>

#include "dialogs/dialog_host.h"
#include "dialogs/dialog_steps.h"
#include "ground/platform.h"
#include "ground/session.h"
#include "resources/resource.h"
#include "test_support.h"

namespace {

struct FakeDialogRecord {
  std::map<int32_t, bool> Checked;
  std::map<int32_t, std::string> Texts;
  std::vector<std::string> List;
  int32_t Selection = -1;
  int32_t Ended = 0;  // the button that closed the dialog, 0 while open
};

FakeDialogRecord Dialog;

class DialogStepsTest : public CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    Dialog = FakeDialogRecord{};
  }
};

// A player's use of the open dialog: check or uncheck controls, type a text, then press.
struct Use {
  std::map<int32_t, bool> Check;
  std::map<int32_t, std::string> Type;
  int32_t Press = kOkControl;
};

void Apply(const Use& use) {
  for (const auto& [control, checked] : use.Check) Dialog.Checked[control] = checked;
  for (const auto& [control, text] : use.Type) Dialog.Texts[control] = text;
}

TEST_F(DialogStepsTest, HomeDialogChecksThenTakesTheChoice) {
  // Boards: typed cells and the answers to give; Quit: the program ends. Challenge stays only
  // for one player at "Dur", unchecked (with its box) before the choice is taken.
  // clang-format off
  struct Row { const char* Name; Use Player; std::vector<int32_t> Answers; int32_t Ended, BoardSize,
               GameMode, Level, Challenge, Boxes, Quit; const char* Group; };
  const Row rows[] = {
    {"Defaults", {{}, {}, kOkControl}, {}, kOkControl, 8, 1, 0, 0, 0, 0, "Niveau"},
    {"HardWithChallenge", {{{IDC_HOME_LEVEL_1, false}, {IDC_HOME_LEVEL_3, true},
                            {IDC_HOME_CHALLENGE, true}}, {{IDC_HOME_CELLS, "12"}}, kOkControl}, {},
     kOkControl, 13, 1, 2, 1, 0, 0, "Niveau"},
    {"ChallengeUncheckedForTwoPlayers", {{{IDC_HOME_ONE_PLAYER, false}, {IDC_HOME_TWO_PLAYERS, true},
                                          {IDC_HOME_LEVEL_1, false}, {IDC_HOME_LEVEL_3, true},
                                          {IDC_HOME_CHALLENGE, true}}, {}, kOkControl}, {},
     kOkControl, 8, 2, 2, 0, 1, 0, "Stats"},
    {"TinyBoardDeclinedStaysOpen", {{}, {{IDC_HOME_CELLS, "2"}}, kOkControl}, {kAnswerNo}, 0, 8, 1, 0, 0, 1, 0, "Niveau"},
    {"TinyBoardConfirmed", {{}, {{IDC_HOME_CELLS, "2"}}, kOkControl}, {kAnswerYes}, kOkControl, 3, 1, 0, 0, 1, 0, "Niveau"},
    {"TwentyStaysOpen", {{}, {{IDC_HOME_CELLS, "20"}}, kOkControl}, {}, 0, 8, 1, 0, 0, 1, 0, "Niveau"},
    {"CancelEndsTheProgram", {{{IDC_HOME_TWO_PLAYERS, true}}, {}, kCancelControl}, {},
     kCancelControl, 8, 1, 0, 0, 0, 1, "Stats"},
    {"ARadioButtonOnlyRelabels", {{{IDC_HOME_ONE_PLAYER, false}, {IDC_HOME_TWO_PLAYERS, true}}, {},
                                  IDC_HOME_TWO_PLAYERS}, {}, 0, 8, 1, 0, 0, 0, 0, "Stats"},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    Dialog = FakeDialogRecord{};
    FakePlatform.Answers = row.Answers;
    OpenHomeDialog();
    EXPECT_EQ(Dialog.Texts[IDC_HOME_CELLS], "7");
    EXPECT_TRUE(Dialog.Checked[IDC_HOME_ONE_PLAYER] && Dialog.Checked[IDC_HOME_LEVEL_1]);
    Apply(row.Player);
    HomeDialogCommand(row.Player.Press);
    const SessionRecord& s = SessionState;
    EXPECT_EQ(Dialog.Ended, row.Ended);
    EXPECT_EQ((std::vector<int32_t>{s.BoardSize, s.GameMode, s.Level, s.Challenge}),
              (std::vector<int32_t>{row.BoardSize, row.GameMode, row.Level, row.Challenge}));
    EXPECT_EQ(static_cast<int32_t>(FakePlatform.Questions.size()), row.Boxes);
    EXPECT_EQ(s.QuitRequested, row.Quit);
    EXPECT_EQ(FakePlatform.EndLoopCalls, row.Quit);
    EXPECT_EQ(s.HomeDialogOpen, row.Ended == kOkControl ? 0 : 1);
    EXPECT_EQ(Dialog.Texts[IDC_HOME_LEVEL_GROUP], row.Group);
  });
}

TEST_F(DialogStepsTest, CharactersDialogProposesTheStrategyAndJudgesIt) {
  // Choosing character 3 in the list proposes strategy 3; the player may type another one.
  // clang-format off
  struct Row { const char* Name; int32_t BoardSize; const char* Typed; std::vector<int32_t> Answers;
               bool Ends; int32_t AiNumber, NewBoardSize, Boxes; };
  const Row rows[] = {
    {"TheCharactersOwn", 12, nullptr, {}, true, 3, 12, 0},
    {"AnotherTyped", 12, "5", {}, true, 5, 12, 0},
    {"OutOfRangeStaysOpen", 12, "14", {}, false, 14, 12, 1},
    {"SearcherMovesToSevenCells", 12, "10", {kAnswerOk}, true, 10, 8, 1},
    {"SearcherDeclinedStaysOpen", 12, "10", {kAnswerCancel}, false, 10, 12, 1},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    Dialog = FakeDialogRecord{};
    FakePlatform.Answers = row.Answers;
    SessionState.BoardSize = row.BoardSize;
    OpenCharactersDialog();
    EXPECT_EQ(Dialog.List.size(), 14u);
    EXPECT_EQ(Dialog.Selection, 0);
    Dialog.Selection = 3;
    EXPECT_FALSE(CharactersDialogCommand(IDC_CHARACTERS_LIST));
    EXPECT_EQ(Dialog.Texts[IDC_CHARACTERS_AI_NUMBER], "3");
    EXPECT_EQ(SessionState.CharacterId, 3);
    EXPECT_GE(FakePlatform.RepaintRequests, 1);  // the portrait behind the dialog follows
    if (row.Typed != nullptr) Dialog.Texts[IDC_CHARACTERS_AI_NUMBER] = row.Typed;
    Dialog.Texts[IDC_CHARACTERS_NAME] = "Aline";
    EXPECT_EQ(CharactersDialogCommand(kOkControl), row.Ends);
    EXPECT_EQ(Dialog.Ended, row.Ends ? kOkControl : 0);
    EXPECT_EQ(SessionState.AiNumber, row.AiNumber);
    EXPECT_EQ(SessionState.BoardSize, row.NewBoardSize);
    EXPECT_STREQ(SessionState.PlayerName, "Aline");
    EXPECT_EQ(static_cast<int32_t>(FakePlatform.Questions.size()), row.Boxes);
  });
}

TEST_F(DialogStepsTest, OnlyTheirOwnButtonsCloseStatisticsAndAbout) {
  StatsDialogCommand(kCancelControl);  // Escape
  EXPECT_EQ(Dialog.Ended, 0);
  StatsDialogCommand(kOkControl);
  EXPECT_EQ(Dialog.Ended, kOkControl);
  Dialog.Ended = 0;
  AboutDialogCommand(kCancelControl);
  EXPECT_EQ(Dialog.Ended, kCancelControl);
}

}  // namespace

// The fake controls of the open dialog.
bool DialogChecked(int32_t control) {
  return Dialog.Checked[control];
}
void SetDialogChecked(int32_t control, bool checked) {
  Dialog.Checked[control] = checked;
}
std::string DialogText(int32_t control, int32_t capacity) {
  return Dialog.Texts[control].substr(0, static_cast<size_t>(capacity - 1));
}
void SetDialogText(int32_t control, const char* text) {
  Dialog.Texts[control] = text;
}
void AddDialogListEntry(int32_t, const char* text) {
  Dialog.List.emplace_back(text);
}
int32_t DialogListSelection(int32_t) {
  return Dialog.Selection;
}
void SetDialogListSelection(int32_t, int32_t index) {
  Dialog.Selection = index;
}
void EndOpenDialog(int32_t result) {
  Dialog.Ended = result;
}
int32_t AskFromDialog(const char* text, const char* title, uint32_t flags, BoxOwner) {
  return AskUser(text, title, flags);
}
