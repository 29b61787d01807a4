#include "opponents/referee.h"

#include <cstring>

#include "ground/session.h"

uint8_t Grid[kGridSide][kGridSide];
int32_t RunNeeded[3];

namespace {

// The playable side, kept inside the grid whatever BoardSize holds, so that no walk leaves the
// array even if the session were given an impossible size.
int32_t PlayableSide() {
  const int32_t s = CellsPerSide();
  if (s < 0) return 0;
  return s > kGridSide - 3 ? kGridSide - 3 : s;
}

// Pairs needed for a cell value. Marked cells (16 and up) appear only on a decided board,
// which is never judged again; they are taken as never winning rather than read past the table.
int32_t NeedFor(uint8_t value) {
  return value < 3 ? RunNeeded[value] : -1;
}

// One line of the scan: a start cell and a step.
struct Line {
  int32_t Column, Row, StepColumn, StepRow;
};

// Walks one line from its start. Returns whether the walk stopped, with the value that stopped
// it and the last cell of the run. A need of 0 for empty cells would stop a walk with value 0;
// the game never sets one.
bool WalkLine(const Line& line, int32_t side, int32_t* value, int32_t* endColumn, int32_t* endRow) {
  int32_t c = line.Column, r = line.Row, counter = 0;
  uint8_t previous = Grid[c][r];
  for (;;) {
    c += line.StepColumn;
    r += line.StepRow;
    if (c < 1 || c > side || r < 1 || r > side) return false;
    const uint8_t cell = Grid[c][r];
    counter = (cell == previous && cell != 0) ? counter + 1 : 0;
    previous = cell;
    if (counter == NeedFor(cell)) {
      *value = cell;
      *endColumn = c;
      *endRow = r;
      return true;
    }
  }
}

// Visits the lines in scan order until one holds a winning run: rows top to bottom, columns
// left to right, then the down-right diagonals from the top row and from the left column, then
// the down-left diagonals from the right column and from the top row. Only diagonals of three
// cells or more are walked.
template <typename Found>
int32_t ScanLines(Found found) {
  const int32_t s = PlayableSide();
  int32_t ec = 0, er = 0, v = 0;
  auto walk = [&](Line line) {
    if (!WalkLine(line, s, &v, &ec, &er)) return false;
    if (v != 0) found(line, ec, er, v);
    return true;
  };
  for (int32_t r = 1; r <= s; ++r)
    if (walk({1, r, 1, 0})) return v;
  for (int32_t c = 1; c <= s; ++c)
    if (walk({c, 1, 0, 1})) return v;
  for (int32_t c = 1; c <= s - 2; ++c)
    if (walk({c, 1, 1, 1})) return v;
  for (int32_t r = 2; r <= s - 2; ++r)
    if (walk({1, r, 1, 1})) return v;
  for (int32_t r = 1; r <= s - 2; ++r)
    if (walk({s, r, -1, 1})) return v;
  for (int32_t c = s - 1; c >= 3; --c)
    if (walk({c, 1, -1, 1})) return v;
  return 0;
}

}  // namespace

int32_t GridDrop(int32_t column) {
  const int32_t s = PlayableSide();
  if (column < 1 || column > s) return 0;
  for (int32_t r = s; r >= 1; --r) {
    if (Grid[column][r] == 0) {
      Grid[column][r] = static_cast<uint8_t>(SessionState.CurrentPlayer);
      return SessionState.CurrentPlayer;
    }
  }
  return 0;
}

int32_t GridFindWinner() {
  return ScanLines([](const Line&, int32_t, int32_t, int32_t) {});
}

void GridMarkWinner() {
  ScanLines([](const Line& line, int32_t c, int32_t r, int32_t v) {
    // The run ends at (c, r) and has RunNeeded[v] + 1 cells counted backwards along the line.
    for (int32_t k = 0; k <= RunNeeded[v]; ++k) {
      Grid[c - k * line.StepColumn][r - k * line.StepRow] += kMark;
    }
  });
}

void GridClear() {
  std::memset(Grid, 0, sizeof Grid);
}
