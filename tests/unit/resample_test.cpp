#include <gtest/gtest.h>

#include <random>

#include "field/arrays.h"
#include "ops/morphology.h"
#include "ops/resample.h"

TEST(Resample, LanczosWeights) {
  EXPECT_EQ(lanczos4(0), 1.0);
  for (double d : {1.0, 2.0, 3.0, -1.0, -2.0, -3.0}) EXPECT_NEAR(lanczos4(d), 0.0, 1e-15) << d;
  // 4 sin(pi / 2) sin(pi / 8) / (pi^2 / 4): the window at one half is 0.62, not 0.9.
  EXPECT_NEAR(lanczos4(0.5), 0.6204, 0.0001);
  EXPECT_EQ(lanczos4(4), 0.0);
  EXPECT_EQ(lanczos4(-5.5), 0.0);
}

TEST(Resample, SizesRoundHalvesUp) {
  EXPECT_EQ(scaledsize(101, 0.5), 51);
  EXPECT_EQ(scaledsize(100, 0.5), 50);
  EXPECT_EQ(scaledsize(7, 2), 14);
  EXPECT_EQ(scaledsize(3, 0.1), 0);
}

// The most frequent value is the last element of the list's frequency sort, ties included.
TEST(Morphology, MostFrequentAgreesWithTheListSort) {
  std::mt19937 g(3);
  for (int trial = 0; trial < 500; ++trial) {
    const int64_t n = 1 + static_cast<int64_t>(g() % 26);
    int64_t values[27];
    tintlist list{};
    list.createdynamic();
    for (int64_t i = 0; i < n; ++i) list.add(values[i] = static_cast<int64_t>(g() % 5));
    list.frequencysort();
    EXPECT_EQ(mostfrequent(values, n), list.get(list.length));
    list.release();
  }
}
