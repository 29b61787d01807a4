// The encoding every French text is kept in.
#include <gtest/gtest.h>

#include <string>

#include "ground/texts.h"

TEST(TextsTest, AccentsBecomeSingleWindows1252Bytes) {
  constexpr auto text = Cp1252("Déçu À propos n°");
  EXPECT_EQ(std::string(text), "D\xE9\xE7u \xC0 propos n\xB0");
  EXPECT_EQ(ToUtf8(text), "Déçu À propos n°");
  EXPECT_EQ(ToUtf8("\x80"), "\xEF\xBF\xBD");
}
