#include "geometry/meshrotation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "library/mathvector.h"

namespace {

constexpr double degree = std::numbers::pi / 180;

// Sine and cosine that are exact at the multiples of 90 degrees.
std::array<double, 2> sincos(double degrees) {
  const double turn = std::fmod(degrees, 360.0);
  if (std::fmod(turn, 90.0) == 0) {
    constexpr double s[4] = {0, 1, 0, -1};
    const int k = (static_cast<int>(turn / 90) % 4 + 4) % 4;
    return {s[k], s[(k + 1) % 4]};
  }
  return {std::sin(degrees * degree), std::cos(degrees * degree)};
}

// The turn about one axis, as the images of the axes.
trows axisrows(int axis, double degrees) {
  const auto [s, c] = sincos(degrees);
  const int a = (axis + 1) % 3, b = (axis + 2) % 3;
  trows r{tvector{1, 0, 0}, tvector{0, 1, 0}, tvector{0, 0, 1}};
  r[a][a] = c, r[a][b] = s;
  r[b][a] = -s, r[b][b] = c;
  return r;
}

// Rows of the turn "first inner, then outer" about fixed axes, which is the matrix
// product outer * inner: each row of inner, the image of an axis, is turned by outer.
trows after(const trows& outer, const trows& inner) {
  trows r{};
  for (int k = 0; k < 3; ++k)
    for (int j = 0; j < 3; ++j) r[k][j] = inner[k][0] * outer[0][j] + inner[k][1] * outer[1][j] + inner[k][2] * outer[2][j];
  return r;
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

trows anglerotation(const tvector& degrees) {
  // Rx Ry Rz: z turns first about the fixed axes, which is x first about the turned ones.
  return after(axisrows(0, degrees[0]), after(axisrows(1, degrees[1]), axisrows(2, degrees[2])));
}

bool vectorrotation(const tvector& from, const tvector& to, trows& rows) {
  const double angle = vectorangle(from, to);
  if (vectorlength(from) == 0 || vectorlength(to) == 0 || !(angle > 0)) return false;
  tvector axis = cross(from, to);
  if (vectorlength(axis) <= 1e-12 * vectorlength(from) * vectorlength(to)) {
    if (angle < std::numbers::pi / 2) return false;  // the same direction within rounding
    // Opposite directions: any normal axis will do; take the one away from the smallest component.
    const tvector a{std::fabs(from[0]), std::fabs(from[1]), std::fabs(from[2])};
    const int k = static_cast<int>(std::min_element(a.begin(), a.end()) - a.begin());
    tvector e{0, 0, 0};
    e[k] = 1;
    axis = cross(from, e);
  }
  rows = quaternionrows(axisangle(axis, angle));
  return true;
}

bool planerotation(const tvector& p1, const tvector& p2, const tvector& p3, trows& rows) {
  const tvector normal = cross(added(p2, scaled(p1, -1)), added(p3, scaled(p1, -1)));
  const tvector z{0, 0, 1};
  if (!(vectorlength(normal) > 0)) return false;
  if (!vectorrotation(normal, z, rows)) rows = anglerotation({0, 0, 0});
  return true;
}

tvector taitbryan(const trows& r) {
  // r[j][i] is the usual matrix R[i][j] of R = Rx(a) Ry(b) Rz(c).
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

std::string axisangletext(const trows& r) {
  const tquaternion q = matrixquaternion(rowsmatrix(r));
  return fivedecimals(rotationaxis(q)) + " with angle " + fivedecimals(std::array{rotationangle(q) / degree});
}

std::vector<std::string> rotationlines(const trows& r, const tvector* degrees) {
  const tquaternion q = matrixquaternion(rowsmatrix(r));
  std::string around = "Rotate around ";
  if (!degrees) {
    around += axisangletext(r);
  } else {
    around += axestext(*degrees);
    if (std::count(degrees->begin(), degrees->end(), 0.0) == 2)
      around += " with angle " + fivedecimals(std::array{(*degrees)[0] + (*degrees)[1] + (*degrees)[2]});
  }
  const std::array<double, 9> matrix{r[0][0], r[0][1], r[0][2], r[1][0], r[1][1], r[1][2], r[2][0], r[2][1], r[2][2]};
  return {around, "Tait-Bryan (Cardan) angles (X-Y'-Z''): " + fivedecimals(taitbryan(r)),
          "Quaternion: " + fivedecimals(std::array{q.x, q.y, q.z, q.w}), "Matrix: " + fivedecimals(matrix)};
}
