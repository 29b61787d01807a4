#include "opponents/turn.h"

#include <cstring>

#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "opponents/openings.h"
#include "opponents/roster.h"

namespace {

void TakeSnapshot(int32_t k) {
  std::memcpy(Turn.Snapshots[k], Grid, sizeof Grid);
}
void RestoreSnapshot(int32_t k) {
  std::memcpy(Grid, Turn.Snapshots[k], sizeof Grid);
}

// The side of the square board.
int32_t Side() {
  return CellsPerSide();
}

// The columns in a random order: draw until a column not yet drawn comes up.
void ShuffleColumns() {
  const int32_t s = Side();
  bool drawn[kGridSide] = {};
  for (int32_t k = 0; k < s; ++k) {
    int32_t r;
    do r = RandomNext() % s + 1;
    while (drawn[r]);
    drawn[r] = true;
    Turn.ShuffledColumns[k] = r;
  }
  std::memset(Turn.ColumnValue, 0, sizeof Turn.ColumnValue);
}

// A full board has no column that accepts a piece; a move that completes a line and fills the
// board at once stays a win.
void FullBoardCheck() {
  TakeSnapshot(3);
  int32_t accepted = 0;
  for (int32_t c = 1; c <= Side(); ++c) accepted += GridDrop(c);
  RestoreSnapshot(3);
  if (accepted == 0 && SessionState.GameResult == 0) SessionState.GameResult = 3;
}

// A completed line decides the game and is marked. Returns whether there was one.
bool JudgeBoard() {
  const int32_t w = GridFindWinner();
  if (w == 0) return false;
  SessionState.GameResult = w;
  GridMarkWinner();
  return true;
}

// A random column for the computer: for the first 999 tries it keeps off the columns the
// look-ahead found losing or an opening rule forbade; after 2000 tries it gives up and the
// game ends without a winner.
void RandomMove() {
  RestoreSnapshot(0);
  SessionState.CurrentPlayer = 2;
  for (int32_t tries = 1;; ++tries) {
    const int32_t c = RandomNext() % Side() + 1;
    if (tries > 2000) {
      SessionState.GameResult = 3;
      break;
    }
    if (Turn.ColumnValue[c] < 0 && tries < 1000) continue;
    if (GridDrop(c) != 0) break;
  }
  SessionState.CurrentPlayer = 1;
  JudgeBoard();
  FullBoardCheck();
}

void PlayChosenColumn(int32_t chosen) {
  RestoreSnapshot(0);
  SessionState.CurrentPlayer = 2;
  if (Turn.ColumnValue[chosen] == kForbidden || GridDrop(chosen) == 0) return RandomMove();
  if (!JudgeBoard()) SessionState.CurrentPlayer = 1;  // a winning move leaves the winner's value
  FullBoardCheck();
}

// The first column, left to right, after whose drop for `player` the referee finds a line.
int32_t FirstCompletingColumn(int32_t player) {
  SessionState.CurrentPlayer = player;
  for (int32_t c = 1; c <= Side(); ++c) {
    RestoreSnapshot(0);
    GridDrop(c);
    if (GridFindWinner() != 0) return c;
  }
  return 0;
}

int32_t OccupiedCells() {
  int32_t n = 0;
  for (int32_t c = 1; c <= Side(); ++c)
    for (int32_t r = 1; r <= Side(); ++r) n += Grid[c][r] != 0;
  return n;
}

// The computer's reply: immediate win, immediate block, the character's own rules, then the
// random move at Facile or the look-ahead.
void ComputerReply(int32_t h) {
  SessionRecord& s = SessionState;
  s.CurrentPlayer = 2;
  TakeSnapshot(0);
  int32_t chosen = FirstCompletingColumn(2);
  if (chosen == 0) chosen = FirstCompletingColumn(1);
  RestoreSnapshot(0);
  if (chosen == 0 && HasSurplusCount(s.AiNumber) && s.Level == 1) chosen = SurplusCount();
  if (chosen == 0 && s.Level == 0) {
    s.CurrentPlayer = 2;
    return RandomMove();
  }
  if (chosen == 0 && HasOpeningPatterns(s.AiNumber) && OccupiedCells() <= 10) {
    chosen = OpeningPatterns(h);
  }
  if (chosen == 0) chosen = LookAhead(LookAheadDepth());
  PlayChosenColumn(chosen);
}

}  // namespace

int32_t LookAheadDepth() {
  if (SessionState.Level == 1) return 2;
  return SessionState.Challenge != 0 ? 6 : 4;
}

void PlayTurn(int32_t x) {
  SessionRecord& s = SessionState;
  RunNeededFor(s.AiNumber, RunNeeded);
  if (s.GameResult != 0) return NewGame();
  ShuffleColumns();
  if (s.GameMode != 2) s.CurrentPlayer = 1;
  if (s.PendingTurn == 1) {
    if (GridDrop(x / kCellPixels) != 0) s.PendingTurn = 2;
    return;
  }
  if (JudgeBoard()) return FullBoardCheck();
  if (s.GameMode == 2) {
    s.CurrentPlayer = s.CurrentPlayer == 1 ? 2 : 1;
    return;
  }
  ComputerReply(x / kCellPixels);
}

bool ReplyPending() {
  const SessionRecord& s = SessionState;
  if (PlaysWithEngine(s.AiNumber)) return s.EngineSideToMove == 0 && EngineGameOpen();
  return s.PendingTurn == 2;
}
