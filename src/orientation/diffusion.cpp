#include "orientation/diffusion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <type_traits>
#include <vector>

#include "field/array_grids.h"
#include "ops/slices.h"
#include "orientation/reducedfield.h"
#include "orientation/scanwalk.h"
#include "shell/console.h"

namespace {

using tv = tscanunit;
constexpr tv zero{0, 0, 0};

// The lines of one scan over one volume, prepared once per command and read by all
// workers: each direction's walk, its linear offset and how far its samples reach.
struct tscanplan {
  int64_t size[3];
  int64_t nxy;
  tscandirectionset dirs;
  std::vector<tscanstep> steps;
  std::vector<int64_t> linear;                // linear offset of each d
  std::vector<std::array<int64_t, 6>> reach;  // per direction: lowest and highest move per axis of both walks
  int64_t margin[3] = {0, 0, 0};              // closer to a border than this, a line may leave the field

  tscanplan(const int64_t (&n)[3], tscandirectionset d) : size{n[0], n[1], n[2]}, nxy(n[0] * n[1]), dirs(std::move(d)) {
    for (const tscanpoint& p : dirs.points) {
      steps.push_back(scanstep({-2 * p[0], -2 * p[1], -2 * p[2]}, size[0], nxy));
      linear.push_back(p[0] + p[1] * size[0] + p[2] * nxy);
      reach.push_back(extent(steps.back(), p));
      // The walk strays at most one voxel beyond its ends; one more for safety.
      for (int a = 0; a < 3; ++a)
        if (p[a] != 0) margin[a] = std::max(margin[a], std::abs(p[a]) + 2);
    }
  }

  // Where the samples of both walks of a line through p = 0 can lie, per axis.
  static std::array<int64_t, 6> extent(const tscanstep& st, const tscanpoint& d) {
    std::array<int64_t, 6> e{0, 0, 0, 0, 0, 0};
    for (int a = 0; a < 3; ++a) {
      const int64_t last = st.steps < 0 ? 0 : st.steps;
      const int64_t ends[4] = {d[a], d[a] + ((last * st.step[a]) >> 16), -d[a], -d[a] + ((-last * st.step[a]) >> 16)};
      e[a] = *std::min_element(ends, ends + 4);
      e[a + 3] = *std::max_element(ends, ends + 4);
    }
    return e;
  }
};

// The scan of one worker: the plan and the lists of one voxel, reused for every voxel of
// its slice. The statistic decides the sink: moments, extremes, or the sorted list of the
// quantiles.
template <class T, class Sink>
struct tscanner {
  const T* v;
  const tscanplan& plan;
  const tdiffusionsettings& s;
  std::vector<double> values;
  std::vector<uint8_t> accepted;
  tdiffusionscratch scratch;
  std::vector<int64_t> list;

  tscanner(const T* voxels, const tscanplan& p, const tdiffusionsettings& settings)
      : v(voxels), plan(p), s(settings), values(p.dirs.points.size()), accepted(p.dirs.points.size()) {}

  Sink fresh() {
    if constexpr (std::is_same_v<Sink, tlistsink>) {
      list.clear();
      return Sink{&list};
    } else {
      return Sink{};
    }
  }

