// Setting up and giving back an engine game: dimensions, the numbered winning lines and the map
// from cells to lines, the search's column order, the base position and the position stack, and
// the search's own board (engine_search_board.cpp).
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "ground/random.h"

EngineRecord Engine;
bool EngineSeededGenerator = false;
int32_t EngineAllocationsLeft = -1;
int32_t EngineBlocksHeld = 0;

// The number of winning lines of length lineLength on a width x height board.
int32_t CountLines(int32_t width, int32_t height, int32_t lineLength) {
  const int32_t w = width, h = height, l = lineLength;
  if (w < l) return h < l ? 0 : (h - l + 1) * w;  // vertical lines only
  if (h < l) return (w - l + 1) * h;              // horizontal lines only
  // Horizontal, vertical and the two diagonal families, expanded.
  return 4 * w * h - 3 * w * l - 3 * h * l + 3 * w + 3 * h + 2 * l * l - 4 * l + 2;
}

// Returns a new block of size bytes; never returns without one. Running out of memory ends the
// process with the one message the program ever writes to a standard stream.
void* AllocOrDie(int32_t size) {
  void* block = nullptr;
  if (EngineAllocationsLeft != 0) block = std::malloc(static_cast<size_t>(size));
  if (EngineAllocationsLeft > 0) --EngineAllocationsLeft;
  if (block == nullptr) {
    std::fprintf(stderr, "kv: emalloc() - Can't allocate %d bytes.\n", size);
    std::exit(1);
  }
  ++EngineBlocksHeld;
  return block;
}

void GiveBack(void* block) {
  if (block == nullptr) return;
  std::free(block);
  --EngineBlocksHeld;
}

// Gives a stack slot its cells (one block for all columns) and its two line score arrays.
void TakeSlotArrays(EngineState* slot) {
  const int32_t columns = Engine.PlayableColumns;
  slot->cells = static_cast<uint8_t**>(AllocOrDie(columns * int32_t{sizeof(uint8_t*)}));
  uint8_t* bytes = static_cast<uint8_t*>(AllocOrDie(columns * Engine.Height));
  for (int32_t c = 0; c < columns; ++c) slot->cells[c] = bytes + c * Engine.Height;
  for (int32_t p = 0; p < 2; ++p) {
    slot->lineScore[p] =
        static_cast<int32_t*>(AllocOrDie(Engine.LineCount * int32_t{sizeof(int32_t)}));
  }
  slot->pieceCount = 0;  // meaningful in slot 0 only, but never left undefined
}

static void GiveBackSlotArrays(EngineState* slot) {
  GiveBack(slot->cells[0]);
  GiveBack(slot->cells);
  GiveBack(slot->lineScore[0]);
  GiveBack(slot->lineScore[1]);
  slot->cells = nullptr;
  slot->lineScore[0] = slot->lineScore[1] = nullptr;
}

// An empty board on which every line is open to both players.
static void ClearBasePosition() {
  EngineState* base = &Engine.PositionStack.Slot[0];
  std::memset(base->cells[0], kEngineEmpty, Engine.PlayableColumns * Engine.Height);
  for (int32_t p = 0; p < 2; ++p) {
    for (int32_t i = 0; i < Engine.LineCount; ++i) base->lineScore[p][i] = 1;
    base->scoreTotal[p] = Engine.LineCount;
  }
  base->winner = kEngineNoWinner;
  base->pieceCount = 0;
}

// The next line index passes through the L cells from (column, row) in steps of (dc, dr).
static void MarkLine(int32_t* line, int32_t column, int32_t row, int32_t dc, int32_t dr) {
  for (int32_t k = 0; k < Engine.LineLength; ++k) {
    Engine.LineMap[column + k * dc][row + k * dr][*line] = 1;
  }
  ++*line;
}

