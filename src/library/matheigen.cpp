// Cyclic Jacobi rotations on a symmetric 3x3 matrix.
#include "library/matheigen.h"

#include <cmath>
#include <utility>

namespace {

using tsquare = std::array<std::array<double, 3>, 3>;

constexpr int maxsweeps = 100;
// The first sweeps only rotate away the larger off-diagonal entries; later ones take all.
constexpr int thresholdsweeps = 4;
// From this sweep on, an entry too small to change the diagonal is set to zero directly.
constexpr int underflowsweep = 5;

// One Jacobi rotation step on the pair of entries (i, j) and (k, l).
void rotate(tsquare& a, int i, int j, int k, int l, double s, double tau) {
  const double g = a[i][j], h = a[k][l];
  a[i][j] = g - s * (h + g * tau);
  a[k][l] = h + s * (g - h * tau);
}

// The tangent of the rotation angle that zeroes a[p][q]; h = d[q] - d[p], g = 100 |a[p][q]|.
// When h dwarfs the entry, theta^2 would overflow, and t = a/h is the limit of the formula.
double rotationtangent(double apq, double h, double g) {
  if (std::fabs(h) + g == std::fabs(h)) return apq / h;
  const double theta = h / (2 * apq);
  const double root = std::sqrt(theta * theta + 1);
  return theta >= 0 ? 1 / (root + theta) : -1 / (root - theta);
}

bool negligible(double g, double d) { return std::fabs(d) + g == std::fabs(d); }

}  // namespace

teigensystem jacobieigen(const tsymmetric& m) {
  tsquare a{{{m.xx, m.xy, m.xz}, {0, m.yy, m.yz}, {0, 0, m.zz}}};
  tsquare v{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  tvector d{m.xx, m.yy, m.zz};
  tvector b = d, z{0, 0, 0};
  for (int sweep = 0; sweep < maxsweeps; ++sweep) {
    const double off = std::fabs(a[0][1]) + std::fabs(a[0][2]) + std::fabs(a[1][2]);
    if (off == 0) {
      teigensystem result;
      result.values = d;
      for (int k = 0; k < 3; ++k)
        for (int j = 0; j < 3; ++j) result.vectors[k][j] = v[j][k];  // column k is vector k
      return result;
    }
    const double threshold = sweep < thresholdsweeps ? 0.2 * off / 9 : 0;
    for (int p = 0; p < 2; ++p) {
      for (int q = p + 1; q < 3; ++q) {
        const double g = 100 * std::fabs(a[p][q]);
        if (sweep >= underflowsweep && negligible(g, d[p]) && negligible(g, d[q])) {
          a[p][q] = 0;
        } else if (std::fabs(a[p][q]) > threshold) {
          const double t = rotationtangent(a[p][q], d[q] - d[p], g);
          const double c = 1 / std::sqrt(t * t + 1), s = t * c, tau = s / (1 + c);
          const double h = t * a[p][q];
          z[p] -= h;
          z[q] += h;
          d[p] -= h;
          d[q] += h;
          a[p][q] = 0;
          for (int j = 0; j < p; ++j) rotate(a, j, p, j, q, s, tau);
          for (int j = p + 1; j < q; ++j) rotate(a, p, j, j, q, s, tau);
          for (int j = q + 1; j < 3; ++j) rotate(a, p, j, q, j, s, tau);
          for (int j = 0; j < 3; ++j) rotate(v, j, p, j, q, s, tau);
        }
      }
    }
    for (int k = 0; k < 3; ++k) {
      b[k] += z[k];
      d[k] = b[k];
      z[k] = 0;
    }
  }
  teigensystem failed;
  failed.vectors = {tvector{1, 0, 0}, tvector{0, 1, 0}, tvector{0, 0, 1}};
  return failed;
}

teigensystem orderedeigen(const tsymmetric& a) {
  teigensystem e = jacobieigen(a);
  // Three strict compare-and-swap steps: a bubble pass that keeps equal values in place.
  static constexpr std::pair<int, int> steps[] = {{0, 1}, {1, 2}, {0, 1}};
  for (const auto& [i, j] : steps) {
    if (std::fabs(e.values[i]) < std::fabs(e.values[j])) {
      std::swap(e.values[i], e.values[j]);
      std::swap(e.vectors[i], e.vectors[j]);
    }
  }
  if (e.values[0] < 0) {
    for (int k = 0; k < 3; ++k) {
      e.values[k] = -e.values[k];
      for (double& c : e.vectors[k]) c = -c;
    }
  }
  return e;
}

tvector eigenvalues(const tsymmetric& a) {
  tvector values = orderedeigen(a).values;
  if (values[2] <= 0) values[2] = eigenguard;
  if (values[1] <= 0) values[1] = eigenguard;
  return values;
}

std::array<tvector, 3> eigenvectors(const tsymmetric& a) {
  teigensystem e = orderedeigen(a);
  for (int k = 1; k < 3; ++k)
    if (e.values[k] <= 0) e.vectors[k] = {0, 0, 0};
  return e.vectors;
}

double fractionalanisotropy(const tvector& e) {
  const double norm = std::sqrt(e[0] * e[0] + e[1] * e[1] + e[2] * e[2]);
  if (norm == 0) return 0;
  const double mean = (e[0] + e[1] + e[2]) / 3;
  const double spread = std::sqrt((e[0] - mean) * (e[0] - mean) + (e[1] - mean) * (e[1] - mean) + (e[2] - mean) * (e[2] - mean));
  return std::sqrt(1.5) * spread / norm;
}

double anisotropy(const tsymmetric& a) {
  const bool zero = a.xx == 0 && a.yy == 0 && a.zz == 0 && a.xy == 0 && a.xz == 0 && a.yz == 0;
  return zero ? 0 : fractionalanisotropy(eigenvalues(a));
}
