// The 3x3x3 vector filters. Only the inner voxels (2..n-1 on each axis) are computed; the
// outermost layer stays. A pass computes into float vectors and writes back through the
// rounding write, reading only the field as it stood before the pass:
//   smooth  the sum of the 27 vectors of the block / 27
//   soft    (S / 26 + centre) / 2, S the sum of the 8 corner neighbours
//   hard    S / 26
// The divisor 26 with eight summands is meant: soft and hard shrink the vectors.
#pragma once
#include <cstdint>

#include "field/vectorfield.h"

enum class tvectorsmooth { soft, smooth, hard };

// `passes` passes, the slices on at most `parallel` threads; the result does not depend
// on it. A field with fewer than 3 voxels on an axis has no inner voxels.
void smoothvectors(tvectorfield& f, tvectorsmooth kind, int64_t passes, int64_t parallel);

// For every voxel, per component, the quartiles of its 27-block (outside reads as zero):
// entries 7, 14 and 19 of the sorted 27. A voxel whose component lies outside
// median +- f * |Q.25 - Q.75| in any component becomes the vector of medians. All blocks
// are read from the field as it stood. Returns how many voxels were replaced.
int64_t removeoutliers(tvectorfield& f, double factor);
