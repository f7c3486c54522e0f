// Thickness by lines: through a voxel, each direction of the half sphere is sampled from
// p + d to p - d, and the run of object voxels around the middle must end in background on
// both sides to count. The shortest run over all directions, in units of the finest voxel
// size, is the thickness.
#include "orientation/measure.h"

#include <limits>

#include "ops/measuremap.h"
#include "ops/slices.h"
#include "orientation/scanwalk.h"
#include "script/values.h"
#include "shell/console.h"

std::vector<int64_t> thicknessladder(int64_t r) {
  if (r / 16 >= 2) return {r / 16, r / 8, r / 4, r / 2, r};
  if (r / 4 >= 2) return {r / 4, r / 2, r};
  return {r};
}

namespace {

// One direction list prepared for the volume: the walks of p + d to p - d.
struct tlineset {
  tscandirectionset directions;
  std::vector<tscanstep> steps;
  int64_t reach = 0;  // the largest component of any d
};

tlineset lineset(int64_t s, const tvoxelcopy& c) {
  tlineset l{scandirections(s), {}};
  for (const tscanpoint& d : l.directions.points) {
    l.steps.push_back(scanstep({-2 * d[0], -2 * d[1], -2 * d[2]}, c.n[0], c.n[0] * c.n[1]));
    for (const int64_t a : d) l.reach = std::max(l.reach, std::abs(a));
  }
  return l;
}

struct tcrossing {
  int64_t before = 0, behind = 0;  // object samples from the middle back, and after it
  bool found = false;              // background met on both sides
};

// The two walks from the middle sample n of a line (outside reading 0); only the samples
// up to the first background on each side are read.
// `inside`: every sample is known to lie in the volume.
tcrossing crossing(const tvoxelcopy& c, const tscanstep& s, const tscanpoint& p1, bool inside) {
  const int64_t size[3] = {c.n[0], c.n[1], c.n[2]};
  const tkrange in = inside ? tkrange{0, s.steps} : insiderange(s, p1, 1, size);
  const int64_t i1 = c.index(p1[0], p1[1], p1[2]);
  const auto object = [&](int64_t k) { return k >= in.lo && k <= in.hi && c.v[i1 + s.forward[k]] >= 1; };  // k from 0
  const int64_t n = s.steps + 1, middle = n / 2;
  tcrossing t;
  int64_t k = middle;
  for (; k >= 1 && object(k - 1); --k) ++t.before;
  if (k < 1) return t;
  for (k = middle + 1; k <= n && object(k - 1); ++k) ++t.behind;
  t.found = k <= n;
  return t;
}

// The running minimum of one voxel over one list; 0 when no direction gave a measure.
struct tscanresult {
  int64_t thickness = 0;
  tscanunit direction{};
  double length = 0;
};

struct tthicknessscan {
  const tvoxelcopy& c;
  tvector scale;  // voxel sizes over the smallest of them

  double length(const tscanunit& u, int64_t count) const {
    const double x = u[0] * scale[0], y = u[1] * scale[1], z = u[2] * scale[2];
    return static_cast<double>(count) * std::sqrt(x * x + y * y + z * z);
  }

