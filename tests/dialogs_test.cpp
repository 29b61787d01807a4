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

// The verdicts, each from its first whole percentage of wins up to the next one's.
// clang-format off
struct Verdict { int FirstPercent; const char* Text; };
const Verdict kVerdicts[21] = {
  {0, "Vraiment nul!"}, {1, "Tu ne sait pas jouer?"}, {6, "Argh... Trop déçu!"},
  {11, "Hm... Ca s'améliore pas!"}, {16, "Non. Ce n'est pas bon."}, {21, "Bof. Très médiocre."},
  {26, "Décevant..."}, {31, "A la limite. Ca va mieux!"}, {36, "Ca commence à venir!?"},
  {41, "Continue à bosser!"}, {46, "Moyen. Mais pas trop mal!"},
  {51, "Pas mal, mais ne t'arrête pas!"}, {56, "Vas-y! Continue!"}, {61, "De mieux en mieux!"},
  {66, "Chouette! Ca c'est beau!"}, {71, "Hey! Molo avec l'ordi là!"}, {76, "Très bien!"},
  {81, "Excellent!"}, {86, "Vraiment superbe!"}, {91, "Cherche toi un autre adversaire!"},
  {96, "Ca c'est ben la mort qui tue!"},
};
// clang-format on

TEST_F(DialogTest, VerdictChangesAtEveryBoundaryOfItsTable) {
  // Won and lost out of 100 decided games give the percentage itself.
  for (int p = 0; p < 100; ++p) {
    int k = 20;
    while (kVerdicts[k].FirstPercent > p) --k;
    EXPECT_EQ(ToUtf8(VerdictFor(static_cast<uint16_t>(p), static_cast<uint16_t>(100 - p))),
              kVerdicts[k].Text)
        << p << "%";
  }
}

TEST_F(DialogTest, StatsTextsOfTheCurrentSection) {
  // clang-format off
  struct Row { const char* Name; int32_t GameMode, AiNumber, Level, Challenge, Section;
               uint16_t Won, Lost; const char* Share; int32_t Verdict; const char* Mode; };
  const Row rows[] = {
    {"NothingDecided", 1, 0, 0, 0, 0, 0, 0, "0.00%", 0, "1 joueurs (section 1)"},
    {"NeverLost", 1, 0, 2, 1, 3, 3, 0, "100.00%", 20, "1 joueurs (section 4)"},
    {"OneInThree", 2, 0, 2, 0, 58, 1, 2, "33.33%", 7, "2 joueurs (section 59)"},
    {"TwoInThree", 1, 13, 0, 0, 52, 2, 1, "66.67%", 14, "1 joueurs (section 53)"},
    {"HalfAPercentRoundsDown", 1, 0, 1, 0, 1, 1, 199, "0.50%", 0, "1 joueurs (section 2)"},
    {"NinetyFive", 1, 0, 0, 0, 0, 19, 1, "95.00%", 19, "1 joueurs (section 1)"},
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
    EXPECT_EQ(ToUtf8(t.Verdict.c_str()), kVerdicts[row.Verdict].Text);
    EXPECT_EQ(t.Mode, row.Mode);
  });
}

}  // namespace
