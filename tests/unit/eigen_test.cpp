// The symmetric 3x3 eigen solver and the ordering that the matrix and tensor commands share
// (the eigen macro shows the order on diagonal, repeated and negative definite cases).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "library/matheigen.h"

namespace {

using tsquare = std::array<std::array<double, 3>, 3>;

tsquare full(const tsymmetric& a) { return {{{a.xx, a.xy, a.xz}, {a.xy, a.yy, a.yz}, {a.xz, a.yz, a.zz}}}; }

double largestentry(const tsymmetric& a) {
  return std::max({std::fabs(a.xx), std::fabs(a.yy), std::fabs(a.zz), std::fabs(a.xy), std::fabs(a.xz), std::fabs(a.yz)});
}

// |A v - lambda v| for each pair, and |V V^T - I| for the rows, both relative to the matrix.
void expecteigensystem(const tsymmetric& a, const teigensystem& e) {
  const tsquare m = full(a);
  const double scale = std::max(largestentry(a), 1e-300);
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < 3; ++i) {
      double av = 0;
      for (int j = 0; j < 3; ++j) av += m[i][j] * e.vectors[k][j];
      EXPECT_NEAR(av, e.values[k] * e.vectors[k][i], 1e-13 * scale) << "pair " << k << " component " << i;
    }
    for (int l = 0; l < 3; ++l) {
      double d = 0;
      for (int j = 0; j < 3; ++j) d += e.vectors[k][j] * e.vectors[l][j];
      EXPECT_NEAR(d, k == l ? 1.0 : 0.0, 1e-14) << "rows " << k << " and " << l;
    }
  }
}

// The eigenvalues by the closed form of the characteristic cubic (trigonometric solution),
// a method that shares nothing with the rotations. Sorted descending. It squares entries,
// so it works on the matrix scaled to a largest entry of 1.
std::vector<double> cubicroots(const tsymmetric& original) {
  const double f = std::max(largestentry(original), 1e-300);
  const tsymmetric a{original.xx / f, original.yy / f, original.zz / f, original.xy / f, original.xz / f, original.yz / f};
  const double p1 = a.xy * a.xy + a.xz * a.xz + a.yz * a.yz;
  const double q = (a.xx + a.yy + a.zz) / 3;
  std::vector<double> r;
  if (p1 == 0) {
    r = {a.xx, a.yy, a.zz};
  } else {
    const double p2 = (a.xx - q) * (a.xx - q) + (a.yy - q) * (a.yy - q) + (a.zz - q) * (a.zz - q) + 2 * p1;
    const double p = std::sqrt(p2 / 6);
    const tsquare m = full(a);
    tsquare b{};
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j) b[i][j] = (m[i][j] - (i == j ? q : 0)) / p;
    const double detb = b[0][0] * (b[1][1] * b[2][2] - b[1][2] * b[2][1]) - b[0][1] * (b[1][0] * b[2][2] - b[1][2] * b[2][0]) +
                        b[0][2] * (b[1][0] * b[2][1] - b[1][1] * b[2][0]);
    const double phi = std::acos(std::clamp(detb / 2, -1.0, 1.0)) / 3;
    const double e1 = q + 2 * p * std::cos(phi);
    const double e3 = q + 2 * p * std::cos(phi + 2 * std::numbers::pi / 3);
    r = {e1, 3 * q - e1 - e3, e3};
  }
  for (double& x : r) x *= f;
  std::sort(r.begin(), r.end(), std::greater<>());
  return r;
}

std::vector<double> sortedvalues(const teigensystem& e) {
  std::vector<double> v(e.values.begin(), e.values.end());
  std::sort(v.begin(), v.end(), std::greater<>());
  return v;
}

// Matrices on which a solver is easily wrong: repeated values, zeros, huge and tiny
// off-diagonals, near-degenerate pairs.
const std::vector<tsymmetric> hardcases = {
    {0, 0, 0, 0, 0, 0},                      // zero
    {1, 1, 1, 0, 0, 0},                      // identity: one value three times
    {3, 2, 1, 0, 0, 0},                      // already diagonal
    {2, 2, 5, 0, 0, 0},                      // diagonal with a pair
    {2, 2, 1, 1, 0, 0},                      // values 3, 1, 1 with a rotated pair
    {1, 1, 1, 1, 1, 1},                      // rank one: 3, 0, 0
    {4, 4, 4, -2, -2, -2},                   // 6, 6, 0 with the pair off the axes
    {1, 1 + 1e-12, 1 - 1e-12, 1e-13, 0, 0},  // near-degenerate
    {1, 1, 1, 1e-9, 1e-9, 1e-9},             // near the identity
    {1, 2, 3, 1e-300, 1e-300, 1e-300},       // off-diagonals far below the diagonal
    {1e-200, 2e-200, 3e-200, 1e-200, 0, 0},  // tiny throughout
    {1e150, 1e150, 1e150, 1e150, 0, 1e150},  // huge throughout
    {5, -3, 2, 4, -1, 7},                    // indefinite
    {2.5, 0.3, -1.7, 0.9, 1.1, -0.4},        // general
};

