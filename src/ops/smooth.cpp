#include "ops/smooth.h"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <vector>

#include "ops/slices.h"
#include "shell/console.h"

namespace {

// The kernels see the window's sum s and count n; n is a compile-time constant in the
// interior, so that the division there becomes a multiplication. Sums of at most 27
// 16-bit values fit 32 bits, which the vector units take twice as wide as 64.
struct softkernel {
  template <bool flat>
  static auto apply(auto c, auto s, auto n) {
    if constexpr (flat)
      return (s / n + c * 8) / 9;
    else
      return (s / n + c * 26) / 27;
  }
};
struct smoothkernel {
  template <bool>
  static auto apply(auto c, auto s, auto n) { return (c + s / n) / 2; }
};
struct smooth0kernel {
  template <bool>
  static auto apply(auto c, auto s, auto n) { return c == 0 ? 0 : (c + s / n) / 2; }
};
struct hardkernel {
  template <bool>
  static auto apply(auto, auto s, auto n) { return s / n; }
};
// The only kernel that leaves the kind's range.
struct unsharpkernel {
  static constexpr bool clamps = true;
  template <bool>
  static auto apply(auto c, auto s, auto n) { return 2 * c - s / n; }
};

template <class K>
concept clamping = K::clamps;

using tsum = int32_t;

template <class K, class T>
T store(tsum v) {
  if constexpr (clamping<K>)
    return static_cast<T>(std::clamp<tsum>(v, 0, std::numeric_limits<T>::max()));
  else
    return static_cast<T>(v);
}

template <tsum n>
using constant = std::integral_constant<tsum, n>;

// One row: `sums` holds, per x, the column sum over the row's y and z neighbours, which
// number `across`. The two x ends have a window of 2 columns, the rest of 3.
template <class K, bool flat, class T, class N>
void interior(const tsum* sums, const T* c, T* o, int64_t nx, N n) {
  for (int64_t x = 1; x < nx - 1; ++x)
    o[x] = store<K, T>(K::template apply<flat>(tsum{c[x]}, sums[x - 1] + sums[x] + sums[x + 1], n));
}

template <class K, bool flat, class T>
void smoothrow(const tsum* sums, const T* c, T* o, int64_t nx, tsum across) {
  if (nx == 1) {
    o[0] = store<K, T>(K::template apply<flat>(tsum{c[0]}, sums[0], across));
    return;
  }
  o[0] = store<K, T>(K::template apply<flat>(tsum{c[0]}, sums[0] + sums[1], 2 * across));
  o[nx - 1] = store<K, T>(K::template apply<flat>(tsum{c[nx - 1]}, sums[nx - 2] + sums[nx - 1], 2 * across));
  if (!flat && across == 9)
    interior<K, flat>(sums, c, o, nx, constant<27>{});
  else if (flat && across == 3)
    interior<K, flat>(sums, c, o, nx, constant<9>{});
  else
    interior<K, flat>(sums, c, o, nx, 3 * across);
}

// Slice z of the volume v into `out`: z sums first, then y sums per row, then the row.
template <class K, bool flat, class T>
void smoothslice(const T* v, int64_t nx, int64_t ny, int64_t z, T* out) {
  static_assert(sizeof(T) <= 2, "27 samples must fit the 32-bit sums");
  const int64_t area = nx * ny;
  const T* mid = v + (z - 1) * area;
  // Scratch kept per thread: a fresh plane per slice would cost page faults each time.
  thread_local std::vector<tsum> zsums, sums;
  zsums.resize(area);
  sums.resize(nx);
  if constexpr (flat) {
    std::copy_n(mid, area, zsums.begin());
  } else {
    const T* below = mid - area;
    const T* above = mid + area;
    for (int64_t i = 0; i < area; ++i) zsums[i] = tsum{below[i]} + mid[i] + above[i];
  }
  const tsum depth = flat ? 1 : 3;
  for (int64_t y = 0; y < ny; ++y) {
    const int64_t low = std::max<int64_t>(y - 1, 0), high = std::min(y + 1, ny - 1);
    std::fill(sums.begin(), sums.end(), 0);
    for (int64_t r = low; r <= high; ++r) {
      const tsum* line = zsums.data() + r * nx;
      for (int64_t x = 0; x < nx; ++x) sums[x] += line[x];
    }
    smoothrow<K, flat>(sums.data(), mid + y * nx, out + y * nx, nx, static_cast<tsum>(high - low + 1) * depth);
  }
}

template <class K, class T>
struct tsmoothjob {
  T* v;
  int64_t nx, ny, nz;
  tsliceplanes<T> planes;

