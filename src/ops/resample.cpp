#include "ops/resample.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <type_traits>
#include <vector>

#include "field/array_numbers.h"
#include "ops/fieldcopy.h"
#include "ops/morphology.h"
#include "shell/console.h"

namespace {

using tfactors = std::array<double, 3>;

// The source samples of one target sample along an axis; index -1 reads the background.
struct ttap {
  int64_t index;
  double weight;
};
using ttaps = std::vector<std::vector<ttap>>;

enum class tupmode { nearest, linear, lanczos };

// A computed sample as stored: reals as they are, integer kinds rounded into 0..top.
template <class T>
T stored(double v, int64_t top) {
  if constexpr (std::is_floating_point_v<T>)
    return static_cast<T>(v);
  else
    return static_cast<T>(roundnat(std::clamp(v, 0.0, static_cast<double>(top))));
}

// The taps of each target index p along an axis of n source samples: the source position
// q = (p - 1) / f + 1 (1-based), a real.
ttaps upsampletaps(int64_t n, int64_t out, double f, tupmode mode) {
  ttaps taps(out);
  for (int64_t p = 1; p <= out; ++p) {
    const double q = static_cast<double>(p - 1) / f + 1;
    auto& t = taps[p - 1];
    const auto inside = [&](int64_t k) { return k >= 1 && k <= n ? k - 1 : -1; };
    if (mode == tupmode::nearest) {
      t.push_back({inside(roundnat(q)), 1.0});
    } else if (mode == tupmode::linear) {
      const auto i = static_cast<int64_t>(std::floor(q));
      const double w = q - static_cast<double>(i);
      t.push_back({inside(i), 1 - w});
      if (w != 0) t.push_back({inside(i + 1), w});
    } else {
      const auto i = static_cast<int64_t>(std::floor(q));
      double sum = 0;
      for (int64_t k = std::max<int64_t>(i - 3, 1); k <= std::min(i + 4, n); ++k) {
        const double w = lanczos4(q - static_cast<double>(k));
        t.push_back({k - 1, w});
        sum += w;
      }
      if (sum != 0)
        for (ttap& tap : t) tap.weight /= sum;
    }
  }
  return taps;
}

// The separable sum of the taps: rows along x, then y, per source slice (cached while
// the target slices need it), then the slices along z.
template <class T>
void upsample(const tgrid<T>& t, const tgrid<T>& s, const std::array<ttaps, 3>& taps, const char* word) {
  const double bg = s.background;
  std::map<int64_t, std::vector<double>> planes;
  std::vector<double> rows(static_cast<size_t>(s.ny * t.nx)), acc(static_cast<size_t>(t.area()));
  auto plane = [&](int64_t k) -> const std::vector<double>& {
    auto found = planes.find(k);
    if (found != planes.end()) return found->second;
    const T* src = s.v + k * s.area();
    for (int64_t y = 0; y < s.ny; ++y)
      for (int64_t x = 0; x < t.nx; ++x) {
        double v = 0;
        for (const ttap& tap : taps[0][x]) v += tap.weight * (tap.index < 0 ? bg : src[y * s.nx + tap.index]);
        rows[y * t.nx + x] = v;
      }
    std::vector<double> out(static_cast<size_t>(t.area()), 0.0);
    for (int64_t y = 0; y < t.ny; ++y) {
      double* o = out.data() + y * t.nx;
      for (const ttap& tap : taps[1][y]) {
        if (tap.index < 0) {
          for (int64_t x = 0; x < t.nx; ++x) o[x] += tap.weight * bg;
        } else {
          const double* r = rows.data() + tap.index * t.nx;
          for (int64_t x = 0; x < t.nx; ++x) o[x] += tap.weight * r[x];
        }
      }
    }
    return planes.emplace(k, std::move(out)).first->second;
  };
  progress(word, 0);
  for (int64_t z = 0; z < t.nz; ++z) {
    int64_t lowest = INT64_MAX;
    for (const ttap& tap : taps[2][z])
      if (tap.index >= 0) lowest = std::min(lowest, tap.index);
    planes.erase(planes.begin(), planes.lower_bound(lowest));
    std::fill(acc.begin(), acc.end(), 0.0);
    for (const ttap& tap : taps[2][z]) {
      if (tap.index < 0) {
        for (double& a : acc) a += tap.weight * bg;
      } else {
        const std::vector<double>& p = plane(tap.index);
        for (size_t i = 0; i < acc.size(); ++i) acc[i] += tap.weight * p[i];
      }
    }
    T* out = t.v + z * t.area();
    for (size_t i = 0; i < acc.size(); ++i) out[i] = stored<T>(acc[i], t.top);
    progress(word, static_cast<double>(z + 1) / static_cast<double>(t.nz));
  }
  progressend();
}

// The first source index (0-based) and the width of the block of target index i (1-based)
// for a block width b: the block centred on (i - 1) * b + b / 2, round(b) wide.
struct tblock {
  int64_t first, last;
};
std::vector<tblock> blocks(int64_t n, int64_t out, double b) {
  std::vector<tblock> r(out);
  const int64_t width = std::max<int64_t>(roundnat(b), 1);
  for (int64_t i = 1; i <= out; ++i) {
    const double centre = static_cast<double>(i - 1) * b + b / 2;
    const auto first = static_cast<int64_t>(std::floor(centre - static_cast<double>(width) / 2 + 0.5));
    r[i - 1] = {std::max<int64_t>(first, 0), std::min(first + width - 1, n - 1)};
  }
  return r;
}

template <class T>
void bin(const tgrid<T>& t, const tgrid<T>& s, const tfactors& f, int method, bool label) {
  if (!label && method > 7) return;
  const std::array<std::vector<tblock>, 3> axes{blocks(s.nx, t.nx, 1 / f[0]), blocks(s.ny, t.ny, 1 / f[1]),
                                                blocks(s.nz, t.nz, 1 / f[2])};
  using tsample = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;
  std::vector<tsample> list;
  const auto store = [&](double v) { return stored<T>(v, t.top); };
  progress("  Copy", 0);
  for (int64_t z = 0; z < t.nz; ++z) {
    const tblock bz = axes[2][z];
    for (int64_t y = 0; y < t.ny; ++y) {
      const tblock by = axes[1][y];
      for (int64_t x = 0; x < t.nx; ++x) {
        const tblock bx = axes[0][x];
        T& out = t(x, y, z);
        if (!label && method <= 1) {  // the counter path
          tsample sum = 0;
          int64_t count = 0;
          for (int64_t k = bz.first; k <= bz.last; ++k)
            for (int64_t j = by.first; j <= by.last; ++j) {
              const T* row = s.v + (k * s.ny + j) * s.nx;
              for (int64_t i = bx.first; i <= bx.last; ++i) sum += row[i];
              count += bx.last - bx.first + 1;
            }
          out = store(method == 0 ? static_cast<double>(sum)
                                  : count > 0 ? static_cast<double>(sum) / static_cast<double>(count) : 0.0);
          continue;
        }
        list.clear();
        for (int64_t k = bz.first; k <= bz.last; ++k)
          for (int64_t j = by.first; j <= by.last; ++j)
            for (int64_t i = bx.first; i <= bx.last; ++i) list.push_back(s(i, j, k));
        if (list.empty()) continue;
        if constexpr (!std::is_floating_point_v<T>) {
          if (label) {
            out = static_cast<T>(mostfrequent(list.data(), static_cast<int64_t>(list.size())));
            continue;
          }
        }
        std::sort(list.begin(), list.end());
        const auto n = static_cast<int64_t>(list.size());
        const auto q = quantilepositions(n);
        const auto at = [&](int64_t pos) { return pos >= 1 && pos <= n ? static_cast<double>(list[pos - 1]) : 0.0; };
        double v = 0;
        switch (method) {
          case 2: {
            if (n < 2) break;
            double mean = 0, sq = 0;
            for (const tsample e : list) mean += static_cast<double>(e);
            mean /= static_cast<double>(n);
            for (const tsample e : list) sq += (static_cast<double>(e) - mean) * (static_cast<double>(e) - mean);
            v = std::sqrt(sq / static_cast<double>(n - 1));
            break;
          }
          case 3: v = at(1); break;
          case 4: v = at(q[0]); break;
          case 5: v = at(q[1]); break;
          case 6: v = at(q[2]); break;
          case 7: v = at(n); break;
        }
        out = store(v);
      }
    }
    progress("  Copy", static_cast<double>(z + 1) / static_cast<double>(t.nz));
  }
  progressend();
}

template <class T>
void scalegrid(const tgrid<T>& t, const tgrid<T>& s, const tfactors& f, int method, bool label, bool volume) {
  const bool down = f[0] < 1 || f[1] < 1 || f[2] < 1;
  const bool up = f[0] > 1 || f[1] > 1 || f[2] > 1;
  if (!up) return bin(t, s, f, method, label);
  tgrid<T> from = s;
  tfactors rest = f;
  std::vector<T> binned;
  if (down) {
    // Bin the axes that shrink first, then interpolate the others.
    tfactors first{};
    for (int a = 0; a < 3; ++a) first[a] = std::min(f[a], 1.0), rest[a] = std::max(f[a], 1.0);
    from.nx = std::min(s.nx, t.nx), from.ny = std::min(s.ny, t.ny), from.nz = std::min(s.nz, t.nz);
    binned.resize(static_cast<size_t>(from.count()));
    from.v = binned.data();
    bin(from, s, first, method, label);
  }
  const tupmode mode = label || !volume || method == 0 ? tupmode::nearest : method == 2 ? tupmode::lanczos : tupmode::linear;
  const std::array<ttaps, 3> taps{upsampletaps(from.nx, t.nx, rest[0], mode), upsampletaps(from.ny, t.ny, rest[1], mode),
                                  upsampletaps(from.nz, t.nz, rest[2], mode)};
  upsample(t, from, taps, mode == tupmode::lanczos ? "  Copy (trilanczos)" : mode == tupmode::linear ? "  Copy (trilinear)" : "  Copy");
}

// Records of three components (vectors, tensor halves): each component scaled as a
// volume of reals, then stored in the record's own type.
template <class E>
void scalecomponents(const tgrid<E>& t, const tgrid<E>& s, const tfactors& f, int method) {
  using C = typename E::value_type;
  std::vector<double> from(static_cast<size_t>(s.count())), to(static_cast<size_t>(t.count()));
  for (int c = 0; c < 3; ++c) {
    for (int64_t i = 0; i < s.count(); ++i) from[i] = static_cast<double>(s.v[i][c]);
    const tgrid<double> source{from.data(), s.nx, s.ny, s.nz, static_cast<double>(s.background[c]), 0};
    const tgrid<double> target{to.data(), t.nx, t.ny, t.nz, 0.0, 0};
    scalegrid(target, source, f, method, false, true);
    for (int64_t i = 0; i < t.count(); ++i) t.v[i][c] = toelement<C>(to[i]);
  }
}

template <class F>
void scaled(F& target, const F& source, const tfactors& factors, bool label) {
  constexpr bool volume = F::axes == 3;
  const tnatvector size = fieldsize(source);
  tfactors f{1, 1, 1};
  tnatvector out{1, 1, 1};
  for (int a = 0; a < F::axes; ++a) f[a] = factors[a], out[a] = scaledsize(size[a], f[a]);
  if (&target == &source) return;
  fieldcreate(target, source.kind, out);
  copysettings(target, source);
  if (fieldempty(source) || fieldempty(target)) return;
  trows rows = source.space.matrix;
  for (int a = 0; a < F::axes; ++a)
    for (double& c : rows[a]) c /= f[a];
  setmatrix(target.space, rows);
  if (out != size) println("  New size: " + dimensionstext(source) + " -> " + dimensionstext(target));
  if (volume && (f[0] != f[1] || f[1] != f[2])) println("  Create helper: " + dimensionstext(target));
  const int method = source.copymethod;
  eachgridpair(target, source, [&](const auto& t, const auto& s) {
    if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(*t.v)>>)
      scalegrid(t, s, f, method, label, volume);
    else
      scalecomponents(t, s, f, method);
  });
}

}  // namespace

