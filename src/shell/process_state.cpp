#include "shell/process_state.h"

#include <cstring>

#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/openings.h"
#include "opponents/referee.h"
#include "opponents/turn.h"
#include "render/viewport.h"
#include "shell/turnflow.h"

void ResetProcessState() {
  EndEngineGame();
  ResetSessionState();
  MouseX = MouseY = 0;
  Viewport = ViewportRecord{};
  GridClear();
  std::memset(RunNeeded, 0, sizeof RunNeeded);
  std::memset(StatsTable, 0, sizeof StatsTable);
  std::memset(SettingsBlock, 0, sizeof SettingsBlock);
  std::memset(&Turn, 0, sizeof Turn);
  PlannedColumn = 0;
  std::memset(TextBuffer, 0, sizeof TextBuffer);
}
