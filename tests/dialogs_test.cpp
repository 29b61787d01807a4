// The rules of the home, characters and statistics dialogs.
#include <climits>
#include <string>
#include <vector>

#include "dialogs/characters_logic.h"
#include "dialogs/home_logic.h"
#include "dialogs/stats_logic.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "ground/texts.h"
#include "test_support.h"

namespace {

using DialogTest = CoreTest;

TEST_F(DialogTest, CellsTypedGiveTheBoardSizeOrAQuestionOrTheRangeError) {
  // clang-format off
  struct Row { const char* Name; const char* Text; CellsVerdict Verdict; int32_t BoardSize; };
  constexpr CellsVerdict kOut = CellsVerdict::OutOfRange, kAsk = CellsVerdict::AskFirst,
                         kAccept = CellsVerdict::Accept;
  const Row rows[] = {
    {"Empty", "", kOut, 1}, {"Zero", "0", kOut, 1}, {"Negative", " \t-2", kOut, -1},
    {"NoLeadingDigits", "x19", kOut, 1}, {"SignAndBlank", "- 4", kOut, 1}, {"One", "1", kAsk, 2},
    {"Three", "3", kAsk, 4}, {"Four", "4", kAccept, 5}, {"NineteenThenText", "+19x", kAccept, 20},
    {"Twenty", "20", kOut, 21}, {"BeyondTheRange", "99999999999", kOut, INT_MAX},
    {"BelowTheRange", "-99999999999", kOut, INT_MIN + 1},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    int32_t boardSize = 0;
    EXPECT_EQ(CheckCellsText(row.Text, &boardSize), row.Verdict);
    EXPECT_EQ(boardSize, row.BoardSize);
  });
}

TEST_F(DialogTest, AcceptingWritesTheChoicesAndTheStoredSquareSettingAtFirstStart) {
  // clang-format off
  struct Row { const char* Name; HomeChoice Choice; int32_t FirstPaint, GameMode, Level, Challenge,
               AlwaysSquare; };
  const Row rows[] = {
    {"FirstStartTakesTheStoredSquare", {8, false, true, true, false}, 1, 1, 0, 0, 1},
    {"LaterTheOptionStays", {8, false, true, true, false}, 0, 1, 0, 0, 0},
    {"DurWithChallenge", {12, true, true, false, false}, 0, 1, 2, 1, 0},
    {"TwoPlayersSecondSlot", {5, false, false, false, true}, 0, 2, 1, 0, 0},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SettingsBlock[kAlwaysSquareSlot] = 1;
    SessionState.HomeDialogOpen = 1;
    SessionState.FirstPaint = row.FirstPaint;
    AcceptHomeChoice(row.Choice);
    const SessionRecord& s = SessionState;
    EXPECT_EQ((std::vector<int32_t>{s.BoardSize, s.GameMode, s.Level, s.Challenge, s.AlwaysSquare,
                                    s.HomeDialogOpen, s.FirstPaint}),
              (std::vector<int32_t>{row.Choice.BoardSize, row.GameMode, row.Level, row.Challenge,
                                    row.AlwaysSquare, 0, 0}));
  });
}

