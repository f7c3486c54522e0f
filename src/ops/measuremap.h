// Maps of a local property: each voxel of a result field gets a value from the block or the
// lines around the same voxel of the source. The source is read from a private copy (so a
// target may be the source itself), each slice is computed by a slice worker into its own
// plane, and every voxel depends on the source alone: maps are the same for any thread count.
#pragma once
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "field/scalarfield.h"
#include "script/utf16.h"

// The source's voxels as 16-bit values, x fastest; outside reads 0.
struct tvoxelcopy {
  std::vector<uint16_t> v;
  int64_t n[3] = {0, 0, 0};
  int64_t index(int64_t x, int64_t y, int64_t z) const { return (x - 1) + n[0] * ((y - 1) + n[1] * (z - 1)); }
  bool inside(int64_t x, int64_t y, int64_t z) const {
    return x >= 1 && y >= 1 && z >= 1 && x <= n[0] && y <= n[1] && z <= n[2];
  }
  int64_t at(int64_t x, int64_t y, int64_t z) const { return inside(x, y, z) ? v[index(x, y, z)] : 0; }
};
tvoxelcopy voxelcopy(const tscalarfield& f);

// The scan length in 1..65535 and 2r below every side, else "Wrong scan size (r)!".
bool measurescan(int64_t r, const tnatvector& n);

// Sizes the target after the source when they differ ("  Assigned scalar field (..)
// updated.") and gives it the source's place in space, title, labels and settings. False,
// reported, when the target stays empty.
bool measuretarget(const tscalarfield& source, tscalarfield& target, uint8_t newkind);

// value(x, y, z) of a voxel of slice z; NaN keeps the target's voxel as it is.
using tvoxelmeasure = std::function<double(int64_t, int64_t, int64_t)>;
void measureslices(tscalarfield& target, int64_t parallel, const utf16& word, const tvoxelmeasure& value);

inline constexpr double keepvoxel = NAN;

enum class tblockmeasure { mean, sd, lbp, bgc };
// Mean or SD of the cube of side 2r + 1 (for voxels of at least 1), the local binary pattern,
// or zeros in the inner voxels.
void blockmeasure(const tscalarfield& f, tscalarfield& target, tblockmeasure m, int64_t r, int64_t parallel, uint8_t newkind,
                  const utf16& word);
// The box-counting dimension of the cube of side 2 (box div 2) + 1 around each inner voxel.
void localboxcounting(const tscalarfield& f, tscalarfield& target, double lo, double hi, int64_t box, int64_t parallel,
                      uint8_t newkind);
