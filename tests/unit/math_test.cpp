// Vectors, homogeneous matrices and quaternions: properties over many rotations (the math
// macros show the values of single cases).
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "library/mathmatrix.h"
#include "library/mathquaternion.h"
#include "library/mathtext.h"
#include "library/mathvector.h"

namespace {

constexpr double pi = std::numbers::pi;

void expectnear(const tvector& got, const tvector& want, double tolerance = 1e-14) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(got[i], want[i], tolerance) << "component " << i;
}

void expectnear(const tmatrix& got, const tmatrix& want, double tolerance = 1e-13) {
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_NEAR(got[i][j], want[i][j], tolerance) << "entry " << i << "," << j;
}

// Equal as rotations: q and -q are the same rotation.
void expectsamerotation(const tquaternion& a, const tquaternion& b) {
  const double sign = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w < 0 ? -1 : 1;
  EXPECT_NEAR(a.x, sign * b.x, 1e-14);
  EXPECT_NEAR(a.y, sign * b.y, 1e-14);
  EXPECT_NEAR(a.z, sign * b.z, 1e-14);
  EXPECT_NEAR(a.w, sign * b.w, 1e-14);
}

// --- vectors ---------------------------------------------------------------------------

TEST(Vectors, Angles) {
  EXPECT_NEAR(vectorangle({1, 0, 0}, {0, 1, 0}), pi / 2, 1e-15);
  EXPECT_EQ(vectorangle({2, 0, 0}, {5, 0, 0}), 0.0);
  EXPECT_NEAR(vectorangle({1, 0, 0}, {-3, 0, 0}), pi, 1e-15);
  EXPECT_NEAR(vectorangle({1, 1, 0}, {1, 0, 0}), pi / 4, 1e-15);
  EXPECT_EQ(vectorangle({0, 0, 0}, {1, 2, 3}), 0.0);
  // Nearly parallel: acos of the dot product would lose this angle entirely.
  EXPECT_NEAR(vectorangle({1, 0, 0}, {1, 1e-9, 0}), 1e-9, 1e-20);
}

TEST(Vectors, AngleLimitAnswersAsTheAngle) {
  // the tangent's shortcut, also a hair either side of the limit and at extreme lengths
  std::mt19937_64 g(11);
  std::uniform_real_distribution<double> u(-1, 1);
  int differ = 0, tested = 0;
  for (double angle : {0.0, 1e-7, 2e-6, pi / 180, 0.3, 1.0, 1.4999, 1.5, 2.0, 3.1}) {
    const tanglelimit limit = anglelimit(angle);
    for (int i = 0; i < 4000; ++i, ++tested) {
      const tvector a = scaled({u(g), u(g), u(g)}, std::exp(u(g) * 150));
      tvector b{u(g), u(g), u(g)};
      if (i % 4) {  // b turned from a by about the limit: relatively 1e-15 .. 1e-8 off
        const tvector e = normalised(cross(cross(a, b), a));
        const double t = angle * (1 + u(g) * std::pow(10.0, -8 - 7 * (i % 3) / 2.0));
        b = scaled(added(scaled(normalised(a), std::cos(t)), scaled(e, std::sin(t))), std::exp(u(g) * 150));
      }
      differ += anglebeyond(a, b, limit) != (vectorangle(a, b) > angle);
    }
  }
  EXPECT_EQ(differ, 0) << "of " << tested;
}

// --- matrices --------------------------------------------------------------------------

const tmatrix general = {thyper{2, 1, 0, 0.5}, thyper{-1, 3, 2, 0}, thyper{0, 1, 4, 1}, thyper{3, 0, 1, 2}};
const tmatrix affine = {thyper{0, 2, 0, 0}, thyper{-3, 0, 0, 0}, thyper{0, 0, 0.5, 0}, thyper{7, -2, 5, 1}};

TEST(Matrices, InverseTimesMatrixIsIdentity) {
  for (const tmatrix& m : {general, affine, identitymatrix(), scalematrix({2, 4, 8}), movematrix({1, 2, 3})}) {
    expectnear(product(inverted(m), m), identitymatrix());
    expectnear(product(m, inverted(m)), identitymatrix());
  }
}

TEST(Matrices, SingularMatrixHasTheZeroInverse) {
  EXPECT_TRUE(iszero(inverted(tmatrix{})));
  // A 3x3 written without the homogeneous 1 is singular as a 4x4.
  const tmatrix threebythree{thyper{1, 0, 0, 0}, thyper{0, 1, 0, 0}, thyper{0, 0, 1, 0}, thyper{}};
  EXPECT_TRUE(iszero(inverted(threebythree)));
}