  tv at(int64_t x, int64_t y, int64_t z) {
    const tscanpoint p{x, y, z};
    const auto& size = plan.size;
    const auto& margin = plan.margin;
    const int64_t nxy = plan.nxy;
    bool interior = true;
    for (int a = 0; a < 3; ++a)
      if (p[a] - margin[a] < 1 || p[a] + margin[a] > size[a]) interior = false;
    const int64_t ip = (x - 1) + (y - 1) * size[0] + (z - 1) * nxy;
    for (size_t i = 0; i < plan.steps.size(); ++i) {
      const tscanstep& st = plan.steps[i];
      Sink sink = fresh();
      if (st.steps >= 0) {
        tkrange ahead{0, st.steps}, back{0, st.steps};
        const auto& e = plan.reach[i];
        const bool inside = interior || (x + e[0] >= 1 && y + e[1] >= 1 && z + e[2] >= 1 && x + e[3] <= size[0] &&
                                         y + e[4] <= size[1] && z + e[5] <= size[2]);
        if (!inside) {
          const tscanpoint& d = plan.dirs.points[i];
          ahead = insiderange(st, {x + d[0], y + d[1], z + d[2]}, 1, size);
          back = insiderange(st, {x - d[0], y - d[1], z - d[2]}, -1, size);
        }
        walkline(v, st, ip + plan.linear[i], ip - plan.linear[i], ahead, back, sink);
      }
      if (sink.count < s.r) {
        if (s.fullscan) return zero;
        accepted[i] = 0;
        continue;
      }
      values[i] = sink.value(s.submethod);
      accepted[i] = 1;
    }
    return diffusionresult(s, plan.dirs, values.data(), accepted.data(), scratch);
  }
};

// The one switch from the statistic to the sink type.
template <class Op>
void withsink(int submethod, Op op) {
  if (submethod == 3 || submethod == 7)
    op(textremesink{});
  else if (submethod >= 4 && submethod <= 6)
    op(tlistsink{nullptr});
  else
    op(tmomentsink{});
}

// The gray or fullgray voxels of a volume (or an image as a volume of depth 1); nullptr
// for any other kind, whose lines are all empty.
template <class Op>
void withvoxels(const tscalarfield& f, Op op) {
  if (f.kind == scalargray) return op(f.gray.items());
  if (f.kind == scalarfullgray) return op(f.full.items());
  op(static_cast<const uint8_t*>(nullptr));
}

template <class A>
typename A::elementtype vectorelement(const tv& v) {
  using C = typename A::elementtype::value_type;
  return {toelement<C>(v[0]), toelement<C>(v[1]), toelement<C>(v[2])};
}

void storerow(tvectorfield& out, int64_t y, int64_t z, const std::vector<tv>& row) {
  eachstorage(out, [&](auto& a) {
    using A = std::remove_cvref_t<decltype(a)>;
    auto* p = a.items() + (a.index(1, y, z) - 1);
    for (size_t x = 0; x < row.size(); ++x) p[x] = vectorelement<A>(row[x]);
  });
}

// The adaptive variants write scalar coordinates into the reduced field: the eight cells
// (k i + a, k j + b, z + c); whatever falls outside is dropped.
void storecells(tvectorfield& out, int64_t k, int64_t j, int64_t z, const std::vector<tv>& row) {
  eachstorage(out, [&](auto& a) {
    using A = std::remove_cvref_t<decltype(a)>;
    for (size_t i = 0; i < row.size(); ++i) {
      const auto e = vectorelement<A>(row[i]);
      const int64_t x = k * static_cast<int64_t>(i + 1);
      for (int64_t c = 0; c < 2; ++c)
        for (int64_t b = 0; b < 2; ++b)
          for (int64_t d = 0; d < 2; ++d) a.putchecked(x + d, k * j + b, z + c, e);
    }
  });
}

constexpr int64_t retries[7][3] = {{1, 1, 1}, {0, 1, 1}, {1, 0, 0}, {1, 0, 1}, {0, 1, 0}, {1, 1, 0}, {0, 0, 1}};

// Slice j of the pass: z = j for the full field, z = j k for the reduced ones.
template <class Object, class Voxel>
void passslice(tvectorfield& out, const int64_t (&n)[3], int64_t k, bool adaptive, int64_t j, Object object,
               Voxel voxel) {
  std::vector<tv> row;
  if (k == 1) {
    row.resize(static_cast<size_t>(n[0]));
    for (int64_t y = 1; y <= n[1]; ++y) {
      for (int64_t x = 1; x <= n[0]; ++x) row[static_cast<size_t>(x - 1)] = object(x, y, j) ? voxel(x, y, j) : zero;
      storerow(out, y, j, row);
    }
    return;
  }
  const int64_t z = j * k;
  row.resize(static_cast<size_t>(n[0] / k));
  for (int64_t y = 1; y <= n[1] / k; ++y) {
    for (int64_t i = 1; i <= n[0] / k; ++i) {
      tv r = zero;
      if (!adaptive) {
        if (object(k * i, k * y, z)) r = voxel(k * i, k * y, z);
      } else if (object(2 * i, 2 * y, z)) {  // the literal 2 for every k, as the variants have it
        r = voxel(k * i, k * y, z);
        for (int t = 0; t < 7 && r == zero; ++t) r = voxel(k * i + retries[t][0], k * y + retries[t][1], z + retries[t][2]);
      }
      row[static_cast<size_t>(i - 1)] = r;
    }
    if (adaptive)
      storecells(out, k, y, z, row);
    else
      storerow(out, y, j, row);
  }
}

struct tdiffusionjob {
  std::function<void(int64_t)> slice;
  void compute(int64_t j) { slice(j); }
  void commit(int64_t) {}
};

template <class F>
tdiffusionsettings settingsof(const F& f, int64_t r) {
  tdiffusionsettings s;
  s.method = diffusionmethod(f.method);
  s.submethod = f.submethod;
  s.fullscan = f.fullscan;
  s.angle = f.diffusionangle;
  s.max = f.diffusionmax;
  s.r = r;
  return s;
}

bool scansize(int64_t r, const tnatvector& n, int axes) {
  bool ok = r >= 1 && r <= 65535;
  for (int a = 0; a < axes; ++a) ok = ok && n[a] > 2 * r;
  if (!ok) println("Wrong scan size (" + nattext(r) + ")!");
  return ok;
}

// The image's angle from (0, -1), clockwise to 2 pi, as a gray level of `top`.
int64_t anglelevel(const tv& result, int64_t top) {
  const double a = coneangle(result, {0, -1, 0}), b = coneangle(result, {1, 0, 0});
  const double theta = b <= std::numbers::pi / 2 ? a : 2 * std::numbers::pi - a;
  return clampround(static_cast<double>(top) * (theta - std::numbers::pi / 2) / std::numbers::pi, top);
}

}  // namespace

