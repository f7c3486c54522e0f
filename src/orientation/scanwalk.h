// The hot part of scanline: a line from p1 to p2 prepared once for a volume's row and slice
// lengths, so that each sample is one table read and one voxel read. Since p1 lies on the
// grid, the fixed-point fractions of the walk do not depend on where the line starts, and
// the voxel offsets of all samples can be kept per direction. Bounds are tested once per
// line: the samples inside the volume form one range of k on each walk.
#pragma once
#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "orientation/scan.h"

struct tscanstep {
  int64_t steps = -1;              // samples 0..steps; -1: the line is empty
  int64_t step[3] = {0, 0, 0};     // 16.16 per sample
  int64_t delta = 0;               // linear offset from p1 to p2
  std::vector<int64_t> forward;    // offset of sample k from p1 (p1 + k step)
  std::vector<int64_t> backward;   // offset of sample k from p2 (p2 - k step)
};

// The walk of a line from p1 to p1 + delta in a volume of row length nx and slice area nxy.
tscanstep scanstep(const tscanpoint& delta, int64_t nx, int64_t nxy);

// The samples k of a walk from the grid point `from` (1-based) by `step` that lie inside
// 1..size on every axis: [lo, hi], empty when lo > hi. `sign` -1 walks backwards.
struct tkrange {
  int64_t lo, hi;
};
tkrange insiderange(const tscanstep& s, const tscanpoint& from, int sign, const int64_t (&size)[3]);

// Line moments and extremes gathered while walking; the quantiles gather the list.
struct tmomentsink {
  int64_t count = 0, sum = 0;
  uint64_t squares = 0;
  void add(int64_t v) {
    ++count;
    sum += v;
    squares += static_cast<uint64_t>(v * v);
  }
  double value(int submethod) const { return momentstatistic(count, sum, squares, submethod); }
};
struct textremesink {
  int64_t count = 0, low = std::numeric_limits<int64_t>::max(), high = std::numeric_limits<int64_t>::min();
  void add(int64_t v) {
    ++count;
    low = std::min(low, v);
    high = std::max(high, v);
  }
  double value(int submethod) const { return static_cast<double>(submethod == 3 ? low : high); }
};
struct tlistsink {
  std::vector<int64_t>* values;
  int64_t count = 0;
  void add(int64_t v) {
    values->push_back(v);
    ++count;
  }
  double value(int submethod) const { return linestatistic(*values, submethod); }
};

// The one connected run of non-zero samples, into sink. v points at voxel (1, 1, 1); i1
// and i2 are the 0-based indices of p1 and p2 (either may lie outside), f and b the inside
// ranges of the forward and backward walk.
template <class T, class Sink>
void walkline(const T* v, const tscanstep& s, int64_t i1, int64_t i2, tkrange f, tkrange b, Sink& sink) {
  const int64_t fhi = std::min(f.hi, s.steps), bhi = std::min(b.hi, s.steps);
  const int64_t* ahead = s.forward.data();
  if (f.lo <= 0 && fhi >= 0 && v[i1] != 0) {
    for (int64_t k = 0; k <= fhi; ++k) {
      const T x = v[i1 + ahead[k]];
      if (x == 0) return;
      sink.add(x);
    }
    return;
  }
  if (b.lo <= 0 && bhi >= 0 && v[i2] != 0) {
    const int64_t* back = s.backward.data();
    for (int64_t k = 0; k <= bhi; ++k) {
      const T x = v[i2 + back[k]];
      if (x == 0) return;
      sink.add(x);
    }
    return;
  }
  int64_t k = std::max<int64_t>(f.lo, 0);
  while (k <= fhi && v[i1 + ahead[k]] == 0) ++k;
  for (; k <= fhi; ++k) {
    const T x = v[i1 + ahead[k]];
    if (x == 0) return;
    sink.add(x);
  }
}
