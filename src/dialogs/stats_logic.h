// The texts of the statistics dialog for the counters of the current settings: games played,
// won and lost, the share of wins among decided games, a verdict by that share, and the
// section looked at.
#pragma once

#include <cstdint>
#include <string>

// "Moyennant:" and the share of wins: 0.00% or 100.00% when nothing was lost, otherwise
// won x 100 / (won + lost) with two decimals.
std::string ShareOfWinsText(uint16_t won, uint16_t lost);

// The verdict: one of twenty-one remarks chosen by the whole percentage of wins, in steps of
// five points.
const char* VerdictFor(uint16_t won, uint16_t lost);

struct StatsTexts {
  std::string Played;
  std::string Won;
  std::string Lost;
  std::string Share;
  std::string Verdict;
  std::string Mode;  // players and section, the section counted from 1
};

// Every text of the dialog for the record of the current settings. A section outside the
// table (only a damaged file can give one) shows zero counters.
StatsTexts StatsDialogTexts();
