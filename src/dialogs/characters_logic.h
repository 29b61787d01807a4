// The characters dialog's decisions: what choosing a character in the list does, how the
// player's name and the strategy number are taken, and which strategy numbers are refused or
// need a question. The dialog procedure reads and writes its controls and asks; the rules
// live here.
#pragma once

#include <cstdint>

#include "ground/texts.h"

inline constexpr int32_t kNameCharacters = 24;

inline constexpr auto kCharactersHelp = Cp1252(
    "Sélectionnez le personnage contre lequel vous souhaitez vous battre dans la liste "
    "déroulante à gauche. \nChacun de ces persos ont des propriétés différentes, des règles "
    "ou encore des IA à eux.\nMais vous pouvez assigner l'IA d'un autre à un perso. Par "
    "exemple, vous pourriez jouer contre Sonic avec l'IA de l'ordi (standard). Donc, "
    "sélectionnez Sonic et mettez 0 dans la case N° d'IA (car l'ordi est le perso 0, sonic le "
    "1, tails le 2, etc.)\nCliquez sur Ok lorsque tout est Okèèè.");
inline constexpr auto kCharactersHelpTitle = Cp1252("Ch'tite aide");
inline constexpr auto kStrategyRangeMessage =
    Cp1252("Les valeurs pour le contexte de l'IA vont de 0 à 13");
inline constexpr auto kStrategyRangeTitle = Cp1252("Déçu");
inline constexpr auto kCocoBoardMessage =
    Cp1252("Pour Coco, (IA=10) le nombre de cases est automatiquement sept.");
inline constexpr auto kCocoBoardTitle = Cp1252("Attention");

// Reads the strategy number from at most the first two characters of the field, as atoi would
// read them: "100" reads as 10, "-1" as -1, an empty field as 0.
int32_t ReadStrategyNumber(const char* text);

// Choosing list entry `index`: CharacterId follows it at once. Returns the description to show,
// or nullptr when the index is not a character (no selection).
const char* SelectCharacter(int32_t index);

// What "OK" does after taking the character, the name and the strategy number.
enum class StrategyVerdict {
  OutOfRange,    // the range message, the dialog stays open
  AskCocoBoard,  // the searching character needs seven cells a side: ask, OK sets it
  Accept,
};

// Takes the selected character, the first 24 characters of the name and the strategy number
// into the session (even when the dialog then stays open), and judges the number.
StrategyVerdict AcceptCharactersOk(int32_t index, const char* name, const char* strategyText);

// The answer OK to the question about the searching character's board: seven cells a side.
void UseEngineBoardSize();
