// The referee: refused drops, the winning run of each length, the scan order and the marking.
#include <string>

#include "grid_picture.h"
#include "opponents/referee.h"
#include "test_support.h"

namespace {

using RefereeTest = CoreTest;

TEST_F(RefereeTest, DropRefusesColumnsOutsideTheBoard) {
  const std::string empty = "......./......./......./......./......./......./.......";
  SetGrid(empty);
  SessionState.CurrentPlayer = 2;
  for (const int32_t outside : {0, 8, -3}) EXPECT_EQ(GridDrop(outside), 0) << outside;
  EXPECT_EQ(GridPicture(), empty);
}

TEST_F(RefereeTest, ReportsAndMarksTheFirstRunInScanOrder) {
  // Each board as the marking must leave it: 'a' and 'b' are the pieces of the run that is
  // reported and marked, 1 and 2 before. Without letters nobody wins.
  // clang-format off
  struct Row { const char* Name; int32_t Need1, Need2; const char* Marked; };
  const Row rows[] = {
    {"DownRightFromTheLeftColumn", 3, 3, "......./......./......./b....../.b...../..b..../1..b..."},
    {"DownLeftFromTheTopRow",      3, 3, "...a.../..a..../.a...../a....../......./......./......."},
    // A run longer than needed: only its first cells in walking order are marked.
    {"FiveMarksTheLeftmostFour",   3, 3, "......./......./......./......./......./......./aaaa1.."},
    {"FiveMarksTheTopmostFour",    3, 3, "......./......./a....../a....../a....../a....../1......"},
    // Rows before columns, whatever the rows' position; row 2 before row 5.
    {"RowBeforeColumn",            3, 3, "......./......./......./2....../2....../2....../2aaaa.."},
    {"UpperRowFirst",              3, 3, "......./bbbb.../......./......./1111.../......./......."},
    {"ColumnBeforeDiagonal",       3, 3, "......./......./......./1.....b/.1....b/..1...b/...1..b"},
    // Down-right from the top row, then from the left column; then down-left from the right
    // column, then from the top row.
    {"TopRowDownRightFirst",       3, 3, "..b..../1..b.../.1..b../..1..b./...1.../......./......."},
    {"DownRightBeforeDownLeft",    3, 3, "a....../.a....2/..a..2./...a2../...2.../......./......."},
    {"RightColumnDownLeftFirst",   3, 3, ".....1./....1.b/...1.b./..1.b../...b.../......./......."},
    // The last three-cell diagonal of each pass is walked; a two-cell one never is.
    {"LastTopRowDownRight",        3, 2, "....b../.....b./......b/......./......./......./......."},
    {"LastRightColumnDownLeft",    3, 2, "......./......./......./......./......b/.....b./....b.."},
    {"LastTopRowDownLeft",         3, 2, "..b..../.b...../b....../......./......./......./......."},
    {"TwoCellDiagonalNever",       3, 1, ".....2./......2/......./......./......./......./......."},
    {"ThreeCellsASide",            3, 2, "..b/.b./b.."},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    const std::string marked = row.Marked;
    std::string board = marked;
    for (char& cell : board) cell = cell == 'a' ? '1' : cell == 'b' ? '2' : cell;
    SetGrid(board);
    RunNeeded[0] = 3;
    RunNeeded[1] = row.Need1;
    RunNeeded[2] = row.Need2;
    const bool one = marked.find('a') != marked.npos, two = marked.find('b') != marked.npos;
    EXPECT_EQ(GridFindWinner(), one ? 1 : two ? 2 : 0);
    GridMarkWinner();
    EXPECT_EQ(GridPicture(), marked);
  });
}

}  // namespace
