// Boards drawn as text for the tests: rows top first, separated by '/'; '.' empty, '1' and '2'
// pieces, 'a' and 'b' marked pieces of 1 and 2, '*' a marked empty cell.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "ground/session.h"
#include "opponents/referee.h"

inline constexpr std::string_view kCellSymbols = ".12*ab";
inline constexpr uint8_t kCellValues[] = {0, 1, 2, 16, 17, 18};

// Clears the grid, fills it from the picture and gives BoardSize the picture's number of rows.
inline void SetGrid(std::string_view picture) {
  GridClear();
  int32_t column = 1, row = 1;
  for (const char ch : picture) {
    if (ch == '/') {
      ++row;
      column = 1;
    } else {
      Grid[column++][row] = kCellValues[kCellSymbols.find(ch)];
    }
  }
  SessionState.BoardSize = row + 1;
}

// The playable square of the grid, one string per row, top row first; '?' for a value without
// a symbol.
inline std::vector<std::string> GridRows() {
  std::vector<std::string> rows;
  for (int32_t row = 1; row <= CellsPerSide(); ++row) {
    std::string text;
    for (int32_t column = 1; column <= CellsPerSide(); ++column) {
      const uint8_t* end = std::end(kCellValues);
      const uint8_t* at = std::find(std::begin(kCellValues), end, Grid[column][row]);
      text += at == end ? '?' : kCellSymbols[at - kCellValues];
    }
    rows.push_back(text);
  }
  return rows;
}

// The same rows as one picture.
inline std::string GridPicture() {
  std::string picture;
  for (const std::string& row : GridRows()) picture += (picture.empty() ? "" : "/") + row;
  return picture;
}
