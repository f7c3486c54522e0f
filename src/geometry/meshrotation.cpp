#include "geometry/meshrotation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "library/mathvector.h"

namespace {

constexpr double degree = std::numbers::pi / 180;

tquaternion unitaxis(int axis, double radians) {
  tvector a{0, 0, 0};
  a[axis] = 1;
  return axisangle(a, radians);
}

tquaternion positive(tquaternion q) {
  if (q.w < 0) q = {-q.x, -q.y, -q.z, -q.w};
  return q;
}

std::string axestext(const tvector& degrees) {
  const bool x = degrees[0] != 0, y = degrees[1] != 0, z = degrees[2] != 0;
  if (x && y && z) return "x, y & z";
  if (x && y) return "x & y";
  if (y && z) return "y & z";
  if (x && z) return "x & z";
  return x ? "x" : y ? "y" : "z";
}

}  // namespace

tquaternion anglerotation(const tvector& degrees) {
  tquaternion q{};
  for (int a = 0; a < 3; ++a) q = hamilton(q, unitaxis(a, degrees[a] * degree));
  return positive(q);
}

bool vectorrotation(const tvector& from, const tvector& to, tquaternion& q) {
  const double angle = vectorangle(from, to);
  if (vectorlength(from) == 0 || vectorlength(to) == 0 || !(angle > 0)) return false;
  tvector axis = cross(from, to);
  if (vectorlength(axis) <= 1e-12 * vectorlength(from) * vectorlength(to)) {
    // Opposite directions: any normal axis will do; take the one away from the smallest component.
    const tvector a{std::fabs(from[0]), std::fabs(from[1]), std::fabs(from[2])};
    const int k = static_cast<int>(std::min_element(a.begin(), a.end()) - a.begin());
    tvector e{0, 0, 0};
    e[k] = 1;
    axis = cross(from, e);
  }
  q = positive(axisangle(axis, angle));
  return true;
}

bool planerotation(const tvector& p1, const tvector& p2, const tvector& p3, tquaternion& q) {
  const tvector normal = cross(added(p2, scaled(p1, -1)), added(p3, scaled(p1, -1)));
  const tvector z{0, 0, 1};
  if (!(vectorlength(normal) > 0)) return false;
  if (!vectorrotation(normal, z, q)) q = {};
  return true;
}

tvector taitbryan(const tquaternion& q) {
  // rows[j][i] is the usual matrix R[i][j] of R = Rx(a) Ry(b) Rz(c).
  const trows r = quaternionrows(q);
  const double sb = std::clamp(r[2][0], -1.0, 1.0);
  double a, c;
  if (std::fabs(sb) < 1 - 1e-12) {
    a = std::atan2(-r[2][1], r[2][2]);
    c = std::atan2(-r[1][0], r[0][0]);
  } else {
    a = std::atan2(r[1][2], r[1][1]);
    c = 0;
  }
  return {a / degree, std::asin(sb) / degree, c / degree};
}

std::string fivedecimals(std::span<const double> values) {
  std::string out;
  for (double v : values) {
    char text[64];
    std::snprintf(text, sizeof text, "%.5f", v);
    if (std::string_view(text) == "-0.00000") std::snprintf(text, sizeof text, "0.00000");
    if (!out.empty()) out += ' ';
    out += text;
  }
  return out;
}

std::vector<std::string> rotationlines(const tquaternion& q, const tvector* degrees) {
  std::string around = "Rotate around ";
  const bool single = degrees && std::count(degrees->begin(), degrees->end(), 0.0) == 2;
  if (degrees) {
    around += axestext(*degrees);
  } else {
    around += fivedecimals(rotationaxis(q));
  }
  if (single || !degrees) {
    const double angle = degrees ? (*degrees)[0] + (*degrees)[1] + (*degrees)[2] : rotationangle(q) / degree;
    around += " with angle " + fivedecimals(std::array{angle});
  }
  const trows r = quaternionrows(q);
  const std::array<double, 9> matrix{r[0][0], r[0][1], r[0][2], r[1][0], r[1][1], r[1][2], r[2][0], r[2][1], r[2][2]};
  return {around, "Tait-Bryan (Cardan) angles (X-Y'-Z''): " + fivedecimals(taitbryan(q)),
          "Quaternion: " + fivedecimals(std::array{q.x, q.y, q.z, q.w}), "Matrix: " + fivedecimals(matrix)};
}
