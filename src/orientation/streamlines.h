// Streamlines: the vector field followed from seed points in both directions. One tracer,
// one driving loop; the commands differ by their seed source and their seed test.
#pragma once
#include <cstdint>
#include <functional>
#include <numbers>

#include "field/cloud.h"
#include "field/scalarfield.h"
#include "field/vectorfield.h"

struct tstreamsettings {
  int64_t seeds = 1;   // 0 all, 1 only unvisited voxels, n >= 2 with a margin of n - 1
  int64_t snakes = 0;  // 0 whole lines, 1 up to the first visited voxel, n >= 2 with a margin
  double steps = 1;    // in voxel sizes
  double angles = std::numbers::pi / 180;  // thinning of stored points, radian; 0 stores all
  double stopangle = std::numbers::pi / 2;
  double stoplength = 0;  // 0: the field's diagonal
  int64_t stopcontrast = 0;
};

// A seed source yields candidate voxels (local integer positions, possibly outside the
// field) until it returns false.
using tseedsource = std::function<bool(tnatvector&)>;

enum class tseedtest : uint8_t { zerovector, nonzerovector };

struct tstreamjob {
  tseedtest test = tseedtest::nonzerovector;
  bool muscle = false;     // keep only lines with balanced halves
  bool counted = false;    // the seed count was asked for: add the note
  bool warnmatrix = true;  // warn about negative matrix entries
  bool nodes = false;      // count the lines into `scalar` instead of storing them
  std::function<bool(const tnatvector&)> zero;  // the seed test's own zero test, if any
};

// The seed sources.
tseedsource voxelseeds(const tnatvector& size);
tseedsource randomseeds(const tnatvector& size, int64_t n, const std::function<bool(const tnatvector&)>& zero);
tseedsource planeseeds(const tspatial& space, const tnatvector& size, const tvector& point, const tvector& normal);
// A zero test for `randomseeds` and the seed test: true where the vector at the local voxel
// is zero or the voxel lies outside.
std::function<bool(const tnatvector&)> zerotest(const tvectorfield& f, int64_t seeds);
// Only the candidates inside the field where `mask` holds a value of one of the ranges.
tseedsource maskedseeds(tseedsource inner, const tscalarfield& mask, std::vector<std::pair<int64_t, int64_t>> ranges);

// The whole run. contrast is read for the contrast stop (may be null when that is off),
// scalar is the nodes' target. Lines are added to `out`; the "  Found" lines are printed.
void tracestreams(const tvectorfield& f, const tstreamsettings& settings, const tstreamjob& job, tseedsource seeds,
                  const tscalarfield* contrast, tscalarfield* scalar, tcloud& out);
// True when the vector at the local voxel is exactly zero (outside counts as zero).
bool zerovectorat(const tvectorfield& f, const tnatvector& c);
