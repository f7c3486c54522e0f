#include "orientation/scan.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

#include "field/array_sort.h"
#include "orientation/scanwalk.h"
#include "script/values.h"

namespace {

// Ties to even after clamping to the 64-bit range, in extended precision.
int64_t roundlong(long double x) {
  constexpr long double limit = 9223372036854775807.0L;
  if (!(x == x)) return 0;
  x = std::clamp(x, -limit, limit);
  const long double r = std::nearbyintl(x);
  if (r >= limit) return std::numeric_limits<int64_t>::max();
  return static_cast<int64_t>(r);
}

int64_t floordiv(int64_t a, int64_t b) {  // b > 0
  const int64_t q = a / b;
  return (a % b != 0 && a < 0) ? q - 1 : q;
}
int64_t ceildiv(int64_t a, int64_t b) { return -floordiv(-a, b); }  // b > 0

tscanunit unitof(const tscanpoint& p) {
  const double x = static_cast<double>(p[0]), y = static_cast<double>(p[1]), z = static_cast<double>(p[2]);
  const double l = std::sqrt(x * x + y * y + z * z);
  if (l == 0) return {0, 0, 0};
  return {x / l, y / l, z / l};
}

tscandirectionset withunits(std::vector<tscanpoint> points) {
  tscandirectionset set;
  set.units.reserve(points.size());
  for (const tscanpoint& p : points) set.units.push_back(unitof(p));
  set.points = std::move(points);
  return set;
}

}  // namespace

std::vector<trawscanpoint> rawscanpoints(int64_t r) {
  if (r < 1) return {};
  const double R = static_cast<double>(r);
  return rawellipsoidpoints(R, {R, R, R});
}

std::vector<trawscanpoint> rawellipsoidpoints(double nominal, const tscanunit& radii) {
  std::vector<trawscanpoint> raw;
  if (!(nominal > 0)) return raw;
  const long double R = static_cast<long double>(nominal);
  const long double rx = radii[0], ry = radii[1], rz = radii[2];
  const int64_t rows = roundlong(std::numbers::pi_v<long double> * R);
  for (int64_t i = 0; i < rows; ++i) {
    const long double ring = R * std::sin(static_cast<long double>(i) / R);
    const int64_t count = roundlong(std::numbers::pi_v<long double> * ring);
    // The polar angle is taken one row further than the ring radius: kept as it is.
    const long double theta = static_cast<long double>(i + 1) / R;
    for (int64_t j = 0; j < count; ++j) {
      const long double phi = static_cast<long double>(j + 1) / ring;
      raw.push_back({i, j,
                     {roundlong(rx * std::sin(theta) * std::cos(phi)), roundlong(ry * std::sin(theta) * std::sin(phi)),
                      roundlong(rz * std::cos(theta))}});
    }
  }
  return raw;
}

std::vector<trawscanpoint> rawscancircle(int64_t r) {
  std::vector<trawscanpoint> raw;
  if (r < 1) return raw;
  const long double R = static_cast<long double>(r);
  const int64_t count = roundlong(std::numbers::pi_v<long double> * R);
  for (int64_t i = 0; i < count; ++i) {
    const long double phi = static_cast<long double>(i + 1) / R;
    raw.push_back({i, 0, {roundlong(R * std::cos(phi)), roundlong(R * std::sin(phi)), 0}});
  }
  return raw;
}

std::vector<tscanpoint> uniquescanpoints(const std::vector<trawscanpoint>& raw, int axis) {
  std::vector<tscanpoint> kept;
  const size_t n = raw.size();
  if (n == 1) kept.push_back(raw[0].point);
  // The last index of each point: an entry stays when neither it nor its negative comes
  // again later. The last entry never stays, since nothing later can vouch for it; wanted.
  std::map<tscanpoint, size_t> last;
  for (size_t a = 0; a < n; ++a) last[raw[a].point] = a;
  const auto later = [&](const tscanpoint& p, size_t a) {
    const auto it = last.find(p);
    return it != last.end() && it->second > a;
  };
  for (size_t a = 0; n > 1 && a + 1 < n; ++a) {
    const tscanpoint& p = raw[a].point;
    if (!later(p, a) && !later({-p[0], -p[1], -p[2]}, a)) kept.push_back(p);
  }
  heapsort(
      static_cast<int64_t>(kept.size()), [&](int64_t a, int64_t b) { return kept[a - 1][axis] < kept[b - 1][axis]; },
      [&](int64_t a, int64_t b) { std::swap(kept[a - 1], kept[b - 1]); });
  return kept;
}

tscandirectionset scandirections(int64_t r, int64_t n, const std::function<int64_t(int64_t)>& draw) {
  return selectdirections(uniquescanpoints(rawscanpoints(r), 2), n, draw);
}

