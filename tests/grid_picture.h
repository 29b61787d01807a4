// Boards drawn as text for the tests: rows top first, separated by '/'; '.' empty, '1' and '2'
// pieces, '*' a marked empty cell, 'a' and 'b' marked pieces of 1 and 2.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ground/session.h"
#include "opponents/referee.h"

inline constexpr std::string_view kCellSymbols = ".12*ab";  // values 0, 1, 2, 16, 17, 18

// Clears the grid, fills it from the picture and gives BoardSize the picture's number of rows.
inline void SetGrid(std::string_view picture) {
  GridClear();
  int32_t column = 1, row = 1;
  for (const char symbol : picture) {
    if (symbol == '/') {
      column = 1;
      ++row;
      continue;
    }
    const auto k = static_cast<uint8_t>(kCellSymbols.find(symbol));
    Grid[column++][row] = k < 3 ? k : k + 13;
  }
  SessionState.BoardSize = row + 1;
}

// The playable square of the grid as a picture; '?' for a value without a symbol.
inline std::string GridPicture() {
  std::string picture;
  for (int32_t row = 1; row <= CellsPerSide(); ++row) {
    if (row > 1) picture += '/';
    for (int32_t column = 1; column <= CellsPerSide(); ++column) {
      const uint8_t v = Grid[column][row];
      picture += v < 3 ? kCellSymbols[v] : v >= 16 && v <= 18 ? kCellSymbols[v - 13] : '?';
    }
  }
  return picture;
}

inline std::vector<std::string> GridRows() {
  std::vector<std::string> rows(1);
  for (const char symbol : GridPicture()) {
    if (symbol == '/') rows.emplace_back();
    if (symbol != '/') rows.back() += symbol;
  }
  return rows;
}
