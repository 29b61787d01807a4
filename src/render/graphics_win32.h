// The graphic objects of the main window and the two off-screen surfaces, created once and
// kept until the process ends, and the operations that fill and present them.
#pragma once

#include <windows.h>

#include <cstdint>

struct GraphicsRecord {
  HFONT TextFont = nullptr;
  HPEN GridPen = nullptr;
  HBRUSH SkyBlueBrush = nullptr;
  HBRUSH GoldBrush = nullptr;
  HBRUSH LightGreenBrush = nullptr;
  HBRUSH DialogBrush = nullptr;  // the about box and the characters dialog
  HCURSOR WaitCursor = nullptr;
  HDC BackBuffer = nullptr;        // each frame is composed here
  HDC BackgroundBuffer = nullptr;  // the background picture at the logical size
};

extern GraphicsRecord Graphics;

// The font, the brushes and the wait cursor; before the main window exists.
void CreateGraphicResources();

// Draws bitmap resource `resource`, as the loader scales it to width x height, at (x, y) of
// `target` with the raster operation `rop`. Each picture is loaded once per size and kept; a
// missing resource draws nothing.
void DrawResourceBitmap(HDC target, int32_t resource, int32_t x, int32_t y, int32_t width,
                        int32_t height, DWORD rop);

// At the first repaint: the first game, the pen and both surfaces, the background at W x H.
void FirstPaintSetup(HDC paint);

// When the logical size has settled: the background surface black, then the picture at W x H.
void RefillBackground();

// Stretches the composed frame onto the window and blacks out what it leaves uncovered.
void PresentBackBuffer(HDC paint);

// Compose a frame in the back buffer from the referee's board or from the engine's.
void PaintGridBoard();
void PaintEngineBoard();

// One piece of a player in screen cell (x, y) of the back buffer.
void DrawPiece(int32_t x, int32_t y, int32_t player);
