#include "ops/morphology.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "field/array_sort.h"
#include "ops/voxelgrid.h"
#include "shell/console.h"

namespace {

// The count k of a pixel is the box sum, over the 3 by 3 (by 3) window, of the indicator
// "this neighbour decides": outside the range for shrink, inside for grow. The centre of
// a candidate never decides, so the box sum is the neighbour count. The sums are
// separable: rows, then columns, then three planes; a missing row or plane beyond the
// border is all background.
template <class T>
class tmorphpass {
 public:
  tmorphpass(const tgrid<T>& g, const tmorphstep& s, bool planar)
      : g(g), s(s), planar(planar), grow(s.kind == tmorphkind::grow), area(g.area()) {
    n = std::clamp<int64_t>(s.n, 0, planar ? 8 : 26);
    cap = s.kind == tmorphkind::skeleton ? 21 : 28;
    pad = decides(g.background);
    // The range in the element type, so that the voxel loops compare bytes or words; a
    // range beyond the type holds nothing, which the empty pair hi < lo says.
    constexpr int64_t most = std::numeric_limits<T>::max();
    const bool none = s.range.hi < 0 || s.range.lo > most || s.range.lo > s.range.hi;
    tlo = static_cast<T>(none ? 1 : std::clamp<int64_t>(s.range.lo, 0, most));
    thi = static_cast<T>(none ? 0 : std::clamp<int64_t>(s.range.hi, 0, most));
    for (int64_t dz = planar ? 0 : -1; dz <= (planar ? 0 : 1); ++dz)
      for (int64_t dy = -1; dy <= 1; ++dy)
        for (int64_t dx = -1; dx <= 1; ++dx)
          if (dx != 0 || dy != 0 || dz != 0) offsets[neighbours++] = dx + g.nx * (dy + g.ny * dz);
    ind.resize(area);
    rows.resize(area);
    padrow.assign(g.nx, static_cast<uint8_t>(3 * pad));
    for (auto& c : counts) c.resize(area);
  }

  int64_t run() {
    int64_t changed = 0;
    std::vector<std::pair<int64_t, T>> pending, current;
    planecounts(-1, counts[0].data());
    planecounts(0, counts[1].data());
    for (int64_t z = 0; z < g.nz; ++z) {
      planecounts(z + 1, counts[2].data());
      current.clear();
      visitplane(z, current);
      // Plane z - 1 has been read for the last time: its changes may go in now.
      for (const auto& [i, v] : pending) g.v[i] = v;
      changed += static_cast<int64_t>(current.size());
      std::swap(pending, current);
      std::rotate(counts.begin(), counts.begin() + 1, counts.end());
    }
    for (const auto& [i, v] : pending) g.v[i] = v;
    return changed;
  }

 private:
  const tgrid<T>& g;
  const tmorphstep& s;
  bool planar, grow;
  int64_t area, n = 0, cap = 0;
  uint8_t pad = 0;
  T tlo{}, thi{};
  std::array<int64_t, 26> offsets{};
  int neighbours = 0;
  std::vector<uint8_t> ind, rows, padrow;
  std::array<std::vector<uint8_t>, 3> counts;

  uint8_t decides(T v) const { return s.range.contains(v) == grow; }

  // The 3 by 3 box sums of the indicator on plane z; outside the volume, all background.
  void planecounts(int64_t z, uint8_t* out) {
    if (z < 0 || z >= g.nz) {
      std::fill_n(out, area, static_cast<uint8_t>(9 * pad));
      return;
    }
    const T* p = g.v + z * area;
    const T lo = tlo, hi = thi;
    const uint8_t flip = !grow;
    uint8_t* __restrict a = ind.data();
    for (int64_t i = 0; i < area; ++i) a[i] = static_cast<uint8_t>((p[i] >= lo) & (p[i] <= hi)) ^ flip;
    const int64_t nx = g.nx;
    for (int64_t y = 0; y < g.ny; ++y) {
      const uint8_t* a = ind.data() + y * nx;
      uint8_t* o = rows.data() + y * nx;
      if (nx == 1) {
        o[0] = static_cast<uint8_t>(2 * pad + a[0]);
        continue;
      }
      o[0] = static_cast<uint8_t>(pad + a[0] + a[1]);
      o[nx - 1] = static_cast<uint8_t>(a[nx - 2] + a[nx - 1] + pad);
      for (int64_t x = 1; x < nx - 1; ++x) o[x] = static_cast<uint8_t>(a[x - 1] + a[x] + a[x + 1]);
    }
    for (int64_t y = 0; y < g.ny; ++y) {
      const uint8_t* up = y > 0 ? rows.data() + (y - 1) * nx : padrow.data();
      const uint8_t* down = y < g.ny - 1 ? rows.data() + (y + 1) * nx : padrow.data();
      const uint8_t* mid = rows.data() + y * nx;
      uint8_t* o = out + y * nx;
      for (int64_t x = 0; x < nx; ++x) o[x] = static_cast<uint8_t>(up[x] + mid[x] + down[x]);
    }
  }

