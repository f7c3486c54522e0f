#include "geometry/raybvh.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using tbox = traybvh::tnode;

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

void emptybox(tbox& b) {
  for (int k = 0; k < 3; ++k) b.lo[k] = std::numeric_limits<double>::infinity(), b.hi[k] = -b.lo[k];
}
void grow(tbox& b, const tvector& p) {
  for (int k = 0; k < 3; ++k) b.lo[k] = std::min(b.lo[k], p[k]), b.hi[k] = std::max(b.hi[k], p[k]);
}
void grow(tbox& b, const tbox& o) {
  for (int k = 0; k < 3; ++k) b.lo[k] = std::min(b.lo[k], o.lo[k]), b.hi[k] = std::max(b.hi[k], o.hi[k]);
}
double area(const tbox& b) {
  if (b.lo[0] > b.hi[0]) return 0;
  const double x = b.hi[0] - b.lo[0], y = b.hi[1] - b.lo[1], z = b.hi[2] - b.lo[2];
  return x * y + y * z + z * x;
}

// Binned surface-area split; the builder works on an index list and centroids.
struct tbuilder {
  static constexpr int bins = 16;
  static constexpr int64_t leafsize = 4;
  // Below this depth every split halves, so no path is longer than maxdepth + 63 and the
  // traversal stack has a fixed size.
  static constexpr int maxdepth = 60;
  const std::vector<traytriangle>& input;
  std::vector<tvector> centroids;
  std::vector<tbox> boxes;
  std::vector<int64_t> order;
  std::vector<tbox>& nodes;
  double pad;

  void build(int64_t node, int64_t first, int64_t count, int depth) {
    tbox bounds, cbounds;
    emptybox(bounds), emptybox(cbounds);
    for (int64_t i = first; i < first + count; ++i) grow(bounds, boxes[order[i]]), grow(cbounds, centroids[order[i]]);
    for (int k = 0; k < 3; ++k) bounds.lo[k] -= pad, bounds.hi[k] += pad;
    nodes[node] = bounds;
    nodes[node].first = first, nodes[node].count = count;
    int axis = 0;
    for (int k = 1; k < 3; ++k)
      if (cbounds.hi[k] - cbounds.lo[k] > cbounds.hi[axis] - cbounds.lo[axis]) axis = k;
    const double lo = cbounds.lo[axis], extent = cbounds.hi[axis] - lo;
    if (count <= leafsize || !(extent > 0)) return;
    auto binof = [&](int64_t t) { return std::min(bins - 1, static_cast<int>((centroids[t][axis] - lo) / extent * bins)); };
    std::array<tbox, bins> binbox;
    std::array<int64_t, bins> bincount{};
    for (tbox& b : binbox) emptybox(b);
    for (int64_t i = first; i < first + count; ++i) {
      const int b = binof(order[i]);
      grow(binbox[b], boxes[order[i]]), ++bincount[b];
    }
    std::array<double, bins> rightcost{};
    tbox acc;
    emptybox(acc);
    int64_t n = 0;
    for (int b = bins - 1; b > 0; --b) grow(acc, binbox[b]), n += bincount[b], rightcost[b] = area(acc) * n;
    emptybox(acc);
    n = 0;
    int best = 0;
    double bestcost = std::numeric_limits<double>::infinity();
    for (int b = 0; b < bins - 1; ++b) {
      grow(acc, binbox[b]), n += bincount[b];
      const double cost = area(acc) * n + rightcost[b + 1];
      if (cost < bestcost) bestcost = cost, best = b;
    }
    const auto middle = std::partition(order.begin() + first, order.begin() + first + count,
                                       [&](int64_t t) { return binof(t) <= best; });
    int64_t leftcount = middle - (order.begin() + first);
    if (leftcount == 0 || leftcount == count || depth >= maxdepth) {  // halve by position
      leftcount = count / 2;
      std::nth_element(order.begin() + first, order.begin() + first + leftcount, order.begin() + first + count,
                       [&](int64_t a, int64_t b) { return centroids[a][axis] < centroids[b][axis]; });
    }
    const int64_t left = static_cast<int64_t>(nodes.size());
    nodes.resize(nodes.size() + 2);
    nodes[node].count = 0, nodes[node].first = left;
    build(left, first, leftcount, depth + 1);
    build(left + 1, first + leftcount, count - leftcount, depth + 1);
  }
};

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

traybvh buildraybvh(std::vector<traytriangle> triangles) {
  std::erase_if(triangles, [](const traytriangle& t) { return !finitetriangle(t); });
  traybvh bvh;
  if (triangles.empty()) return bvh;
  std::vector<tbox> nodes(1);
  nodes.reserve(2 * triangles.size() / tbuilder::leafsize + 2);
  tbuilder b{triangles, {}, {}, {}, nodes, 0};
  const size_t n = triangles.size();
  b.centroids.resize(n), b.boxes.resize(n), b.order.resize(n);
  double largest = 0;
  for (size_t i = 0; i < n; ++i) {
    const traytriangle& t = triangles[i];
    emptybox(b.boxes[i]);
    for (const tvector* p : {&t.a, &t.b, &t.c}) {
      grow(b.boxes[i], *p);
      for (double x : *p) largest = std::max(largest, std::fabs(x));
    }
    for (int k = 0; k < 3; ++k) b.centroids[i][k] = (t.a[k] + t.b[k] + t.c[k]) / 3;
    b.order[i] = static_cast<int64_t>(i);
  }
  // Boxes grow by a hair so that rounding in the slab test never drops a grazing hit.
  b.pad = largest * 1e-12 + 1e-300;
  b.build(0, 0, static_cast<int64_t>(n), 0);
  bvh.nodes = std::move(nodes);
  bvh.triangles.reserve(n);
  for (int64_t i : b.order) bvh.triangles.push_back(triangles[i]);
  return bvh;
}

trayhit firsthit(const traybvh& bvh, const tvector& o, const tvector& d, double limit) {
  constexpr double none = std::numeric_limits<double>::infinity();
  trayhit hit;
  if (bvh.nodes.empty()) return hit;
  const tvector inv{1 / d[0], 1 / d[1], 1 / d[2]};
  // Entry depth of the ray into a box, infinity when it misses or starts beyond the best.
  // A NaN from a ray lying in a slab's plane is passed over by the comparisons.
  auto entry = [&](const tbox& b) {
    double tmin = 0, tmax = std::min(limit, hit.depth);
    for (int k = 0; k < 3; ++k) {
      double t0 = (b.lo[k] - o[k]) * inv[k], t1 = (b.hi[k] - o[k]) * inv[k];
      if (t0 > t1) std::swap(t0, t1);
      if (t0 > tmin) tmin = t0;
      if (t1 < tmax) tmax = t1;
    }
    return tmin <= tmax * (1 + 1e-12) ? tmin : none;
  };
  int64_t stack[tbuilder::maxdepth + 64];
  int top = 0;
  int64_t node = 0;
  if (!(entry(bvh.nodes[0]) < none)) return hit;
  for (;;) {
    const tbox& b = bvh.nodes[node];
    if (b.count) {
      for (int64_t i = b.first; i < b.first + b.count; ++i) {
        const traytriangle& t = bvh.triangles[i];
        const double depth = raytriangle(o, d, t, limit);
        if (depth < hit.depth || (depth == hit.depth && t.order < hit.order))
          hit = {depth, t.order};
      }
    } else {
      int64_t near = b.first, far = b.first + 1;
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
