// The value-range measures, one walk each over z, y, x with a progress word per slice.
#include "ops/measure.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "shell/console.h"

namespace {

// Calls op(x, y, z, value) for every voxel. Volumes of bytes and words are read straight
// from the array; the walk is the array's own order.
template <class Op>
void eachvoxel(const tscalarfield& f, const char* word, Op op) {
  const tnatvector n = fieldsize(f);
  const auto walk = [&](auto read) {
    for (int64_t z = 1; z <= n[2]; ++z) {
      progress(utf16(word), static_cast<double>(z) / static_cast<double>(n[2]));
      for (int64_t y = 1; y <= n[1]; ++y)
        for (int64_t x = 1; x <= n[0]; ++x) op(x, y, z, read(x, y, z));
    }
    progressend();
  };
  const auto raw = [&](const auto* v) {
    walk([&](int64_t x, int64_t y, int64_t z) { return static_cast<int64_t>(v[(x - 1) + n[0] * ((y - 1) + n[1] * (z - 1))]); });
  };
  if (f.kind == scalargray && f.gray.length > 0) return raw(f.gray.items());
  if (f.kind == scalarfullgray && f.full.length > 0) return raw(f.full.items());
  walk([&](int64_t x, int64_t y, int64_t z) { return getvalue(f, x, y, z); });
}

template <class Op>
void eachvoxel(const timagefield& f, const char* word, Op op) {
  const tnatvector n = fieldsize(f);
  for (int64_t y = 1; y <= n[1]; ++y) {
    progress(utf16(word), static_cast<double>(y) / static_cast<double>(n[1]));
    for (int64_t x = 1; x <= n[0]; ++x) op(x, y, int64_t{1}, getvalue(f, x, y));
  }
  progressend();
}

template <class F, class Op>
void eachinrange(const F& f, const tvaluerange& r, const char* word, Op op) {
  eachvoxel(f, word, [&](int64_t x, int64_t y, int64_t z, int64_t v) {
    if (r.holds(v)) op(x, y, z, v);
  });
}

struct tbox {
  tvector lo{}, hi{};
  bool any = false;
};

template <class F>
tbox objectbox(const F& f, const tvaluerange& r, const char* word) {
  tbox b;
  eachinrange(f, r, word, [&](int64_t x, int64_t y, int64_t z, int64_t) {
    const tvector p{static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)};
    for (int a = 0; a < 3; ++a) {
      b.lo[a] = b.any ? std::min(b.lo[a], p[a]) : p[a];
      b.hi[a] = b.any ? std::max(b.hi[a], p[a]) : p[a];
    }
    b.any = true;
  });
  return b;
}

}  // namespace

template <class F>
tmeansd fieldstatistic(const F& f, const tvaluerange& r) {
  int64_t n = 0;
  double sum = 0;
  eachinrange(f, r, "Calculate statistic (1)", [&](int64_t, int64_t, int64_t, int64_t v) {
    ++n;
    sum += static_cast<double>(v);
  });
  if (n < 2) return {};
  const double mean = sum / static_cast<double>(n);
  double squares = 0;
  eachinrange(f, r, "Calculate statistic (2)", [&](int64_t, int64_t, int64_t, int64_t v) {
    const double d = static_cast<double>(v) - mean;
    squares += d * d;
  });
  return {mean, std::sqrt(squares / static_cast<double>(n - 1))};
}

// A counting sort: the values are integers of at most 16 bits in images and volumes alike
// (an rgb image's value is a sum of three bytes).
template <class F>
std::array<double, 5> fieldquantiles(const F& f, const tvaluerange& r) {
  std::vector<int64_t> counts;
  int64_t n = 0;
  eachinrange(f, r, "Calculate quantile", [&](int64_t, int64_t, int64_t, int64_t v) {
    if (v < 0) return;
    if (static_cast<size_t>(v) >= counts.size()) counts.resize(std::max<size_t>(v + 1, counts.size() * 2), 0);
    ++counts[v];
    ++n;
  });
  if (n < 1) return {};
  const auto element = [&](int64_t k) {  // the k-th smallest, from 1
    k = std::clamp<int64_t>(k, 1, n);
    for (size_t v = 0; v < counts.size(); ++v) {
      k -= counts[v];
      if (k <= 0) return static_cast<double>(v);
    }
    return 0.0;
  };
  const bool odd = n % 2 == 1;
  const int64_t q = n / 4, h = n / 2, add = odd ? 1 : 0;
  return {element(1), element(q + add), element(h + add), element(q * 3 + add), element(n)};
}

