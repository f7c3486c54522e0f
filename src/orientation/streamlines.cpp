#include "orientation/streamlines.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "field/array_grids.h"
#include "field/spatial.h"
#include "geometry/cloudbuild.h"
#include "library/random.h"
#include "orientation/streamtracer.h"
#include "shell/console.h"

tseedsource voxelseeds(const tnatvector& size) {
  tnatvector c{1, 1, 0};
  return [=](tnatvector& out) mutable {
    // z, then y, then x, each over 1..n-1: the last layer never seeds
    if (++c[2] >= size[2]) {
      c[2] = 1;
      if (++c[1] >= size[1]) {
        c[1] = 1;
        if (++c[0] >= size[0]) return false;
      }
    }
    out = c;
    return true;
  };
}

tseedsource randomseeds(const tnatvector& size, int64_t n, const std::function<bool(const tnatvector&)>& zero) {
  return [=, left = n](tnatvector& out) mutable {
    if (left-- <= 0) return false;
    auto draw = [](int64_t k) { return roundnat(randomreal() * static_cast<double>(k)); };
    out = {draw(size[0]), draw(size[1]), draw(size[2])};
    if (zero(out)) out[2] = draw(size[2]);
    return true;
  };
}

tseedsource planeseeds(const tspatial& space, const tnatvector& size, const tvector& point, const tvector& normal) {
  const tvector n = normalised(normal);
  tvector t1 = cross(n, {1, 0, 0});
  if (vectorlength(t1) == 0) t1 = cross(n, {0, 1, 0});
  if (vectorlength(t1) == 0) t1 = cross(n, {0, 0, 1});
  t1 = normalised(t1);
  const tvector t2 = normalised(cross(n, t1));
  const double diag = std::sqrt(static_cast<double>(size[0] * size[0] + size[1] * size[1] + size[2] * size[2]));
  const int64_t r = roundnat(diag);
  return [=, i = -r, j = -r - 1](tnatvector& out) mutable {
    if (++j > r) {
      j = -r;
      if (++i > r) return false;
    }
    const tvector g = added(point, added(scaled(t1, static_cast<double>(i)), scaled(t2, static_cast<double>(j))));
    out = globaltolocal(space, g);
    return true;
  };
}

tseedsource maskedseeds(tseedsource inner, const tscalarfield& mask, std::vector<std::pair<int64_t, int64_t>> ranges) {
  return [=, &mask](tnatvector& out) mutable {
    const tnatvector n = fieldsize(mask);
    while (inner(out)) {
      bool inside = true;
      for (int k = 0; k < 3; ++k) inside = inside && out[k] >= 1 && out[k] <= n[k];
      if (!inside) continue;
      const int64_t v = getvalue(mask, out[0], out[1], out[2]);
      if (std::any_of(ranges.begin(), ranges.end(), [v](auto r) { return r.first <= v && v <= r.second; })) return true;
    }
    return false;
  };
}

namespace {

template <class V>
bool zeroat(const V& vol, const tnatvector& c) {
  if (!vol.inside(c[0], c[1], c[2])) return true;
  const auto v = vol.get(c[0], c[1], c[2]);
  return v[0] == 0 && v[1] == 0 && v[2] == 0;
}

}  // namespace

bool zerovectorat(const tvectorfield& f, const tnatvector& c) {
  bool zero = true;
  eachstorage(f, [&](const auto& vol) { zero = zeroat(vol, c); });
  return zero;
}

std::function<bool(const tnatvector&)> zerotest(const tvectorfield& f, int64_t seeds) {
  const tnatvector n = fieldsize(f);
  const int64_t voxels = fieldcount(n[0], n[1], n[2]);
  // Random seeds meet the field's memory at random, a cache miss each. From one seed in 32
  // voxels on, a bit per voxel, made in one pass and small enough to stay cached, is cheaper.
  if (seeds < voxels / 32) return [&f](const tnatvector& c) { return zerovectorat(f, c); };
  auto bits = std::make_shared<std::vector<uint64_t>>(static_cast<size_t>((voxels + 63) / 64));
  eachstorage(f, [&](const auto& vol) {
    const auto* v = vol.items();
    for (int64_t i = 0; i < voxels; ++i)
      if (v[i][0] == 0 && v[i][1] == 0 && v[i][2] == 0) (*bits)[static_cast<size_t>(i >> 6)] |= uint64_t{1} << (i & 63);
  });
  return [bits, n](const tnatvector& c) {
    if (c[0] < 1 || c[1] < 1 || c[2] < 1 || c[0] > n[0] || c[1] > n[1] || c[2] > n[2]) return true;
    const int64_t i = (c[0] - 1) + (c[1] - 1) * n[0] + (c[2] - 1) * n[0] * n[1];
    return ((*bits)[static_cast<size_t>(i >> 6)] >> (i & 63) & 1) != 0;
  };
}

