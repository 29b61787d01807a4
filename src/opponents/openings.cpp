#include "opponents/openings.h"

#include "ground/session.h"
#include "opponents/referee.h"
#include "opponents/turn.h"

int32_t PlannedColumn = 0;

namespace {

uint8_t G(int32_t c, int32_t r) {
  return Grid[c][r];
}

void Forbid(int32_t column) {
  if (column >= 1 && column <= CellsPerSide()) Turn.ColumnValue[column] = kForbidden;
}

// Bottom pairs: two equal pieces side by side on the bottom row with room above the next one.
int32_t BottomPairs() {
  const int32_t s = CellsPerSide();
  for (int32_t c = 1; c <= s - 3; ++c)
    if (G(c, s) != 0 && G(c + 1, s) == G(c, s) && G(c + 1, s - 1) == 0) return c + 1;
  for (int32_t c = 4; c <= s; ++c)
    if (G(c, s) != 0 && G(c - 1, s) == G(c, s) && G(c - 1, s - 1) == 0) return c - 1;
  return 0;
}

// The diagonal rising from (c, S) in direction d (+1 to the right, -1 to the left).
int32_t Diagonals(int32_t d) {
  const int32_t s = CellsPerSide();
  const int32_t first = d > 0 ? 1 : 4, last = d > 0 ? s - 3 : s;
  for (int32_t c = first; c <= last; ++c) {
    if (G(c, s) != G(c + d, s - 1)) continue;  // two empty cells count as equal
    const int32_t next = c + 2 * d, far = c + 3 * d;
    if (G(next, s - 1) == 0 && G(next, s) != 0) Forbid(next);
    if (G(next, s - 1) != 0 && G(far, s) != 0 && G(far, s - 1) == 0) PlannedColumn = far;
    if (G(next, s - 1) != 0 && G(next, s - 2) == 0) return next;
  }
  return 0;
}

}  // namespace

int32_t SurplusCount() {
  const int32_t s = CellsPerSide();
  int32_t best = kForbidden, chosen = 0;
  auto consider = [&](int32_t surplus, int32_t column) {
    if (surplus > best) {
      best = surplus;
      chosen = column;
    }
  };
  for (int32_t c = 1; c <= s; ++c) {
    int32_t surplus = 0;
    for (int32_t r = 1; r <= s; ++r) surplus += (G(c, r) == 1) - (G(c, r) == 2);
    consider(surplus, c);
  }
  for (int32_t r = 1; r <= s; ++r) {
    int32_t surplus = 0;
    for (int32_t c = 1; c <= s; ++c) surplus += (G(c, r) == 1) - (G(c, r) == 2);
    consider(surplus, r);
  }
  return chosen;
}

int32_t OpeningPatterns(int32_t h) {
  const int32_t s = CellsPerSide();
  if (h <= s - 3) Forbid(h + 1);
  if (h >= 4) Forbid(h - 1);
  if (const int32_t c = BottomPairs(); c != 0) return c;
  if (PlannedColumn != 0) {
    const int32_t planned = PlannedColumn;
    PlannedColumn = 0;
    return planned;
  }
  if (const int32_t c = Diagonals(+1); c != 0) return c;
  return Diagonals(-1);
}
