// The rules of the home, characters and statistics dialogs.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "dialogs/characters_logic.h"
#include "dialogs/dialog_text.h"
#include "dialogs/home_logic.h"
#include "dialogs/stats_logic.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "ground/texts.h"
#include "opponents/roster.h"
#include "test_support.h"

namespace {

using DialogTest = CoreTest;

TEST_F(DialogTest, NumbersAreReadLikeAtoi) {
  struct Case {
    const char* text;
    int32_t value;
  };
  // clang-format off
  const Case cases[] = {
    {"", 0}, {"7", 7}, {"  12", 12}, {"\t-3", -3}, {"+5", 5}, {"19x", 19}, {"x19", 0}, {"- 4", 0},
    {"--4", 0}, {"007", 7}, {"2147483647", INT_MAX}, {"99999999999", INT_MAX},
    {"-2147483648", INT_MIN}, {"-99999999999", INT_MIN},
  };
  // clang-format on
  for (const Case& c : cases) EXPECT_EQ(ReadLeadingNumber(c.text), c.value) << c.text;
}

TEST_F(DialogTest, CellsTypedGiveTheBoardSizeOrAQuestionOrTheRangeError) {
  struct Case {
    const char* text;
    CellsVerdict verdict;
    int32_t boardSize;
  };
  constexpr CellsVerdict kOut = CellsVerdict::OutOfRange, kAsk = CellsVerdict::AskFirst,
                         kAccept = CellsVerdict::Accept;
  // clang-format off
  const Case cases[] = {
    {"", kOut, 1}, {"0", kOut, 1}, {"-2", kOut, -1}, {"abc", kOut, 1}, {"1", kAsk, 2},
    {"3", kAsk, 4}, {"4", kAccept, 5}, {"7", kAccept, 8}, {"19", kAccept, 20}, {"20", kOut, 21},
    {"2147483647", kOut, INT_MAX},
  };
  // clang-format on
  for (const Case& c : cases) {
    int32_t boardSize = 0;
    EXPECT_EQ(CheckCellsText(c.text, &boardSize), c.verdict) << c.text;
    EXPECT_EQ(boardSize, c.boardSize) << c.text;
  }
  EXPECT_EQ(CellsShownFor(8), 7);
}

TEST_F(DialogTest, ChallengeHoldsOnlyForOnePlayerAtDur) {
  struct Case {
    bool challenge, hard, twoPlayers, inconsistent;
  };
  // clang-format off
  const Case cases[] = {
    {false, false, false, false}, {false, true, true, false}, {true, true, false, false},
    {true, false, false, true}, {true, true, true, true}, {true, false, true, true},
  };
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_EQ(ChallengeIsInconsistent(c.challenge, c.hard, c.twoPlayers), c.inconsistent)
        << c.challenge << c.hard << c.twoPlayers;
  }
}

TEST_F(DialogTest, LevelGroupIsRelabelledByMode) {
  const char* expected[2][4] = {{"Niveau", "Facile", "Normal", "Dur"},
                                {"Stats", "Case 1", "Case 2", "Case 3"}};
  for (bool twoPlayers : {false, true}) {
    const LevelLabels& labels = LevelLabelsFor(twoPlayers);
    const char* const* want = expected[twoPlayers];
    EXPECT_EQ(std::vector<std::string>(
                  {labels.Group, labels.Levels[0], labels.Levels[1], labels.Levels[2]}),
              std::vector<std::string>(want, want + 4));
  }
}

TEST_F(DialogTest, AcceptingWritesTheChoicesAndTheStoredSquareSettingAtFirstStart) {
  struct Case {
    HomeChoice choice;
    int32_t firstPaint;
    int32_t gameMode, level, challenge, alwaysSquare;
  };
  // First start: slot 10 applies; later the option stays. The last: two players, second slot.
  // clang-format off
  const Case cases[] = {
    {{8, false, true, true, false}, 1, 1, 0, 0, 1},
    {{8, false, true, true, false}, 0, 1, 0, 0, 0},
    {{12, true, true, false, false}, 0, 1, 2, 1, 0},
    {{5, false, false, false, true}, 0, 2, 1, 0, 0},
  };
  // clang-format on
  for (const Case& c : cases) {
    ResetAllGlobals();
    SettingsBlock[kAlwaysSquareSlot] = 1;
    SessionState.HomeDialogOpen = 1;
    SessionState.FirstPaint = c.firstPaint;
    AcceptHomeChoice(c.choice);
    const SessionRecord& s = SessionState;
    EXPECT_EQ((std::vector<int32_t>{s.BoardSize, s.GameMode, s.Level, s.Challenge, s.AlwaysSquare,
                                    s.HomeDialogOpen, s.FirstPaint}),
              (std::vector<int32_t>{c.choice.BoardSize, c.gameMode, c.level, c.challenge,
                                    c.alwaysSquare, 0, 0}));
  }
}

