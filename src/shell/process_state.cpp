#include "shell/process_state.h"

#include <cstring>

#include "engine/engine.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "ground/test_hooks.h"
#include "opponents/lookahead.h"
#include "opponents/new_game.h"
#include "opponents/openings.h"
#include "opponents/referee.h"
#include "render/bitmap_table.h"
#include "render/viewport.h"
#include "shell/turnflow.h"

// The engine's game is given back, which leaves it holding no memory and no position; its
// dimensions stay until the next game sets them. The look-ahead's own tables are rewritten at
// every reply before they are read, so nothing of them carries from one session to the next.
void ResetProcessState() {
  EndEngineGame();
  EngineSeededGenerator = false;
  RandomState = kRandomStart;
  TestHooks = TestHooksRecord{};
  ResetSessionState();
  MouseX = MouseY = 0;
  Viewport = ViewportRecord{};
  BitmapTable = BitmapTableRecord{};
  GridClear();
  std::memset(RunNeeded, 0, sizeof RunNeeded);
  std::memset(StatsTable, 0, sizeof StatsTable);
  std::memset(SettingsBlock, 0, sizeof SettingsBlock);
  std::memset(&Turn, 0, sizeof Turn);
  PlannedColumn = 0;
  std::memset(TextBuffer, 0, sizeof TextBuffer);
}
