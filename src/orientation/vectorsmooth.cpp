#include "orientation/vectorsmooth.h"

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <vector>

#include "ops/slices.h"
#include "orientation/vectoraccess.h"

namespace {

inline void addto(tvector& s, const tvector& v) {
  s[0] += v[0];
  s[1] += v[1];
  s[2] += v[2];
}

// One slice of the inner voxels of slice z into out (the plane, x fastest). Per row, each
// column of the 3x3 window is summed along z, then along y; the row then sums three
// columns. The nine rows read stay in the cache.
template <class E>
void meanslice(const E* v, int64_t nx, int64_t ny, int64_t z, tvector* out) {
  const int64_t area = nx * ny;
  const E* mid = v + (z - 1) * area;
  thread_local std::vector<tvector> columns;
  columns.resize(nx);
  for (int64_t y = 1; y < ny - 1; ++y) {
    const E* row = mid + y * nx;
    for (int64_t x = 0; x < nx; ++x) {
      tvector s{0, 0, 0};
      for (const int64_t dy : {-nx, int64_t{0}, nx}) {
        const E* c = row + x + dy;
        tvector t = readvector(c[-area]);
        addto(t, readvector(c[0]));
        addto(t, readvector(c[area]));
        if (dy == -nx)
          s = t;
        else
          addto(s, t);
      }
      columns[x] = s;
    }
    tvector* o = out + y * nx;
    for (int64_t x = 1; x < nx - 1; ++x) {
      tvector s = columns[x - 1];
      addto(s, columns[x]);
      addto(s, columns[x + 1]);
      o[x] = {s[0] / 27, s[1] / 27, s[2] / 27};
    }
  }
}

// The corner sum S of each inner voxel, then S / 26 (hard) or (S / 26 + centre) / 2 (soft).
template <bool soft, class E>
void cornerslice(const E* v, int64_t nx, int64_t ny, int64_t z, tvector* out) {
  const int64_t area = nx * ny;
  const E* mid = v + (z - 1) * area;
  for (int64_t y = 1; y < ny - 1; ++y)
    for (int64_t x = 1; x < nx - 1; ++x) {
      const int64_t i = x + y * nx;
      tvector s{0, 0, 0};
      for (int64_t dz : {-area, area})
        for (int64_t dy : {-nx, nx})
          for (int64_t dx : {-1, 1}) addto(s, readvector(mid[i + dz + dy + dx]));
      const tvector c = readvector(mid[i]);
      for (int k = 0; k < 3; ++k) out[i][k] = soft ? (s[k] / 26 + c[k]) / 2 : s[k] / 26;
    }
}

// The slice buffers of a command, kept for reuse over its slices and passes: a plane of a
// 128^2 slice is larger than the allocator keeps in its heap, and a fresh one per slice
// costs its page faults again, on every thread at once. Only a few are in flight at a time.
struct tplanering {
  int64_t area;
  std::vector<std::unique_ptr<tvector[]>> free, used;
  std::mutex lock;

  tplanering(int64_t count, int64_t planearea) : area(planearea), used(count + 1) {}
  // The result plane of job j, until close(j).
  tvector* open(int64_t j) {
    std::unique_ptr<tvector[]> plane;
    {
      std::lock_guard g(lock);
      if (!free.empty()) {
        plane = std::move(free.back());
        free.pop_back();
      }
    }
    if (!plane) plane = std::make_unique_for_overwrite<tvector[]>(area);
    tvector* p = plane.get();
    std::lock_guard g(lock);
    used[j] = std::move(plane);
    return p;
  }
  const tvector* get(int64_t j) {
    std::lock_guard g(lock);
    return used[j].get();
  }
  void close(int64_t j) {
    std::lock_guard g(lock);
    free.push_back(std::move(used[j]));
  }
};

// Job j computes slice z = j + 1, so that the jobs cover the inner slices 2..nz-1.
template <class E>
struct tvectorsmoothjob {
  E* v;
  int64_t nx, ny;
  tvectorsmooth kind;
  tplanering& planes;

