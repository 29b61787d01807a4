// The generator and the texts: the sequence every random choice depends on, and the encoding
// every French text is kept in.
#include <gtest/gtest.h>

#include <cstring>

#include "ground/random.h"
#include "ground/texts.h"

namespace {

TEST(RandomTest, FollowsTheClassicSequence) {
  SeedRandom(1);
  const int32_t expected[] = {41, 18467, 6334, 26500, 19169, 15724, 11478, 29358};
  for (int32_t e : expected) EXPECT_EQ(RandomNext(), e);
}

TEST(RandomTest, StateWrapsModulo32Bits) {
  SeedRandom(0xFFFFFFFFu);
  const int32_t first = RandomNext();
  EXPECT_EQ(RandomState, 0xFFFFFFFFu * 214013u + 2531011u);
  EXPECT_EQ(first, static_cast<int32_t>((RandomState >> 16) & 0x7FFF));
  for (int i = 0; i < 100000; ++i) {
    const int32_t v = RandomNext();
    ASSERT_GE(v, 0);
    ASSERT_LE(v, 32767);
  }
}

TEST(TextsTest, AccentsBecomeSingleWindows1252Bytes) {
  constexpr auto text = Cp1252("Déçu À propos n°");
  EXPECT_EQ(std::strlen(text), 16u);
  EXPECT_EQ(static_cast<unsigned char>(text.c_str()[1]), 0xE9);
  EXPECT_EQ(static_cast<unsigned char>(text.c_str()[2]), 0xE7);
  EXPECT_EQ(static_cast<unsigned char>(text.c_str()[5]), 0xC0);
  EXPECT_EQ(static_cast<unsigned char>(text.c_str()[15]), 0xB0);
  EXPECT_EQ(ToUtf8(text), "Déçu À propos n°");
  EXPECT_EQ(ToUtf8("\x80"), "\xEF\xBF\xBD");
}

}  // namespace
