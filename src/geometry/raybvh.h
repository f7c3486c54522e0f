// First hits of rays on a set of triangles through a bounding-volume hierarchy, built once
// for many rays. The answer is the one of testing every triangle in order and keeping a
// hit only when it is strictly nearer: among equal depths the lowest order wins.
#pragma once
#include <cstdint>
#include <limits>
#include <vector>

#include "script/values.h"

struct traytriangle {
  tvector a, b, c;
  int64_t order = 0;  // the rank of the triangle in the sequential walk
};

struct trayhit {
  double depth = std::numeric_limits<double>::infinity();
  int64_t order = -1;  // -1: no hit
};

// Moller-Trumbore on origin o and direction d (not normalised; the depth counts in |d|).
// Infinity when the ray misses, runs in the triangle's plane (det = 0), or the hit lies
// behind the origin or beyond limit. u, v and u + v must lie in 0..1.
double raytriangle(const tvector& o, const tvector& d, const traytriangle& t, double limit);

struct traybvh {
  // Bounds in float, rounded outward: half the memory of the walk for the same answers.
  struct tnode {
    float lo[3], hi[3];
    int32_t first = 0;  // a leaf's first triangle, or an inner node's first child (the second follows)
    int32_t count = 0;  // triangles of a leaf; 0 for an inner node
  };
  std::vector<tnode> nodes;
  std::vector<traytriangle> triangles;  // in leaf order
};

// Triangles with a coordinate that is not finite can never be hit and are left out. Up to
// 2^31 - 1 triangles; beyond that none is kept. The tree is the same for any thread count.
traybvh buildraybvh(std::vector<traytriangle> triangles, int64_t threads = 1);

// The nearest hit of o + t d for 0 <= t <= limit; safe to call from many threads.
trayhit firsthit(const traybvh& bvh, const tvector& o, const tvector& d, double limit);
