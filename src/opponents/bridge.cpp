#include "opponents/bridge.h"

#include "engine/engine.h"
#include "ground/session.h"
#include "opponents/referee.h"

void GridFromEngine() {
  SessionState.RepaintAgain = 1;
  RunNeeded[0] = RunNeeded[1] = RunNeeded[2] = 3;
  GridClear();
  const uint8_t* const* cells = EngineBoardView();
  for (int32_t c = 0; c < 7; ++c) {
    for (int32_t r = 0; r < 7; ++r) {
      if (cells[c][r] == 1) Grid[c + 1][7 - r] = 1;
      if (cells[c][r] == 0) Grid[c + 1][7 - r] = 2;
    }
  }
  if (GridFindWinner() != 0) GridMarkWinner();
}
