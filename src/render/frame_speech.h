// What a frame says in words, for a player who cannot see the board: the title and status
// lines, the "Challenge" mark, the column each side has just played, and the board itself. The
// window hands the words to whatever reads them aloud; the decisions and the wording are here.
// Every text is Windows-1252, as the frame's own texts are.
#pragma once

#include <cstdint>
#include <string>

#include "render/board_plan.h"

constexpr int32_t kSpokenColumnsMax = 20;

// What a frame shows that words can say. Cells are by screen column and row (1 at the left and
// at the top): 0 for no piece shown, else the player (1 or 2) whose piece is shown. A hidden
// piece is no piece, as on the screen.
struct SpokenFrame {
  int32_t Columns = 0;
  uint8_t Cells[kSpokenColumnsMax + 1][kSpokenColumnsMax + 1] = {};
  bool UpsideDown = false;  // pieces are shown reaching the top row first
  bool TwoPlayers = false;
  bool Challenge = false;
  std::string Opponent;  // the short name of the character shown
  std::string Title;
  std::string Status;
};

// The frame just composed (after ComposeFrame, from its plan): its texts from the plan, its
// pieces from the board it shows.
SpokenFrame SpokenFrameOf(const DrawList& plan);

// What to say when the frame `now` follows `before`: a new game, or the column of each piece
// that has appeared, then the status line, and the title line and the "Challenge" mark when
// they change. Empty when the frame says nothing new.
std::string SayFrame(const SpokenFrame& before, const SpokenFrame& now);

// The board in words, column by column, each from the side its pieces arrive from.
std::string SayBoard(const SpokenFrame& frame);