TEST_F(DialogTest, CharactersOkTakesEverythingThenJudgesTheStrategy) {
  // The strategy is read from its first two characters; strategy 10 asks first on any board
  // but seven cells a side. Stored: the name as kept, nothing of the earlier name behind it.
  // clang-format off
  struct Row { const char* Name; int32_t BoardSize; const char* PlayerName, *Strategy;
               StrategyVerdict Verdict; int32_t AiNumber; std::string Stored; };
  constexpr StrategyVerdict kOk = StrategyVerdict::Accept, kOut = StrategyVerdict::OutOfRange,
                            kAsk = StrategyVerdict::AskCocoBoard;
  const Row rows[] = {
    {"EmptyIsZero", 8, "Bo", "", kOk, 0, "Bo"}, {"HighestOnAnyBoard", 12, "Bo", "13", kOk, 13, "Bo"},
    {"Fourteen", 8, "Bo", "14", kOut, 14, "Bo"}, {"MinusOne", 8, "Bo", "-1", kOut, -1, "Bo"},
    {"TwoCharactersOnly", 8, "Bo", "-12", kOut, -1, "Bo"}, {"LetterEnds", 8, "Bo", "7a", kOk, 7, "Bo"},
    {"SearcherOnSevenCells", 8, "Bo", "10", kOk, 10, "Bo"},
    {"HundredAsksForTheSearcher", 12, "Bo", "100", kAsk, 10, "Bo"},
    {"LongNameIsCut", 8, "abcdefghijklmnopqrstuvwxyz0123", "0", kOk, 0, "abcdefghijklmnopqrstuvwx"},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.BoardSize = row.BoardSize;
    EXPECT_EQ(AcceptCharactersOk(1, row.PlayerName, row.Strategy), row.Verdict);
    // The character, the name and the number are taken even when the dialog stays open.
    EXPECT_EQ(SessionState.CharacterId, 1);
    EXPECT_EQ(SessionState.AiNumber, row.AiNumber);
    EXPECT_EQ(SessionState.BoardSize, row.BoardSize);
    const std::string field(SessionState.PlayerName, sizeof SessionState.PlayerName);
    EXPECT_EQ(field, row.Stored + std::string(field.size() - row.Stored.size(), '\0'));
  });
}

TEST_F(DialogTest, VerdictChangesAtOnePercentThenEveryFivePercent) {
  EXPECT_EQ(ToUtf8(VerdictFor(1, 199)), "Vraiment nul!");  // half a percent is not one
  EXPECT_EQ(ToUtf8(VerdictFor(96, 4)), "Ca c'est ben la mort qui tue!");
  // Won and lost out of 100 decided games give the percentage itself.
  std::string previous;
  for (uint16_t p = 0; p < 100; ++p) {
    const std::string verdict = VerdictFor(p, static_cast<uint16_t>(100 - p));
    EXPECT_EQ(verdict != previous, p == 0 || p % 5 == 1) << p << "%";
    previous = verdict;
  }
}

TEST_F(DialogTest, StatsTextsOfTheCurrentSection) {
  // clang-format off
  struct Row { const char* Name; int32_t GameMode, AiNumber, Level, Challenge, Section;
               uint16_t Won, Lost; const char* Share, *Mode; };
  const Row rows[] = {
    {"NothingDecided", 1, 0, 0, 0, 0, 0, 0, "0.00%", "1 joueurs (section 1)"},
    {"NeverLost", 1, 0, 2, 1, 3, 3, 0, "100.00%", "1 joueurs (section 4)"},
    {"OneInThree", 2, 0, 2, 0, 58, 1, 2, "33.33%", "2 joueurs (section 59)"},
    {"TwoInThree", 1, 13, 0, 0, 52, 2, 1, "66.67%", "1 joueurs (section 53)"},
    {"HalfAPercentRoundsDown", 1, 0, 1, 0, 1, 1, 199, "0.50%", "1 joueurs (section 2)"},
    {"NinetyFive", 1, 0, 0, 0, 0, 19, 1, "95.00%", "1 joueurs (section 1)"},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    SessionState.GameMode = row.GameMode;
    SessionState.AiNumber = row.AiNumber;
    SessionState.Level = row.Level;
    SessionState.Challenge = row.Challenge;
    StatsTable[row.Section] = {5, row.Won, row.Lost, {0, 0, 0}};
    const StatsTexts t = StatsDialogTexts();
    EXPECT_EQ(ToUtf8(t.Played.c_str()), "Parties jouées:\t 5");
    EXPECT_EQ(ToUtf8(t.Won.c_str()), "Parties gagnées:\t " + std::to_string(row.Won));
    EXPECT_EQ(t.Lost, "Parties perdues:\t " + std::to_string(row.Lost));
    EXPECT_EQ(t.Share, std::string("Moyennant:\t\t ") + row.Share);
    EXPECT_EQ(t.Verdict, VerdictFor(row.Won, row.Lost));  // the verdict of this section
    EXPECT_EQ(t.Mode, row.Mode);
  });
}

}  // namespace
