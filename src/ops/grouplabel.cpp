// The labelling core. A region's voxels, its count and its border do not depend on the
// order in which a fill visits them: every member pushes each neighbour once, so the
// border is the number of member-to-free faces (3-D) or of rejected pops (2-D). The fast
// form therefore joins runs along x by a union-find and counts faces per run; only a
// region covering the whole volume, where the fill stops at the voxel count with
// positions still on its stack, takes the plain fill.
#include <algorithm>
#include <array>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "ops/blocks.h"
#include "ops/group.h"

namespace {

// A whole volume in one group takes the plain fill up to this size; beyond it, whose stack
// would need gigabytes, every outside face counts.
constexpr int64_t wholefilllimit = int64_t{1} << 22;

struct tposition {
  int64_t x, y, z;
};

// Union-find over runs; the smaller index is the root, so that a component's root is
// its first run in scan order.
struct tunion {
  std::vector<uint32_t> parent;
  uint32_t find(uint32_t a) {
    while (parent[a] != a) {
      parent[a] = parent[parent[a]];
      a = parent[a];
    }
    return a;
  }
  void join(uint32_t a, uint32_t b) {
    if (parent[a] == parent[b]) return;  // most joins meet a set they are in already
    a = find(a), b = find(b);
    if (a < b)
      parent[b] = a;
    else if (b < a)
      parent[a] = b;
  }
};

// Joins the overlapping runs of two rows (faces touch when the x ranges overlap) and adds
// the touching faces to the later run's count.
void joinrows(tunion& u, const tgroupcomponents& c, std::vector<uint32_t>& touching, int64_t row, int64_t other) {
  int64_t i = c.rowstart[row], j = c.rowstart[other];
  const int64_t ei = c.rowstart[row + 1], ej = c.rowstart[other + 1];
  while (i < ei && j < ej) {
    const tgrouprun a = c.runs[i], b = c.runs[j];
    if (a.x0 <= b.x1 && b.x0 <= a.x1) {
      u.join(static_cast<uint32_t>(i), static_cast<uint32_t>(j));
      touching[i] += static_cast<uint32_t>(std::min(a.x1, b.x1) - std::max(a.x0, b.x0) + 1);
    }
    const bool first = a.x1 < b.x1;  // the run that ends first is done
    i += first;
    j += !first;
  }
}

// One bit a state of up to 64 states: set for a member.
uint64_t membermask(const uint8_t* s, int64_t n) {
#if defined(__SSE2__)
  if (n == 64) {
    uint64_t m = 0;
    for (int k = 0; k < 4; ++k) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 16 * k));
      const auto bits = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8(groupsmember))));
      m |= static_cast<uint64_t>(bits & 0xFFFF) << (16 * k);
    }
    return m;
  }
#endif
  uint64_t m = 0;
  for (int64_t k = 0; k < n; ++k) m |= static_cast<uint64_t>(s[k] == groupsmember) << k;
  return m;
}

// The runs of members in one row of states, from the places where the mask changes.
void rowruns(const uint8_t* s, int64_t nx, std::vector<tgrouprun>& runs) {
  bool inside = false;
  int64_t x0 = 0;
  uint64_t before = 0;  // the last state of the previous word was a member
  for (int64_t base = 0; base < nx; base += 64) {
    const uint64_t m = membermask(s + base, std::min<int64_t>(64, nx - base));
    uint64_t change = m ^ ((m << 1) | before);
    before = m >> 63;
    while (change) {
      const int64_t at = base + __builtin_ctzll(change);
      change &= change - 1;
      if (!inside)
        x0 = at;
      else
        runs.push_back({static_cast<int32_t>(x0), static_cast<int32_t>(at - 1)});
      inside = !inside;
    }
  }
  if (inside) runs.push_back({static_cast<int32_t>(x0), static_cast<int32_t>(nx - 1)});
}

// The faces of a run on the volume's boundary.
int64_t boundaryfaces(const tgroupgrid& g, int64_t row, tgrouprun run) {
  const int64_t y = row % g.ny, z = row / g.ny, len = run.x1 - run.x0 + 1;
  return (run.x0 == 0) + (run.x1 == g.nx - 1) + len * ((y == 0) + (y == g.ny - 1) + (z == 0) + (z == g.nz - 1));
}

