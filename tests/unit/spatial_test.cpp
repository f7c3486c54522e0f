#include "field/spatial.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "library/mathvector.h"

namespace {

// inverse * matrix is the identity, within rounding.
void expectinverse(const tspatial& s) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) {
      double sum = 0;
      for (int k = 0; k < 3; ++k) sum += s.matrix[i][k] * s.inverse[k][j];
      EXPECT_NEAR(sum, i == j ? 1.0 : 0.0, 1e-12) << i << "," << j;
    }
}

void expectzeroinverse(const tspatial& s) {
  for (const tvector& row : s.inverse) EXPECT_EQ(row, (tvector{0, 0, 0}));
}

TEST(Spatial, LocalToGlobalAndBackRoundTripsThroughObliqueMatrices) {
  const trows matrices[] = {
      {tvector{0, 2, 0}, tvector{-1, 0, 0}, tvector{0, 0, 3}},                       // rotated and scaled
      {tvector{0.7, 0.3, -0.2}, tvector{-0.25, 1.1, 0.4}, tvector{0.1, -0.3, 2.5}},  // sheared
      {tvector{-0.5, 0, 0}, tvector{0, 0.5, 0.5}, tvector{0, -0.5, 0.5}},            // flipped, 45 degrees
  };
  for (const trows& m : matrices) {
    tspatial s{};
    setmatrix(s, m);
    setoffset(s, {-12.5, 40, 3.25});
    expectinverse(s);
    EXPECT_EQ(localtoglobal(s, {1, 1, 1}), s.offset);  // local <1, 1, 1> is the offset exactly
    for (int64_t z = -3; z <= 7; z += 5)
      for (int64_t y = 1; y <= 9; y += 4)
        for (int64_t x = -20; x <= 20; x += 7) {
          const tvector p{static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)};
          EXPECT_EQ(globaltolocal(s, localtoglobal(s, p)), (tnatvector{x, y, z}));
        }
  }
}

TEST(Spatial, LocalToGlobalStepsAlongTheRows) {
  tspatial s{};
  setmatrix(s, {tvector{0, 2, 0}, tvector{-1, 0, 0}, tvector{0, 0, 3}});
  setoffset(s, {10, 20, 30});
  // <2, 3, 4> is 1 step along v1, 2 along v2, 3 along v3 from the offset.
  EXPECT_EQ(localtoglobal(s, {2, 3, 4}), (tvector{8, 22, 39}));
  // A point between voxels goes to the nearest one; a tie goes to the even one.
  EXPECT_EQ(globaltolocal(s, {8.4, 22.6, 39.1}), (tnatvector{2, 3, 4}));
  EXPECT_EQ(globaltolocal(s, {10, 21, 31.5}), (tnatvector{2, 1, 2}));
}

// A zero row is refused (the workspaces' spatial macro); a negative zero is no zero bit by
// bit, and a singular matrix of non-zero rows stands.
TEST(Spatial, NegativeZeroRowsAndSingularMatricesStand) {
  tspatial s{};
  testing::internal::CaptureStdout();
  EXPECT_TRUE(setmatrixchecked(s, {tvector{-0.0, 0, 0}, tvector{1, 2, 3}, tvector{2, 4, 6}}));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_TRUE(std::signbit(s.matrix[0][0]));
  expectzeroinverse(s);
}

TEST(Spatial, RelativeAndAbsolutePositionsAlongAnAxis) {
  struct tcase {
    double v;
    int64_t expected;
  };
  const tcase cases[] = {
      {0, 51},    {0.5, 51},   {0.25, 26}, {0.999, 101}, {1, 1},     {101, 101},  {2000, 50},  {100.4, 100},
      {-0.5, 51}, {-0.25, 76}, {-1, 101},  {-101, 1},    {-102, 50}, {-1.4, 101}, {1e300, 50}, {NAN, 50},
      {2.5, 2},   {3.5, 4},    {-3, 99},
  };
  for (const tcase& c : cases) EXPECT_EQ(position(c.v, 101), c.expected) << c.v;
  // The centre of 10 is round(4.5) + 1: ties go to the even neighbour.
  EXPECT_EQ(positions({0, 0.5, -1}, {10, 11, 12}), (tnatvector{5, 6, 12}));
  EXPECT_EQ(positions({5, 5, 5}, {0, 1, 4}), (tnatvector{0, 0, 2}));  // outside falls back to n div 2
  // Along the axes of a field: an image has the depth 1.
  timagefield image{};
  fieldcreate(image, imagefullgray, {101, 11});
  EXPECT_EQ(fieldposition(image, 0.5, 1), 51);
  EXPECT_EQ(fieldposition(image, -1, 2), 11);
  EXPECT_EQ(fieldpositions(image, {-0.25, 0, 0}), (tnatvector{76, 6, 1}));
  fieldrelease(image);
}

}  // namespace
