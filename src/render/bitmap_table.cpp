#include "render/bitmap_table.h"

BitmapTableRecord BitmapTable;

BitmapSlot FindBitmapSlot(int32_t resource, int32_t width, int32_t height) {
  const BitmapKey key{resource, width, height};
  for (int32_t i = 0; i < BitmapTable.Used; ++i) {
    if (BitmapTable.Keys[i] == key) return {i, false};
  }
  if (BitmapTable.Used == kBitmapSlots) return {};
  BitmapTable.Keys[BitmapTable.Used] = key;
  return {BitmapTable.Used++, true};
}
