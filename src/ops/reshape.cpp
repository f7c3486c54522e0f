#include "ops/reshape.h"

#include <algorithm>
#include <span>
#include <vector>

#include "field/owned.h"
#include "ops/fieldcopy.h"
#include "ops/resample.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

template <class F>
utf16 cornertext(const tnatvector& p) {
  return natlisttext(std::span(p).first(F::axes), true);
}

// target(x, y, z) := source at (x, y, z) + shift, the background outside the source.
template <class T>
void shifted(const tgrid<T>& t, const tgrid<T>& s, const tnatvector& shift) {
  for (int64_t z = 0; z < t.nz; ++z)
    for (int64_t y = 0; y < t.ny; ++y)
      for (int64_t x = 0; x < t.nx; ++x) t(x, y, z) = s.at(x + shift[0], y + shift[1], z + shift[2]);
}

template <class F>
void block(F& target, const F& source, const tnatvector& lo, const tnatvector& hi) {
  const tnatvector size{hi[0] - lo[0] + 1, hi[1] - lo[1] + 1, F::axes == 3 ? hi[2] - lo[2] + 1 : 1};
  fieldcreate(target, source.kind, size);
  copysettings(target, source);
  setoffset(target.space, localtoglobal(source.space, {double(lo[0]), double(lo[1]), F::axes == 3 ? double(lo[2]) : 1.0}));
  if (fieldempty(target)) return;
  const int64_t k = supersampling(source);
  const tnatvector shift{(lo[0] - 1) * k, (lo[1] - 1) * k, F::axes == 3 ? lo[2] - 1 : 0};
  eachgridpair(target, source, [&](const auto& t, const auto& s) { shifted(t, s, shift); });
}

template <class F>
void subpart(F& target, const F& source, const tnatvector& lo, const tnatvector& hi, const char* word) {
  if (&target == &source) return;
  block(target, source, lo, hi);
  println(word + vectortext(target.space.offset) + ") " + cornertext<F>(lo) + "\u2013" + cornertext<F>(hi) + " -> " +
          dimensionstext(target));
}

tnatvector cornerlow(const tnatvector& a, const tnatvector& b) {
  return {std::min(a[0], b[0]), std::min(a[1], b[1]), std::min(a[2], b[2])};
}
tnatvector cornerhigh(const tnatvector& a, const tnatvector& b) {
  return {std::max(a[0], b[0]), std::max(a[1], b[1]), std::max(a[2], b[2])};
}

// The box of the samples for which `take(x, y, z)` holds (1-based); false without any.
template <class Take>
bool boxof(const tnatvector& size, tnatvector& lo, tnatvector& hi, Take take) {
  lo = size, hi = {0, 0, 0};
  for (int64_t z = 1; z <= size[2]; ++z)
    for (int64_t y = 1; y <= size[1]; ++y)
      for (int64_t x = 1; x <= size[0]; ++x)
        if (take(x, y, z)) {
          lo = {std::min(lo[0], x), std::min(lo[1], y), std::min(lo[2], z)};
          hi = {std::max(hi[0], x), std::max(hi[1], y), std::max(hi[2], z)};
        }
  return hi[0] > 0;
}

template <class F>
void croppedto(F& target, const F& source, const tnatvector& lo, const tnatvector& hi) {
  tlocalfield<F> part;
  block(*part, source, lo, hi);
  copyfield(target, *part);
  println("  New size: " + cornertext<F>(lo) + " .. " + cornertext<F>(hi) + " -> " + dimensionstext(target));
}

template <class T>
void flipgrid(const tgrid<T>& g, int axis) {
  const std::array<int64_t, 3> stride{1, g.nx, g.area()}, length{g.nx, g.ny, g.nz};
  const int u = axis == 0 ? 1 : 0, w = axis == 2 ? 1 : 2;
  for (int64_t j = 0; j < length[w]; ++j)
    for (int64_t i = 0; i < length[u]; ++i) {
      T* line = g.v + i * stride[u] + j * stride[w];
      for (int64_t a = 0, b = length[axis] - 1; a < b; ++a, --b) std::swap(line[a * stride[axis]], line[b * stride[axis]]);
    }
}

}  // namespace

