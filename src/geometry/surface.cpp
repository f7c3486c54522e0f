#include "geometry/surface.h"

#include <array>
#include <cmath>
#include <vector>

#include "geometry/cubetables.h"
#include "geometry/meshbuild.h"
#include "geometry/slicebatch.h"
#include "library/mathvector.h"
#include "shell/console.h"

namespace {

// Voxel values with 0 outside the field, for one storage type.
template <class A>
struct tsampler {
  const A& a;
  int64_t nx, ny, nz;
  int64_t at(int64_t x, int64_t y, int64_t z) const {
    if (x < 1 || y < 1 || z < 1 || x > nx || y > ny || z > nz) return 0;
    return static_cast<int64_t>(a.get(a.index(x, y, z)));
  }
};

// The skip grid: one byte per bin of the field, 0 empty, 1 next to an inside voxel, 2
// holding one. Bins are never finer than voxels, so a cube beside an inside voxel always
// lies in a marked bin.
struct tskipgrid {
  static constexpr int64_t side = 102;
  std::vector<uint8_t> cells = std::vector<uint8_t>(side * side * side, 0);
  std::array<std::vector<int64_t>, 3> bins;  // bin of each position 0..size + 1, plus one
  explicit tskipgrid(const tnatvector& size) {
    for (int a = 0; a < 3; ++a) {
      const int64_t divisor = std::max<int64_t>(size[a], 99);
      for (int64_t v = 0; v <= size[a] + 1; ++v) bins[a].push_back(std::min<int64_t>(v * 99 / divisor, 100) + 1);
    }
  }
  uint8_t& cell(int64_t bx, int64_t by, int64_t bz) { return cells[bx + by * side + bz * side * side]; }
  uint8_t of(int64_t x, int64_t y, int64_t z) const { return cells[bins[0][x] + bins[1][y] * side + bins[2][z] * side * side]; }
  void mark(int64_t x, int64_t y, int64_t z) {
    const int64_t bx = bins[0][x], by = bins[1][y], bz = bins[2][z];
    for (int64_t k = -1; k <= 1; ++k)
      for (int64_t j = -1; j <= 1; ++j)
        for (int64_t i = -1; i <= 1; ++i) {
          uint8_t& c = cell(bx + i, by + j, bz + k);
          if (!c) c = 1;
        }
    cell(bx, by, bz) = 2;
  }
};

struct ttriangle {
  std::array<tvector, 3> p, n;
  tvector color;
};

// The vector of voxel (x, y, z) / 255 as a colour; black outside or without a field.
tvector colorat(const tvectorfield* v, int64_t x, int64_t y, int64_t z) {
  tvector c{0, 0, 0};
  if (!v) return c;
  eachstorage(*v, [&](const auto& a) {
    if (!a.inside(x, y, z)) return;
    const auto e = a.get(a.index(x, y, z));
    for (int i = 0; i < 3; ++i) c[i] = static_cast<double>(e[i]) / 255;
  });
  return c;
}

template <tcornertest test, class A>
struct tmarcher {
  tsampler<A> s;
  const tspatial& space;
  double low, high;
  const tvectorfield* colors;
  const tcubetables& tables = cubetables();

  bool invalue(int64_t w) const {
    if constexpr (test == tcornertest::weak) return w >= low;
    return w >= low && w <= high;
  }
  int64_t density(int64_t x, int64_t y, int64_t z) const {
    int64_t sum = 0;
    for (int64_t k = -1; k <= 1; ++k)
      for (int64_t j = -1; j <= 1; ++j)
        for (int64_t i = -1; i <= 1; ++i) sum += invalue(s.at(x + i, y + j, z + k)) ? 255 : 0;
    return sum / 27;
  }
  int64_t cornervalue(int64_t x, int64_t y, int64_t z) const {
    if constexpr (test == tcornertest::smooth) return density(x, y, z);
    return s.at(x, y, z);
  }
  bool inside(int64_t w) const {
    if constexpr (test == tcornertest::smooth) return w > 127;
    return invalue(w);
  }
  double fraction(int64_t wa, int64_t wb) const {
    if constexpr (test == tcornertest::range) return 0.5;
    if (wa == wb) return 0.5;
    const double level = test == tcornertest::weak ? low : 128.0;
    return (level - wa) / static_cast<double>(wb - wa);
  }

