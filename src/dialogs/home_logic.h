// The home dialog's decisions: the labels of the level group by mode, the challenge rule, the
// board size typed by the player, and what confirming writes into the session. The dialog
// procedure reads and writes its controls and asks the questions; the rules live here.
#pragma once

#include <cstdint>

#include "ground/texts.h"

inline constexpr auto kChallengeMessage =
    Cp1252("Le challenge n'est applicable qu'en mode 1 joueur dur.");
inline constexpr auto kChallengeTitle = Cp1252("Mince alors!");
inline constexpr auto kCellsRangeMessage = Cp1252(
    "La gamme des valeurs pour le nombre de cases est limitée à dix-neuf!\n"
    "C'est déjà bien assez je crois...");
inline constexpr auto kCellsRangeTitle = Cp1252("Trop la deception");
inline constexpr auto kTinyBoardQuestion = Cp1252(
    "Il va de soi que le jeu prend un intérêt sublime avec un tel nombre de cases...\n"
    "Il me semble inutile de vous demander si vous voulez tout de même appliquer ces "
    "paramètres hm...\nEt pourtant c'est bien ce que je suis en train de faire!");
inline constexpr auto kTinyBoardTitle = Cp1252("Vous ne seriez pas blonde par hasard?");

// The texts of the level group: "Niveau" and the levels for one player, "Stats" and the
// statistics slots for two.
struct LevelLabels {
  const char* Group;
  const char* Levels[3];
};

const LevelLabels& LevelLabelsFor(bool twoPlayers);

// Whether a checked "Challenge" must be unchecked: it applies only to one player at "Dur".
bool ChallengeIsInconsistent(bool challenge, bool hard, bool twoPlayers);

// The number of cells a side shown in the edit for a BoardSize (one less than it).
int32_t CellsShownFor(int32_t boardSize);

// What "OK" does with the typed number of cells a side.
enum class CellsVerdict {
  OutOfRange,  // below 1 or above 19: the range error, the dialog stays open
  AskFirst,    // 1 to 3: accepted only if the player confirms the question
  Accept,      // 4 to 19
};

// Reads the edit's text; *boardSize receives the typed number + 1 whatever the verdict.
CellsVerdict CheckCellsText(const char* text, int32_t* boardSize);

// The state of the dialog's controls when "OK" passes every check.
struct HomeChoice {
  int32_t BoardSize;
  bool Challenge;
  bool OnePlayer;
  bool FirstLevel;   // the first button of the level group
  bool SecondLevel;  // the second; neither means the third
};

// Writes the choice into the session and closes the dialog's state: HomeDialogOpen cleared,
// and at the first start the stored "Troujours carré" setting applied before FirstPaint is
// cleared.
void AcceptHomeChoice(const HomeChoice& choice);

// After the home dialog: whether the characters dialog follows (one player); for two players
// the computer's strategy is set to 0 instead.
bool CharactersDialogFollows();
