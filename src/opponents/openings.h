// The opening rules of two strategies. Strategy 8 chooses its column at Normal by a count of
// pieces; strategy 7 looks at fixed patterns next to the bottom row while the board is nearly
// empty, and may choose a column, forbid columns to the look-ahead, or plan one for later.
#pragma once

#include <cstdint>

// Strategy 7's column planned for a later reply; 0 for none. Lives as long as the process, so a
// column planned in one game can be played in the next.
extern int32_t PlannedColumn;

// The column or row (designating the column of the same number) with the largest surplus of
// the human's pieces over the computer's; columns first, lower numbers first on ties.
int32_t SurplusCount();

// Strategy 7's patterns for a reply whose call was at column h. Returns the chosen column or 0;
// may mark columns forbidden in Turn.ColumnValue and set PlannedColumn.
int32_t OpeningPatterns(int32_t h);