void subfield(timagefield& target, const timagefield& source, const tnatvector& lo, const tnatvector& hi) {
  subpart(target, source, lo, hi, "  New subimage:  (");
}
void subfield(tscalarfield& target, const tscalarfield& source, const tnatvector& lo, const tnatvector& hi) {
  subpart(target, source, lo, hi, "  New substack:  (");
}
void subfield(tvectorfield& target, const tvectorfield& source, const tnatvector& lo, const tnatvector& hi) {
  subpart(target, source, lo, hi, "  New substack:  (");
}
void subfield(ttensorfield& target, const ttensorfield& source, const tnatvector& lo, const tnatvector& hi) {
  subpart(target, source, lo, hi, "  New substack:  (");
}

void cropimage(timagefield& f, int64_t v) {
  tnatvector lo, hi;
  if (fieldempty(f) || !boxof(fieldsize(f), lo, hi, [&](int64_t x, int64_t y, int64_t) { return getvalue(f, x, y) > v; }))
    return;
  croppedto(f, f, lo, hi);
}

void cropfield(tscalarfield& target, const tscalarfield& source, const tscalarfield* mask, const tmorphrange& range) {
  const tscalarfield& test = mask ? *mask : source;
  tnatvector lo, hi;
  if (fieldempty(source) || !boxof(fieldsize(test), lo, hi, [&](int64_t x, int64_t y, int64_t z) {
        return range.contains(getvalue(test, x, y, z));
      })) {
    if (&target != &source) copyfield(target, source);
    return;
  }
  croppedto(target, source, lo, hi);
}

void cropfield(tvectorfield& target, const tvectorfield& source, const tmorphrange& range) {
  tnatvector lo, hi;
  const bool found = !fieldempty(source) && eachstorage(source, [&](const auto& a) {
    const auto* p = a.items();
    const tnatvector size = fieldsize(source);
    boxof(size, lo, hi, [&](int64_t x, int64_t y, int64_t z) {
      const auto& v = p[x - 1 + size[0] * (y - 1 + size[1] * (z - 1))];
      const double l2 = double(v[0]) * double(v[0]) + double(v[1]) * double(v[1]) + double(v[2]) * double(v[2]);
      return range.contains(roundnat(std::sqrt(l2)));
    });
  }) && hi[0] > 0;
  if (!found) {
    if (&target != &source) copyfield(target, source);
    return;
  }
  croppedto(target, source, lo, hi);
}

void moveblock(tscalarfield& f, const tnatvector& a, const tnatvector& b, const tnatvector& d) {
  const tnatvector lo = cornerlow(a, b), hi = cornerhigh(a, b);
  tlocalfield<tscalarfield> holder;
  tscalarfield& part = *holder;
  block(part, f, lo, hi);
  const int64_t background = getbackground(f);
  const tnatvector size = fieldsize(part);
  for (int64_t z = lo[2]; z <= hi[2]; ++z)
    for (int64_t y = lo[1]; y <= hi[1]; ++y)
      for (int64_t x = lo[0]; x <= hi[0]; ++x) setvalue(f, x, y, z, static_cast<double>(background));
  for (int64_t z = 1; z <= size[2]; ++z)
    for (int64_t y = 1; y <= size[1]; ++y)
      for (int64_t x = 1; x <= size[0]; ++x)
        setvalue(f, lo[0] + x - 1 + d[0], lo[1] + y - 1 + d[1], lo[2] + z - 1 + d[2],
                 static_cast<double>(getvalue(part, x, y, z)));
}

namespace {
// The grid form: the block is cleared with the array's background, then written shifted.
template <class F>
void movegridblock(F& f, const tnatvector& a, const tnatvector& b, const tnatvector& d) {
  if (fieldempty(f)) return;
  const tnatvector lo = cornerlow(a, b), hi = cornerhigh(a, b);
  tlocalfield<F> part;
  block(*part, f, lo, hi);
  eachgridpair(f, *part, [&](const auto& g, const auto& p) {
    for (int64_t z = lo[2] - 1; z < hi[2]; ++z)
      for (int64_t y = lo[1] - 1; y < hi[1]; ++y)
        for (int64_t x = lo[0] - 1; x < hi[0]; ++x)
          if (g.inside(x, y, z)) g(x, y, z) = g.background;
    for (int64_t z = 0; z < p.nz; ++z)
      for (int64_t y = 0; y < p.ny; ++y)
        for (int64_t x = 0; x < p.nx; ++x) {
          const int64_t tx = lo[0] - 1 + x + d[0], ty = lo[1] - 1 + y + d[1], tz = lo[2] - 1 + z + d[2];
          if (g.inside(tx, ty, tz)) g(tx, ty, tz) = p(x, y, z);
        }
  });
}
}  // namespace

