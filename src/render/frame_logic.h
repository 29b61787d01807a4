// What a repaint of the main window decides apart from pixels: which board it shows, the game
// effects of composing the frame (the ceiling rule, the end of an engine game, GameStarted),
// and the status line. The window draws what this decides; the driver and tests use it alone.
#pragma once

// Whether the frame is composed from the engine's board: only while a game against the
// searching character runs on the board of seven cells a side.
bool FrameShowsEngineBoard();

// Applies the game effects of the routine that composes this frame and formats its status
// line into TextBuffer (empty when the frame has none).
void ComposeFrameLogic();

// The last step of a repaint: one more repaint when the frame asked for it.
void FinishRepaint();
