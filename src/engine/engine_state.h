// The engine's private state, shared by the engine's own files and by its white-box tests.
// Nothing else in the program includes this header: the rest of the game goes through engine.h.
#pragma once

#include <cstdint>

#include "engine/engine.h"

// The largest value of the search; its negation is the smallest, so that negating a value never
// overflows (-2147483648 is never used).
constexpr int32_t kEngineInfinity = 2147483647;

// One position. The cells of all columns lie one after the other in one block that starts at
// cells[0], so a push copies them at once.
struct EngineState {
  uint8_t** cells;        // [column][row], row 0 at the bottom; PlayableColumns columns of H bytes
  int32_t* lineScore[2];  // per player, one score per line
  int32_t scoreTotal[2];  // per player, the sum of its lineScore
  int16_t winner;         // the player who first completed a line, or kEngineNoWinner
  int32_t pieceCount;     // kept up to date for the base position (slot 0) only
};

// Slot 0 is the real game; the slots above hold the positions of a search.
struct PositionStackRecord {
  EngineState Slot[kEngineStackSlots];
  int32_t Top;
  int32_t SlotsWithArrays;  // slots 0..SlotsWithArrays - 1 hold their arrays
  EngineState* Current;     // &Slot[Top]
};

// The search's own board. A line's state is its piece count of each player, pieces of player 0
// + (L + 1) x pieces of player 1, from which both players' lineScore follow; the board keeps
// only the lead scoreTotal[0] - scoreTotal[1], since a search values positions by differences
// of totals alone. Making a move adds to its lines' states and unmaking it subtracts again, so a
// search changes one board in place instead of copying positions. Arrays taken once per engine game
// (engine_search_board.cpp).
//
// A line's gain is what a piece in it adds to the mover's lead: the mover's score doubles,
// adding the old score, and the opponent's drops to 0, so the gain is the sum of both players'
// scores whoever moves. Gains are kept in 64 bits with two counters above them, one per player,
// of lines that a piece of that player would complete, so that one sum over a cell's lines
// tells both what a piece there gains and whether it wins.
constexpr int64_t kGainCompletes[2] = {int64_t{1} << 32, int64_t{1} << 48};

inline int32_t GainLead(int64_t gain) {
  return static_cast<int32_t>(gain & 0xFFFFFFFF);
}
inline bool GainCompletes(int64_t gain, int32_t player) {
  constexpr uint64_t kCounter[2] = {uint64_t{0xFFFF} << 32, uint64_t{0xFFFF} << 48};
  return (static_cast<uint64_t>(gain) & kCounter[player]) != 0;
}

struct SearchBoardRecord {
  int32_t Cells;       // PlayableColumns x Height; cell numbers are column * Height + row
  int32_t* LineStart;  // [cell]: the cell's first entry in Lines; the next cell's ends it
  int32_t* Lines;      // the lines through each playable cell (from LineMap), cell after cell
  // [(cell * Cells + other cell) * PairStride + k]: the lines through both cells of each pair,
  // padded with the dead line LineCount, whose gain never changes: the same number of entries for
  // every pair keeps the loops over them free of mispredicted exits.
  int32_t* PairLines;
  int32_t PairStride;      // the most lines that two distinct cells share: L - 1, at least 1
  int64_t* StateGain;      // [line state]: the gain of a piece in a line in that state
  int64_t* PieceGain[2];   // [player][line state]: how one more piece of player changes the gain
  int32_t* LineState;      // per line; the dead line LineCount last, never changed
  int32_t* Heights;        // pieces in each playable column
  int64_t* NextGain;       // per column: the gain of the cell its next piece fills; 0 when full
  int64_t* SavedNextGain;  // [ply * PlayableColumns + column]: NextGain before the ply's move
  int32_t Lead;            // scoreTotal[0] - scoreTotal[1]
  int32_t Winner;          // as EngineState's winner
  int32_t Ply;             // the stack top that the board's position stands for
};

struct EngineRecord {
  int32_t NominalWidth;     // W: the line map covers W columns
  int32_t PlayableColumns;  // W - 1: column W - 1 never receives a piece
  int32_t Height;
  int32_t LineLength;
  int32_t WinScore;  // 1 << LineLength, the score of a completed line
  int32_t LineCount;
  uint8_t*** LineMap;    // [column][row][line]: 1 if the line passes through the cell
  int32_t* ColumnOrder;  // the columns in the order the search tries them, middle first
  PositionStackRecord PositionStack;
  SearchBoardRecord SearchBoard;
};

extern EngineRecord Engine;

// Blocks taken with AllocOrDie and not given back yet: 0 whenever no engine game is open.
extern int32_t EngineBlocksHeld;

// Takes the arrays of one stack slot (cells and both line score arrays).
void TakeSlotArrays(EngineState* slot);
// Gives back a block taken with AllocOrDie; nothing for a null pointer.
void GiveBack(void* block);
// Takes and gives back the arrays of the search's board; the LineMap must be built.
void BuildSearchBoard();
void GiveBackSearchBoard();

// The reference search (engine_plain.cpp): the algorithm as first written, pushing a copy of the
// position for every move tried. EngineChooseAndPlay and SearchValue must agree with it exactly:
// same column, row, values, positions searched and random draws.
bool PlainEngineChooseAndPlay(int32_t player, int32_t depth, int32_t* column = nullptr,
                              int32_t* row = nullptr);
int32_t PlainSearchValue(int32_t player, int32_t depth, int32_t alpha, int32_t beta);

// The tie rule shared by both searches: true if the ties-th column of equal value replaces the
// one chosen so far. Draws one number from the generator.
bool TakesTiedColumn(int32_t ties);

// The root's choice so far, shared by both searches: the best value, its column, and how many
// columns share it.
struct RootChoice {
  int32_t Best = -kEngineInfinity;
  int32_t Chosen = -1;
  int32_t Ties = 0;
};

// Takes the value of column c into the choice: a better value replaces it, an equal one may,
// by the tie rule (which draws one number).
inline void ConsiderRootColumn(RootChoice* choice, int32_t value, int32_t c) {
  if (value > choice->Best) {
    *choice = RootChoice{value, c, 1};
  } else if (value == choice->Best && TakesTiedColumn(++choice->Ties)) {
    choice->Chosen = c;
  }
}

// Test seam: a deliberate fault in the fast search, so that the differential test can show that
// it notices one. Always kSearchSound in the game.
enum SearchFault : int32_t {
  kSearchSound,
  kSearchLooseCutoff,  // stops trying columns when the best equals the bound, too
  kSearchLastWinner,   // the last completed line decides the winner instead of the first
};
extern SearchFault EngineSearchFault;