  tsmoothjob(T* voxels, int64_t x, int64_t y, int64_t z)
      : v(voxels), nx(x), ny(y), nz(z), planes(z, x * y) {}
  void compute(int64_t z) {
    if (z == 1 || z == nz)
      smoothslice<K, true>(v, nx, ny, z, planes.open(z));
    else
      smoothslice<K, false>(v, nx, ny, z, planes.open(z));
  }
  void commit(int64_t z) {
    std::copy_n(planes.get(z), planes.area, v + (z - 1) * planes.area);
    planes.close(z);
  }
};

template <class K>
void smoothwith(tscalarfield& f, int64_t parallel, const char* word) {
  auto run = [&](auto& a) {
    using T = typename std::remove_cvref_t<decltype(a)>::elementtype;
    tsmoothjob<K, T> job(a.items(), a.sizex, a.sizey, a.sizez);
    runslices(job, a.sizez, parallel, word);
  };
  if (f.kind == scalargray) run(f.gray);
  if (f.kind == scalarfullgray) run(f.full);
}

template <class K>
void smoothplanes(timagefield& f, int64_t times, const char* word) {
  auto run = [&](auto& plane) {
    using T = typename std::remove_cvref_t<decltype(plane)>::elementtype;
    const int64_t area = plane.sizex * plane.sizey;
    std::vector<T> out(area);
    smoothslice<K, true>(plane.items(), plane.sizex, plane.sizey, 1, out.data());
    std::copy(out.begin(), out.end(), plane.items());
  };
  progress(word, 0);
  for (int64_t i = 1; i <= times; ++i) {
    eachstorage(f, run);
    progress(word, static_cast<double>(i) / times);
  }
  progressend();
}

template <class K>
void dispatch(tscalarfield& f, int64_t parallel, const char* word) {
  smoothwith<K>(f, parallel, word);
}
template <class K>
void dispatch(timagefield& f, int64_t times, const char* word) {
  smoothplanes<K>(f, times, word);
}

// The one switch from the command's kind to the kernel type.
template <class F>
void bykind(F& f, tsmoothkind kind, int64_t count) {
  const char* word = smoothword(kind);
  switch (kind) {
    case tsmoothkind::soft: return dispatch<softkernel>(f, count, word);
    case tsmoothkind::smooth: return dispatch<smoothkernel>(f, count, word);
    case tsmoothkind::smooth0: return dispatch<smooth0kernel>(f, count, word);
    case tsmoothkind::hard: return dispatch<hardkernel>(f, count, word);
    case tsmoothkind::unsharp: return dispatch<unsharpkernel>(f, count, word);
  }
}

}  // namespace

const char* smoothword(tsmoothkind kind) {
  switch (kind) {
    case tsmoothkind::soft: return "  Softsmooth";
    case tsmoothkind::smooth: return "  Smooth";
    case tsmoothkind::smooth0: return "  Smooth (0)";
    case tsmoothkind::hard: return "  Hardsmooth";
    case tsmoothkind::unsharp: return "  Unsharpmasking";
  }
  return "";
}

void smoothfield(tscalarfield& f, tsmoothkind kind, int64_t parallel) { bykind(f, kind, parallel); }

void smoothimage(timagefield& f, tsmoothkind kind, int64_t times) {
  if (fieldempty(f) || times < 1) return;
  bykind(f, kind, times);
}
