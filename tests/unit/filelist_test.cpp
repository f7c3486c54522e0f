// The file masks; listing, sorting and recursion: the files lists and recursion macros.
#include <gtest/gtest.h>

#include "library/pattern.h"

TEST(Pattern, MaskMatching) {
  EXPECT_TRUE(maskmatch("*", ""));
  EXPECT_TRUE(maskmatch("*.png", "a.png"));
  EXPECT_FALSE(maskmatch("*.png", "a.png.gz"));
  EXPECT_TRUE(maskmatch("a*b*c", "aXbYbZc"));
  EXPECT_FALSE(maskmatch("a*b*c", "aXbYc_"));
  EXPECT_TRUE(maskmatch("img*", "img"));
  EXPECT_FALSE(maskmatch("img?", "img1"));  // only "*" is a wildcard
  EXPECT_TRUE(maskmatch("**x", "abx"));
  EXPECT_TRUE(maskmatch("Ä*", "Äpfel"));
}