TEST_F(DialogTest, TwoPlayersSkipTheCharactersDialogAndPlayStrategyZero) {
  SessionState.AiNumber = 6;
  EXPECT_TRUE(CharactersDialogFollows());
  EXPECT_EQ(SessionState.AiNumber, 6);
  SessionState.GameMode = 2;
  EXPECT_FALSE(CharactersDialogFollows());
  EXPECT_EQ(SessionState.AiNumber, 0);
}

TEST_F(DialogTest, StrategyNumberIsReadFromTwoCharactersAtMost) {
  struct Case {
    const char* text;
    int32_t value;
  };
  // clang-format off
  const Case cases[] = {
    {"", 0}, {"0", 0}, {"13", 13}, {"100", 10}, {"-1", -1}, {"99", 99}, {"7a", 7}, {" 5", 5},
    {"a5", 0}, {"-12", -1},
  };
  // clang-format on
  for (const Case& c : cases) EXPECT_EQ(ReadStrategyNumber(c.text), c.value) << c.text;
}

TEST_F(DialogTest, ChoosingInTheListShowsTheCharacterAtOnce) {
  EXPECT_EQ(SelectCharacter(1), Roster[1].Description);
  EXPECT_EQ(SessionState.CharacterId, 1);
  EXPECT_EQ(SelectCharacter(13), Roster[13].Description);
  EXPECT_EQ(SelectCharacter(-1), nullptr);  // no selection: nothing to describe
}

TEST_F(DialogTest, CharactersOkTakesEverythingThenJudgesTheStrategy) {
  struct Case {
    int32_t boardSize;
    const char* strategy;
    StrategyVerdict verdict;
    int32_t aiNumber;
  };
  constexpr StrategyVerdict kOk = StrategyVerdict::Accept, kOut = StrategyVerdict::OutOfRange;
  // Strategy 10 on seven cells a side is accepted; on any other board it asks first.
  // clang-format off
  const Case cases[] = {
    {8, "0", kOk, 0}, {8, "", kOk, 0}, {12, "13", kOk, 13}, {8, "14", kOut, 14},
    {8, "99", kOut, 99}, {8, "-1", kOut, -1}, {8, "10", kOk, 10},
    {12, "100", StrategyVerdict::AskCocoBoard, 10},
  };
  // clang-format on
  for (const Case& c : cases) {
    ResetAllGlobals();
    SessionState.BoardSize = c.boardSize;
    EXPECT_EQ(AcceptCharactersOk(1, "Alice", c.strategy), c.verdict) << c.strategy;
    // The character, the name and the number are taken even when the dialog stays open.
    EXPECT_EQ(SessionState.CharacterId, 1);
    EXPECT_STREQ(SessionState.PlayerName, "Alice");
    EXPECT_EQ(SessionState.AiNumber, c.aiNumber);
    EXPECT_EQ(SessionState.BoardSize, c.boardSize);
  }
  UseEngineBoardSize();
  EXPECT_EQ(SessionState.BoardSize, 8);
}

TEST_F(DialogTest, NameIsCutToTwentyFourCharactersWithNothingOfTheOldOneLeft) {
  AcceptCharactersOk(0, "abcdefghijklmnopqrstuvwxyz0123", "0");
  EXPECT_STREQ(SessionState.PlayerName, "abcdefghijklmnopqrstuvwx");
  AcceptCharactersOk(0, "Bo", "0");
  EXPECT_STREQ(SessionState.PlayerName, "Bo");
  for (size_t i = 2; i < sizeof SessionState.PlayerName; ++i) {
    EXPECT_EQ(SessionState.PlayerName[i], 0) << i;
  }
}

