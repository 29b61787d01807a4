#include "opponents/new_game.h"

#include "engine/engine.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/referee.h"

namespace {

bool EngineReady = false;  // an engine game is open, from an earlier NewGame

}  // namespace

void NewGame() {
  SessionRecord& s = SessionState;
  s.CurrentPlayer = 1;
  s.PendingTurn = 1;
  s.EngineSideToMove = 1;
  StatsRecord* record = StatsRecordAt(StatsSection());
  if (record != nullptr) {
    if (s.GameResult == 1) ++record->Won;
    if (s.GameResult == 2) ++record->Lost;
  }
  s.GameResult = 0;
  if (record != nullptr) ++record->Played;
  GridClear();
  // The engine plays on its own 8 x 7 board with lines of 4, whatever the settings.
  EndEngineGame();
  EngineStart(8, 7, 4);
  EngineReady = true;
  s.GameStarted = 0;
  s.CeilingStruck = 0;
}

bool EngineGameOpen() {
  return EngineReady;
}

void EndEngineGame() {
  if (EngineReady) EngineRelease();
  EngineReady = false;
}
