// Numbers over the voxels of a value range: mean and SD, quantiles, extremes, count and sum,
// the box and the mean positions of the voxels in range, their inertia, and the box-counting
// dimension. One walk z, y, x over images and volumes alike; positions are voxel indices
// from 1.
#pragma once
#include <array>
#include <cstdint>

#include "field/imagefield.h"
#include "field/scalarfield.h"

// Inclusive; `all` takes every voxel (the field's own minimum and maximum as range).
struct tvaluerange {
  double lo = 0, hi = 0;
  bool all = true;
  bool holds(int64_t v) const { return all || (v >= lo && v <= hi); }
};

struct tmeansd {
  double mean = 0, sd = 0;
};

// Two passes: the mean, then the sum of squared differences over n - 1. Fewer than two
// voxels give zero, zero.
template <class F> tmeansd fieldstatistic(const F& f, const tvaluerange& r);
// Minimum, first quartile, median, third quartile, maximum, by the list rule: the lower
// element of an even count. All 0 when no voxel is in range.
template <class F> std::array<double, 5> fieldquantiles(const F& f, const tvaluerange& r);

struct tcountsum {
  int64_t count = 0;
  double sum = 0, min = 0, max = 0;  // min and max are 0 without a voxel in range
};
template <class F> tcountsum fieldcountsum(const F& f, const tvaluerange& r);

// The bounding box of the voxels in range as (min + max) / 2 and max - min; zero vectors
// for none.
template <class F> tvector objectcenter(const F& f, const tvaluerange& r);
template <class F> tvector objectsize(const F& f, const tvaluerange& r);
// Mean position, plain or weighted by the value (weighted only when the sum of values is
// above 0).
template <class F> tvector fieldcentroid(const F& f, const tvaluerange& r, bool weighted);

// The inertia tensor of the voxels in range (each of mass 1) about their centroid:
// xx, yy, zz, xy, xz, yz, with Ixx = sum (y^2 + z^2) and Ixy = -sum x y, each times scale
// plus add.
template <class F> std::array<double, 6> fieldinertia(const F& f, const tvaluerange& r, double scale, double add);

// -log10(count) / log10(L), L the cube root of the product of the object size; 0 for an
// object of size zero.
template <class F> double boxcounting(const F& f, const tvaluerange& r);
