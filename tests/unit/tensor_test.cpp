// Tensor measures on known eigenvalues, the ranked Westin vector, and the mirrors.
#include <gtest/gtest.h>

#include <cmath>

#include "orientation/tensoredit.h"
#include "orientation/tensormeasures.h"
#include "orientation/tensorvoxel.h"

TEST(TensorMeasures, KnownEigenvalues) {
  const tvector l{3, 2, 1};
  const double m = 2, dev = std::sqrt(2.0), s = 6;
  EXPECT_DOUBLE_EQ(measureof(tmeasure::fa, l), std::sqrt(1.5) * dev / std::sqrt(14.0));
  EXPECT_DOUBLE_EQ(measureof(tmeasure::ra, l), std::sqrt(1.0 / 3) * dev / m);
  EXPECT_NEAR(measureof(tmeasure::md, l), m, 1e-15);
  EXPECT_DOUBLE_EQ(measureof(tmeasure::radial, l), 1.5);
  EXPECT_DOUBLE_EQ(measureof(tmeasure::linear, l), 1 / s);
  EXPECT_DOUBLE_EQ(measureof(tmeasure::planar, l), 2 / s);
  EXPECT_DOUBLE_EQ(measureof(tmeasure::spherical, l), 3 / s);
  EXPECT_NEAR(measureof(tmeasure::vr, l), 6 / 8.0, 1e-15);
  EXPECT_EQ(measureof(tmeasure::fa, {1, 1, 1}), 0);
  EXPECT_EQ(measureof(tmeasure::linear, {0, 0, 0}), 0);
  EXPECT_EQ(measurescale(tmeasure::e1), 128);
  EXPECT_EQ(measurescale(tmeasure::vr), 255);
}

TEST(TensorMeasures, WestinRankAndZeroTensor) {
  const tvector iso = vectormeasureof(tvectormeasure::westinrank, {1, 1, 1, 0, 0, 0});
  EXPECT_EQ(iso[0], 0);
  EXPECT_EQ(iso[1], 0);
  EXPECT_NEAR(iso[2], 1, 1e-15);
  const tvector line = vectormeasureof(tvectormeasure::westinrank, {5, 1, 1, 0, 0, 0});
  EXPECT_DOUBLE_EQ(line[0], 4 / 7.0);
  EXPECT_EQ(line[1], 0);
  EXPECT_EQ(line[2], 0);
  const tvector none = vectormeasureof(tvectormeasure::eigenvalues, {});
  EXPECT_EQ(none, (tvector{0, 0, 0}));
  // Rank one: the middle eigenvector is tested before any guard value, so it is zero.
  EXPECT_EQ(vectormeasureof(tvectormeasure::vectormid, {1, 0, 0, 0, 0, 0}), (tvector{0, 0, 0}));
}

TEST(TensorEdit, FlipMirrorsVoxelsAndTurnsTheAxisEntries) {
  ttensorfield t;
  fieldcreate(t, vectorfloat, {3, 2, 1});
  withtensorvolumes(t, [](auto& d, auto& o) {
    for (int64_t i = 0; i < 6; ++i) puttensor(d, o, i, {double(i), 1, 1, 10.0 + i, 20.0 + i, 30.0 + i});
  });
  tensorflip(t, 0);
  withtensorvolumes(t, [](auto& d, auto& o) {
    const tsymmetric first = tensorat(d, o, 0), middle = tensorat(d, o, 1);
    EXPECT_EQ(first.xx, 2);  // x = 3 came to x = 1
    EXPECT_EQ(first.xy, -12);
    EXPECT_EQ(first.xz, -22);
    EXPECT_EQ(first.yz, 32);
    EXPECT_EQ(middle.xx, 1);  // the centre stays
    EXPECT_EQ(middle.xy, -11);
  });
  fieldrelease(t);
}
