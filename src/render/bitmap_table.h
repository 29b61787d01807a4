// Which pictures the board has already loaded, each at the one size it is drawn at. A picture
// loaded from the resources is kept for the rest of the run: loading it again at every piece
// made a full large board slow to repaint. The window keeps the loaded pictures themselves in
// the slots this table hands out; the table holds only what tells them apart.
#pragma once

#include <cstdint>

// Ten disc sprites with their mask and fourteen portraits, each drawn at one size, with room
// to spare.
constexpr int32_t kBitmapSlots = 32;

struct BitmapKey {
  int32_t Resource = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  bool operator==(const BitmapKey&) const = default;
};

struct BitmapTableRecord {
  BitmapKey Keys[kBitmapSlots];
  int32_t Used = 0;  // slots 0 .. Used - 1 are taken, in the order they were claimed
};

extern BitmapTableRecord BitmapTable;

struct BitmapSlot {
  int32_t Index = -1;  // -1: the table is full, the picture is loaded for this one use
  bool Fresh = false;  // claimed by this call: the caller loads the picture into it
};

// The slot of a picture at a size: the one that already holds it, or the next free one,
// claimed for it.
BitmapSlot FindBitmapSlot(int32_t resource, int32_t width, int32_t height);
