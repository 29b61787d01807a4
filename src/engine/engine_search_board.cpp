// The search's own board (SearchBoardRecord): the tables built once per engine game from the
// LineMap, and the memory the search works in, so that a search never takes memory.
#include "engine/engine.h"
#include "engine/engine_state.h"

namespace {

int32_t* TakeInts(int32_t count) {
  return static_cast<int32_t*>(AllocOrDie(count * int32_t{sizeof(int32_t)}));
}

int64_t* TakeGains(int32_t count) {
  return static_cast<int64_t*>(AllocOrDie(count * int32_t{sizeof(int64_t)}));
}

bool OnLine(int32_t cell, int32_t line) {
  return Engine.LineMap[cell / Engine.Height][cell % Engine.Height][line] != 0;
}

// The lines through every playable cell, so that a move visits only its own lines.
void ListCellLines(SearchBoardRecord* board) {
  board->LineStart = TakeInts(board->Cells + 1);
  int32_t entries = 0;
  for (int32_t cell = 0; cell < board->Cells; ++cell) {
    for (int32_t i = 0; i < Engine.LineCount; ++i) entries += OnLine(cell, i);
  }
  board->Lines = TakeInts(entries + 1);  // never an empty block
  int32_t n = 0;
  for (int32_t cell = 0; cell < board->Cells; ++cell) {
    board->LineStart[cell] = n;
    for (int32_t i = 0; i < Engine.LineCount; ++i) {
      if (OnLine(cell, i)) board->Lines[n++] = i;
    }
  }
  board->LineStart[board->Cells] = n;
}

// Calls visit(line, cell, other) for every line and every ordered pair of distinct playable
// cells on it; cellsOfLine is scratch for L cells per line.
template <typename Visit>
void ForEachPairOnALine(const SearchBoardRecord* board, int32_t* cellsOfLine, Visit visit) {
  const int32_t l = Engine.LineLength;
  for (int32_t i = 0; i < Engine.LineCount; ++i) cellsOfLine[i * l] = -1;
  for (int32_t cell = 0; cell < board->Cells; ++cell) {
    for (int32_t k = board->LineStart[cell]; k < board->LineStart[cell + 1]; ++k) {
      int32_t* entry = cellsOfLine + board->Lines[k] * l;
      while (*entry >= 0) ++entry;  // lines through the unplayable column have fewer cells
      *entry = cell;
      if (entry + 1 < cellsOfLine + (board->Lines[k] + 1) * l) entry[1] = -1;
    }
  }
  for (int32_t i = 0; i < Engine.LineCount; ++i) {
    const int32_t* cells = cellsOfLine + i * l;
    for (int32_t x = 0; x < l && cells[x] >= 0; ++x) {
      for (int32_t y = 0; y < l && cells[y] >= 0; ++y) {
        if (x != y) visit(i, cells[x], cells[y]);
      }
    }
  }
}

// The lines through both cells of every pair of distinct cells: a piece in one cell changes the
// gain of the other on these lines only.
void ListPairLines(SearchBoardRecord* board) {
  const int32_t pairs = board->Cells * board->Cells;
  int32_t* shared = TakeInts(pairs);  // per pair, the lines listed so far
  int32_t* cellsOfLine = TakeInts(Engine.LineCount * Engine.LineLength + 1);
  for (int32_t pair = 0; pair < pairs; ++pair) shared[pair] = 0;
  board->PairStride = 1;
  ForEachPairOnALine(board, cellsOfLine, [&](int32_t, int32_t cell, int32_t other) {
    const int32_t n = ++shared[cell * board->Cells + other];
    if (n > board->PairStride) board->PairStride = n;
  });
  board->PairLines = TakeInts(pairs * board->PairStride);
  for (int32_t k = 0; k < pairs * board->PairStride; ++k) board->PairLines[k] = Engine.LineCount;
  for (int32_t pair = 0; pair < pairs; ++pair) shared[pair] = 0;
  ForEachPairOnALine(board, cellsOfLine, [&](int32_t line, int32_t cell, int32_t other) {
    const int32_t pair = cell * board->Cells + other;
    board->PairLines[pair * board->PairStride + shared[pair]++] = line;
  });
  GiveBack(cellsOfLine);
  GiveBack(shared);
}

// The gain of a piece in a line holding own[0] and own[1] pieces (see SearchBoardRecord): a
// player's lineScore is 0 once the opponent has a piece in the line, else 2 to the power of the
// player's pieces; a piece completes the line when its owner's score is half of WinScore.
int64_t GainOf(const int32_t own[2]) {
  int64_t gain = 0;
  for (int32_t p = 0; p < 2; ++p) {
    const int32_t score = own[1 - p] > 0 ? 0 : 1 << own[p];
    gain += score;
    if (score == Engine.WinScore / 2) gain += kGainCompletes[p];
  }
  return gain;
}

void TabulateGains(SearchBoardRecord* board) {
  const int32_t side = Engine.LineLength + 1, states = side * side;
  board->StateGain = TakeGains(states);
  for (int32_t state = 0; state < states; ++state) {
    const int32_t own[2] = {state % side, state / side};
    board->StateGain[state] = GainOf(own);
  }
  for (int32_t p = 0; p < 2; ++p) {
    const int32_t step = p == 0 ? 1 : side;
    board->PieceGain[p] = TakeGains(states);
    for (int32_t state = 0; state < states; ++state) {
      const bool full = (p == 0 ? state % side : state / side) == Engine.LineLength;
      board->PieceGain[p][state] =
          full ? 0 : board->StateGain[state + step] - board->StateGain[state];
    }
  }
}

}  // namespace

void BuildSearchBoard() {
  SearchBoardRecord* board = &Engine.SearchBoard;
  board->Cells = Engine.PlayableColumns * Engine.Height;
  ListCellLines(board);
  ListPairLines(board);
  TabulateGains(board);
  board->LineState = TakeInts(Engine.LineCount + 1);
  // The dead line: a piece of each player, so no piece ever changes its gain (0).
  board->LineState[Engine.LineCount] = 1 + (Engine.LineLength + 1);
  board->Heights = TakeInts(Engine.PlayableColumns + 1);
  board->NextGain = TakeGains(Engine.PlayableColumns + 1);
  board->SavedNextGain = TakeGains(kEngineStackSlots * Engine.PlayableColumns + 1);
}

void GiveBackSearchBoard() {
  SearchBoardRecord* board = &Engine.SearchBoard;
  void* arrays[] = {board->LineStart,    board->Lines,        board->PairLines, board->StateGain,
                    board->PieceGain[0], board->PieceGain[1], board->LineState, board->Heights,
                    board->NextGain,     board->SavedNextGain};
  for (void* array : arrays) GiveBack(array);
  *board = SearchBoardRecord{};
}