  void compute(int64_t j) {
    tvector* out = planes.open(j);
    switch (kind) {
      case tvectorsmooth::smooth: return meanslice(v, nx, ny, j + 1, out);
      case tvectorsmooth::soft: return cornerslice<true>(v, nx, ny, j + 1, out);
      case tvectorsmooth::hard: return cornerslice<false>(v, nx, ny, j + 1, out);
    }
  }
  void commit(int64_t j) {
    const tvector* in = planes.get(j);
    E* slice = v + j * planes.area;
    for (int64_t y = 1; y < ny - 1; ++y)
      for (int64_t x = 1; x < nx - 1; ++x) slice[x + y * nx] = writevector<E>(in[x + y * nx]);
    planes.close(j);
  }
};

const char* smoothlabel(tvectorsmooth kind) {
  switch (kind) {
    case tvectorsmooth::soft: return "  Softsmooth";
    case tvectorsmooth::smooth: return "  Smooth";
    case tvectorsmooth::hard: return "  Hardsmooth";
  }
  return "";
}

}  // namespace

void smoothvectors(tvectorfield& f, tvectorsmooth kind, int64_t passes, int64_t parallel) {
  eachstorage(f, [&](auto& a) {
    if (a.sizex < 3 || a.sizey < 3 || a.sizez < 3) return;
    using E = vectorelement<decltype(a)>;
    tplanering planes(a.sizez - 2, a.sizex * a.sizey);
    for (int64_t pass = 1; pass <= passes; ++pass) {
      tvectorsmoothjob<E> job{a.items(), a.sizex, a.sizey, kind, planes};
      runslices(job, a.sizez - 2, parallel, smoothlabel(kind));
    }
    a.sorted = false;
  });
}

namespace {

// The three quartile entries of 27 sorted values, and the test of one component.
struct tquartiles {
  double low, median, high;
};

tquartiles quartiles(std::array<double, 27>& values) {
  std::sort(values.begin(), values.end());
  return {values[6], values[13], values[18]};
}

template <class A>
int64_t outlierpass(A& a, double factor) {
  using E = vectorelement<A>;
  const int64_t nx = a.sizex, ny = a.sizey, nz = a.sizez;
  std::vector<E> result(a.items(), a.items() + a.length);
  int64_t count = 0;
  std::array<std::array<double, 27>, 3> block;
  for (int64_t z = 1; z <= nz; ++z) {
    progress("  Remove outliers", static_cast<double>(z - 1) / nz);
    for (int64_t y = 1; y <= ny; ++y)
      for (int64_t x = 1; x <= nx; ++x) {
        int k = 0;
        for (int64_t dz = -1; dz <= 1; ++dz)
          for (int64_t dy = -1; dy <= 1; ++dy)
            for (int64_t dx = -1; dx <= 1; ++dx, ++k) {
              const tvector v = readvector(a.getchecked(x + dx, y + dy, z + dz));
              for (int c = 0; c < 3; ++c) block[c][k] = v[c];
            }
        const tvector centre = readvector(a.get(x, y, z));
        tvector medians{};
        bool outlier = false;
        for (int c = 0; c < 3; ++c) {
          const tquartiles q = quartiles(block[c]);
          const double band = factor * std::abs(q.low - q.high);
          medians[c] = q.median;
          outlier = outlier || centre[c] < q.median - band || centre[c] > q.median + band;
        }
        if (!outlier) continue;
        result[a.index(x, y, z) - 1] = writevector<E>(medians);
        ++count;
      }
  }
  progressend();
  std::copy(result.begin(), result.end(), a.items());
  a.sorted = false;
  return count;
}

}  // namespace

int64_t removeoutliers(tvectorfield& f, double factor) {
  int64_t count = 0;
  eachstorage(f, [&](auto& a) {
    if (a.length > 0) count = outlierpass(a, factor);
  });
  return count;
}