// The faces of the runs of one row that a fill meets as border (3-D), or the pushes their
// voxels make (2-D). Rows beyond the volume read as `outside`, a row of free states when
// the outside counts as border.
struct tfacecounter {
  const tgroupgrid& g;
  std::vector<uint8_t> outside;
  explicit tfacecounter(const tgroupgrid& grid)
      : g(grid), outside(static_cast<size_t>(grid.nx), grid.outsideborder ? groupsfree : groupstaken) {}

  int64_t planar(int64_t row, tgrouprun run) const {
    const int64_t y = row % g.ny, len = run.x1 - run.x0 + 1;
    return 2 * len - (run.x0 == 0) - (run.x1 == g.nx - 1) + len * (y > 0) + len * (y < g.ny - 1);
  }
  int64_t faces(int64_t row, tgrouprun run) const {
    const int64_t y = row % g.ny, z = row / g.ny, plane = g.nx * g.ny;
    const uint8_t* s = g.states.data() + row * g.nx;
    const uint8_t* o = outside.data();
    const uint8_t* up = y > 0 ? s - g.nx : o;
    const uint8_t* down = y < g.ny - 1 ? s + g.nx : o;
    const uint8_t* front = z > 0 ? s - plane : o;
    const uint8_t* back = z < g.nz - 1 ? s + plane : o;
    int64_t sum = (run.x0 == 0 ? o[0] : s[run.x0 - 1]) == groupsfree;
    sum += (run.x1 == g.nx - 1 ? o[0] : s[run.x1 + 1]) == groupsfree;
    for (int64_t x = run.x0; x <= run.x1; ++x)
      sum += (up[x] == groupsfree) + (down[x] == groupsfree) + (front[x] == groupsfree) + (back[x] == groupsfree);
    return sum;
  }
};

}  // namespace

tgroupcomponents groupcomponents(const tgroupgrid& g, int64_t threads) {
  tgroupcomponents c;
  const int64_t rows = g.ny * g.nz;
  // Runs slice by slice on the threads, then gathered in scan order.
  std::vector<std::vector<tgrouprun>> slices(static_cast<size_t>(g.nz));
  std::vector<int64_t> rowcount(static_cast<size_t>(rows), 0);
  inblocks(g.nz, threads, [&](int64_t first, int64_t end) {
    for (int64_t z = first; z < end; ++z)
      for (int64_t r = z * g.ny; r < (z + 1) * g.ny; ++r) {
        const size_t before = slices[z].size();
        rowruns(g.states.data() + r * g.nx, g.nx, slices[z]);
        rowcount[r] = static_cast<int64_t>(slices[z].size() - before);
      }
  });
  c.rowstart.resize(rows + 1);
  c.rowstart[0] = 0;
  for (int64_t r = 0; r < rows; ++r) c.rowstart[r + 1] = c.rowstart[r] + rowcount[r];
  c.runs.resize(static_cast<size_t>(c.rowstart[rows]));
  tunion u;
  u.parent.resize(c.runs.size());
  std::vector<uint32_t> touching(c.runs.size(), 0);
  // Within a slice the joins reach no run of another slice: the slices join on their own
  // threads, and then with each other in order.
  inblocks(g.nz, threads, [&](int64_t first, int64_t end) {
    for (int64_t z = first; z < end; ++z) {
      std::copy(slices[z].begin(), slices[z].end(), c.runs.begin() + c.rowstart[z * g.ny]);
      std::vector<tgrouprun>().swap(slices[z]);
      for (int64_t i = c.rowstart[z * g.ny]; i < c.rowstart[(z + 1) * g.ny]; ++i) u.parent[i] = static_cast<uint32_t>(i);
      for (int64_t r = z * g.ny + 1; r < (z + 1) * g.ny; ++r) joinrows(u, c, touching, r, r - 1);
    }
  });
  for (int64_t r = g.ny; r < rows; ++r) joinrows(u, c, touching, r, r - g.ny);
  // Without taken voxels every face of a member that is neither a member nor outside is
  // free: the border follows from the count and the member-to-member faces alone.
  const bool anytaken = !g.planar && std::find(g.states.begin(), g.states.end(), groupstaken) != g.states.end();
  c.component.resize(c.runs.size());
  const tfacecounter faces(g);
  for (int64_t r = 0; r < rows; ++r)
    for (int64_t i = c.rowstart[r]; i < c.rowstart[r + 1]; ++i) {
      // Every earlier run already points at its root, so one step reaches this one's.
      const uint32_t root = u.parent[i] = u.parent[u.parent[i]];
      if (root == i) {
        c.component[i] = static_cast<uint32_t>(c.count.size());
        c.count.push_back(0);
        c.border.push_back(g.planar ? 1 : 0);  // 2-D: the seed is one push more
      } else {
        c.component[i] = c.component[root];
      }
      const tgrouprun run = c.runs[i];
      const int64_t len = run.x1 - run.x0 + 1;
      c.count[c.component[i]] += len;
      if (g.planar)
        c.border[c.component[i]] += faces.planar(r, run);
      else if (anytaken)
        c.border[c.component[i]] += faces.faces(r, run);
      else
        c.border[c.component[i]] += 6 * len - 2 * (len - 1 + touching[i]) - (g.outsideborder ? 0 : boundaryfaces(g, r, run));
    }
  if (g.planar)
    for (size_t k = 0; k < c.count.size(); ++k) c.border[k] -= c.count[k];
  else if (c.count.size() == 1 && c.count[0] == g.nx * g.ny * g.nz && c.count[0] <= wholefilllimit)
    c.border[0] = groupreference(g).border[0];
  return c;
}