// Numbers the lines family by family: horizontal, vertical, rising, then falling diagonals.
// The numbering matters: EngineLineEnds reports the winner's line with the lowest index.
static void NumberLines() {
  const int32_t w = Engine.NominalWidth, h = Engine.Height, l = Engine.LineLength;
  int32_t line = 0;
  for (int32_t r = 0; r < h; ++r) {
    for (int32_t s = 0; s <= w - l; ++s) MarkLine(&line, s, r, 1, 0);
  }
  for (int32_t c = 0; c < w; ++c) {
    for (int32_t s = 0; s <= h - l; ++s) MarkLine(&line, c, s, 0, 1);
  }
  for (int32_t s = 0; s <= h - l; ++s) {
    for (int32_t t = 0; t <= w - l; ++t) MarkLine(&line, t, s, 1, 1);
  }
  for (int32_t s = 0; s <= h - l; ++s) {
    for (int32_t t = w - 1; t >= l - 1; --t) MarkLine(&line, t, s, -1, 1);
  }
}

static void BuildLineMap() {
  const int32_t w = Engine.NominalWidth, h = Engine.Height;
  Engine.LineMap = static_cast<uint8_t***>(AllocOrDie(w * int32_t{sizeof(uint8_t**)}));
  for (int32_t c = 0; c < w; ++c) {
    Engine.LineMap[c] = static_cast<uint8_t**>(AllocOrDie(h * int32_t{sizeof(uint8_t*)}));
    for (int32_t r = 0; r < h; ++r) {
      Engine.LineMap[c][r] = static_cast<uint8_t*>(AllocOrDie(Engine.LineCount));
      std::memset(Engine.LineMap[c][r], 0, Engine.LineCount);
    }
  }
  NumberLines();
}

// Middle first, then alternately one to the right and one to the left: 3, 4, 2, 5, 1, 6, 0, 7
// for a width of 8. Central columns lie on more lines, so trying them first cuts more branches.
static void BuildColumnOrder() {
  const int32_t w = Engine.NominalWidth;
  Engine.ColumnOrder = static_cast<int32_t*>(AllocOrDie(w * int32_t{sizeof(int32_t)}));
  int32_t c = (w - 1) / 2;
  for (int32_t i = 1; i <= w; ++i) {
    Engine.ColumnOrder[i - 1] = c;
    c += (i % 2 == 1) ? i : -i;
  }
}

// Opens a new engine game on a board of width - 1 playable columns and height rows, won by
// lineLength in a row. No engine game may be open.
void EngineStart(int32_t width, int32_t height, int32_t lineLength) {
  Engine.NominalWidth = width;
  Engine.Height = height;
  Engine.LineLength = lineLength;
  Engine.WinScore = 1 << lineLength;
  Engine.LineCount = CountLines(width, height, lineLength);
  Engine.PlayableColumns = width - 1;
  if (!EngineSeededGenerator) {
    SeedRandomFromClock();
    EngineSeededGenerator = true;
  }
  PositionStackRecord* stack = &Engine.PositionStack;
  stack->Top = 0;
  stack->Current = &stack->Slot[0];
  TakeSlotArrays(&stack->Slot[0]);
  stack->SlotsWithArrays = 1;
  ClearBasePosition();
  BuildLineMap();
  BuildColumnOrder();
  BuildSearchBoard();
}

// Gives back every block of the current engine game; the dimensions stay. Harmless when no
// engine game is open.
void EngineRelease() {
  GiveBackSearchBoard();
  if (Engine.LineMap != nullptr) {
    for (int32_t c = 0; c < Engine.NominalWidth; ++c) {
      for (int32_t r = 0; r < Engine.Height; ++r) GiveBack(Engine.LineMap[c][r]);
      GiveBack(Engine.LineMap[c]);
    }
    GiveBack(Engine.LineMap);
    Engine.LineMap = nullptr;
  }
  PositionStackRecord* stack = &Engine.PositionStack;
  for (int32_t s = 0; s < stack->SlotsWithArrays; ++s) GiveBackSlotArrays(&stack->Slot[s]);
  stack->SlotsWithArrays = 0;
  GiveBack(Engine.ColumnOrder);
  Engine.ColumnOrder = nullptr;
}