  // The triangles the table gives the cube, before collapsed ones are dropped.
  int tablecount(int64_t x, int64_t y, int64_t z) const {
    int index = 0;
    for (int k = 0; k < 8; ++k)
      if (inside(cornervalue(x + cubecorners[k][0], y + cubecorners[k][1], z + cubecorners[k][2]))) index |= 1 << k;
    int n = 0;
    while (n < 5 && tables.tritable[index][3 * n] >= 0) ++n;
    return n;
  }

  void cube(int64_t x, int64_t y, int64_t z, std::vector<ttriangle>& out) const {
    int64_t w[8];
    int index = 0;
    for (int k = 0; k < 8; ++k) {
      w[k] = cornervalue(x + cubecorners[k][0], y + cubecorners[k][1], z + cubecorners[k][2]);
      if (inside(w[k])) index |= 1 << k;
    }
    const uint16_t edges = tables.edgetable[index];
    if (!edges) return;
    tnatvector lattice[12];
    tvector global[12], normal[12];
    for (int e = 0; e < 12; ++e) {
      if (!(edges & (1 << e))) continue;
      const int a = cubeedges[e][0], b = cubeedges[e][1];
      const double t = fraction(w[a], w[b]);
      tnatvector& q = lattice[e];
      for (int c = 0; c < 3; ++c) {
        const int64_t origin = (c == 0 ? x : c == 1 ? y : z) + cubecorners[a][c];
        q[c] = static_cast<int64_t>(std::nearbyint(origin + edgedirection[e][c] * t));
      }
      const tvector g = normalised({static_cast<double>(s.at(q[0] - 1, q[1], q[2]) - s.at(q[0] + 1, q[1], q[2])),
                                    static_cast<double>(s.at(q[0], q[1] - 1, q[2]) - s.at(q[0], q[1] + 1, q[2])),
                                    static_cast<double>(s.at(q[0], q[1], q[2] - 1) - s.at(q[0], q[1], q[2] + 1))});
      const tvector p{static_cast<double>(q[0]), static_cast<double>(q[1]), static_cast<double>(q[2])};
      global[e] = localtoglobal(space, p);
      normal[e] = normalised(added(localtoglobal(space, added(p, g)), scaled(global[e], -1)));
    }
    const auto& row = tables.tritable[index];
    const tvector color = colorat(colors, x, y, z);
    for (int i = 0; i < 15 && row[i] >= 0; i += 3) {
      const int e1 = row[i], e2 = row[i + 1], e3 = row[i + 2];
      if (lattice[e1] == lattice[e2] || lattice[e2] == lattice[e3] || lattice[e1] == lattice[e3]) continue;
      out.push_back({{global[e3], global[e2], global[e1]}, {normal[e3], normal[e2], normal[e1]}, color});
    }
  }
};

template <tcornertest test, class A>
void march(tmesh& m, const tscalarfield& f, const A& a, double low, double high, int64_t threads, const tvectorfield* colors) {
  const tnatvector size = fieldsize(f);
  tmarcher<test, A> marcher{{a, size[0], size[1], size[2]}, f.space, low, high, colors};
  tskipgrid grid(size);
  for (int64_t z = 1; z <= size[2]; ++z) {
    progress("Precalculation", static_cast<double>(z) / size[2]);
    for (int64_t y = 1; y <= size[1]; ++y)
      for (int64_t x = 1; x <= size[0]; ++x)
        if (marcher.invalue(marcher.s.at(x, y, z)) && grid.of(x, y, z) != 2) grid.mark(x, y, z);
  }
  progressend();
  auto eachcube = [&](int64_t z, auto visit) {
    for (int64_t y = 0; y <= size[1] + 1; ++y)
      for (int64_t x = 0; x <= size[0] + 1; ++x)
        if (grid.of(x, y, z)) visit(x, y);
  };
  // Count first, so that the mesh's lists grow once: at this size a growth copies
  // hundreds of megabytes.
  int64_t total = 0;
  slicebatches<int64_t>(
      0, size[2] + 1, threads,
      [&](int64_t z, int64_t& count) {
        count = 0;
        eachcube(z, [&](int64_t x, int64_t y) { count += marcher.tablecount(x, y, z); });
      },
      [&](int64_t, int64_t& count) { total += count; });
  meshreserve(m, total, total / 2 + 16);
  slicebatches<std::vector<ttriangle>>(
      0, size[2] + 1, threads,
      [&](int64_t z, std::vector<ttriangle>& out) {
        out.clear();
        eachcube(z, [&](int64_t x, int64_t y) { marcher.cube(x, y, z, out); });
      },
      [&](int64_t z, std::vector<ttriangle>& out) {
        progress("Calculate surface", static_cast<double>(z) / size[2]);
        for (const ttriangle& t : out) addtriangle(m, t.p, t.n, t.color);
      });
  progressend();
}

}  // namespace

