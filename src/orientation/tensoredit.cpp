#include "orientation/tensoredit.h"

#include <algorithm>

#include <utility>

#include "orientation/tensorvoxel.h"

void tensormul(ttensorfield& t, const tvector& a, const tvector& b) {
  const tnatvector n = fieldsize(t);
  const int64_t count = n[0] * n[1] * n[2];
  withtensorvolumes(t, [&](auto& diagonal, auto& offdiagonal) {
    for (int64_t i = 0; i < count; ++i) {
      tsymmetric x = tensorat(diagonal, offdiagonal, i);
      x.xx *= a[0], x.yy *= a[1], x.zz *= a[2], x.xy *= b[0], x.xz *= b[1], x.yz *= b[2];
      puttensor(diagonal, offdiagonal, i, x);
    }
  });
}

void tensorflip(ttensorfield& t, int axis) {
  const tnatvector n = fieldsize(t);
  const int64_t stride[3] = {1, n[0], n[0] * n[1]};
  // The off-diagonal entries (xy, xz, yz) that hold the axis change sign.
  const double sign[3][3] = {{-1, -1, 1}, {-1, 1, -1}, {1, -1, -1}};
  const tvector one{1, 1, 1}, flip{sign[axis][0], sign[axis][1], sign[axis][2]};
  tensormul(t, one, flip);
  withtensorvolumes(t, [&](auto& diagonal, auto& offdiagonal) {
    for (int64_t z = 0; z < n[2]; ++z)
      for (int64_t y = 0; y < n[1]; ++y)
        for (int64_t x = 0; x < n[0]; ++x) {
          const int64_t p[3] = {x, y, z};
          if (2 * p[axis] >= n[axis] - 1) continue;  // each pair once
          const int64_t i = x * stride[0] + y * stride[1] + z * stride[2];
          const int64_t j = i + (n[axis] - 1 - 2 * p[axis]) * stride[axis];
          std::swap(diagonal.items()[i], diagonal.items()[j]);
          std::swap(offdiagonal.items()[i], offdiagonal.items()[j]);
        }
  });
}

bool plaintensors(const ttensorfield& t) {
  bool plain = true;
  eachstorage(t, [&](const auto& a) {
    const auto* p = a.items();
    plain = plain && std::all_of(p, p + a.length, [&](const auto& e) { return e == p[0]; });
  });
  return plain;
}