namespace {

int64_t maxpointsof(const tnatvector& n, const tstreamsettings& s) {
  const double dx = static_cast<double>(n[0] - 1), dy = static_cast<double>(n[1] - 1), dz = static_cast<double>(n[2] - 1);
  const double diag = std::sqrt(dx * dx + dy * dy + dz * dz);
  if (s.steps == 1) return s.stoplength <= 0 ? roundnat(diag) : static_cast<int64_t>(s.stoplength);
  return roundnat((s.stoplength > 0 ? s.stoplength : diag) / s.steps);
}

// The visited voxels, tested over a cube of half width margin.
struct tvisited {
  tbitvolume bits{};
  bool used = false;
  tvisited() = default;
  tvisited(const tvisited&) = delete;
  tvisited& operator=(const tvisited&) = delete;
  ~tvisited() { bits.release(); }
  bool any(const tnatvector& c, int64_t margin) const {
    for (int64_t z = -margin; z <= margin; ++z)
      for (int64_t y = -margin; y <= margin; ++y)
        for (int64_t x = -margin; x <= margin; ++x)
          if (bits.inside(c[0] + x, c[1] + y, c[2] + z) && bits.get(c[0] + x, c[1] + y, c[2] + z)) return true;
    return false;
  }
};

double pathlength(const std::vector<tvector>& l) {
  double s = 0;
  for (size_t i = 1; i < l.size(); ++i) s += vectorlength(added(l[i], scaled(l[i - 1], -1)));
  return s;
}

// Lf against Lb, one-sided: a longer backward half passes.
bool balanced(const std::vector<tvector>& front, const std::vector<tvector>& back, double steps) {
  const double lf = pathlength(front);
  const double lb = back.empty() ? 0 : vectorlength(added(back[0], scaled(front[0], -1))) + pathlength(back);
  return !(2 * steps < lf - lb || lf * lb == 0);
}

// Adds 1 along the voxel line from a to b, the first voxel included.
void countline(tscalarfield& f, const tnatvector& a, const tnatvector& b) {
  double d[3], sq = 0;
  for (int k = 0; k < 3; ++k) {
    d[k] = static_cast<double>(b[k] - a[k]);
    sq += d[k] * d[k];
  }
  const int64_t steps = roundnat(std::sqrt(sq));
  const tnatvector n = fieldsize(f);
  for (int64_t i = 0; i <= steps; ++i) {
    tnatvector c;
    for (int k = 0; k < 3; ++k) c[k] = a[k] + (steps ? roundnat(d[k] * static_cast<double>(i) / static_cast<double>(steps)) : 0);
    if (c[0] < 1 || c[1] < 1 || c[2] < 1 || c[0] > n[0] || c[1] > n[1] || c[2] > n[2]) continue;
    setvalue(f, c[0], c[1], c[2], static_cast<double>(getvalue(f, c[0], c[1], c[2]) + 1));
  }
}

template <class V>
void run(const V& vol, const tvectorfield& f, const tstreamsettings& s, const tstreamjob& job, tseedsource& seeds,
         const tscalarfield* contrast, tscalarfield* scalar, tcloud& out) {
  const tnatvector n{vol.sizex, vol.sizey, vol.sizez};
  tstreamlimits lim{scaled(axisscales(f.space), 1), localtoglobal(f.space, {0.5, 0.5, 0.5}),
                    localtoglobal(f.space, {n[0] + 0.5, n[1] + 0.5, n[2] + 0.5}), maxpointsof(n, s), s.angles,
                    s.stopangle, contrast ? s.stopcontrast : 0, contrast};
  for (int k = 0; k < 3; ++k) lim.step[k] *= s.steps;
  ttracer<V> tracer(vol, f.space, lim);
  tvisited visited;
  visited.used = s.seeds > 0 || s.snakes > 0;
  if (visited.used) visited.bits.create(n[0], n[1], n[2]);
  const int64_t seedmargin = s.seeds >= 2 ? s.seeds - 1 : 0;
  const int64_t snakemargin = s.snakes >= 2 ? s.snakes - 1 : 0;
  auto local = [&](const tvector& p) { return globaltolocal(f.space, p); };
  int64_t seedcount = 0, found = 0;
  tpointblocks stored;  // the run's lines, added to the cloud at the end
  std::vector<tlineentry> storedlines;
  tnatvector c;
  while (seeds(c)) {
    if ((job.zero ? job.zero(c) : zeroat(vol, c)) != (job.test == tseedtest::zerovector)) continue;
    ++seedcount;
    if (s.seeds > 0 && visited.any(c, seedmargin)) continue;
    tracer.init(localtoglobal(f.space, {static_cast<double>(c[0]), static_cast<double>(c[1]), static_cast<double>(c[2])}));
    auto& front = tracer.front;
    auto& back = tracer.back;
    if (front.size() + back.size() <= 1) continue;
    if (job.muscle && !balanced(front, back, s.steps)) continue;
    ++found;
    if (s.seeds != 0 && s.snakes > 0 && visited.used) {
      auto cut = [&](std::vector<tvector>& half) {
        auto stop = std::find_if(half.begin(), half.end(), [&](const tvector& p) { return visited.any(local(p), snakemargin); });
        half.erase(stop, half.end());
      };
      cut(front);
      cut(back);
    }
    // the line in stored order: back reversed, then front
    const auto eachpoint = [&](auto visit) {
      for (auto p = back.rbegin(); p != back.rend(); ++p) visit(*p);
      for (const tvector& p : front) visit(p);
    };
    const size_t count = back.size() + front.size();
    // each point's voxel with the one before (itself for the first)
    const auto eachstep = [&](auto visit) {
      tnatvector before{};
      bool first = true;
      eachpoint([&](const tvector& p) {
        const tnatvector at = local(p);
        visit(first ? at : before, at);
        before = at;
        first = false;
      });
    };
    // marked from voxel to voxel; the first step from a voxel to itself marks a line of one point
    if (s.seeds != 0 && visited.used) eachstep([&](const tnatvector& from, const tnatvector& to) { visited.bits.line(from, to, true); });
    if (job.nodes) {
      if (scalar) eachstep([&](const tnatvector& from, const tnatvector& to) { countline(*scalar, from, to); });
      continue;
    }
    eachpoint([&](const tvector& p) { stored.add(p); });
    storedlines.push_back({static_cast<int64_t>(count), seedcount});
  }
  if (job.nodes) return;
  if (found < 1) return println("  Found 0 (0%) streamlines from seeds.");
  stored.moveto(out, storedlines);
  closeobject(out, "Streamlines");
  out.frameoffset = f.space.offset;
  out.framescale = axisscales(f.space);
  out.framesize = {static_cast<double>(n[0]), static_cast<double>(n[1]), static_cast<double>(n[2])};
  if (job.counted) println("  Note: Required seeds may vary from the found seeds by zero vectors.");
  println("  Found " + nattext(found) + " (" +
          roundedrealtext(static_cast<double>(found) / static_cast<double>(seedcount) * 100, 2) +
          "%) streamlines from seeds.");
}

}  // namespace

void tracestreams(const tvectorfield& f, const tstreamsettings& s, const tstreamjob& job, tseedsource seeds,
                  const tscalarfield* contrast, tscalarfield* scalar, tcloud& out) {
  const tnatvector n = fieldsize(f);
  if ((n[0] - 1) * (n[1] - 1) * (n[2] - 1) <= 0) return;
  if (job.warnmatrix) {
    bool negative = false;
    for (const tvector& r : f.space.matrix)
      for (double x : r) negative = negative || x < 0;
    if (negative) {
      println("  Matrix with negative entries " + rowstext(f.space.matrix) + ".");
      println("  Note: Check your coordinate system!");
    }
  }
  eachstorage(f, [&](const auto& vol) { run(vol, f, s, job, seeds, contrast, scalar, out); });
}
