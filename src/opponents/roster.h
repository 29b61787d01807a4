// The fourteen characters and what each strategy number changes. CharacterId says who is shown
// (names, portrait, colour); AiNumber says how the computer plays and which rule variant holds.
#pragma once

#include <cstdint>

#include "ground/texts.h"

constexpr int32_t kRosterSize = 14;
constexpr int32_t kPlies = 6;
constexpr int32_t kFirstPortrait = 30000;

// Names and description in Windows-1252, each in a field with room for its zero byte.
struct Character {
  Cp1252Text<20> FullName;
  Cp1252Text<20> ShortName;
  Cp1252Text<128> Description;  // "\n" breaks the line
};

// Indexed by CharacterId, 0..13.
extern const Character Roster[kRosterSize];

// Weights of the look-ahead, by AiNumber and ply 1..6 (index ply - 1). Odd plies are the
// computer's lines (added), even plies the human's (subtracted).
extern const int32_t PlyWeights[kRosterSize][kPlies];

// Whether a number indexes the roster's tables.
inline bool IsRosterIndex(int32_t n) {
  return n >= 0 && n < kRosterSize;
}

// The roster entry of a CharacterId; a number outside the roster shows the first character.
inline const Character& RosterEntry(int32_t characterId) {
  return Roster[IsRosterIndex(characterId) ? characterId : 0];
}

// Fills RunNeeded-style needs (pairs by cell value 0, 1, 2) for a strategy: four in a row for
// both sides, three for the computer with strategy 3, five for both with strategy 11.
void RunNeededFor(int32_t aiNumber, int32_t needs[3]);

// The rule variants, by strategy number.
inline bool PlaysWithEngine(int32_t aiNumber) {
  return aiNumber == 10;
}
inline bool HasCeilingRule(int32_t aiNumber) {
  return aiNumber == 6;
}
inline bool DrawsUpsideDown(int32_t aiNumber) {
  return aiNumber == 13;
}
inline bool HidesLetters(int32_t aiNumber) {
  return aiNumber == 12;
}
inline bool CutsBelowLines(int32_t aiNumber) {
  return aiNumber == 2 || aiNumber == 12;
}
inline bool HasOpeningPatterns(int32_t aiNumber) {
  return aiNumber == 7;
}
inline bool HasSurplusCount(int32_t aiNumber) {
  return aiNumber == 8;
}

// The bitmap resource of a character's portrait.
inline int32_t PortraitResource(int32_t characterId) {
  return kFirstPortrait + characterId;
}
