#include "geometry/raybvh.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "ops/blocks.h"

namespace {

tvector minus(const tvector& a, const tvector& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
tvector cross(const tvector& a, const tvector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double dot(const tvector& a, const tvector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

bool finitetriangle(const traytriangle& t) {
  for (const tvector* p : {&t.a, &t.b, &t.c})
    for (double x : *p)
      if (!std::isfinite(x)) return false;
  return true;
}

constexpr float inf = std::numeric_limits<float>::infinity();

// A box that holds the doubles for sure: moved out by far more than the float rounding, so
// that rounding in the slab test never drops a grazing hit either.
float below(double x) { return static_cast<float>(x - std::fabs(x) * 1e-6 - 1e-30); }
float above(double x) { return static_cast<float>(x + std::fabs(x) * 1e-6 + 1e-30); }

struct tbox {
  float lo[3] = {inf, inf, inf}, hi[3] = {-inf, -inf, -inf};
  void grow(const tbox& o) {
    for (int k = 0; k < 3; ++k) lo[k] = std::min(lo[k], o.lo[k]), hi[k] = std::max(hi[k], o.hi[k]);
  }
  void grow(const float* p) {
    for (int k = 0; k < 3; ++k) lo[k] = std::min(lo[k], p[k]), hi[k] = std::max(hi[k], p[k]);
  }
  double area() const {
    if (lo[0] > hi[0]) return 0;
    const double x = hi[0] - lo[0], y = hi[1] - lo[1], z = hi[2] - lo[2];
    return x * y + y * z + z * x;
  }
};

// What the builder moves around: a triangle's box, twice its centre, and its place.
struct tprim {
  tbox box;
  float centre[3];
  int32_t index;
};

// Binned surface-area splits over the primitives, which it reorders in place.
struct tbuilder {
  static constexpr int bins = 8;
  static constexpr int32_t leafsize = 8;
  // Below this depth every split halves, so no path is longer than maxdepth + 32 and the
  // traversal stack has a fixed size.
  static constexpr int maxdepth = 60;
  std::vector<tprim>& prims;
  std::vector<traybvh::tnode>& nodes;
  // Subtrees of at most `cutoff` primitives are left for later in `deferred`, when given.
  struct ttask {
    int32_t node, first, count, depth;
  };
  std::vector<ttask>* deferred = nullptr;
  int32_t cutoff = 0;

  void build(int32_t node, int32_t first, int32_t count, int depth) {
    if (deferred && count <= cutoff) return deferred->push_back({node, first, count, depth});
    tbox bounds, centres;
    for (int32_t i = first; i < first + count; ++i) bounds.grow(prims[i].box), centres.grow(prims[i].centre);
    traybvh::tnode& n = nodes[node];
    std::copy_n(bounds.lo, 3, n.lo), std::copy_n(bounds.hi, 3, n.hi);
    n.first = first, n.count = count;
    int axis = 0;
    for (int k = 1; k < 3; ++k)
      if (centres.hi[k] - centres.lo[k] > centres.hi[axis] - centres.lo[axis]) axis = k;
    const float lo = centres.lo[axis], extent = centres.hi[axis] - lo;
    if (count <= leafsize || !(extent > 0)) return;
    const float toBin = bins / extent;
    auto binof = [&](const tprim& p) { return std::min(bins - 1, static_cast<int>((p.centre[axis] - lo) * toBin)); };
    std::array<tbox, bins> binbox;
    std::array<int32_t, bins> bincount{};
    for (int32_t i = first; i < first + count; ++i) {
      const int b = binof(prims[i]);
      binbox[b].grow(prims[i].box), ++bincount[b];
    }
    std::array<double, bins> rightcost{};
    tbox acc;
    int64_t seen = 0;
    for (int b = bins - 1; b > 0; --b) acc.grow(binbox[b]), seen += bincount[b], rightcost[b] = acc.area() * seen;
    acc = tbox{}, seen = 0;
    int best = 0;
    double bestcost = std::numeric_limits<double>::infinity();
    for (int b = 0; b < bins - 1; ++b) {
      acc.grow(binbox[b]), seen += bincount[b];
      const double cost = acc.area() * seen + rightcost[b + 1];
      if (cost < bestcost) bestcost = cost, best = b;
    }
    const auto begin = prims.begin() + first, end = begin + count;
    int32_t left = static_cast<int32_t>(std::partition(begin, end, [&](const tprim& p) { return binof(p) <= best; }) - begin);
    if (left == 0 || left == count || depth >= maxdepth) {  // halve by position
      left = count / 2;
      std::nth_element(begin, begin + left, end, [&](const tprim& a, const tprim& b) { return a.centre[axis] < b.centre[axis]; });
    }
    const auto child = static_cast<int32_t>(nodes.size());
    nodes.resize(nodes.size() + 2);
    nodes[node].count = 0, nodes[node].first = child;
    build(child, first, left, depth + 1);
    build(child + 1, first + left, count - left, depth + 1);
  }
};

// The top of the tree on this thread, down to subtrees of a sixteenth of the primitives,
// which are built apart on up to `threads` threads and appended in their order: the same
// tree for any thread count.
void buildtree(std::vector<tprim>& prims, std::vector<traybvh::tnode>& nodes, int64_t threads) {
  std::vector<tbuilder::ttask> tasks;
  const auto n = static_cast<int32_t>(prims.size());
  tbuilder{prims, nodes, &tasks, std::max<int32_t>(n / 16, 4096)}.build(0, 0, n, 0);
  std::vector<std::vector<traybvh::tnode>> parts(tasks.size());
  inblocks(static_cast<int64_t>(tasks.size()), threads, [&](int64_t from, int64_t to) {
    for (int64_t k = from; k < to; ++k) {
      parts[k].resize(1);
      tbuilder{prims, parts[k]}.build(0, tasks[k].first, tasks[k].count, tasks[k].depth);
    }
  });
  for (size_t k = 0; k < tasks.size(); ++k) {
    // Local node i >= 1 lands at base + i - 1; local node 0 is the task's own node.
    const auto base = static_cast<int32_t>(nodes.size());
    auto place = [&](traybvh::tnode t) {
      if (!t.count) t.first = base + t.first - 1;
      return t;
    };
    nodes[tasks[k].node] = place(parts[k][0]);
    for (size_t i = 1; i < parts[k].size(); ++i) nodes.push_back(place(parts[k][i]));
    parts[k] = {};
  }
}

}  // namespace

double raytriangle(const tvector& o, const tvector& d, const traytriangle& t, double limit) {
  constexpr double miss = std::numeric_limits<double>::infinity();
  const tvector e1 = minus(t.b, t.a), e2 = minus(t.c, t.a), s = minus(o, t.a);
  const tvector q = cross(d, e2), r = cross(s, e1);
  const double det = dot(q, e1);
  if (det == 0) return miss;
  const double depth = dot(r, e2) / det, u = dot(q, s) / det, v = dot(r, d) / det;
  if (depth < 0 || depth > limit || u < 0 || u > 1 || v < 0 || v > 1 || u + v > 1) return miss;
  return std::isfinite(depth) ? depth : miss;
}

traybvh buildraybvh(std::vector<traytriangle> triangles, int64_t threads) {
  std::erase_if(triangles, [](const traytriangle& t) { return !finitetriangle(t); });
  traybvh bvh;
  if (triangles.empty() || triangles.size() >= static_cast<size_t>(INT32_MAX)) return bvh;
  const auto n = static_cast<int32_t>(triangles.size());
  std::vector<tprim> prims(triangles.size());
  for (int32_t i = 0; i < n; ++i) {
    const traytriangle& t = triangles[i];
    tprim& p = prims[i];
    for (int k = 0; k < 3; ++k) {
      p.box.lo[k] = below(std::min({t.a[k], t.b[k], t.c[k]}));
      p.box.hi[k] = above(std::max({t.a[k], t.b[k], t.c[k]}));
      p.centre[k] = p.box.lo[k] + p.box.hi[k];
    }
    p.index = i;
  }
  bvh.nodes.reserve(triangles.size() / 2 + 2);
  bvh.nodes.resize(1);
  buildtree(prims, bvh.nodes, threads);
  bvh.triangles.reserve(triangles.size());
  for (const tprim& p : prims) bvh.triangles.push_back(triangles[p.index]);
  return bvh;
}

trayhit firsthit(const traybvh& bvh, const tvector& o, const tvector& d, double limit) {
  constexpr double none = std::numeric_limits<double>::infinity();
  trayhit hit;
  if (bvh.nodes.empty()) return hit;
  const tvector inv{1 / d[0], 1 / d[1], 1 / d[2]};
  // Entry depth of the ray into a box, infinity when it misses or starts beyond the best.
  // A NaN from a ray lying in a slab's plane is passed over by the comparisons.
  auto entry = [&](const traybvh::tnode& b) {
    double tmin = 0, tmax = std::min(limit, hit.depth);
    for (int k = 0; k < 3; ++k) {
      double t0 = (b.lo[k] - o[k]) * inv[k], t1 = (b.hi[k] - o[k]) * inv[k];
      if (t0 > t1) std::swap(t0, t1);
      if (t0 > tmin) tmin = t0;
      if (t1 < tmax) tmax = t1;
    }
    return tmin <= tmax * (1 + 1e-12) ? tmin : none;
  };
  int32_t stack[tbuilder::maxdepth + 40];
  int top = 0;
  int32_t node = 0;
  if (!(entry(bvh.nodes[0]) < none)) return hit;
  for (;;) {
    const traybvh::tnode& b = bvh.nodes[node];
    if (b.count) {
      for (int32_t i = b.first; i < b.first + b.count; ++i) {
        const traytriangle& t = bvh.triangles[i];
        const double depth = raytriangle(o, d, t, limit);
        if (depth < hit.depth || (depth == hit.depth && t.order < hit.order)) hit = {depth, t.order};
      }
    } else {
      int32_t near = b.first, far = b.first + 1;
      double tnear = entry(bvh.nodes[near]), tfar = entry(bvh.nodes[far]);
      if (tfar < tnear) std::swap(near, far), std::swap(tnear, tfar);
      if (tfar < none) stack[top++] = far;
      if (tnear < none) {
        node = near;
        continue;
      }
    }
    for (;;) {
      if (!top) return hit;
      node = stack[--top];
      if (entry(bvh.nodes[node]) < none) break;
    }
  }
}
