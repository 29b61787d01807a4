// The referee: drops, the winning run of each length, the scan order and the marking.
#include <gtest/gtest.h>

#include "grid_picture.h"
#include "opponents/referee.h"
#include "test_support.h"

namespace {

class RefereeTest : public CoreTest {};

TEST_F(RefereeTest, GridDropFillsFromTheBottomAndRefusesOutsideOrFull) {
  SetGrid({".......", ".......", ".......", ".......", ".......", ".......", "......."});
  SessionState.CurrentPlayer = 2;
  EXPECT_EQ(GridDrop(0), 0);
  EXPECT_EQ(GridDrop(8), 0);  // column BoardSize does not exist
  EXPECT_EQ(GridDrop(-3), 0);
  EXPECT_EQ(GridDrop(3), 2);
  EXPECT_EQ(Grid[3][7], 2);
  SessionState.CurrentPlayer = 1;
  EXPECT_EQ(GridDrop(3), 1);
  EXPECT_EQ(Grid[3][6], 1);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(GridDrop(3), 1);
  const auto before = GridRows();
  EXPECT_EQ(GridDrop(3), 0);  // rows 1..7 are full; row 0 never receives a piece
  EXPECT_EQ(GridRows(), before);
  EXPECT_EQ(Grid[3][0], 0);
}

struct WinCase {
  const char* Name;
  std::vector<std::string> Board;
  int32_t Need1, Need2;
  int32_t Winner;
  std::vector<std::string> Marked;  // the board after GridMarkWinner
};

// Cases print as their names in test listings.
void PrintTo(const WinCase& c, std::ostream* out) {
  *out << c.Name;
}

class RefereeWinTest : public CoreTest, public ::testing::WithParamInterface<WinCase> {};

TEST_P(RefereeWinTest, FindsAndMarksTheFirstRunInScanOrder) {
  const WinCase& c = GetParam();
  SetGrid(c.Board);
  RunNeeded[0] = 3;
  RunNeeded[1] = c.Need1;
  RunNeeded[2] = c.Need2;
  EXPECT_EQ(GridFindWinner(), c.Winner);
  GridMarkWinner();
  EXPECT_EQ(GridRows(), c.Marked);
}

// clang-format off
const WinCase kWinCases[] = {
  {"ThreeIsNotFour", {".......", ".......", ".......", ".......", ".......", ".......", "111...."}, 3, 3, 0,
   {".......", ".......", ".......", ".......", ".......", ".......", "111...."}},
  {"Horizontal", {".......", ".......", ".......", ".......", ".......", ".......", ".1111.."}, 3, 3, 1,
   {".......", ".......", ".......", ".......", ".......", ".......", ".aaaa.."}},
  {"Vertical", {".......", ".......", ".......", "....2..", "....2..", "....2..", "...12.."}, 3, 3, 2,
   {".......", ".......", ".......", "....b..", "....b..", "....b..", "...1b.."}},
  {"DownRight", {".......", ".......", ".......", "2......", ".2.....", "..2....", "1..2..."}, 3, 3, 2,
   {".......", ".......", ".......", "b......", ".b.....", "..b....", "1..b..."}},
  {"DownLeft", {".......", ".......", ".......", "......1", ".....1.", "....1..", "...1..."}, 3, 3, 1,
   {".......", ".......", ".......", "......a", ".....a.", "....a..", "...a..."}},
  // A run longer than needed: only its first cells in walking order are marked.
  {"FiveMarksLeftmostFour", {".......", ".......", ".......", ".......", ".......", ".......", "11111.."}, 3, 3, 1,
   {".......", ".......", ".......", ".......", ".......", ".......", "aaaa1.."}},
  {"FiveMarksTopmostFour", {".......", ".......", "1......", "1......", "1......", "1......", "1......"}, 3, 3, 1,
   {".......", ".......", "a......", "a......", "a......", "a......", "1......"}},
  // Rows are scanned before columns, whatever the rows' position.
  {"RowBeforeColumn", {".......", ".......", ".......", "2......", "2......", "2......", "21111.."}, 3, 3, 1,
   {".......", ".......", ".......", "2......", "2......", "2......", "2aaaa.."}},
  // Row 2 before row 5.
  {"UpperRowFirst", {".......", "2222...", ".......", ".......", "1111...", ".......", "......."}, 3, 3, 2,
   {".......", "bbbb...", ".......", ".......", "1111...", ".......", "......."}},
  // Columns before diagonals.
  {"ColumnBeforeDiagonal", {".......", ".......", ".......", "1.....2", ".1....2", "..1...2", "...1..2"}, 3, 3, 2,
   {".......", ".......", ".......", "1.....b", ".1....b", "..1...b", "...1..b"}},
  // Down-right diagonals from the top row come before those from the left column.
  {"TopRowDiagonalFirst", {"..2....", "1..2...", ".1..2..", "..1..2.", "...1...", ".......", "......."}, 3, 3, 2,
   {"..b....", "1..b...", ".1..b..", "..1..b.", "...1...", ".......", "......."}},
  // Down-right before down-left.
  {"DownRightBeforeDownLeft", {"1.....2", ".1...2.", "..1.2..", "...12..", ".......", ".......", "......."}, 3, 3, 1,
   {"a.....2", ".a...2.", "..a.2..", "...a2..", ".......", ".......", "......."}},
  // Down-left from the right column come before those from the top row.
  {"RightColumnDiagonalFirst", {".....1.", "....1.2", "...1.2.", "..1.2..", "...2...", ".......", "......."}, 3, 3, 2,
   {".....1.", "....1.b", "...1.b.", "..1.b..", "...b...", ".......", "......."}},
  // The computer's three in a row wins with strategy 3's needs; the human's does not.
  {"ComputerThree", {".......", ".......", ".......", ".......", ".......", ".......", "111.222"}, 3, 2, 2,
   {".......", ".......", ".......", ".......", ".......", ".......", "111.bbb"}},
  {"HumanThreeIsNothing", {".......", ".......", ".......", ".......", ".......", ".......", "111.22."}, 3, 2, 0,
   {".......", ".......", ".......", ".......", ".......", ".......", "111.22."}},
  // Five in a row for both: four wins for nobody.
  {"FourIsNotFive", {".......", ".......", ".......", ".......", ".......", ".......", "1111.22"}, 4, 4, 0,
   {".......", ".......", ".......", ".......", ".......", ".......", "1111.22"}},
  {"FiveWins", {".......", ".......", ".......", ".......", ".......", ".......", "..22222"}, 4, 4, 2,
   {".......", ".......", ".......", ".......", ".......", ".......", "..bbbbb"}},
  // The three-cell diagonal from row 1, column 5 is walked; the two-cell one never is.
  {"ThreeCellDiagonal", {"....2..", ".....2.", "......2", ".......", ".......", ".......", "......."}, 3, 2, 2,
   {"....b..", ".....b.", "......b", ".......", ".......", ".......", "......."}},
  {"TwoCellDiagonalNever", {".....2.", "......2", ".......", ".......", ".......", ".......", "......."}, 3, 1, 0,
   {".....2.", "......2", ".......", ".......", ".......", ".......", "......."}},
  // With three cells a side only the two corner diagonals are walked.
  {"SmallBoardCorner", {"..2", ".2.", "2.."}, 3, 2, 2, {"..b", ".b.", "b.."}},
  {"SmallBoardOffCorner", {".2.", "..2", "..."}, 3, 1, 0, {".2.", "..2", "..."}},
};
// clang-format on

std::string WinCaseName(const ::testing::TestParamInfo<WinCase>& param) {
  return param.param.Name;
}

INSTANTIATE_TEST_SUITE_P(Cases, RefereeWinTest, ::testing::ValuesIn(kWinCases), WinCaseName);

TEST_F(RefereeTest, LargestBoardUsesEveryColumnAndRow) {
  std::vector<std::string> rows(19, std::string(19, '.'));
  for (int r = 15; r < 19; ++r) rows[r][18] = '2';  // bottom of the last column
  SetGrid(rows);
  RunNeeded[0] = RunNeeded[1] = RunNeeded[2] = 3;
  EXPECT_EQ(GridFindWinner(), 2);
  GridMarkWinner();
  for (int r = 16; r <= 19; ++r) EXPECT_EQ(Grid[19][r], 18);
  EXPECT_EQ(Grid[20][19], 0);  // the border stays empty
}

}  // namespace
