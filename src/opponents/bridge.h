// Copies a finished engine game onto the referee's board, so that it is shown and marked like
// any other game.
#pragma once

// Engine column c, row r (from the bottom) becomes Grid column c + 1, row 7 - r; the human's
// pieces are 1 and the engine's 2. The winning line, if any, is marked, and one more repaint
// is asked for.
void GridFromEngine();
