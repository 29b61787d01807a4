// The engine's move: a fixed-depth negamax search with alpha-beta cut-offs over the incremental
// line scores, the columns tried middle first, and a random choice among columns of equal value.
//
// The search runs on a board of its own (SearchBoardRecord) instead of the position stack: a
// move is made and unmade in place, visiting only the lines through its cell, and the last two
// plies are counted instead of played, from the gains of the columns' next cells. It tries the
// same columns in the same order, cuts off at the same places, counts the same positions and
// draws the same random numbers as the reference search (engine_plain.cpp); the differential
// test holds the two together.
#include <cassert>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "ground/random.h"

int64_t EngineNodesSearched = 0;
SearchFault EngineSearchFault = kSearchSound;

bool TakesTiedColumn(int32_t ties) {
  return RandomNext() % 10000 < 10000.0 / ties;
}

namespace {

// The search's dimensions. On the game's board (8, 7, 4) they are constants, so that the
// compiler unrolls the short loops over columns and shared lines; other boards read them.
template <bool kGame>
int32_t Columns() {
  if constexpr (kGame) return 7;
  return Engine.PlayableColumns;
}
template <bool kGame>
int32_t Height() {
  if constexpr (kGame) return 7;
  return Engine.Height;
}
template <bool kGame>
int32_t Cells() {
  if constexpr (kGame) return 49;
  return Engine.SearchBoard.Cells;
}
template <bool kGame>
int32_t PairStride() {
  if constexpr (kGame) return 3;
  return Engine.SearchBoard.PairStride;
}

bool IsGameBoard() {
  return Engine.PlayableColumns == 7 && Engine.Height == 7 && Engine.SearchBoard.PairStride == 3;
}

// What a move overwrites besides the line states and next-cell gains; the caller keeps it.
struct BoardTotals {
  int32_t lead;
  int32_t winner;
};

BoardTotals SaveTotals() {
  return {Engine.SearchBoard.Lead, Engine.SearchBoard.Winner};
}

// How much one piece of player adds to a line state.
int32_t StateStep(int32_t player) {
  return player == 0 ? 1 : Engine.LineLength + 1;
}

// The cell where the next piece of column lands.
template <bool kGame>
int32_t NextCell(int32_t column) {
  return column * Height<kGame>() + Engine.SearchBoard.Heights[column];
}

template <bool kGame>
bool ColumnFull(int32_t column) {
  return Engine.SearchBoard.Heights[column] == Height<kGame>();
}

// The winner after a piece of mover, which completes a line or not: the first completed line
// decides the winner for good.
int32_t WinnerAfter(int32_t winner, int32_t mover, bool completes) {
  if (!completes) return winner;
  if (winner == kEngineNoWinner || EngineSearchFault == kSearchLastWinner) return mover;
  return winner;
}

// Strictly greater: a branch that only equals the bound is valued exactly, so the root sees
// every real tie and no false one.
bool CutsOff(int32_t best, int32_t beta) {
  return best > beta || (best == beta && EngineSearchFault == kSearchLooseCutoff);
}

// The gain of a piece in cell on the board as it stands (see SearchBoardRecord).
int64_t CellGain(int32_t cell) {
  const SearchBoardRecord& board = Engine.SearchBoard;
  const int32_t *state = board.LineState, *lines = board.Lines;
  int64_t gain = 0;
  for (int32_t k = board.LineStart[cell]; k < board.LineStart[cell + 1]; ++k) {
    gain += board.StateGain[state[lines[k]]];
  }
  return gain;
}

// How a piece in cell changes the gain of other: the piece's owner's pieceGain summed over the
// lines the two cells share.
template <bool kGame>
int64_t SharedGain(int32_t cell, int32_t other, const int64_t* pieceGain) {
  const SearchBoardRecord& board = Engine.SearchBoard;
  const int32_t stride = PairStride<kGame>();
  const int32_t* shared = board.PairLines + (cell * Cells<kGame>() + other) * stride;
  int64_t gain = 0;
  for (int32_t k = 0; k < stride; ++k) gain += pieceGain[board.LineState[shared[k]]];
  return gain;
}

// Makes the search's board a copy of the current position of the stack: line states counted
// from the cells (the line scores follow from them), lead and winner as the position has them.
void LoadSearchBoard() {
  SearchBoardRecord& board = Engine.SearchBoard;
  const EngineState* position = Engine.PositionStack.Current;
  for (int32_t i = 0; i < Engine.LineCount; ++i) board.LineState[i] = 0;  // the dead one stays
  for (int32_t c = 0; c < Engine.PlayableColumns; ++c) {
    board.Heights[c] = 0;  // rises to the row DropPiece would fill: the lowest empty one
    for (int32_t r = 0; r < Engine.Height && position->cells[c][r] != kEngineEmpty; ++r) {
      const int32_t cell = NextCell<false>(c), step = StateStep(position->cells[c][r]);
      for (int32_t k = board.LineStart[cell]; k < board.LineStart[cell + 1]; ++k) {
        board.LineState[board.Lines[k]] += step;
      }
      ++board.Heights[c];
    }
  }
  for (int32_t c = 0; c < Engine.PlayableColumns; ++c) {
    board.NextGain[c] = ColumnFull<false>(c) ? 0 : CellGain(NextCell<false>(c));
  }
  board.Lead = position->scoreTotal[0] - position->scoreTotal[1];
  board.Winner = position->winner;
  board.Ply = Engine.PositionStack.Top;
}

// Plays a piece of p into an open column, with the same effect on line scores, totals and
// winner as DropPiece has on a position. The gains of the other columns' next cells change on
// the lines they share with the piece's cell; the column's own next cell moves up.
template <bool kGame>
void MakeMove(int32_t p, int32_t column) {
  SearchBoardRecord& board = Engine.SearchBoard;
  const int32_t columns = Columns<kGame>(), height = Height<kGame>();
  const int32_t cell = NextCell<kGame>(column), step = StateStep(p);
  const int64_t gain = board.NextGain[column];
  int64_t* next = board.NextGain;
  int64_t* saved = board.SavedNextGain + board.Ply * columns;
  for (int32_t c = 0; c < columns; ++c) {
    saved[c] = next[c];
    if (c == column || ColumnFull<kGame>(c)) continue;
    next[c] += SharedGain<kGame>(cell, NextCell<kGame>(c), board.PieceGain[p]);
  }
  for (int32_t k = board.LineStart[cell]; k < board.LineStart[cell + 1]; ++k) {
    board.LineState[board.Lines[k]] += step;
  }
  next[column] = ++board.Heights[column] < height ? CellGain(cell + 1) : 0;
  board.Lead += p == 0 ? GainLead(gain) : -GainLead(gain);
  board.Winner = WinnerAfter(board.Winner, p, GainCompletes(gain, p));
  ++board.Ply;
}

// Takes back the last move, a piece of p in column.
template <bool kGame>
void UnmakeMove(int32_t p, int32_t column, const BoardTotals& before) {
  SearchBoardRecord& board = Engine.SearchBoard;
  const int32_t columns = Columns<kGame>();
  --board.Ply;
  --board.Heights[column];
  const int32_t cell = NextCell<kGame>(column), step = StateStep(p);
  for (int32_t k = board.LineStart[cell]; k < board.LineStart[cell + 1]; ++k) {
    board.LineState[board.Lines[k]] -= step;
  }
  const int64_t* saved = board.SavedNextGain + board.Ply * columns;
  for (int32_t c = 0; c < columns; ++c) board.NextGain[c] = saved[c];
  board.Lead = before.lead;
  board.Winner = before.winner;
}

// The last ply is counted, not played. Position F is the board with, unless pending is -1, one
// more piece of a in column pending; lead and winner are F's. Returns the value of F for a, whose
// replies by b lie at the search's depth: a reply's value is b's lead plus the reply's gain. That
// gain differs from the NextGain of its column only on the lines its cell shares with the
// pending piece's.
template <bool kGame>
int32_t CountedRepliesValue(int32_t a, int32_t pending, int32_t lead, int32_t winner, int32_t depth,
                            int32_t beta) {
  const SearchBoardRecord& board = Engine.SearchBoard;
  const int32_t b = 1 - a, height = Height<kGame>();
  const int32_t standing = b == 0 ? lead : -lead, win = kEngineInfinity - depth;
  const int32_t pendingCell = pending < 0 ? 0 : NextCell<kGame>(pending);
  const bool wonByCompleting = WinnerAfter(winner, b, true) == b, wonAlready = winner == b;
  int32_t best = -kEngineInfinity, counted = 0;
  for (int32_t i = 0; i < Columns<kGame>(); ++i) {
    const int32_t c = Engine.ColumnOrder[i], row = board.Heights[c] + (c == pending);
    if (row == height) continue;
    ++counted;
    // Above the pending piece lies a cell that NextGain doesn't cover.
    int64_t gain = c == pending ? CellGain(pendingCell + 1) : board.NextGain[c];
    if (pending >= 0) gain += SharedGain<kGame>(pendingCell, c * height + row, board.PieceGain[a]);
    const bool won = GainCompletes(gain, b) ? wonByCompleting : wonAlready;
    const int32_t value = won ? win : standing + GainLead(gain);
    if (value > best) best = value;
    if (CutsOff(best, beta)) break;
  }
  EngineNodesSearched += counted;
  return -best;
}

// The value for p (who has just moved) of the board one ply above the search's depth.
template <bool kGame>
int32_t FrontierValue(int32_t p, int32_t depth, int32_t beta) {
  const SearchBoardRecord& board = Engine.SearchBoard;
  return CountedRepliesValue<kGame>(p, -1, board.Lead, board.Winner, depth, beta);
}

// The value for p (who has just moved) of the board two plies above the search's depth: each
// move of o is counted with its next cell's gain instead of played.
template <bool kGame>
int32_t TailValue(int32_t p, int32_t depth, int32_t alpha, int32_t beta) {
  const SearchBoardRecord& board = Engine.SearchBoard;
  const int32_t o = 1 - p, win = kEngineInfinity - (depth - 1);
  int32_t best = -kEngineInfinity;
  for (int32_t i = 0; i < Columns<kGame>(); ++i) {
    const int32_t c = Engine.ColumnOrder[i];
    if (ColumnFull<kGame>(c)) continue;
    ++EngineNodesSearched;
    const int64_t gain = board.NextGain[c];
    const int32_t winner = WinnerAfter(board.Winner, o, GainCompletes(gain, o));
    const int32_t lead = board.Lead + (o == 0 ? GainLead(gain) : -GainLead(gain));
    const int32_t value =
        winner == o ? win : CountedRepliesValue<kGame>(o, c, lead, winner, depth, -alpha);
    if (value > best) {
      best = value;
      if (value > alpha) alpha = value;
    }
    if (CutsOff(best, beta)) break;
  }
  return -best;
}

// The search proper on the search's board; see SearchValue.
template <bool kGame>
int32_t BoardValue(int32_t player, int32_t depth, int32_t alpha, int32_t beta) {
  const SearchBoardRecord& board = Engine.SearchBoard;
  const int32_t p = player, o = 1 - player;
  if (board.Ply == depth) return p == 0 ? board.Lead : -board.Lead;
  if (board.Ply + 1 == depth) return FrontierValue<kGame>(p, depth, beta);
  if (board.Ply + 2 == depth) return TailValue<kGame>(p, depth, alpha, beta);
  int32_t best = -kEngineInfinity;
  for (int32_t i = 0; i < Columns<kGame>(); ++i) {
    const int32_t c = Engine.ColumnOrder[i];
    if (ColumnFull<kGame>(c)) continue;
    ++EngineNodesSearched;
    const BoardTotals before = SaveTotals();
    MakeMove<kGame>(o, c);
    // A completed line ends the branch: it is never searched further nor valued by its totals.
    const int32_t value = board.Winner == o ? kEngineInfinity - board.Ply
                                            : BoardValue<kGame>(o, depth, -beta, -alpha);
    UnmakeMove<kGame>(o, c, before);
    if (value > best) {
      best = value;
      if (value > alpha) alpha = value;
    }
    if (CutsOff(best, beta)) break;
  }
  return -best;
}

// The root: every column of p valued by the search, a completing move taken at once. Returns
// the column chosen, -1 if every column is full.
template <bool kGame>
int32_t ChooseColumn(int32_t p, int32_t depth) {
  const SearchBoardRecord& board = Engine.SearchBoard;
  RootChoice choice;
  for (int32_t i = 0; i < Columns<kGame>(); ++i) {
    const int32_t c = Engine.ColumnOrder[i];
    if (ColumnFull<kGame>(c)) continue;
    ++EngineNodesSearched;
    const BoardTotals before = SaveTotals();
    MakeMove<kGame>(p, c);
    const bool completes = board.Winner == p;
    const int32_t value =
        completes ? 0 : BoardValue<kGame>(p, depth, -kEngineInfinity, -choice.Best);
    UnmakeMove<kGame>(p, c, before);
    if (completes) return c;
    ConsiderRootColumn(&choice, value, c);
  }
  return choice.Chosen;
}

}  // namespace

