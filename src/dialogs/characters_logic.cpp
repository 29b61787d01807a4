#include "dialogs/characters_logic.h"

#include <cstring>

#include "dialogs/dialog_text.h"
#include "ground/session.h"
#include "opponents/roster.h"

int32_t ReadStrategyNumber(const char* text) {
  char firstTwo[3] = {};
  std::strncpy(firstTwo, text, 2);
  return ReadLeadingNumber(firstTwo);
}

const char* SelectCharacter(int32_t index) {
  SessionState.CharacterId = index;
  return IsRosterIndex(index) ? Roster[index].Description : nullptr;
}

StrategyVerdict AcceptCharactersOk(int32_t index, const char* name, const char* strategyText) {
  SessionRecord& s = SessionState;
  s.CharacterId = index;
  // The whole field is cleared first, so that nothing of a longer earlier name follows the
  // new one into the save file.
  std::memset(s.PlayerName, 0, sizeof s.PlayerName);
  std::strncpy(s.PlayerName, name, kNameCharacters);
  s.AiNumber = ReadStrategyNumber(strategyText);
  if (!IsRosterIndex(s.AiNumber)) return StrategyVerdict::OutOfRange;
  if (PlaysWithEngine(s.AiNumber) && s.BoardSize != 8) return StrategyVerdict::AskCocoBoard;
  return StrategyVerdict::Accept;
}

void UseEngineBoardSize() {
  SessionState.BoardSize = 8;
}
