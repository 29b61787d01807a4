#include "opponents/fast_lookahead.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "ground/session.h"
#include "opponents/roster.h"
#include "opponents/turn.h"

FastLookAheadSettings FastSettings;
int64_t FastTrials;

namespace {

// The working board: columns and rows 0..23, index column * kStride + row. Every cell outside
// the playable square, and every marked cell, holds kWall, which no run crosses and no piece
// enters; so walks from a playable cell stop by themselves.
constexpr int32_t kStride = 24;
constexpr int32_t kCells = kStride * kStride;
constexpr uint8_t kWall = 3;
constexpr int32_t kMaxSide = kGridSide - 3;

// A scan key orders the referee's hits: (line order * 32 + place along the walk) * 4 + the
// run's value. The referee reports the hit with the smallest key; kNone (no line) is later
// than every hit and has value 0.
using Key = uint16_t;
constexpr Key kNone = 0xFFFC;
inline int32_t ValueOf(Key k) {
  return k & 3;
}

// The walks in the referee's pass order: rows left to right, columns top down, diagonals down
// to the right, diagonals down to the left.
constexpr int32_t kDirections = 4;
constexpr int32_t kStep[kDirections] = {kStride, 1, kStride + 1, 1 - kStride};

struct SearchBoard {
  uint8_t Cell[kCells];
  int32_t Top[kGridSide];            // by column: the cell the next drop fills, 0 when full
  int32_t Above[kGridSide];          // by column: the cell the drop after that fills, or 0
  Key LineKey[kDirections][kCells];  // a cell's key as the last cell of a run, value bits 0
  // By player: the earliest hit a piece of that player in this empty cell would add. A piece
  // only lengthens runs, so these keys only ever decrease while pieces are added.
  Key Best[3][kCells];
  // By player, one bit per column: whether the player has a threat at the column's Top cell,
  // at its Above cell. Cell 0 (a wall) keeps kNone, so full columns have no bit.
  uint32_t TopMask[3], AboveMask[3];
  int32_t Need[3];
  int32_t Side, Depth;
  int32_t Weight[kPlies + 1];  // by ply, signed: the computer's lines add, the human's subtract
  bool Cut;
};
SearchBoard Board;

// The threat keys changed by the drops of the current path, to be put back on the way up.
struct UndoEntry {
  Key* Where;
  Key Old;
};
constexpr int32_t kUndoSize = 1024;
UndoEntry UndoLog[kUndoSize];
int32_t UndoTop;

// The pieces the current path has added, as codes cell * 2 + player - 1 (11 bits each), and
// the column masks as they were before each.
uint16_t PathCodes[kPlies];
uint32_t SavedMasks[kPlies][4];
int32_t PathLength;

// Subtree scores by exact position and ply. The stamp tells this reply's entries from older
// ones, so the table is never cleared between replies.
struct TableEntry {
  uint64_t Id;
  int32_t Value;
  uint32_t Stamp;
};
constexpr int32_t kTableBits = 14;
TableEntry Table[1 << kTableBits];
uint32_t Stamp;

// Set bits of a column mask (the portable build has no population-count instruction).
inline int32_t Count(uint32_t x) {
  x = x - ((x >> 1) & 0x55555555u);
  x = (x & 0x33333333u) + ((x >> 2) & 0x33333333u);
  return static_cast<int32_t>((((x + (x >> 4)) & 0x0F0F0F0Fu) * 0x01010101u) >> 24);
}

inline int32_t Mover(int32_t ply) {
  return ply % 2 == 1 ? 2 : 1;
}

inline int32_t CellAt(int32_t column, int32_t row) {
  return column * kStride + row;
}

// The number of consecutive pieces of player v from `from` on, stepping by `step`.
inline int32_t RunLength(int32_t v, int32_t from, int32_t step) {
  int32_t n = 0;
  while (Board.Cell[from] == v) {
    ++n;
    from += step;
  }
  return n;
}

// The next empty cell above a cell of the same column, 0 when there is none.
inline int32_t NextUp(int32_t cell) {
  for (int32_t y = cell - 1; y % kStride != 0; --y)
    if (Board.Cell[y] == 0) return y;
  return 0;
}

// The hit a piece of v at empty cell y adds on walk d, with `before` of its pieces just before
// y and `after` just after: the run's first Need + 1 cells end at that hit.
inline Key ThreatKey(int32_t v, int32_t d, int32_t y, int32_t before, int32_t after) {
  const int32_t need = Board.Need[v];
  if (before + after < need) return kNone;
  return static_cast<Key>(Board.LineKey[d][y] + 4 * std::max(0, need - before) + v);
}

// Whether a line just added is reported instead of the one reported so far: when it comes
// first in the scan (deliberately broken: always).
inline bool Hides(Key added, Key reported) {
  if (FastSettings.WrongScanOrder) return added != kNone;
  return added < reported;
}

// What the referee reports once a line `added` (or kNone) joins the board.
inline Key Merge(Key reported, Key added) {
  return Hides(added, reported) ? added : reported;
}

// Keys one line of the scan, walking from its start cell.
void KeyLine(int32_t d, int32_t order, int32_t column, int32_t row) {
  const int32_t s = Board.Side;
  const int32_t dc = d == 1 ? 0 : (d == 3 ? -1 : 1), dr = d == 0 ? 0 : 1;
  for (int32_t place = 0; column >= 1 && column <= s && row <= s; ++place) {
    Board.LineKey[d][CellAt(column, row)] = static_cast<Key>((order * 32 + place) * 4);
    column += dc;
    row += dr;
  }
}

// The lines in the referee's scan order; diagonals of fewer than three cells are never walked.
void KeyAllLines() {
  const int32_t s = Board.Side;
  int32_t order = 0;
  for (int32_t r = 1; r <= s; ++r) KeyLine(0, order++, 1, r);
  for (int32_t c = 1; c <= s; ++c) KeyLine(1, order++, c, 1);
  for (int32_t c = 1; c <= s - 2; ++c) KeyLine(2, order++, c, 1);
  for (int32_t r = 2; r <= s - 2; ++r) KeyLine(2, order++, 1, r);
  for (int32_t r = 1; r <= s - 2; ++r) KeyLine(3, order++, s, r);
  for (int32_t c = s - 1; c >= 3; --c) KeyLine(3, order++, c, 1);
}

// Copies snapshot 0 into the working board and finds each column's drop cell.
void LoadRoot() {
  const int32_t s = Board.Side;
  std::memset(Board.Cell, kWall, sizeof Board.Cell);
  for (int32_t c = 1; c <= s; ++c) {
    for (int32_t r = 1; r <= s; ++r) {
      const uint8_t g = Turn.Snapshots[0][c][r];
      Board.Cell[CellAt(c, r)] = g <= 2 ? g : kWall;
    }
    Board.Top[c] = NextUp(CellAt(c, s + 1));
    Board.Above[c] = Board.Top[c] != 0 ? NextUp(Board.Top[c]) : 0;
  }
}

// Sets the mask bits of column c from its Top and Above cells.
void MaskColumn(int32_t c) {
  const uint32_t bit = 1u << c;
  for (int32_t v = 1; v <= 2; ++v) {
    Board.TopMask[v] = (Board.TopMask[v] & ~bit) | (Board.Best[v][Board.Top[c]] != kNone ? bit : 0);
    Board.AboveMask[v] =
        (Board.AboveMask[v] & ~bit) | (Board.Best[v][Board.Above[c]] != kNone ? bit : 0);
  }
}

// The threat keys of every empty playable cell, from scratch.
void InitThreats() {
  std::fill(&Board.Best[0][0], &Board.Best[0][0] + 3 * kCells, kNone);
  for (int32_t y = 0; y < kCells; ++y) {
    if (Board.Cell[y] != 0) continue;
    for (int32_t v = 1; v <= 2; ++v) {
      for (int32_t d = 0; d < kDirections; ++d) {
        const int32_t before = RunLength(v, y - kStep[d], -kStep[d]);
        const int32_t after = RunLength(v, y + kStep[d], kStep[d]);
        Board.Best[v][y] = std::min(Board.Best[v][y], ThreatKey(v, d, y, before, after));
      }
    }
  }
}

// What the referee reports on the root position: the smallest key of a cell that ends exactly
// Need + 1 equal pieces (a longer run was already hit at its Need + 1-th cell).
Key RootKey() {
  Key k = kNone;
  for (int32_t z = 0; z < kCells; ++z) {
    const int32_t v = Board.Cell[z];
    if (v != 1 && v != 2) continue;
    for (int32_t d = 0; d < kDirections; ++d) {
      if (RunLength(v, z, -kStep[d]) == Board.Need[v] + 1) {
        k = std::min(k, static_cast<Key>(Board.LineKey[d][z] + v));
      }
    }
  }
  return k;
}

// Lowers the threat key of v at empty cell y, keeping the column masks.
inline void Lower(int32_t v, int32_t y, Key k) {
  Key& best = Board.Best[v][y];
  if (k >= best) return;
  UndoLog[UndoTop++] = {&best, best};
  best = k;
  const int32_t c = y / kStride;
  if (Board.Top[c] == y) Board.TopMask[v] |= 1u << c;
  if (Board.Above[c] == y) Board.AboveMask[v] |= 1u << c;
}

// Puts a piece of v into column c's drop cell. Only the empty cells just beyond the runs that
// now pass through the piece can gain a threat of v; no other key changes.
void Drop(int32_t v, int32_t c) {
  const int32_t x = Board.Top[c];
  uint32_t* saved = SavedMasks[PathLength];
  saved[0] = Board.TopMask[1], saved[1] = Board.TopMask[2];
  saved[2] = Board.AboveMask[1], saved[3] = Board.AboveMask[2];
  PathCodes[PathLength++] = static_cast<uint16_t>(x * 2 + v - 1);
  Board.Cell[x] = static_cast<uint8_t>(v);
  Board.Top[c] = Board.Above[c];
  Board.Above[c] = Board.Above[c] != 0 ? NextUp(Board.Above[c]) : 0;
  MaskColumn(c);
  for (int32_t d = 0; d < kDirections; ++d) {
    const int32_t s = kStep[d];
    const int32_t before = RunLength(v, x - s, -s), after = RunLength(v, x + s, s);
    const int32_t run = before + 1 + after;
    const int32_t y1 = x - s * (before + 1), y2 = x + s * (after + 1);
    if (Board.Cell[y1] == 0) Lower(v, y1, ThreatKey(v, d, y1, RunLength(v, y1 - s, -s), run));
    if (Board.Cell[y2] == 0) Lower(v, y2, ThreatKey(v, d, y2, run, RunLength(v, y2 + s, s)));
  }
}

// Takes back the drop into column c at cell x, with the undo log as it was before it.
void Lift(int32_t c, int32_t x, int32_t mark) {
  while (UndoTop > mark) {
    --UndoTop;
    *UndoLog[UndoTop].Where = UndoLog[UndoTop].Old;
  }
  Board.Cell[x] = 0;
  Board.Above[c] = Board.Top[c];
  Board.Top[c] = x;
  const uint32_t* saved = SavedMasks[--PathLength];
  Board.TopMask[1] = saved[0], Board.TopMask[2] = saved[1];
  Board.AboveMask[1] = saved[2], Board.AboveMask[2] = saved[3];
}

// The reported key after a trial of v at drop cell x (0: a full column, nothing changes).
inline Key TrialKey(Key reported, int32_t v, int32_t x) {
  return x != 0 ? Merge(reported, Board.Best[v][x]) : reported;
}

// The exact identity of the current position (plus one more piece, when `extra` is not 0) at
// a ply: the added pieces, sorted, 11 bits each, above three bits of ply.
uint64_t PositionId(uint16_t extra, int32_t ply) {
  uint16_t codes[kPlies + 1];
  int32_t n = 0;
  auto insert = [&codes, &n](uint16_t code) {
    int32_t k = n++;
    for (; k > 0 && codes[k - 1] > code; --k) codes[k] = codes[k - 1];
    codes[k] = code;
  };
  for (int32_t k = 0; k < PathLength; ++k) insert(PathCodes[k]);
  if (extra != 0) insert(extra);
  uint64_t id = 0;
  for (int32_t k = 0; k < n; ++k) id = (id << 11) | codes[k];
  return (id << 3) | static_cast<uint64_t>(ply);
}

inline TableEntry& Slot(uint64_t id) {
  return Table[(id * 0x9E3779B97F4A7C15ull) >> (64 - kTableBits)];
}

// How many columns of `mask` hold, at their `cells`, a threat of v whose line the referee
// would report instead of `reported`.
int32_t CountHiding(uint32_t mask, const int32_t* cells, int32_t v, Key reported) {
  if (reported == kNone) return Count(mask);
  int32_t n = 0;
  for (; mask != 0; mask &= mask - 1)
    n += Hides(Board.Best[v][cells[std::countr_zero(mask)]], reported);
  return n;
}

// The last ply, counted: a trial scores where the mover's line is already reported, or where
// its threat comes first in the scan.
int32_t LastPly(int32_t ply, Key reported) {
  const int32_t m = Mover(ply), s = Board.Side;
  const int32_t n =
      ValueOf(reported) == m ? s : CountHiding(Board.TopMask[m], Board.Top, m, reported);
  FastTrials += s;
  return Board.Weight[ply] * n;
}

// The last two plies, counted. A trial of m in column c changes, for the answers of o, only the
// report and column c's drop cell (m's piece cannot give o a line). So a column where m has no
// threat leaves o the answers of the unchanged report, but in column c the Above cell instead
// of the Top cell; only the columns where m has a threat are looked at one by one.
int32_t LastTwoPlies(int32_t ply, Key reported) {
  const int32_t m = Mover(ply), o = Mover(ply + 1), s = Board.Side;
  const uint32_t all = ((1u << s) - 1) << 1, threats = Board.TopMask[m];
  // o's answers that score over the columns of `mask` (at their Top or Above cells) once the
  // report is k: all of them when k is o's line.
  auto atTop = [o](uint32_t mask, Key k) {
    return ValueOf(k) == o ? Count(mask) : CountHiding(Board.TopMask[o] & mask, Board.Top, o, k);
  };
  auto atAbove = [o](uint32_t mask, Key k) {
    return ValueOf(k) == o ? Count(mask)
                           : CountHiding(Board.AboveMask[o] & mask, Board.Above, o, k);
  };
  const int32_t base = atTop(all, reported);
  const uint32_t quiet = all & ~threats;
  const int32_t n = Count(quiet);
  const bool line = ValueOf(reported) == m;
  int32_t total = line ? n * Board.Weight[ply] : 0;
  FastTrials += n;
  if (!(Board.Cut && line)) {
    total += Board.Weight[ply + 1] * (n * base - atTop(quiet, reported) + atAbove(quiet, reported));
    FastTrials += static_cast<int64_t>(n) * s;
  }
  for (uint32_t rest = threats; rest != 0; rest &= rest - 1) {
    const int32_t c = std::countr_zero(rest);
    const uint32_t bit = 1u << c;
    const Key k = Merge(reported, Board.Best[m][Board.Top[c]]);
    const bool own = ValueOf(k) == m;
    ++FastTrials;
    if (own) total += Board.Weight[ply];
    if (Board.Cut && own) continue;
    FastTrials += s;
    const int32_t answers = k == reported ? base - atTop(bit, k) + atAbove(bit, k)
                                          : atTop(all & ~bit, k) + atAbove(bit, k);
    total += Board.Weight[ply + 1] * answers;
  }
  return total;
}

int32_t Search(int32_t ply, Key reported);

// The score below a trial of v in column c (drop cell x, 0 when full) that left `reported`:
// plies `ply` and deeper. Shared between transposed positions from ply 3 on, except where the
// plies are counted: counting them again costs less than looking them up.
int32_t Below(int32_t ply, Key reported, int32_t v, int32_t c, int32_t x) {
  const int32_t counted = FastSettings.CountLastPlies ? 2 : 1;
  const bool shared = FastSettings.Transpositions && ply >= 3 && ply <= Board.Depth - counted;
  uint64_t id = 0;
  if (shared) {
    id = PositionId(x != 0 ? static_cast<uint16_t>(x * 2 + v - 1) : 0, ply);
    const TableEntry& e = Slot(id);
    if (e.Stamp == Stamp && e.Id == id) return e.Value;
  }
  int32_t value;
  if (x != 0) {
    const int32_t mark = UndoTop;
    Drop(v, c);
    value = Search(ply, reported);
    Lift(c, x, mark);
  } else {
    value = Search(ply, reported);
  }
  if (shared) Slot(id) = {id, value, Stamp};
  return value;
}

// The score of plies `ply` and deeper below the current position, whose report is `reported`.
int32_t Search(int32_t ply, Key reported) {
  if (ply == Board.Depth) return LastPly(ply, reported);
  if (ply == Board.Depth - 1 && FastSettings.CountLastPlies) return LastTwoPlies(ply, reported);
  const int32_t m = Mover(ply);
  int32_t total = 0;
  for (int32_t c = 1; c <= Board.Side; ++c) {
    const int32_t x = Board.Top[c];
    const Key k = TrialKey(reported, m, x);
    const bool line = ValueOf(k) == m;
    ++FastTrials;
    if (line) total += Board.Weight[ply];
    if (Board.Cut && line) continue;
    total += Below(ply + 1, k, m, c, x);
  }
  return total;
}

// Whether the fast search models these settings exactly.
bool Supported(int32_t depth) {
  const int32_t s = CellsPerSide();
  return s >= 1 && s <= kMaxSide && depth >= 2 && depth <= kPlies && RunNeeded[0] != 0 &&
         RunNeeded[1] >= 2 && RunNeeded[2] >= 2;
}

void SetUp(int32_t depth) {
  const int32_t ai = IsRosterIndex(SessionState.AiNumber) ? SessionState.AiNumber : 0;
  Board.Side = CellsPerSide();
  Board.Depth = depth;
  Board.Cut = CutsBelowLines(ai);
  for (int32_t v = 0; v < 3; ++v) Board.Need[v] = RunNeeded[v];
  for (int32_t p = 1; p <= kPlies; ++p)
    Board.Weight[p] = Mover(p) == 2 ? PlyWeights[ai][p - 1] : -PlyWeights[ai][p - 1];
  std::fill(&Board.LineKey[0][0], &Board.LineKey[0][0] + kDirections * kCells, kNone);
  KeyAllLines();
  LoadRoot();
  InitThreats();
  Board.TopMask[1] = Board.TopMask[2] = Board.AboveMask[1] = Board.AboveMask[2] = 0;
  for (int32_t c = 1; c <= Board.Side; ++c) MaskColumn(c);
  UndoTop = 0;
  PathLength = 0;
  FastTrials = 0;
  if (++Stamp == 0) {  // after 2^32 replies the old stamps could match again
    std::memset(Table, 0, sizeof Table);
    Stamp = 1;
  }
}

}  // namespace

int32_t FastLookAhead(int32_t depth) {
  if (!Supported(depth)) return PlainLookAhead(depth);
  SetUp(depth);
  const Key root = RootKey();
  int32_t best = kForbidden, chosen = 0;
  for (int32_t k = 0; k < Board.Side; ++k) {
    const int32_t c1 = Turn.ShuffledColumns[k];
    const int32_t x = c1 >= 1 && c1 <= Board.Side ? Board.Top[c1] : 0;
    const Key key = TrialKey(root, 2, x);
    ++FastTrials;
    int32_t score = ValueOf(key) == 2 ? Board.Weight[1] : 0;
    score += Below(2, key, 2, c1, x);  // the first ply is never cut
    if (score < 0 && score < Turn.ColumnValue[c1]) Turn.ColumnValue[c1] = score;
    if (score > best) {
      best = score;
      chosen = c1;
    }
  }
  return chosen;
}
