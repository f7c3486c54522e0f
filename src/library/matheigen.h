// The eigen system of a symmetric 3x3 matrix: cyclic Jacobi rotations, and the ordering
// that the matrix commands and the tensor measures share. All storage is on the stack,
// since the tensor measures call it once per voxel.
#pragma once
#include <array>

#include "script/values.h"

// A symmetric matrix by its six numbers: the diagonal, then the upper off-diagonal. It
// stands for the rows (xx, xy, xz), (xy, yy, yz), (xz, yz, zz).
struct tsymmetric {
  double xx = 0, yy = 0, zz = 0, xy = 0, xz = 0, yz = 0;
};

// Eigenvalues and, in the same order, eigenvectors as rows.
struct teigensystem {
  tvector values{0, 0, 0};
  std::array<tvector, 3> vectors{};
};

// The smallest positive value that replaces eigenvalues of 0 or less, so that later
// divisions by an eigenvalue need no test of their own.
constexpr double eigenguard = 2.225069246690772e-308;

// The solver itself, in the solver's order: the diagonal order of the converged matrix.
// A matrix that does not converge within 100 sweeps gives the values 0 and the identity.
teigensystem jacobieigen(const tsymmetric& a);
// Sorted by absolute value, largest first (equal values keep their places), all signs
// turned when the first is negative.
teigensystem orderedeigen(const tsymmetric& a);
// The ordered values with a second and third value of 0 or less replaced by eigenguard.
tvector eigenvalues(const tsymmetric& a);
// The ordered vectors; the second and third become zero when their value is 0 or less.
std::array<tvector, 3> eigenvectors(const tsymmetric& a);
// sqrt(1.5) * |e - mean| / |e|, and 0 for |e| = 0.
double fractionalanisotropy(const tvector& e);
// The anisotropy of a matrix; the zero matrix has none. (The guard values of eigenvalues()
// would otherwise give it one.)
double anisotropy(const tsymmetric& a);
