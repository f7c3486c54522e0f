#include "ops/holefill.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "field/array_numbers.h"
#include "ops/voxelgrid.h"
#include "shell/console.h"

namespace {

template <class T>
int64_t outliersof(const tgrid<T>& g, int64_t factor, bool planar) {
  const int64_t depth = planar ? 0 : 1, count = planar ? 9 : 27;
  const auto at = quantilepositions(count);
  std::vector<T> out(g.v, g.v + g.count());
  std::array<T, 27> window;
  int64_t changed = 0;
  for (int64_t z = 0; z < g.nz; ++z)
    for (int64_t y = 0; y < g.ny; ++y)
      for (int64_t x = 0; x < g.nx; ++x) {
        int64_t k = 0;
        for (int64_t dz = -depth; dz <= depth; ++dz)
          for (int64_t dy = -1; dy <= 1; ++dy)
            for (int64_t dx = -1; dx <= 1; ++dx) window[k++] = g.at(x + dx, y + dy, z + dz);
        std::sort(window.begin(), window.begin() + count);
        const int64_t median = window[at[1] - 1];
        const int64_t d = factor * (int64_t{window[at[2] - 1]} - window[at[0] - 1]);
        const int64_t c = g(x, y, z);
        if (c >= median - d && c <= median + d) continue;
        out[x + g.nx * (y + g.ny * z)] = static_cast<T>(median);
        ++changed;
      }
  std::copy(out.begin(), out.end(), g.v);
  return changed;
}

// mark: 0 unvisited, 1 reached from outside. A fill from each border sample outside the
// range through samples outside the range; what stays 0 and is outside the range is a hole.
std::vector<uint8_t> outsidemarks(int64_t nx, int64_t ny, int64_t nz, const std::vector<uint8_t>& inrange) {
  std::vector<uint8_t> mark(inrange.size(), 0);
  std::vector<int64_t> stack;
  const int64_t area = nx * ny;
  auto push = [&](int64_t i) {
    if (mark[i] || inrange[i]) return;
    mark[i] = 1;
    stack.push_back(i);
  };
  for (int64_t z = 0; z < nz; ++z)
    for (int64_t y = 0; y < ny; ++y)
      for (int64_t x = 0; x < nx; ++x) {
        const bool border = x == 0 || y == 0 || x == nx - 1 || y == ny - 1 || (nz > 1 && (z == 0 || z == nz - 1));
        if (!border) continue;
        push(x + nx * y + area * z);
        while (!stack.empty()) {
          const int64_t i = stack.back();
          stack.pop_back();
          const int64_t px = i % nx, py = (i / nx) % ny, pz = i / area;
          if (px > 0) push(i - 1);
          if (px < nx - 1) push(i + 1);
          if (py > 0) push(i - nx);
          if (py < ny - 1) push(i + nx);
          if (pz > 0) push(i - area);
          if (pz < nz - 1) push(i + area);
        }
      }
  return mark;
}

// Inverse-distance filling of one plane; `enclosed` asks for non-zero samples both ways
// along at least one direction.
template <class T>
void fillzeros(const tgrid<T>& g, bool enclosed, const std::array<int64_t, 4>& box) {
  static constexpr int64_t steps[8][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, -1}, {1, -1}, {-1, 1}};
  std::vector<T> out(g.v, g.v + g.count());
  for (int64_t y = std::max<int64_t>(box[1], 0); y <= std::min(box[3], g.ny - 1); ++y)
    for (int64_t x = std::max<int64_t>(box[0], 0); x <= std::min(box[2], g.nx - 1); ++x) {
      if (g(x, y, 0) != 0) continue;
      double sum = 0, weight = 0;
      bool found[8] = {};
      for (int d = 0; d < 8; ++d) {
        int64_t px = x + steps[d][0], py = y + steps[d][1], distance = 1;
        while (g.inside(px, py, 0) && g(px, py, 0) == 0) px += steps[d][0], py += steps[d][1], ++distance;
        if (!g.inside(px, py, 0)) continue;
        found[d] = true;
        sum += static_cast<double>(g(px, py, 0)) / static_cast<double>(distance);
        weight += 1.0 / static_cast<double>(distance);
      }
      const bool closed = (found[0] && found[1]) || (found[2] && found[3]) || (found[4] && found[5]) || (found[6] && found[7]);
      if (weight > 0 && (!enclosed || closed)) out[x + g.nx * y] = static_cast<T>(clampround(sum / weight, g.top));
    }
  std::copy(out.begin(), out.end(), g.v);
}

