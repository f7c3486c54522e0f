// Quaternions as rotations.
#include "library/mathquaternion.h"

#include <cmath>

#include "library/mathvector.h"

namespace {

tvector vectorpart(const tquaternion& q) { return {q.x, q.y, q.z}; }
tquaternion fromparts(const tvector& v, double w) { return {v[0], v[1], v[2], w}; }

tquaternion scaled(const tquaternion& q, double f) { return {q.x * f, q.y * f, q.z * f, q.w * f}; }
double norm(const tquaternion& q) { return std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w); }

}  // namespace

tquaternion quaternion(const thyper& h) { return {h[0], h[1], h[2], h[3]}; }
thyper hyperof(const tquaternion& q) { return {q.x, q.y, q.z, q.w}; }

tquaternion axisangle(const tvector& axis, double angle) {
  const tvector n = normalised(axis);
  if (n == tvector{0, 0, 0}) return {};
  return fromparts(::scaled(n, std::sin(angle / 2)), std::cos(angle / 2));
}

tvector rotationaxis(const tquaternion& q) { return normalised(vectorpart(q)); }

double rotationangle(const tquaternion& q) { return 2 * std::atan2(vectorlength(vectorpart(q)), q.w); }

tquaternion conjugate(const tquaternion& q) { return {-q.x, -q.y, -q.z, q.w}; }

tquaternion hamilton(const tquaternion& a, const tquaternion& b) {
  const tvector va = vectorpart(a), vb = vectorpart(b);
  const tvector v = added(added(::scaled(vb, a.w), ::scaled(va, b.w)), cross(va, vb));
  return fromparts(v, a.w * b.w - dot(va, vb));
}

tquaternion joined(const tquaternion& a, const tquaternion& b) { return hamilton(b, a); }

// The rotation formula with s = 2 / |q|^2 holds for any length of q, and s = 0 for the zero
// quaternion leaves the unit axes in place.
trows quaternionrows(const tquaternion& q) {
  const double n2 = q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
  const double s = n2 == 0 ? 0 : 2 / n2;
  const double xx = s * q.x * q.x, yy = s * q.y * q.y, zz = s * q.z * q.z;
  const double xy = s * q.x * q.y, xz = s * q.x * q.z, yz = s * q.y * q.z;
  const double wx = s * q.w * q.x, wy = s * q.w * q.y, wz = s * q.w * q.z;
  return {tvector{1 - yy - zz, xy + wz, xz - wy}, tvector{xy - wz, 1 - xx - zz, yz + wx},
          tvector{xz + wy, yz - wx, 1 - xx - yy}};
}

tmatrix quaternionmatrix(const tquaternion& q) { return rowsmatrix(quaternionrows(q)); }

tvector rotated(const tquaternion& q, const tvector& v) {
  const trows r = quaternionrows(q);
  return added(added(::scaled(r[0], v[0]), ::scaled(r[1], v[1])), ::scaled(r[2], v[2]));
}

// Shepperd's choice: the root is taken of the largest of the four candidates for 4w^2,
// 4x^2, 4y^2, 4z^2, so that no division is by a small number. c[i][j] is the usual
// (column) rotation matrix, the transpose of the rows.
tquaternion matrixquaternion(const tmatrix& m) {
  const trows r = rotationrows(m);
  auto c = [&r](int i, int j) { return r[j][i]; };
  const double t = c(0, 0) + c(1, 1) + c(2, 2);
  tquaternion q;
  if (t >= 0) {
    const double s = 2 * std::sqrt(t + 1);
    q = {(c(2, 1) - c(1, 2)) / s, (c(0, 2) - c(2, 0)) / s, (c(1, 0) - c(0, 1)) / s, s / 4};
  } else if (c(0, 0) > c(1, 1) && c(0, 0) > c(2, 2)) {
    const double s = 2 * std::sqrt(1 + c(0, 0) - c(1, 1) - c(2, 2));
    q = {s / 4, (c(0, 1) + c(1, 0)) / s, (c(0, 2) + c(2, 0)) / s, (c(2, 1) - c(1, 2)) / s};
  } else if (c(1, 1) > c(2, 2)) {
    const double s = 2 * std::sqrt(1 + c(1, 1) - c(0, 0) - c(2, 2));
    q = {(c(0, 1) + c(1, 0)) / s, s / 4, (c(1, 2) + c(2, 1)) / s, (c(0, 2) - c(2, 0)) / s};
  } else {
    const double s = 2 * std::sqrt(1 + c(2, 2) - c(0, 0) - c(1, 1));
    q = {(c(0, 2) + c(2, 0)) / s, (c(1, 2) + c(2, 1)) / s, s / 4, (c(1, 0) - c(0, 1)) / s};
  }
  if (q.w < 0) q = scaled(q, -1);
  const double n = norm(q);
  return n == 0 ? tquaternion{} : scaled(q, 1 / n);
}