void warnnegativematrix(const tscalarfield& f) {
  for (const tvector& row : f.space.matrix)
    for (double v : row)
      if (v < 0) {
        println("  Matrix with negative entries " + rowstext(f.space.matrix) + ".");
        println("  Note: Check your coordinate system!");
        return;
      }
}

void marchingsurface(tmesh& m, const tscalarfield& f, tcornertest test, double low, double high, int64_t threads,
                     const tvectorfield* colors) {
  const tnatvector size = fieldsize(f);
  if (!size[0] || !size[1] || !size[2]) return;
  const tnatvector vsize = colors ? fieldsize(*colors) : tnatvector{0, 0, 0};
  if (!vsize[0] || !vsize[1] || !vsize[2]) colors = nullptr;  // no vectors: the plain surface
  eachstorage(f, [&](const auto& a) {
    switch (test) {
      case tcornertest::weak: march<tcornertest::weak>(m, f, a, low, high, threads, colors); break;
      case tcornertest::range: march<tcornertest::range>(m, f, a, low, high, threads, colors); break;
      case tcornertest::smooth: march<tcornertest::smooth>(m, f, a, low, high, threads, colors); break;
    }
  });
}

namespace {

template <class A>
void cubes(tmesh& m, const tscalarfield& f, const A& a, double low, double high, const tvectorfield* colors) {
  const tnatvector size = fieldsize(f);
  const tsampler<A> s{a, size[0], size[1], size[2]};
  auto in = [&](int64_t x, int64_t y, int64_t z) {
    const int64_t v = s.at(x, y, z);
    return v >= low && v <= high;
  };
  const tvector ex = scaled(f.space.matrix[0], 0.45), ey = scaled(f.space.matrix[1], 0.45), ez = scaled(f.space.matrix[2], 0.45);
  const tvector nx = normalised(ex), ny = normalised(ey), nz = normalised(ez);
  auto neg = [](const tvector& a) { return scaled(a, -1); };
  // Each face: the neighbour's offset, its outward normal and its corners (numbered as the
  // cube corners) counter-clockwise seen from outside. Order +z, -z, +x, -x, +y, -y.
  struct tside {
    tnatvector step;
    tvector normal;
    std::array<int, 4> corners;
  };
  const tside sides[6] = {{{0, 0, 1}, nz, {4, 5, 6, 7}},      {{0, 0, -1}, neg(nz), {0, 3, 2, 1}},
                          {{1, 0, 0}, nx, {1, 2, 6, 5}},      {{-1, 0, 0}, neg(nx), {0, 4, 7, 3}},
                          {{0, 1, 0}, ny, {3, 7, 6, 2}},      {{0, -1, 0}, neg(ny), {0, 1, 5, 4}}};
  for (int64_t z = 1; z <= size[2]; ++z) {
    progress("Calculate cubic surface", static_cast<double>(z) / size[2]);
    for (int64_t y = 1; y <= size[1]; ++y)
      for (int64_t x = 1; x <= size[0]; ++x) {
        if (!in(x, y, z)) continue;
        const tvector c = localtoglobal(f.space, {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)});
        std::array<tvector, 8> corner;
        for (int k = 0; k < 8; ++k)
          corner[k] = added(added(added(c, scaled(ex, 2 * cubecorners[k][0] - 1)), scaled(ey, 2 * cubecorners[k][1] - 1)),
                            scaled(ez, 2 * cubecorners[k][2] - 1));
        for (const tside& sd : sides) {
          if (in(x + sd.step[0], y + sd.step[1], z + sd.step[2])) continue;
          addquad(m, {corner[sd.corners[0]], corner[sd.corners[1]], corner[sd.corners[2]], corner[sd.corners[3]]},
                  {sd.normal, sd.normal, sd.normal, sd.normal}, colorat(colors, x, y, z));
        }
      }
  }
  progressend();
}

}  // namespace

void cubesurface(tmesh& m, const tscalarfield& f, double low, double high, const tvectorfield* colors) {
  const tnatvector size = fieldsize(f);
  if (!size[0] || !size[1] || !size[2]) return;
  const tnatvector vsize = colors ? fieldsize(*colors) : tnatvector{0, 0, 0};
  if (!vsize[0] || !vsize[1] || !vsize[2]) colors = nullptr;
  eachstorage(f, [&](const auto& a) { cubes(m, f, a, low, high, colors); });
}