TEST(EigenSolver, PairsSatisfyAVEqualsLambdaVWithOrthonormalRows) {
  for (const tsymmetric& a : hardcases) {
    SCOPED_TRACE(::testing::Message() << a.xx << " " << a.yy << " " << a.zz << " " << a.xy << " " << a.xz << " " << a.yz);
    expecteigensystem(a, jacobieigen(a));
  }
}

TEST(EigenSolver, ValuesAgreeWithTheCharacteristicCubic) {
  for (const tsymmetric& a : hardcases) {
    SCOPED_TRACE(::testing::Message() << a.xx << " " << a.yy << " " << a.zz << " " << a.xy << " " << a.xz << " " << a.yz);
    const std::vector<double> want = cubicroots(a), got = sortedvalues(jacobieigen(a));
    // The closed form loses digits near repeated roots (acos near +-1), the rotations don't.
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(got[k], want[k], 1e-7 * std::max(largestentry(a), 1e-300));
  }
}

TEST(EigenSolver, KnownSystems) {
  // A diagonal matrix is converged at once: its own diagonal and the unit axes, in place.
  const teigensystem d = jacobieigen({3, 2, 1, 0, 0, 0});
  EXPECT_EQ(d.values, (tvector{3, 2, 1}));
  EXPECT_EQ(d.vectors[0], (tvector{1, 0, 0}));
  EXPECT_EQ(d.vectors[1], (tvector{0, 1, 0}));
  EXPECT_EQ(d.vectors[2], (tvector{0, 0, 1}));
}

TEST(EigenOrder, LargestAbsoluteValueFirst) {
  // Ordered by absolute value: -5 comes before 2.
  EXPECT_EQ(orderedeigen({2, -5, 1, 0, 0, 0}).values, (tvector{5, -2, -1}));
}

TEST(EigenOrder, EqualValuesKeepTheirPlaces) {
  const teigensystem e = orderedeigen({2, 2, 2, 0, 0, 0});
  EXPECT_EQ(e.vectors[0], (tvector{1, 0, 0}));
  EXPECT_EQ(e.vectors[1], (tvector{0, 1, 0}));
  EXPECT_EQ(e.vectors[2], (tvector{0, 0, 1}));
}

TEST(EigenOrder, ValuesOfZeroOrLessAreGuarded) {
  EXPECT_EQ(eigenvalues({1, 0, 0, 0, 0, 0}), (tvector{1, eigenguard, eigenguard}));
  EXPECT_EQ(eigenvalues({0, 0, 0, 0, 0, 0}), (tvector{0, eigenguard, eigenguard}));
  EXPECT_EQ(eigenvalues({3, -2, 1, 0, 0, 0}), (tvector{3, eigenguard, 1}));
  EXPECT_GT(eigenguard, 0.0);
}

TEST(EigenOrder, VectorsOfValuesZeroOrLessAreZero) {
  const std::array<tvector, 3> v = eigenvectors({1, 0, 0, 0, 0, 0});
  EXPECT_EQ(v[0], (tvector{1, 0, 0}));
  EXPECT_EQ(v[1], (tvector{0, 0, 0}));
  EXPECT_EQ(v[2], (tvector{0, 0, 0}));
  const std::array<tvector, 3> w = eigenvectors({3, -2, 1, 0, 0, 0});
  EXPECT_EQ(w[1], (tvector{0, 0, 0}));
  EXPECT_EQ(w[2], (tvector{0, 0, 1}));
}

TEST(Anisotropy, PublishedValues) {
  EXPECT_EQ(fractionalanisotropy({1, 1, 1}), 0.0);
  EXPECT_EQ(fractionalanisotropy({0, 0, 0}), 0.0);
  EXPECT_NEAR(fractionalanisotropy({1, 0, 0}), 1.0, 1e-15);
  // (2, 1, 1): mean 4/3, spread sqrt(6)/3, length sqrt(6): sqrt(1.5)/3.
  EXPECT_NEAR(fractionalanisotropy({2, 1, 1}), std::sqrt(1.5) / 3, 1e-15);
}

TEST(Anisotropy, OfMatrices) {
  EXPECT_EQ(anisotropy({0, 0, 0, 0, 0, 0}), 0.0);  // not the spread of the guard values
  EXPECT_NEAR(anisotropy({1, 1, 1, 0, 0, 0}), 0.0, 1e-15);
  EXPECT_NEAR(anisotropy({1, 0, 0, 0, 0, 0}), 1.0, 1e-15);
  // The same (3, 1, 1) in rotated axes: sqrt(1.5) * sqrt(8/3) / sqrt(11).
  EXPECT_NEAR(anisotropy({2, 2, 1, 1, 0, 0}), std::sqrt(1.5 * 8 / 3 / 11), 1e-15);
}

}  // namespace