// Values the current position for player, the side that has just moved, looking until the
// stack top would reach depth. A line completed by the move that brings the stack top to k is
// worth kEngineInfinity - k to its owner; a position where the side to move has no column left
// is worth kEngineInfinity to the side that has just moved. Changes no position of the stack.
int32_t SearchValue(int32_t player, int32_t depth, int32_t alpha, int32_t beta) {
  LoadSearchBoard();
  return IsGameBoard() ? BoardValue<true>(player, depth, alpha, beta)
                       : BoardValue<false>(player, depth, alpha, beta);
}

// Chooses a move for player (only its lowest bit counts) by a search of depth plies (1..16,
// the engine's own move included) and plays it on the base position; stores the column and
// row through the pointers given. A move that completes a line is played at once, without
// search or random draw. False, and nothing played, when every column is full.
bool EngineChooseAndPlay(int32_t player, int32_t depth, int32_t* column, int32_t* row) {
  assert(Engine.PositionStack.Top == 0 && depth >= 1 && depth < kEngineStackSlots);
  LoadSearchBoard();
  const int32_t p = player & 1;
  const int32_t chosen =
      IsGameBoard() ? ChooseColumn<true>(p, depth) : ChooseColumn<false>(p, depth);
  assert(Engine.SearchBoard.Ply == 0);
  if (chosen < 0) return false;
  const int32_t landed = DropPiece(p, chosen);
  if (column != nullptr) *column = chosen;
  if (row != nullptr) *row = landed;
  return true;
}
