// The table of loaded pictures: loaded once per size; a full table still draws every picture.
#include <gtest/gtest.h>

#include "render/bitmap_table.h"

namespace {

struct Request {
  int32_t Resource, Width, Height;
  int32_t Index;
  bool Fresh;
};

TEST(BitmapTableTest, EachPictureAtEachSizeIsLoadedOnce) {
  BitmapTable = {};
  const Request requests[] = {
      {154, 20, 20, 0, true},     // the mask, first piece
      {155, 20, 20, 1, true},     // the green sprite
      {154, 20, 20, 0, false},    // the mask again, second piece
      {30010, 23, 68, 2, true},   // a portrait stored at another size
      {30010, 46, 136, 3, true},  // the same picture at its stored size is another one
      {30010, 23, 69, 4, true},   // so is one pixel more
      {30010, 23, 68, 2, false},  // found again behind the others
  };
  for (const Request& r : requests) {
    const BitmapSlot slot = FindBitmapSlot(r.Resource, r.Width, r.Height);
    EXPECT_EQ(slot.Index, r.Index) << r.Resource << " " << r.Width << "x" << r.Height;
    EXPECT_EQ(slot.Fresh, r.Fresh) << r.Resource << " " << r.Width << "x" << r.Height;
  }
  EXPECT_EQ(BitmapTable.Used, 5);
}

TEST(BitmapTableTest, AFullTableKeepsWhatItHoldsAndLoadsTheRestEachTime) {
  BitmapTable = {};
  for (int32_t i = 0; i < kBitmapSlots; ++i) {
    ASSERT_EQ(FindBitmapSlot(30000 + i, 20, 20).Index, i);
  }
  for (int32_t repeat = 0; repeat < 2; ++repeat) {
    const BitmapSlot extra = FindBitmapSlot(152, 20, 20);
    EXPECT_EQ(extra.Index, -1);
    EXPECT_FALSE(extra.Fresh);
  }
  const BitmapSlot last = FindBitmapSlot(30000 + kBitmapSlots - 1, 20, 20);
  EXPECT_EQ(last.Index, kBitmapSlots - 1);
  EXPECT_FALSE(last.Fresh);
  EXPECT_EQ(BitmapTable.Used, kBitmapSlots);
}

}  // namespace
