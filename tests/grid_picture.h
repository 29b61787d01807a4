// Boards drawn as text for the tests: one string per row, top row first; '.' empty, '1' and
// '2' pieces, 'a' and 'b' marked pieces of 1 and 2, '*' a marked empty cell.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ground/session.h"
#include "opponents/referee.h"

inline void SetGrid(const std::vector<std::string>& rows) {
  GridClear();
  SessionState.BoardSize = static_cast<int32_t>(rows.size()) + 1;
  for (size_t r = 0; r < rows.size(); ++r) {
    for (size_t c = 0; c < rows[r].size(); ++c) {
      const char ch = rows[r][c];
      const uint8_t v = ch == '1'   ? 1
                        : ch == '2' ? 2
                        : ch == 'a' ? 17
                        : ch == 'b' ? 18
                        : ch == '*' ? 16
                                    : 0;
      Grid[c + 1][r + 1] = v;
    }
  }
}

inline std::vector<std::string> GridRows() {
  std::vector<std::string> rows;
  const int32_t s = CellsPerSide();
  for (int32_t r = 1; r <= s; ++r) {
    std::string row;
    for (int32_t c = 1; c <= s; ++c) {
      const uint8_t v = Grid[c][r];
      row += v == 0    ? '.'
             : v == 1  ? '1'
             : v == 2  ? '2'
             : v == 17 ? 'a'
             : v == 18 ? 'b'
             : v == 16 ? '*'
                       : '?';
    }
    rows.push_back(row);
  }
  return rows;
}