tscandirectionset selectdirections(std::vector<tscanpoint> all, int64_t n, const std::function<int64_t(int64_t)>& draw) {
  const int64_t count = static_cast<int64_t>(all.size());
  if (n >= count || n < 1 || !draw) return withunits(std::move(all));
  std::vector<tscanpoint> taken;
  const tscanpoint zero{0, 0, 0};
  int64_t left = std::count_if(all.begin(), all.end(), [&](const tscanpoint& p) { return p != zero; });
  while (static_cast<int64_t>(taken.size()) < n && left > 0) {
    tscanpoint& p = all[static_cast<size_t>(draw(count))];
    if (p == zero) continue;
    taken.push_back(p);
    p = zero;
    --left;
  }
  return withunits(std::move(taken));
}

tscandirectionset scandirections2d(int64_t r) { return withunits(uniquescanpoints(rawscancircle(r), 1)); }

// ---- lines -----------------------------------------------------------------------------

tscanstep scanstep(const tscanpoint& delta, int64_t nx, int64_t nxy) {
  tscanstep s;
  const double dx = static_cast<double>(delta[0]), dy = static_cast<double>(delta[1]), dz = static_cast<double>(delta[2]);
  const int64_t steps = roundnat(std::sqrt(dx * dx + dy * dy + dz * dz));
  if (steps < 1) return s;
  s.steps = steps;
  for (int a = 0; a < 3; ++a) s.step[a] = roundnat(static_cast<double>(delta[a]) / static_cast<double>(steps) * 65535);
  s.delta = delta[0] + delta[1] * nx + delta[2] * nxy;
  s.forward.resize(static_cast<size_t>(steps + 1));
  s.backward.resize(static_cast<size_t>(steps + 1));
  for (int64_t k = 0; k <= steps; ++k) {
    // The grid point's fraction is 0, so the integer part of k * step is the voxel move.
    const int64_t ax = (k * s.step[0]) >> 16, ay = (k * s.step[1]) >> 16, az = (k * s.step[2]) >> 16;
    const int64_t bx = (-k * s.step[0]) >> 16, by = (-k * s.step[1]) >> 16, bz = (-k * s.step[2]) >> 16;
    s.forward[static_cast<size_t>(k)] = ax + ay * nx + az * nxy;
    s.backward[static_cast<size_t>(k)] = bx + by * nx + bz * nxy;
  }
  return s;
}

tkrange insiderange(const tscanstep& s, const tscanpoint& from, int sign, const int64_t (&size)[3]) {
  tkrange k{0, s.steps};
  for (int a = 0; a < 3; ++a) {
    // A position reads inside when 1 <= (P + k S) >> 16 <= size; a negative one never does.
    const int64_t P = from[a] * 65536, S = sign * s.step[a];
    const int64_t low = 65536, high = 65536 * (size[a] + 1) - 1;
    if (S == 0) {
      if (P < low || P > high) return {1, 0};
    } else if (S > 0) {
      k.lo = std::max(k.lo, ceildiv(low - P, S));
      k.hi = std::min(k.hi, floordiv(high - P, S));
    } else {
      k.lo = std::max(k.lo, ceildiv(P - high, -S));
      k.hi = std::min(k.hi, floordiv(P - low, -S));
    }
  }
  return k;
}

void scanline(const tscalarfield& f, const tscanpoint& p1, const tscanpoint& p2, std::vector<int64_t>& values) {
  values.clear();
  if (fieldempty(f) || (f.kind != scalargray && f.kind != scalarfullgray)) return;
  const tnatvector n = fieldsize(f);
  const int64_t size[3] = {n[0], n[1], n[2]};
  const tscanstep s = scanstep({p2[0] - p1[0], p2[1] - p1[1], p2[2] - p1[2]}, n[0], n[0] * n[1]);
  if (s.steps < 0) return;
  const int64_t i1 = (p1[0] - 1) + (p1[1] - 1) * n[0] + (p1[2] - 1) * n[0] * n[1];
  tlistsink sink{&values};
  const tkrange forward = insiderange(s, p1, 1, size), backward = insiderange(s, p2, -1, size);
  if (f.kind == scalargray)
    walkline(f.gray.items(), s, i1, i1 + s.delta, forward, backward, sink);
  else
    walkline(f.full.items(), s, i1, i1 + s.delta, forward, backward, sink);
}

// ---- statistics ------------------------------------------------------------------------

double linestatistic(const std::vector<int64_t>& values, int submethod) {
  const int64_t n = static_cast<int64_t>(values.size());
  switch (submethod) {
    case 3:
    case 7: {
      if (n == 0) return 0;
      const auto [lo, hi] = std::minmax_element(values.begin(), values.end());
      return static_cast<double>(submethod == 3 ? *lo : *hi);
    }
    case 4:
    case 5:
    case 6: {
      if (n == 0) return 0;
      std::vector<int64_t> sorted = values;
      std::sort(sorted.begin(), sorted.end());
      const bool odd = n % 2 == 1;
      int64_t entry = submethod == 4 ? n / 4 : submethod == 5 ? n / 2 : (n / 4) * 3;
      if (odd) ++entry;
      return static_cast<double>(sorted[static_cast<size_t>(std::max<int64_t>(entry, 1) - 1)]);
    }
  }
  int64_t sum = 0;
  uint64_t squares = 0;
  for (const int64_t v : values) sum += v, squares += static_cast<uint64_t>(v * v);
  return momentstatistic(n, sum, squares, submethod);
}