tdiffusionsettings diffusionsettings(const tscalarfield& f, int64_t r) { return settingsof(f, r); }
tdiffusionsettings diffusionsettings(const timagefield& f, int64_t r) { return settingsof(f, r); }

bool scalardiffusion(const tscalarfield& f, tvectorfield& out, int64_t r, int64_t k, bool adaptive, int64_t parallel,
                     uint8_t newkind) {
  const tnatvector n = fieldsize(f);
  if (!scansize(r, n, 3)) return false;
  fitreducedfield(out, f, k, newkind, "vector");
  const tdiffusionsettings s = diffusionsettings(f, r);
  println(diffusionmethodline(s));
  if (fieldempty(out)) {
    println("Error! Empty vectorfield!");
    return false;
  }
  const int64_t size[3] = {n[0], n[1], n[2]};
  const int64_t slices = n[2] / k;
  const tscanplan plan(size, scandirections(r));
  withvoxels(f, [&](const auto* v) {
    using T = std::remove_cvref_t<decltype(*v)>;
    withsink(s.submethod, [&](auto sinktype) {
      using Sink = decltype(sinktype);
      tdiffusionjob job{[&](int64_t j) {
        const auto index = [&](int64_t x, int64_t y, int64_t z) { return (x - 1) + (y - 1) * n[0] + (z - 1) * n[0] * n[1]; };
        if (!v) {  // no lines on this kind: every object voxel fails
          passslice(out, size, k, adaptive, j, [&](int64_t x, int64_t y, int64_t z) { return getvalue(f, x, y, z) >= 1; },
                    [](int64_t, int64_t, int64_t) { return zero; });
          return;
        }
        tscanner<T, Sink> scan(v, plan, s);
        passslice(out, size, k, adaptive, j, [&](int64_t x, int64_t y, int64_t z) { return v[index(x, y, z)] >= 1; },
                  [&](int64_t x, int64_t y, int64_t z) { return scan.at(x, y, z); });
      }};
      runslices(job, slices, parallel, "  Calculate vectorfield");
    });
  });
  return true;
}

bool imagediffusion(const timagefield& f, timagefield& target, int64_t r, uint8_t newkind) {
  const tnatvector n = fieldsize(f);
  if (!scansize(r, n, 2)) return false;
  if (!fieldempty(target)) {
    println("Attention, target image field seems not to be empty!");
  } else {
    fieldcreate(target, newkind, {n[0], n[1], 1});
    target.space = f.space;
  }
  const tdiffusionsettings s = diffusionsettings(f, r);
  println(diffusionmethodline(s));
  if (fieldempty(target)) {
    println("Error! Empty image!");
    return false;
  }
  const int64_t size[3] = {n[0], n[1], 1};
  const int64_t top = target.kind == imagefullgray ? 65535 : 255;
  const auto put = [&](int64_t x, int64_t y, int64_t level) {
    if (target.kind == imagegray || target.kind == imagefullgray)
      setvalue(target, x, y, static_cast<double>(level));
    else if (colourkind(target.kind))
      setrgb(target, x, y, {level, level, level});
  };
  const auto pass = [&](const auto* v) {
    using T = std::remove_cvref_t<decltype(*v)>;
    withsink(s.submethod, [&](auto sinktype) {
      const tscanplan plan(size, scandirections2d(r));
      tscanner<T, decltype(sinktype)> scan(v, plan, s);
      progress("  Calculate orientation", 0);
      for (int64_t y = 1; y <= n[1]; ++y) {
        for (int64_t x = 1; x <= n[0]; ++x)
          put(x, y, v[(x - 1) + (y - 1) * n[0]] >= 1 ? anglelevel(scan.at(x, y, 1), top) : 0);
        progress("  Calculate orientation", static_cast<double>(y) / static_cast<double>(n[1]));
      }
      progressend();
    });
  };
  if (f.kind == imagegray)
    pass(f.channels[0].items());
  else if (f.kind == imagefullgray)
    pass(f.words.items());
  else
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) put(x, y, 0);
  return true;
}
