// The voxel expressions of the vector arithmetic (new := vector.add old1 old2 ...): the
// operands' vectors at one voxel in parameter order, and the target's own vector, which a
// voxel that is not selected keeps.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "script/values.h"

namespace vectormath {

inline tvector sum(std::span<const tvector> v, const tvector&) {
  tvector r{0, 0, 0};
  for (const tvector& a : v)
    for (int c = 0; c < 3; ++c) r[c] += a[c];
  return r;
}

// The first minus all others.
inline tvector difference(std::span<const tvector> v, const tvector&) {
  tvector r = v[0];
  for (size_t i = 1; i < v.size(); ++i)
    for (int c = 0; c < 3; ++c) r[c] -= v[i][c];
  return r;
}

// Component by component.
inline tvector product(std::span<const tvector> v, const tvector&) {
  tvector r = v[0];
  for (size_t i = 1; i < v.size(); ++i)
    for (int c = 0; c < 3; ++c) r[c] *= v[i][c];
  return r;
}

inline tvector mean(std::span<const tvector> v, const tvector& own) {
  const tvector r = sum(v, own);
  const double n = static_cast<double>(v.size());
  return {r[0] / n, r[1] / n, r[2] / n};
}

// The first operand where the rounded length of the second lies in one of the ranges
// (both ends included), else the target's own vector.
struct masked {
  std::vector<std::pair<int64_t, int64_t>> ranges;
  tvector operator()(std::span<const tvector> v, const tvector& own) const {
    const tvector& m = v[1];
    const int64_t l = roundnat(std::sqrt(m[0] * m[0] + m[1] * m[1] + m[2] * m[2]));
    const bool in = std::any_of(ranges.begin(), ranges.end(), [l](auto r) { return r.first <= l && l <= r.second; });
    return in ? v[0] : own;
  }
};

}  // namespace vectormath
