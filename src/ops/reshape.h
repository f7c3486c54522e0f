// Parts of fields and fields turned over: subfields and crops to content, moved blocks,
// closed slice gaps, flips and quarter turns. Corners are 1-based and inclusive.
#pragma once
#include <cstdint>
#include <optional>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "field/tensorfield.h"
#include "field/vectorfield.h"
#include "ops/morphology.h"

// The block of corners lo and hi (each component lo <= hi) of the source into the target:
// sized to the block, samples outside the source read as its background, offset at the
// global position of lo, matrix and settings kept. Prints the "New subimage" or "New
// substack" line.
void subfield(timagefield& target, const timagefield& source, const tnatvector& lo, const tnatvector& hi);
void subfield(tscalarfield& target, const tscalarfield& source, const tnatvector& lo, const tnatvector& hi);
void subfield(tvectorfield& target, const tvectorfield& source, const tnatvector& lo, const tnatvector& hi);
void subfield(ttensorfield& target, const ttensorfield& source, const tnatvector& lo, const tnatvector& hi);

// In place, to the box of the pixels whose value is above v; without any it stays.
void cropimage(timagefield& f, int64_t v);
// To the box of the voxels in range, of `mask` when given (of the source's size); the
// target may be the source itself. Without any such voxel the target is an equal copy.
void cropfield(tscalarfield& target, const tscalarfield& source, const tscalarfield* mask, const tmorphrange& range);
// The same for vectors by their rounded length.
void cropfield(tvectorfield& target, const tvectorfield& source, const tmorphrange& range);

// The block of corners a and b moved by d: read first, cleared with the background, then
// written at its new place, clipped to the field.
void moveblock(tscalarfield& f, const tnatvector& a, const tnatvector& b, const tnatvector& d);
void moveblock(tvectorfield& f, const tnatvector& a, const tnatvector& b, const tnatvector& d);
void moveblock(ttensorfield& f, const tnatvector& a, const tnatvector& b, const tnatvector& d);

// Runs of exactly n empty (all 0) slices across axis 0, 1 or 2 between filled ones, filled
// by linear interpolation between the slices around them. The count of closed gaps.
int64_t patchgaps(tscalarfield& f, int axis, int64_t n);

// The axis reversed in place.
void flipfield(tscalarfield& f, int axis);
void flipfield(timagefield& f, int axis);
void flipfield(tvectorfield& f, int axis);
// Quarter turns clockwise as seen with y downwards; any multiple of 90 degrees.
void rotateimage(timagefield& f, int64_t degrees);