void moveblock(tvectorfield& f, const tnatvector& a, const tnatvector& b, const tnatvector& d) { movegridblock(f, a, b, d); }
void moveblock(ttensorfield& f, const tnatvector& a, const tnatvector& b, const tnatvector& d) { movegridblock(f, a, b, d); }

int64_t patchgaps(tscalarfield& f, int axis, int64_t n) {
  int64_t closed = 0;
  if (n < 1) return 0;
  static const char* words[3] = {"  Patch x gap", "  Patch y gap", "  Patch z gap"};
  progress(words[axis], 0);
  withgrid(f, [&](auto g) {
    const std::array<int64_t, 3> stride{1, g.nx, g.area()}, length{g.nx, g.ny, g.nz};
    const int u = axis == 0 ? 1 : 0, w = axis == 2 ? 1 : 2;
    auto empty = [&](int64_t s) {
      for (int64_t j = 0; j < length[w]; ++j)
        for (int64_t i = 0; i < length[u]; ++i)
          if (g.v[s * stride[axis] + i * stride[u] + j * stride[w]] != 0) return false;
      return true;
    };
    std::vector<uint8_t> blank(static_cast<size_t>(length[axis]));
    for (int64_t s = 0; s < length[axis]; ++s) blank[s] = empty(s);
    for (int64_t s = 1; s + n < length[axis]; ++s) {
      if (blank[s - 1] || !blank[s] || blank[s + n]) continue;
      bool run = true;
      for (int64_t k = s; k < s + n; ++k) run = run && blank[k];
      if (!run) continue;
      for (int64_t j = 0; j < length[w]; ++j)
        for (int64_t i = 0; i < length[u]; ++i) {
          auto* line = g.v + i * stride[u] + j * stride[w];
          const int64_t a = line[(s - 1) * stride[axis]], b = line[(s + n) * stride[axis]];
          for (int64_t k = 1; k <= n; ++k)
            line[(s + k - 1) * stride[axis]] = static_cast<std::remove_reference_t<decltype(*line)>>(
                n == 1 ? (a + b) / 2 : roundnat(static_cast<double>(a) + static_cast<double>((b - a) * k) / static_cast<double>(n + 1)));
        }
      ++closed;
      s += n;
    }
  });
  progressend();
  return closed;
}

void flipfield(tscalarfield& f, int axis) {
  static const char* words[3] = {"  Flip x", "  Flip y", "  Flip z"};
  progress(words[axis], 0);
  withgrid(f, [&](auto g) { flipgrid(g, axis); });
  progressend();
}

void flipfield(tvectorfield& f, int axis) {
  static const char* words[3] = {"  Flip x", "  Flip y", "  Flip z"};
  progress(words[axis], 0);
  eachstorage(f, [&](auto& a) { flipgrid(gridof(a, 0), axis); });
  progressend();
}

void flipfield(timagefield& f, int axis) {
  if (fieldempty(f)) return;
  eachstorage(f, [&](auto& a) { flipgrid(gridof(a, 0), axis); });
}

void rotateimage(timagefield& f, int64_t degrees) {
  const int64_t quarters = ((degrees / 90) % 4 + 4) % 4;
  if (fieldempty(f) || quarters == 0) return;
  if (quarters == 2) return flipfield(f, 0), flipfield(f, 1);
  const tnatvector size = fieldsize(f);
  tlocalfield<timagefield> holder;
  timagefield& turned = *holder;
  fieldcreate(turned, f.kind, {size[1], size[0], 1});
  copysettings(turned, f);
  trows rows = f.space.matrix;
  std::swap(rows[0], rows[1]);
  setmatrix(turned.space, rows);
  eachgridpair(turned, f, [&](const auto& t, const auto& s) {
    for (int64_t y = 0; y < t.ny; ++y)
      for (int64_t x = 0; x < t.nx; ++x)
        t(x, y, 0) = quarters == 1 ? s(y, s.ny - 1 - x, 0) : s(s.nx - 1 - y, x, 0);
  });
  if (!fieldempty(turned)) imagecopyfrom(f, turned);
}
