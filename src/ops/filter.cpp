#include "ops/filter.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

#include "field/arrays.h"
#include "ops/arithmetic.h"
#include "ops/slices.h"

namespace {

// A slice job that copies slice z and replaces its voxels by op(v, i), i the linear index of
// the voxel: all but a margin of `margin` in x and y. The first and last slice are left alone.
template <class T, class Op>
struct tinteriorjob {
  T* v;
  int64_t nx, ny, nz, margin;
  Op op;
  tsliceplanes<T> planes;

  tinteriorjob(T* voxels, int64_t x, int64_t y, int64_t z, int64_t m, Op o)
      : v(voxels), nx(x), ny(y), nz(z), margin(m), op(o), planes(z, x * y) {}
  void compute(int64_t z) {
    if (z == 1 || z == nz) return;
    const int64_t area = planes.area, base = (z - 1) * area;
    T* out = planes.open(z);
    std::copy_n(v + base, area, out);
    constexpr int64_t top = std::numeric_limits<T>::max();
    for (int64_t y = margin; y < ny - margin; ++y)
      for (int64_t x = margin; x < nx - margin; ++x) {
        const int64_t i = x + y * nx;
        out[i] = static_cast<T>(std::clamp<int64_t>(op(v, base + i), 0, top));
      }
  }
  void commit(int64_t z) {
    if (!planes.get(z)) return;
    std::copy_n(planes.get(z), planes.area, v + (z - 1) * planes.area);
    planes.close(z);
  }
};

// Sequential on purpose: these kernels show no thread lines. make(sizex, sizey, T{}) gives
// the voxel operation.
template <class Make>
void eachinterior(tscalarfield& f, const char* word, Make make, int64_t margin = 1) {
  auto run = [&](auto& a) {
    using T = typename std::remove_cvref_t<decltype(a)>::elementtype;
    auto op = make(a.sizex, a.sizey, T{});
    tinteriorjob<T, decltype(op)> job(a.items(), a.sizex, a.sizey, a.sizez, margin, op);
    runslices(job, a.sizez, 1, word);
  };
  if (f.kind == scalargray) run(f.gray);
  if (f.kind == scalarfullgray) run(f.full);
}

template <tmediankind kind>
int64_t combine(int64_t a, int64_t c, int64_t b) {
  if constexpr (kind == tmediankind::add) return a + c + b;
  if constexpr (kind == tmediankind::mean) return (a + c + b) / 3;
  if constexpr (kind == tmediankind::mul) return a * c * b;
}

template <tmediankind kind>
void medianwith(tscalarfield& f) {
  eachinterior(f, medianword(kind), [](int64_t sx, int64_t sy, auto) {
    return [sx, sxy = sx * sy](const auto* v, int64_t i) {
      auto line = [&](int64_t step) { return combine<kind>(v[i - step], v[i], v[i + step]); };
      return pixelmath::medianofthree(line(1), line(sx), line(sxy));
    };
  });
}

// The window's values, cut at the x and y border, most frequent last. A list of the
// field's own element size, so that word labels stay whole.
template <class T>
struct tlabelvote {
  using tlist = std::conditional_t<sizeof(T) == 1, tbytelist, twordlist>;
  int64_t nx, ny, threshold;
  std::shared_ptr<tlist> list;

  int64_t operator()(const T* v, int64_t i) const {
    if (v[i] == 0) return 0;
    const int64_t x = i % nx, y = i / nx % ny;
    const int64_t xlow = std::max<int64_t>(-1, -x), xhigh = std::min<int64_t>(1, nx - 1 - x);
    const int64_t ylow = std::max<int64_t>(-1, -y), yhigh = std::min<int64_t>(1, ny - 1 - y);
    // A dynamic list: shrinking and growing within its block does not reallocate.
    const int64_t n = 3 * (xhigh - xlow + 1) * (yhigh - ylow + 1);
    list->resize(n);
    int64_t k = 0;
    for (int64_t dz = -1; dz <= 1; ++dz)
      for (int64_t dy = ylow; dy <= yhigh; ++dy)
        for (int64_t dx = xlow; dx <= xhigh; ++dx) list->put(++k, v[i + dz * nx * ny + dy * nx + dx]);
    list->frequencysort();
    const int64_t top = list->get(n);
    if (top != 0 || list->getchecked(threshold) == 0) return top;
    for (k = n; k > threshold; --k)
      if (list->get(k) != 0) return list->get(k);
    return 0;
  }
};

}  // namespace

void labelsmoothfield(tscalarfield& f, int64_t threshold) {
  eachinterior(
      f, "  Smooth label",
      [threshold](int64_t sx, int64_t sy, auto element) {
        using T = decltype(element);
        using tlist = typename tlabelvote<T>::tlist;
        std::shared_ptr<tlist> list(new tlist{}, [](tlist* l) {
          l->release();
          delete l;
        });
        list->createdynamic();
        list->resize(27);
        return tlabelvote<T>{sx, sy, threshold, list};
      },
      0);
}

void filterfield(tscalarfield& f, const std::array<int64_t, 27>& weights, int64_t divisor) {
  if (divisor == 0) return;
  eachinterior(f, "  Filter", [&](int64_t sx, int64_t sy, auto) {
    const int64_t sxy = sx * sy;
    std::array<int64_t, 27> offsets{};
    for (int64_t k = 0; k < 27; ++k) offsets[k] = (k / 9 - 1) * sxy + (k / 3 % 3 - 1) * sx + (k % 3 - 1);
    return [weights, offsets, divisor](const auto* v, int64_t i) {
      int64_t sum = 0;
      for (int64_t k = 0; k < 27; ++k) sum += weights[k] * v[i + offsets[k]];
      return sum / divisor;
    };
  });
}

const char* medianword(tmediankind kind) {
  switch (kind) {
    case tmediankind::add: return "  Filter (median[add])";
    case tmediankind::mean: return "  Filter (median[mean])";
    case tmediankind::mul: return "  Filter (median[mul])";
  }
  return "";
}

void medianfield(tscalarfield& f, tmediankind kind) {
  switch (kind) {
    case tmediankind::add: return medianwith<tmediankind::add>(f);
    case tmediankind::mean: return medianwith<tmediankind::mean>(f);
    case tmediankind::mul: return medianwith<tmediankind::mul>(f);
  }
}

void filterimage(timagefield& f, const std::array<int64_t, 9>& weights, int64_t divisor) {
  if (divisor == 0) return;
  withkind(f, [&](auto v) {
    const int64_t nx = v.sizex(), ny = v.sizey();
    if (nx * ny < 10) return;
    std::vector<int64_t> copy(nx * ny);
    for (int64_t y = 1; y <= ny; ++y)
      for (int64_t x = 1; x <= nx; ++x) copy[(x - 1) + (y - 1) * nx] = v.getvalue(x, y);
    for (int64_t y = 2; y < ny; ++y)
      for (int64_t x = 2; x < nx; ++x) {
        int64_t sum = 0;
        for (int64_t k = 0; k < 9; ++k) sum += weights[k] * copy[(x - 2 + k % 3) + (y - 2 + k / 3) * nx];
        v.setvalue(x, y, static_cast<double>(sum / divisor));
      }
  });
}