TEST(Matrices, JoinAppliesTheFirstThenTheSecond) {
  const tvector p{1, -2, 3};
  expectnear(transformed(product(affine, general), p), transformed(general, transformed(affine, p)), 1e-13);
}

TEST(Matrices, TransformOfTheInverseReturnsThePoint) {
  const tvector p{0.25, -7, 3};
  expectnear(transformed(inverted(affine), transformed(affine, p)), p);
}

// A frame's parts and a frame of two directions: the matrices macro.
TEST(Matrices, FrameOfParallelDirections) {
  // Parallel directions fix only the first axis.
  EXPECT_EQ(framerows({1, 0, 0}, {2, 0, 0}), (trows{tvector{1, 0, 0}, tvector{0, 0, 0}, tvector{0, 0, 0}}));
}

// --- quaternions -------------------------------------------------------------------------

TEST(Quaternions, AxisAngle) {
  const tquaternion q = axisangle({0, 0, 5}, pi / 2);
  EXPECT_NEAR(q.z, std::sqrt(0.5), 1e-15);
  EXPECT_NEAR(q.w, std::sqrt(0.5), 1e-15);
  expectnear(rotated(q, {1, 0, 0}), {0, 1, 0});
  expectnear(rotated(q, {0, 1, 0}), {-1, 0, 0});
  expectnear(rotationaxis(q), {0, 0, 1});
  EXPECT_NEAR(rotationangle(q), pi / 2, 1e-15);
  // No axis, no rotation; no rotation has no axis.
  EXPECT_EQ(hyperof(axisangle({0, 0, 0}, 1)), (thyper{0, 0, 0, 1}));
  EXPECT_EQ(rotationaxis(tquaternion{}), (tvector{0, 0, 0}));
  EXPECT_EQ(rotationangle(tquaternion{}), 0.0);
}

TEST(Quaternions, LengthDoesNotChangeTheRotation) {
  const tquaternion q = axisangle({1, 2, 2}, 0.7);
  const tquaternion longer{3 * q.x, 3 * q.y, 3 * q.z, 3 * q.w};
  expectnear(rotated(longer, {1, -1, 2}), rotated(q, {1, -1, 2}));
  EXPECT_NEAR(rotationangle(longer), 0.7, 1e-15);
}

const std::vector<tquaternion> rotations = {
    axisangle({0, 0, 1}, pi / 2), axisangle({1, 2, 3}, 0.3),  axisangle({-1, 1, 0.5}, 2.5),
    axisangle({1, 0, 0}, pi),     axisangle({0, 1, 0}, pi),   axisangle({0, 0, 1}, pi),
    axisangle({1, 1, 1}, pi),     axisangle({1, -2, 0}, 3.1), tquaternion{},
};

TEST(Quaternions, MatrixMapsLikeTheQuaternion) {
  const tvector v{0.3, -1.2, 2.5};
  for (const tquaternion& q : rotations) expectnear(transformed(quaternionmatrix(q), v), rotated(q, v));
}

TEST(Quaternions, MatrixAndBackGivesTheRotation) {
  for (const tquaternion& q : rotations) expectsamerotation(matrixquaternion(quaternionmatrix(q)), q);
  // A scaled and moved matrix holds the same rotation.
  const tquaternion q = axisangle({2, -1, 1}, 1.1);
  tmatrix m = product(scalematrix({2, 5, 0.5}), quaternionmatrix(q));
  m[3] = {4, 5, 6, 1};
  expectsamerotation(matrixquaternion(m), q);
  EXPECT_GE(matrixquaternion(quaternionmatrix({0, 0, 0.6, -0.8})).w, 0.0);
}

TEST(Quaternions, RotationMatrixIsOrthonormalAndRightHanded) {
  for (const tquaternion& q : rotations) {
    const tmatrix m = quaternionmatrix(q);
    expectnear(product(m, transposed(m)), identitymatrix());
    EXPECT_NEAR(determinant(m), 1, 1e-14);
  }
}

TEST(Quaternions, JoinComposesRotationsInOrder) {
  for (const tquaternion& p : rotations)
    for (const tquaternion& q : rotations) {
      expectnear(quaternionmatrix(joined(p, q)), product(quaternionmatrix(p), quaternionmatrix(q)));
      const tvector v{1, 2, -0.5};
      expectnear(rotated(joined(p, q), v), rotated(q, rotated(p, v)), 1e-13);
    }
}

TEST(Quaternions, ConjugateUndoesTheRotation) {
  for (const tquaternion& q : rotations) {
    expectnear(rotated(conjugate(q), rotated(q, {1, 2, 3})), {1, 2, 3}, 1e-14);
    expectnear(inverted(quaternionmatrix(q)), quaternionmatrix(conjugate(q)));
  }
}

}  // namespace
