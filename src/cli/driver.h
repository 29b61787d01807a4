// The headless driver: plays the game from a script of commands, one per line, exactly as the
// main window would, by calling the real game code, and prints the state on request.
#pragma once

#include <iosfwd>

// Runs a script to its end. Returns the exit status: 0 at the end of the input, 2 for a
// malformed line (reported on `err` with its line number; nothing after it runs).
int RunDriverScript(std::istream& in, std::ostream& out, std::ostream& err);