  // The candidates first, in a loop without branches; the few that change after it.
  void visitplane(int64_t z, std::vector<std::pair<int64_t, T>>& changes) {
    const T* __restrict p = g.v + z * area;
    const uint8_t* __restrict below = counts[0].data();
    const uint8_t* __restrict mid = counts[1].data();
    const uint8_t* __restrict above = counts[2].data();
    uint8_t* __restrict hit = ind.data();
    const auto lo = static_cast<uint8_t>(n), hi = static_cast<uint8_t>(cap);
    const T rlo = tlo, rhi = thi;
    const uint8_t in = grow;
    if (planar) {
      for (int64_t i = 0; i < area; ++i)
        hit[i] = (mid[i] > lo) & (mid[i] < hi) & (static_cast<uint8_t>((p[i] >= rlo) & (p[i] <= rhi)) ^ in);
    } else {
      for (int64_t i = 0; i < area; ++i) {
        const auto k = static_cast<uint8_t>(below[i] + mid[i] + above[i]);
        hit[i] = (k > lo) & (k < hi) & (static_cast<uint8_t>((p[i] >= rlo) & (p[i] <= rhi)) ^ in);
      }
    }
    // Hits are few: eight flags at a time are passed over while all are clear.
    for (int64_t y = 0; y < g.ny; ++y) {
      const uint8_t* row = hit + y * g.nx;
      for (int64_t x = 0; x < g.nx; ++x) {
        if (x + 8 <= g.nx) {
          uint64_t eight;
          std::memcpy(&eight, row + x, 8);
          if (eight == 0) {
            x += 7;
            continue;
          }
        }
        if (row[x]) changes.emplace_back(z * area + y * g.nx + x, newvalue(x, y, z));
      }
    }
  }

  // The given value, or the mean or most frequent value of the deciding neighbours.
  T newvalue(int64_t x, int64_t y, int64_t z) const {
    if (s.value) return static_cast<T>(std::clamp<int64_t>(*s.value, 0, g.top));
    const bool inner = x > 0 && y > 0 && x < g.nx - 1 && y < g.ny - 1 && (planar || (z > 0 && z < g.nz - 1));
    if (inner && !s.label) {
      // The mean inside the field: fixed offsets, no bounds, no branches.
      const T* c = g.v + x + g.nx * (y + g.ny * z);
      int64_t k = 0, sum = 0;
      for (int i = 0; i < neighbours; ++i) {
        const T v = c[offsets[i]];
        const int64_t d = static_cast<uint8_t>((v >= tlo) & (v <= thi)) ^ !grow;
        k += d;
        sum += d * v;
      }
      return k == 0 ? *c : static_cast<T>(sum / k);
    }
    std::array<int64_t, 26> found;
    int64_t k = 0, sum = 0;
    const int64_t depth = planar ? 0 : 1;
    for (int64_t dz = -depth; dz <= depth; ++dz)
      for (int64_t dy = -1; dy <= 1; ++dy)
        for (int64_t dx = -1; dx <= 1; ++dx) {
          if (dx == 0 && dy == 0 && dz == 0) continue;
          const T v = g.at(x + dx, y + dy, z + dz);
          if (!decides(v)) continue;
          found[k++] = v;
          sum += v;
        }
    if (k == 0) return g.at(x, y, z);
    return static_cast<T>(s.label ? mostfrequent(found.data(), k) : sum / k);
  }
};

template <class T>
int64_t passon(const tgrid<T>& g, const tmorphstep& s, bool planar) {
  return tmorphpass<T>(g, s, planar).run();
}

int64_t pass(tscalarfield& f, const tmorphstep& s) {
  int64_t changed = 0;
  withgrid(f, [&](auto g) { changed = passon(g, s, false); });
  return changed;
}

int64_t pass(timagefield& f, const tmorphstep& s) {
  int64_t changed = 0;
  withgrids(f, [&](auto g) { changed = passon(g, s, true); });
  return changed;
}

template <class F>
int64_t fullpasses(F& f, const tmorphstep& s) {
  const char* word = s.kind == tmorphkind::grow ? "  Fill pixels" : "  Remove pixels";
  progress(word, 0);
  int64_t last = pass(f, s), total = last;
  for (int64_t more = 0; last > 0 && more < 9999; ++more) {
    last = pass(f, s);
    total += last;
    progress(word, static_cast<double>(more + 1) / 9999);
  }
  progressend();
  return total;
}

}  // namespace

int64_t mostfrequent(int64_t* values, int64_t n) {
  if (n < 1) return 0;
  std::sort(values, values + n);
  // (value, count) in ascending order of value, then ordered by count with the list sort.
  std::array<std::array<int64_t, 2>, 27> pairs;
  int64_t m = 0;
  for (int64_t i = 0; i < n; ++i) {
    if (m > 0 && pairs[m - 1][0] == values[i])
      ++pairs[m - 1][1];
    else
      pairs[m++] = {values[i], 1};
  }
  heapsort(
      m, [&](int64_t a, int64_t b) { return pairs[a - 1][1] < pairs[b - 1][1]; },
      [&](int64_t a, int64_t b) { std::swap(pairs[a - 1], pairs[b - 1]); });
  return pairs[m - 1][0];
}

int64_t morphpass(tscalarfield& f, const tmorphstep& step) { return pass(f, step); }
int64_t morphpass(timagefield& f, const tmorphstep& step) { return pass(f, step); }
int64_t morphfull(tscalarfield& f, const tmorphstep& step) { return fullpasses(f, step); }
int64_t morphfull(timagefield& f, const tmorphstep& step) { return fullpasses(f, step); }