  tscanresult at(const tlineset& l, int64_t x, int64_t y, int64_t z, bool centred) const {
    constexpr int64_t none = std::numeric_limits<int64_t>::max();
    int64_t best = none;
    tscanresult r;
    double shortest = std::numeric_limits<double>::infinity();
    const auto clear = [&](int64_t p, int a) { return p > l.reach && p + l.reach <= c.n[a]; };
    const bool inside = clear(x, 0) && clear(y, 1) && clear(z, 2);  // p +- d lie inside, so the samples between do
    for (size_t i = 0; i < l.steps.size(); ++i) {
      const tscanpoint& d = l.directions.points[i];
      const tcrossing t = crossing(c, l.steps[i], {x + d[0], y + d[1], z + d[2]}, inside);
      bool centre = false;
      if (t.found && t.before + t.behind >= 1) {
        const double len = length(l.directions.units[i], t.before + t.behind);
        const int64_t rounded = roundnat(std::clamp(len, -9.2e18, 9.2e18));
        if (rounded < best) {
          best = rounded;
          centre = t.before / 2 == t.behind / 2;
        }
        if (len < shortest) {
          shortest = len;
          r.direction = l.directions.units[i];
          r.length = len;
        }
      }
      if (centred && !centre) best = 0;
    }
    r.thickness = best == none ? 0 : best;
    return r;
  }
};

tvector unitscale(const tscalarfield& f) {
  tvector s = axisscales(f.space);
  double m = std::numeric_limits<double>::infinity();
  for (double& a : s) a = std::abs(a), m = std::min(m, a);
  if (!(m > 0)) return {1, 1, 1};
  for (double& a : s) a /= m;
  return s;
}

bool borderof(const tvoxelcopy& c, int64_t x, int64_t y, int64_t z) {
  return c.at(x - 1, y, z) == 0 || c.at(x + 1, y, z) == 0 || c.at(x, y - 1, z) == 0 || c.at(x, y + 1, z) == 0 ||
         c.at(x, y, z - 1) == 0 || c.at(x, y, z + 1) == 0;
}

const char* thicknessword(tthickness m) {
  switch (m) {
    case tthickness::skeleton: return "  Calculate skeleton";
    case tthickness::cartoon: return "  Calculate cartoon";
    default: return "  Calculate thickness";
  }
}

}  // namespace

void thicknessmap(const tscalarfield& f, tscalarfield& target, tthickness m, int64_t r, int64_t parallel, uint8_t newkind) {
  if (!measurescan(r, fieldsize(f))) return;
  const tvoxelcopy c = voxelcopy(f);
  if (!measuretarget(f, target, newkind)) return;
  std::vector<tlineset> ladder;
  for (const int64_t s : thicknessladder(r)) ladder.push_back(lineset(s, c));
  const tvector scale = unitscale(f);
  const bool centred = m == tthickness::skeleton;
  const tthicknessscan scan{c, scale};
  measureslices(target, parallel, thicknessword(m), [&](int64_t x, int64_t y, int64_t z) -> double {
    if (c.at(x, y, z) < 1 || (m == tthickness::cartoon && !borderof(c, x, y, z))) return 0;
    for (const tlineset& l : ladder) {
      const int64_t t = scan.at(l, x, y, z, centred).thickness;
      if (t != 0) return static_cast<double>(t);
    }
    return 0;
  });
}

void planemap(const tscalarfield& f, tvectorfield& out, int64_t r, int64_t parallel, uint8_t newkind) {
  const tnatvector n = fieldsize(f);
  if (!measurescan(r, n)) return;
  const tvoxelcopy c = voxelcopy(f);
  if (fieldsize(out) != n) {
    fieldcreate(out, out.kind ? out.kind : newkind, n);
    println("  Assigned vector field (" + dimensionstext(out) + ") updated.");
  }
  if (fieldempty(out)) {
    println("Error! Empty vectorfield!");
    return;
  }
  out.space = f.space;
  const tlineset l = lineset(r / 2, c);
  const tvector scale = unitscale(f);
  const tthicknessscan scan{c, scale};
  struct tplanejob {
    std::function<void(int64_t)> slice;
    void compute(int64_t z) { slice(z); }
    void commit(int64_t) {}
  } job{[&](int64_t z) {  // each worker writes its own slice of the vector volume
    eachstorage(out, [&](auto& a) {
      using C = typename std::remove_cvref_t<decltype(a)>::elementtype::value_type;
      for (int64_t y = 1; y <= n[1]; ++y)
        for (int64_t x = 1; x <= n[0]; ++x) {
          tscanresult s;
          if (c.at(x, y, z) >= 1) s = scan.at(l, x, y, z, false);
          a.items()[a.index(x, y, z) - 1] = {toelement<C>(s.direction[0] * s.length), toelement<C>(s.direction[1] * s.length),
                                             toelement<C>(s.direction[2] * s.length)};
        }
    });
  }};
  runslices(job, n[2], parallel, "  Calculate plane & thickness");
}
