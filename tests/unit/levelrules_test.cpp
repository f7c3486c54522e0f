#include <gtest/gtest.h>

#include <random>

#include "ops/levelrules.h"

// Equalisation: level i takes the voxels below it and half of its own, over all voxels.
TEST(LevelRules, EqualisationOfARandomHistogram) {
  std::mt19937 g(9);
  tlevelhistogram h(256);
  for (int64_t& c : h) c = g() % 50;
  int64_t total = 0;
  for (const int64_t c : h) total += c;
  const tleveltable t = ruletable(h, 255, tlevelrule::equal, {});
  ASSERT_EQ(t.size(), 256u);
  EXPECT_EQ(t[0], 0);
  EXPECT_EQ(t[255], 255 * 255);
  int64_t below = h[0];
  for (int i = 1; i < 255; ++i) {
    EXPECT_EQ(t[i], std::llrint(255.0 * static_cast<double>(below + h[i] / 2) / static_cast<double>(total))) << i;
    below += h[i];
  }
}

// Single voxels at both ends fall under the cut; the rest stretches onto 0..255.
TEST(LevelRules, PercentageCutsTheEnds) {
  tlevelhistogram h(256, 0);
  h[10] = 1, h[250] = 1;
  for (int i = 50; i <= 150; ++i) h[i] = 10;
  const tleveltable t = ruletable(h, 255, tlevelrule::percentage, {0.006, 0.006});
  ASSERT_EQ(t.size(), 256u);
  EXPECT_EQ(t[50], 0);
  EXPECT_EQ(t[150], 255);
  EXPECT_EQ(t[100], 128);  // 50 / 100 * 255 = 127.5, to even
  EXPECT_EQ(t[10], 0);
  EXPECT_EQ(t[250], 255);
  EXPECT_TRUE(ruletable(tlevelhistogram(256, 0), 255, tlevelrule::percentage, {}).empty());
}

TEST(LevelRules, RepairFillsGapsOfOneAndTwo) {
  tlevelhistogram h{0, 4, 0, 6, 0, 0, 8, 0};
  repairhistogram(h);
  EXPECT_EQ(h, (tlevelhistogram{0, 4, 5, 6, 7, 7, 8, 0}));
}

// The peak goes to the middle; the other levels keep their distance to it.
TEST(LevelRules, PeakToTheMiddle) {
  tlevelhistogram h(256, 0);
  for (int i = 60; i <= 140; ++i) h[i] = 100 - std::abs(i - 90);
  const tleveltable t = ruletable(h, 255, tlevelrule::peakmiddle, {});
  ASSERT_EQ(t.size(), 256u);
  EXPECT_EQ(t[90], 127);
  EXPECT_EQ(t[0], 37);
}