void zeros(timagefield& f, bool enclosed, const std::array<int64_t, 4>& box) {
  if (fieldempty(f)) return;
  // Every plane of the kind, each with its own word: values, colours, alpha, depth.
  auto plane = [&](auto& a, int64_t top, const char* word) {
    progress(word, 0);
    fillzeros(gridof(a, top), enclosed, box);
    progressend();
  };
  switch (f.kind) {
    case imagegray: return plane(f.channels[0], 255, "  Fill zeros");
    case imagefullgray: return plane(f.words, 65535, "  Fill zeros");
    default:
      for (int c = 0; c < 3; ++c) plane(f.channels[c], 255, "  Fill rgb zeros");
      if (f.kind == imagergba) plane(f.channels[3], 255, "  Fill alpha zeros");
      if (f.kind == imagezrgb) plane(f.words, 65535, "  Fill z zeros");
  }
}

}  // namespace

int64_t removeoutliers(tscalarfield& f, int64_t factor) {
  int64_t changed = 0;
  withgrid(f, [&](auto g) { changed = outliersof(g, factor, false); });
  return changed;
}

int64_t removeoutliers(timagefield& f, int64_t factor) {
  int64_t changed = 0;
  withgrids(f, [&](auto g) { changed = outliersof(g, factor, true); });
  return changed;
}

void fillholes(timagefield& f, const tmorphrange& range) {
  if (fieldempty(f)) return;
  withkind(f, [&](auto v) {
    const int64_t nx = v.sizex(), ny = v.sizey();
    std::vector<uint8_t> inrange(static_cast<size_t>(nx * ny));
    progress("  Search outside", 0);
    for (int64_t y = 1; y <= ny; ++y)
      for (int64_t x = 1; x <= nx; ++x) inrange[(x - 1) + nx * (y - 1)] = range.contains(v.getvalue(x, y));
    const std::vector<uint8_t> mark = outsidemarks(nx, ny, 1, inrange);
    progress("  Search holes", 0.5);
    progress("  Fill holes", 0.75);
    const trgba value = getvaluergba(f);
    const int64_t plain = getvaluevalue(f);
    for (int64_t y = 1; y <= ny; ++y)
      for (int64_t x = 1; x <= nx; ++x) {
        const int64_t i = (x - 1) + nx * (y - 1);
        if (mark[i] || inrange[i]) continue;
        if constexpr (decltype(v)::colour)
          v.setrgb(x, y, {value[0], value[1], value[2]});
        else
          v.setvalue(x, y, static_cast<double>(plain));
      }
    progressend();
  });
}

void fillholes(tscalarfield& f, const tmorphrange& range, int64_t value) {
  withgrid(f, [&](auto g) {
    using T = std::remove_cvref_t<decltype(*g.v)>;
    std::vector<uint8_t> inrange(static_cast<size_t>(g.count()));
    progress("  Search outside", 0);
    for (int64_t i = 0; i < g.count(); ++i) inrange[i] = range.contains(g.v[i]);
    const std::vector<uint8_t> mark = outsidemarks(g.nx, g.ny, g.nz, inrange);
    progress("  Search holes", 0.5);
    progress("  Fill holes", 0.75);
    const auto fill = static_cast<T>(std::clamp<int64_t>(value, 0, g.top));
    for (int64_t i = 0; i < g.count(); ++i)
      if (!mark[i] && !inrange[i]) g.v[i] = fill;
    progressend();
  });
}

void fillzero(timagefield& f) { zeros(f, false, {0, 0, INT64_MAX, INT64_MAX}); }

void fillgap(timagefield& f, const std::optional<std::array<int64_t, 4>>& box) {
  if (!box) return zeros(f, true, {0, 0, INT64_MAX, INT64_MAX});
  const auto& b = *box;
  zeros(f, true, {std::min(b[0], b[2]) - 1, std::min(b[1], b[3]) - 1, std::max(b[0], b[2]) - 1, std::max(b[1], b[3]) - 1});
}