int64_t scaledsize(int64_t size, double f) {
  const double n = std::floor(static_cast<double>(size) * f + 0.5);
  return n >= 9.0e18 ? INT64_MAX : n < 0 ? 0 : static_cast<int64_t>(n);
}

double lanczos4(double d) {
  if (d == 0) return 1;
  if (std::abs(d) >= 4) return 0;
  const long double pi = std::numbers::pi_v<long double>, x = d;
  return static_cast<double>(4 * std::sin(pi * x) * std::sin(pi * x / 4) / (pi * pi * x * x));
}

void scalefield(tscalarfield& target, const tscalarfield& source, const tfactors& factors, bool label) {
  scaled(target, source, factors, label);
}
void scalefield(tvectorfield& target, const tvectorfield& source, const tfactors& factors, bool) {
  scaled(target, source, factors, false);
}
void scalefield(ttensorfield& target, const ttensorfield& source, const tfactors& factors, bool) {
  scaled(target, source, factors, false);
}
void scalefield(timagefield& target, const timagefield& source, const tfactors& factors, bool label) {
  scaled(target, source, factors, label);
}

void copyfield(tscalarfield& target, const tscalarfield& source) {
  if (&target == &source) return;
  fieldcreate(target, source.kind, fieldsize(source));
  copysettings(target, source);
  if (fieldempty(source) || fieldempty(target)) return;
  eachgridpair(target, source, [](const auto& t, const auto& s) { std::copy_n(s.v, s.count(), t.v); });
}

void copyfield(timagefield& target, const timagefield& source) { imagecopyfrom(target, source); }

namespace {
// Kind, size, values and settings of a field of the vector records.
template <class F>
void copyrecords(F& target, const F& source) {
  fieldcreate(target, source.kind, fieldsize(source));
  eachgridpair(target, source, [](const auto& t, const auto& s) {
    if (t.count() == s.count()) std::copy_n(s.v, s.count(), t.v);
  });
  copysettings(target, source);
}
}  // namespace

void copyfield(tvectorfield& target, const tvectorfield& source) { copyrecords(target, source); }
void copyfield(ttensorfield& target, const ttensorfield& source) { copyrecords(target, source); }
