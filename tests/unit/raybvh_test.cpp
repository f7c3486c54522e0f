#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "geometry/raybvh.h"

namespace {

// The sequential walk the hierarchy must reproduce: every triangle in order, strictly nearer.
trayhit bruteforce(const std::vector<traytriangle>& ts, const tvector& o, const tvector& d, double limit) {
  trayhit best;
  for (const traytriangle& t : ts) {
    const double depth = raytriangle(o, d, t, limit);
    if (depth < best.depth) best = {depth, t.order};
  }
  return best;
}

void expectsame(const std::vector<traytriangle>& ts, const traybvh& bvh, const tvector& o, const tvector& d, double limit) {
  const trayhit a = bruteforce(ts, o, d, limit), b = firsthit(bvh, o, d, limit);
  ASSERT_EQ(a.order, b.order) << o[0] << " " << o[1] << " " << o[2];
  if (a.order >= 0) {
    ASSERT_EQ(a.depth, b.depth);
  }
}

}  // namespace

// A random soup with depth ties (each triangle twice, later copy must lose), random rays.
TEST(RayBvh, FirstHitOfASoupEqualsTheSequentialWalk) {
  std::mt19937_64 rng(7);
  std::uniform_real_distribution<double> u(-1, 1);
  std::vector<traytriangle> ts;
  for (int64_t i = 0; i < 10000; ++i) {
    const tvector c{u(rng), u(rng), u(rng)};
    auto near = [&] { return tvector{c[0] + 0.1 * u(rng), c[1] + 0.1 * u(rng), c[2] + 0.1 * u(rng)}; };
    ts.push_back({near(), near(), near(), 2 * i});
    if (i % 3 == 0) ts.push_back({ts.back().a, ts.back().b, ts.back().c, 2 * i + 1});
  }
  ts.push_back({{NAN, 0, 0}, {1, 0, 0}, {0, 1, 0}, 99999});  // never hit, never crashes
  const traybvh bvh = buildraybvh(ts, 3);  // big enough for subtrees built apart
  for (int r = 0; r < 1000; ++r) {
    const tvector o{2 * u(rng), 2 * u(rng), 2 * u(rng)}, d{u(rng), u(rng), u(rng)};
    expectsame(ts, bvh, o, d, r % 5 ? INFINITY : 1.0);
  }
}

// Rays through the vertices and edges of a grid of squares, axis-parallel ones among them:
// the slab test must not lose a grazing hit, and a ray in a face's plane hits nothing.
TEST(RayBvh, GridVerticesAndEdgesAreFound) {
  std::vector<traytriangle> ts;
  const int n = 16;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      const double x = i / 4.0, y = j / 4.0, z = -1 - (i + j) % 3;
      const int64_t k = 2 * (j * n + i);
      ts.push_back({{x, y, z}, {x + 0.25, y, z}, {x + 0.25, y + 0.25, z}, k});
      ts.push_back({{x, y, z}, {x + 0.25, y + 0.25, z}, {x, y + 0.25, z}, k + 1});
    }
  const traybvh bvh = buildraybvh(ts);
  int hits = 0;
  for (int j = 0; j <= 2 * n; ++j)
    for (int i = 0; i <= 2 * n; ++i) {
      const tvector o{i / 8.0, j / 8.0, 0};
      expectsame(ts, bvh, o, {0, 0, -1}, INFINITY);
      expectsame(ts, bvh, o, {0.01, -0.02, -1}, INFINITY);
      hits += firsthit(bvh, o, {0, 0, -1}, INFINITY).order >= 0;
    }
  EXPECT_EQ(hits, (2 * n + 1) * (2 * n + 1));  // the borders included
  EXPECT_EQ(firsthit(bvh, {1, 1, -1}, {1, 0, 0}, INFINITY).order, -1);
  EXPECT_EQ(firsthit(buildraybvh({}), {0, 0, 0}, {0, 0, -1}, INFINITY).order, -1);
}
