// The block maps (mean, SD, local binary pattern, zero contours, local box counting) and the
// frame they share with the line maps.
#include "ops/measuremap.h"

#include <algorithm>
#include <limits>

#include "ops/slices.h"
#include "orientation/scan.h"
#include "script/values.h"
#include "shell/console.h"

tvoxelcopy voxelcopy(const tscalarfield& f) {
  tvoxelcopy c;
  const tnatvector n = fieldsize(f);
  std::copy(n.begin(), n.begin() + 3, c.n);
  c.v.resize(static_cast<size_t>(fieldcount(n[0], n[1], n[2])));
  const auto from = [&](const auto* p) { std::copy(p, p + c.v.size(), c.v.begin()); };
  if (f.kind == scalargray && f.gray.length > 0) {
    from(f.gray.items());
  } else if (f.kind == scalarfullgray && f.full.length > 0) {
    from(f.full.items());
  } else {
    for (int64_t z = 1; z <= n[2]; ++z)
      for (int64_t y = 1; y <= n[1]; ++y)
        for (int64_t x = 1; x <= n[0]; ++x) c.v[c.index(x, y, z)] = static_cast<uint16_t>(getvalue(f, x, y, z));
  }
  return c;
}

bool measurescan(int64_t r, const tnatvector& n) {
  const bool ok = r >= 1 && r <= 65535 && 2 * r < n[0] && 2 * r < n[1] && 2 * r < n[2];
  if (!ok) println("Wrong scan size (" + nattext(r) + ")!");
  return ok;
}

bool measuretarget(const tscalarfield& source, tscalarfield& target, uint8_t newkind) {
  if (&target != &source && fieldsize(target) != fieldsize(source)) {
    fieldcreate(target, target.kind ? target.kind : newkind, fieldsize(source));
    println("  Assigned scalar field (" + dimensionstext(target) + ") updated.");
  }
  if (fieldempty(target)) {
    println("Error! Empty scalarfield (result)!");
    return false;
  }
  if (&target == &source) return true;
  target.space = source.space;
  target.title = source.title;
  copylabels(target, source);
  target.filteradd = source.filteradd;
  target.filtermul = source.filtermul;
  target.method = source.method;
  target.copymethod = source.copymethod;
  target.submethod = source.submethod;
  target.fullscan = source.fullscan;
  target.fullscanlocal = source.fullscanlocal;
  target.diffusionangle = source.diffusionangle;
  target.diffusionmax = source.diffusionmax;
  return true;
}

namespace {

struct tmeasurejob {
  tscalarfield& target;
  const tvoxelmeasure& value;
  tsliceplanes<double> planes;
  int64_t nx, ny;

  void compute(int64_t z) {
    double* p = planes.open(z);
    for (int64_t y = 1; y <= ny; ++y)
      for (int64_t x = 1; x <= nx; ++x) p[(x - 1) + (y - 1) * nx] = value(x, y, z);
  }
  void commit(int64_t z) {
    const double* p = planes.get(z);
    for (int64_t y = 1; y <= ny; ++y)
      for (int64_t x = 1; x <= nx; ++x)
        if (!std::isnan(p[(x - 1) + (y - 1) * nx])) setvalue(target, x, y, z, p[(x - 1) + (y - 1) * nx]);
    planes.close(z);
  }
};

}  // namespace

void measureslices(tscalarfield& target, int64_t parallel, const utf16& word, const tvoxelmeasure& value) {
  const tnatvector n = fieldsize(target);
  tmeasurejob job{target, value, tsliceplanes<double>(n[2], n[0] * n[1]), n[0], n[1]};
  runslices(job, n[2], parallel, word);
}

void blockmeasure(const tscalarfield& f, tscalarfield& target, tblockmeasure m, int64_t r, int64_t parallel, uint8_t newkind,
                  const utf16& word) {
  if (!measurescan(r, fieldsize(f))) return;
  const tvoxelcopy c = voxelcopy(f);
  if (!measuretarget(f, target, newkind)) return;
  const bool inner = c.n[0] > 2 && c.n[1] > 2;
  const auto cube = [&c](int64_t x, int64_t y, int64_t z, int64_t h, auto op) {
    for (int64_t k = std::max<int64_t>(z - h, 1); k <= std::min(z + h, c.n[2]); ++k)
      for (int64_t j = std::max<int64_t>(y - h, 1); j <= std::min(y + h, c.n[1]); ++j)
        for (int64_t i = std::max<int64_t>(x - h, 1); i <= std::min(x + h, c.n[0]); ++i) op(c.v[c.index(i, j, k)]);
  };
  measureslices(target, parallel, word, [&](int64_t x, int64_t y, int64_t z) -> double {
    if (m == tblockmeasure::lbp || m == tblockmeasure::bgc) {
      if (!inner || x < 2 || y < 2 || x >= c.n[0] || y >= c.n[1]) return keepvoxel;
      if (m == tblockmeasure::bgc) return 0;
      const int64_t centre = c.at(x, y, z);
      int64_t sum = 0;  // the 26 neighbours; outside the volume reads 0
      for (int64_t k = z - 1; k <= z + 1; ++k)
        for (int64_t j = y - 1; j <= y + 1; ++j)
          for (int64_t i = x - 1; i <= x + 1; ++i) sum += c.at(i, j, k) - centre;
      return static_cast<double>(sum / 26);
    }
    if (c.at(x, y, z) < 1) return 0;
    int64_t count = 0, total = 0;
    uint64_t squares = 0;
    cube(x, y, z, r, [&](int64_t v) {
      ++count;
      total += v;
      squares += static_cast<uint64_t>(v * v);
    });
    if (count == 0) return 0;
    return momentstatistic(count, total, squares, m == tblockmeasure::mean ? 1 : 2);
  });
}

// The test looks at the centre voxel in every cell of the cube, so the count is the whole
// cube (clipped to the volume) or nothing.
void localboxcounting(const tscalarfield& f, tscalarfield& target, double lo, double hi, int64_t box, int64_t parallel,
                      uint8_t newkind) {
  const int64_t h = box / 2;
  if (h < 1 || box > 65535) {
    println("Wrong scan size!");
    return;
  }
  const tvoxelcopy c = voxelcopy(f);
  const bool counted = f.kind == scalargray || f.kind == scalarfullgray;
  if (!measuretarget(f, target, newkind)) return;
  measureslices(target, parallel, "  Calculate local boxcounting-dimension", [&](int64_t x, int64_t y, int64_t z) -> double {
    const int64_t v = c.at(x, y, z);
    if (!counted || x < 2 || y < 2 || x >= c.n[0] || y >= c.n[1] || v < 1) return 0;
    int64_t count = 0;
    if (v >= lo && v <= hi) {
      const auto span = [&](int64_t p, int64_t size) { return std::min(p + h, size) - std::max<int64_t>(p - h, 1) + 1; };
      count = span(x, c.n[0]) * span(y, c.n[1]) * span(z, c.n[2]);
    }
    const double d = -std::log10(static_cast<double>(count)) / std::log10(static_cast<double>(2 * h));
    return std::nearbyint(std::clamp(d * 100, 0.0, 255.0));
  });
}