TEST_F(DialogTest, ShareOfWinsIsFormattedWithTwoDecimals) {
  struct Case {
    uint16_t won, lost;
    const char* text;
  };
  // clang-format off
  const Case cases[] = {
    {0, 0, "0.00%"}, {3, 0, "100.00%"}, {1, 2, "33.33%"}, {1, 199, "0.50%"}, {0, 5, "0.00%"},
    {2, 1, "66.67%"}, {65535, 1, "100.00%"},
  };
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_EQ(ShareOfWinsText(c.won, c.lost), std::string("Moyennant:\t\t ") + c.text);
  }
}

TEST_F(DialogTest, VerdictChangesAtEveryFifthPercent) {
  // Won and lost out of 100 decided games give the percentage itself.
  std::string expected[101];
  const std::string verdicts[21] = {"Vraiment nul!",
                                    "Tu ne sait pas jouer?",
                                    "Argh... Trop déçu!",
                                    "Hm... Ca s'améliore pas!",
                                    "Non. Ce n'est pas bon.",
                                    "Bof. Très médiocre.",
                                    "Décevant...",
                                    "A la limite. Ca va mieux!",
                                    "Ca commence à venir!?",
                                    "Continue à bosser!",
                                    "Moyen. Mais pas trop mal!",
                                    "Pas mal, mais ne t'arrête pas!",
                                    "Vas-y! Continue!",
                                    "De mieux en mieux!",
                                    "Chouette! Ca c'est beau!",
                                    "Hey! Molo avec l'ordi là!",
                                    "Très bien!",
                                    "Excellent!",
                                    "Vraiment superbe!",
                                    "Cherche toi un autre adversaire!",
                                    "Ca c'est ben la mort qui tue!"};
  expected[0] = verdicts[0];
  for (int p = 1; p <= 100; ++p) expected[p] = verdicts[p >= 96 ? 20 : (p + 4) / 5];
  for (int p = 0; p < 100; ++p) {
    EXPECT_EQ(ToUtf8(VerdictFor(static_cast<uint16_t>(p), static_cast<uint16_t>(100 - p))),
              expected[p])
        << p << "%";
  }
  // Percentages are whole numbers rounded down.
  struct Case {
    uint16_t won, lost;
    int verdict;
  };
  // clang-format off
  const Case cases[] = {
    {0, 0, 0}, {5, 0, 20}, {1, 199, 0}, {1, 2, 7}, {19, 1, 19}, {99, 1, 20}, {1, 0, 20},
    {0, 3, 0},
  };
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_EQ(ToUtf8(VerdictFor(c.won, c.lost)), verdicts[c.verdict]) << c.won << "/" << c.lost;
  }
}

TEST_F(DialogTest, StatsTextsShowTheRecordOfTheCurrentSection) {
  struct Case {
    int32_t gameMode, aiNumber, level, challenge, section;
    const char* mode;
  };
  // clang-format off
  const Case cases[] = {
    {1, 0, 2, 1, 3, "1 joueurs (section 4)"}, {2, 0, 2, 0, 58, "2 joueurs (section 59)"},
    {1, 13, 0, 0, 52, "1 joueurs (section 53)"},
  };
  // clang-format on
  for (const Case& c : cases) {
    ResetAllGlobals();
    SessionState.GameMode = c.gameMode;
    SessionState.AiNumber = c.aiNumber;
    SessionState.Level = c.level;
    SessionState.Challenge = c.challenge;
    StatsTable[c.section] = {5, 1, 2, {0, 0, 0}};
    const StatsTexts t = StatsDialogTexts();
    EXPECT_EQ(ToUtf8(t.Played.c_str()), "Parties jouées:\t 5");
    EXPECT_EQ(ToUtf8(t.Won.c_str()), "Parties gagnées:\t 1");
    EXPECT_EQ(t.Lost, "Parties perdues:\t 2");
    EXPECT_EQ(t.Share, "Moyennant:\t\t 33.33%");
    EXPECT_EQ(t.Verdict, "A la limite. Ca va mieux!");
    EXPECT_EQ(t.Mode, c.mode);
  }
}

}  // namespace
