// Cave and hull filling of volumes: the lines along an axis and the planes across it.
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "ops/holefill.h"
#include "ops/slices.h"
#include "ops/voxelgrid.h"
#include "shell/console.h"

namespace {

// One line of `length` voxels `stride` apart: from the first to the last voxel in range,
// all take the value. The count of voxels that changed.
template <class T>
int64_t caveline(T* v, int64_t stride, int64_t length, const tmorphrange& range, T value) {
  int64_t first = 0, last = length - 1;
  while (first < length && !range.contains(v[first * stride])) ++first;
  if (first == length) return 0;
  while (!range.contains(v[last * stride])) --last;
  int64_t changed = 0;
  for (int64_t i = first; i <= last; ++i) {
    T& t = v[i * stride];
    changed += t != value;
    t = value;
  }
  return changed;
}

// The strides and lengths of the three axes.
template <class T>
struct taxes {
  std::array<int64_t, 3> stride, length;
  explicit taxes(const tgrid<T>& g) : stride{1, g.nx, g.nx * g.ny}, length{g.nx, g.ny, g.nz} {}
};

// All lines along `axis` that lie in the plane `at` of axis `across`.
template <class T>
int64_t caveplane(const tgrid<T>& g, int axis, int across, int64_t at, const tmorphrange& range, T value) {
  const taxes<T> a(g);
  const int other = 3 - axis - across;
  int64_t changed = 0;
  for (int64_t i = 0; i < a.length[other]; ++i)
    changed += caveline(g.v + at * a.stride[across] + i * a.stride[other], a.stride[axis], a.length[axis], range, value);
  return changed;
}

template <class T>
T fieldvalue(const tgrid<T>& g, int64_t value) {
  return static_cast<T>(std::clamp<int64_t>(value, 0, g.top));
}

using tpoint = std::array<int64_t, 2>;

int64_t cross(const tpoint& o, const tpoint& a, const tpoint& b) {
  return (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0]);
}

// The convex hull by the monotone chain, counter-clockwise, without collinear points.
std::vector<tpoint> hullof(std::vector<tpoint> p) {
  std::sort(p.begin(), p.end());
  p.erase(std::unique(p.begin(), p.end()), p.end());
  if (p.size() < 3) return p;
  std::vector<tpoint> h(2 * p.size());
  size_t k = 0;
  for (size_t i = 0; i < p.size(); ++i) {
    while (k >= 2 && cross(h[k - 2], h[k - 1], p[i]) <= 0) --k;
    h[k++] = p[i];
  }
  for (size_t i = p.size() - 1, t = k + 1; i-- > 0;) {
    while (k >= t && cross(h[k - 2], h[k - 1], p[i]) <= 0) --k;
    h[k++] = p[i];
  }
  h.resize(k - 1);
  return h;
}

// Calls fill(u, v) for each lattice point of the closed hull polygon (a point or a segment
// when degenerate), row by row.
template <class Fill>
void fillpolygon(const std::vector<tpoint>& h, Fill fill) {
  if (h.empty()) return;
  int64_t vlo = h[0][1], vhi = h[0][1];
  for (const tpoint& p : h) vlo = std::min(vlo, p[1]), vhi = std::max(vhi, p[1]);
  for (int64_t v = vlo; v <= vhi; ++v) {
    double ulo = INFINITY, uhi = -INFINITY;
    for (size_t i = 0; i < h.size(); ++i) {
      const tpoint& p = h[i];
      const tpoint& q = h[(i + 1) % h.size()];
      if (v < std::min(p[1], q[1]) || v > std::max(p[1], q[1])) continue;
      if (p[1] == q[1]) {
        ulo = std::min({ulo, double(p[0]), double(q[0])});
        uhi = std::max({uhi, double(p[0]), double(q[0])});
        continue;
      }
      const double u = double(p[0]) + double(v - p[1]) * double(q[0] - p[0]) / double(q[1] - p[1]);
      ulo = std::min(ulo, u), uhi = std::max(uhi, u);
    }
    if (ulo > uhi) continue;
    for (auto u = static_cast<int64_t>(std::ceil(ulo - 1e-9)); u <= static_cast<int64_t>(std::floor(uhi + 1e-9)); ++u)
      fill(u, v);
  }
}

template <class T>
int64_t hullplanes(const tgrid<T>& g, int axis, const tmorphrange& range, T value) {
  const taxes<T> a(g);
  const int u = axis == 0 ? 1 : 0, w = axis == 2 ? 1 : 2;  // the plane's axes
  int64_t changed = 0;
  std::vector<tpoint> points;
  for (int64_t at = 0; at < a.length[axis]; ++at) {
    T* base = g.v + at * a.stride[axis];
    points.clear();
    for (int64_t j = 0; j < a.length[w]; ++j)
      for (int64_t i = 0; i < a.length[u]; ++i)
        if (range.contains(base[i * a.stride[u] + j * a.stride[w]])) points.push_back({i, j});
    fillpolygon(hullof(std::move(points)), [&](int64_t i, int64_t j) {
      T& t = base[i * a.stride[u] + j * a.stride[w]];
      changed += t != value;
      t = value;
    });
    points = {};
    progress("  Convex hull", static_cast<double>(at + 1) / static_cast<double>(a.length[axis]));
  }
  progressend();
  return changed;
}

// One sweep of the threaded cave fill: x and y lines in z slices, then z lines in y
// slices. Each job writes only the lines of its own slice, which no other job reads.
template <class T>
int64_t convexsweep(const tgrid<T>& g, const tmorphrange& range, T value, int64_t parallel) {
  int64_t changed = 0;
  for (int pass = 0; pass < 2; ++pass) {
    const int64_t count = pass == 0 ? g.nz : g.ny;
    std::vector<int64_t> counts(count + 1, 0);
    struct tjob {
      const tgrid<T>& g;
      const tmorphrange& range;
      T value;
      int pass;
      std::vector<int64_t>& counts;
      void compute(int64_t s) {
        if (pass == 0)
          counts[s] = caveplane(g, 0, 2, s - 1, range, value) + caveplane(g, 1, 2, s - 1, range, value);
        else
          counts[s] = caveplane(g, 2, 1, s - 1, range, value);
      }
      void commit(int64_t) {}
    } job{g, range, value, pass, counts};
    runslices(job, count, parallel, "  Fill convex");
    for (const int64_t c : counts) changed += c;
  }
  return changed;
}

}  // namespace

int64_t fillcave(tscalarfield& f, int axis, const tmorphrange& range) {
  int64_t changed = 0;
  const int64_t value = getdrawvalue(f);
  withgrid(f, [&](auto g) {
    const int across = axis == 2 ? 1 : 2;
    const taxes a(g);
    for (int64_t at = 0; at < a.length[across]; ++at) changed += caveplane(g, axis, across, at, range, fieldvalue(g, value));
  });
  return changed;
}

int64_t fillhull(tscalarfield& f, int axis, const tmorphrange& range) {
  int64_t changed = 0;
  const int64_t value = getdrawvalue(f);
  withgrid(f, [&](auto g) { changed = hullplanes(g, axis, range, fieldvalue(g, value)); });
  return changed;
}

int64_t fillconvex(tscalarfield& f, const tmorphrange& range, int64_t parallel) {
  int64_t changed = 0;
  const int64_t value = getdrawvalue(f);
  withgrid(f, [&](auto g) {
    for (int64_t sweep = 0; sweep < 10000; ++sweep) {
      const int64_t last = convexsweep(g, range, fieldvalue(g, value), parallel);
      changed += last;
      if (last == 0) break;
    }
  });
  return changed;
}
