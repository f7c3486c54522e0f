// Filling what a structure encloses, and removing what stands out of its neighbourhood.
// Ranges are inclusive value ranges of the field's samples (colour images: getvalue, the
// sum of the colours, for the hole search).
#pragma once
#include <cstdint>
#include <optional>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "ops/morphology.h"

// Each sample outside median -+ factor * (q.75 - q.25) of its 3 by 3 (by 3) window (the
// background outside the field) becomes the median; the count of changed samples (colour
// images: of the blue plane).
int64_t removeoutliers(tscalarfield& f, int64_t factor);
int64_t removeoutliers(timagefield& f, int64_t factor);

// Pixels outside the range that the outside of the field can't reach through pixels
// outside the range (4-connected in a plane, 6-connected in a volume) take the value:
// the image's value, the given one for a volume.
void fillholes(timagefield& f, const tmorphrange& range);
void fillholes(tscalarfield& f, const tmorphrange& range, int64_t value);

// Each zero sample takes the inverse-distance mean of the first non-zero samples along
// the 8 directions of the plane, rounded; without any it stays 0. The gap form fills only
// samples enclosed along some direction (non-zero found both ways), within the box of
// corners a and b (1-based, inclusive) when given. Every plane of the kind on its own.
void fillzero(timagefield& f);
void fillgap(timagefield& f, const std::optional<std::array<int64_t, 4>>& box);

// Along each line of axis 0 (x), 1 or 2: from the first to the last voxel in range, all
// take the field's value. The count of changed voxels.
int64_t fillcave(tscalarfield& f, int axis, const tmorphrange& range);
// In each plane across the axis: the filled convex hull of the voxels in range takes the
// field's value.
int64_t fillhull(tscalarfield& f, int axis, const tmorphrange& range);
// The cave fill along x, y and z repeated until nothing changes, slices on at most
// `parallel` threads; the result does not depend on it.
int64_t fillconvex(tscalarfield& f, const tmorphrange& range, int64_t parallel);