std::vector<int64_t> grouplabels(const tgroupgrid& g, const tgroupcomponents& c) {
  std::vector<int64_t> label(static_cast<size_t>(g.nx * g.ny * g.nz), 0);
  for (int64_t r = 0; r + 1 < static_cast<int64_t>(c.rowstart.size()); ++r)
    for (int64_t i = c.rowstart[r]; i < c.rowstart[r + 1]; ++i)
      for (int64_t x = c.runs[i].x0; x <= c.runs[i].x1; ++x) label[r * g.nx + x] = c.component[i] + 1;
  return label;
}

tgroupreference groupreference(const tgroupgrid& g) {
  tgroupreference out;
  out.label.assign(g.states.size(), 0);
  const int64_t limit = g.nx * g.ny * g.nz;
  std::vector<tposition> stack;
  const auto inside = [&](const tposition& p) {
    return p.x >= 0 && p.y >= 0 && p.z >= 0 && p.x < g.nx && p.y < g.ny && p.z < g.nz;
  };
  const auto index = [&](const tposition& p) { return (p.z * g.ny + p.y) * g.nx + p.x; };
  for (int64_t start = 0; start < limit; ++start) {
    if (g.states[start] != groupsmember || out.label[start] != 0) continue;
    const int64_t number = static_cast<int64_t>(out.count.size()) + 1;
    int64_t count = 0, border = 0;
    stack.assign(1, {start % g.nx, (start / g.nx) % g.ny, start / (g.nx * g.ny)});
    while (!stack.empty() && (g.planar ? count <= limit : count < limit)) {
      const tposition p = stack.back();
      stack.pop_back();
      const bool member = inside(p) && g.states[index(p)] == groupsmember && out.label[index(p)] == 0;
      if (!member) {
        // 3-D: only a free voxel, or the outside when it reads as out of range, is border.
        if (g.planar || (inside(p) ? g.states[index(p)] == groupsfree && out.label[index(p)] == 0 : g.outsideborder))
          ++border;
        continue;
      }
      out.label[index(p)] = number;
      ++count;
      const tposition next[6] = {{p.x, p.y, p.z + 1}, {p.x, p.y, p.z - 1}, {p.x, p.y + 1, p.z},
                                 {p.x, p.y - 1, p.z}, {p.x + 1, p.y, p.z}, {p.x - 1, p.y, p.z}};
      // 3-D: a voxel labelled already would pop without effect, so it isn't pushed.
      for (int k = g.planar ? 2 : 0; k < 6; ++k)
        if (g.planar ? inside(next[k]) : !inside(next[k]) || out.label[index(next[k])] == 0) stack.push_back(next[k]);
    }
    out.count.push_back(count);
    out.border.push_back(border);
  }
  return out;
}