template <class F>
tcountsum fieldcountsum(const F& f, const tvaluerange& r) {
  tcountsum c;
  eachinrange(f, r, "Calculate count", [&](int64_t, int64_t, int64_t, int64_t v) {
    const double d = static_cast<double>(v);
    c.min = c.count ? std::min(c.min, d) : d;
    c.max = c.count ? std::max(c.max, d) : d;
    c.sum += d;
    ++c.count;
  });
  return c;
}

template <class F>
tvector objectcenter(const F& f, const tvaluerange& r) {
  const tbox b = objectbox(f, r, "Calculate center");
  tvector c{};
  if (b.any)
    for (int a = 0; a < 3; ++a) c[a] = (b.lo[a] + b.hi[a]) / 2;
  return c;
}

template <class F>
tvector objectsize(const F& f, const tvaluerange& r) {
  const tbox b = objectbox(f, r, "Calculate size");
  tvector s{};
  if (b.any)
    for (int a = 0; a < 3; ++a) s[a] = b.hi[a] - b.lo[a];
  return s;
}

template <class F>
tvector fieldcentroid(const F& f, const tvaluerange& r, bool weighted) {
  tvector sum{};
  double mass = 0;
  eachinrange(f, r, weighted ? "Calculate cog" : "Calculate centroid", [&](int64_t x, int64_t y, int64_t z, int64_t v) {
    const double w = weighted ? static_cast<double>(v) : 1.0;
    sum[0] += static_cast<double>(x) * w;
    sum[1] += static_cast<double>(y) * w;
    sum[2] += static_cast<double>(z) * w;
    mass += w;
  });
  if (!(mass > 0)) return {};
  return {sum[0] / mass, sum[1] / mass, sum[2] / mass};
}

template <class F>
std::array<double, 6> fieldinertia(const F& f, const tvaluerange& r, double scale, double add) {
  const tvector c = fieldcentroid(f, r, false);
  std::array<double, 6> t{};
  eachinrange(f, r, "Calculate inertia", [&](int64_t x, int64_t y, int64_t z, int64_t) {
    const double dx = static_cast<double>(x) - c[0], dy = static_cast<double>(y) - c[1], dz = static_cast<double>(z) - c[2];
    t[0] += dy * dy + dz * dz;
    t[1] += dx * dx + dz * dz;
    t[2] += dx * dx + dy * dy;
    t[3] -= dx * dy;
    t[4] -= dx * dz;
    t[5] -= dy * dz;
  });
  for (double& e : t) e = e * scale + add;
  return t;
}

template <class F>
double boxcounting(const F& f, const tvaluerange& r) {
  const tvector s = objectsize(f, r);
  if (s[0] == 0 && s[1] == 0 && s[2] == 0) return 0;
  const double side = std::cbrt(s[0] * s[1] * s[2]);
  int64_t n = 0;
  eachinrange(f, r, "Calculate boxcounting-dimension", [&](int64_t, int64_t, int64_t, int64_t) { ++n; });
  return -std::log10(static_cast<double>(n)) / std::log10(side);
}

#define VOXMILL_MEASURES(F)                                                                 \
  template tmeansd fieldstatistic(const F&, const tvaluerange&);                            \
  template std::array<double, 5> fieldquantiles(const F&, const tvaluerange&);              \
  template tcountsum fieldcountsum(const F&, const tvaluerange&);                           \
  template tvector objectcenter(const F&, const tvaluerange&);                              \
  template tvector objectsize(const F&, const tvaluerange&);                                \
  template tvector fieldcentroid(const F&, const tvaluerange&, bool);                       \
  template std::array<double, 6> fieldinertia(const F&, const tvaluerange&, double, double); \
  template double boxcounting(const F&, const tvaluerange&);
VOXMILL_MEASURES(tscalarfield)
VOXMILL_MEASURES(timagefield)
