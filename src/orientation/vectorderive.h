// Fields derived from a vector field. The scalar and tensor results are first given the
// vector field's size: a target of another size is made new in `kind` (its own kind when it
// has one) with "  Assigned scalar field (XxYxZ) updated." or the tensor form; one of the
// same size is reused as it is. Results take the vector field's place in space. The
// scalar and tensor results are computed slice by slice on at most `parallel` threads.
#pragma once
#include <cstdint>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "field/tensorfield.h"
#include "field/vectorfield.h"

// round(|v|), or with axis 1, 2, 3 the rounded component, through the scalar's clamping write.
void vectorlengths(const tvectorfield& f, tscalarfield& out, uint8_t kind, int64_t parallel);
void vectorcomponents(const tvectorfield& f, int axis, tscalarfield& out, uint8_t kind, int64_t parallel);
// v * v^T: (x^2, y^2, z^2) on the diagonal, (xy, xz, yz) off it.
void orientationtensors(const tvectorfield& f, ttensorfield& out, uint8_t kind, int64_t parallel);

// The distance factor of each vector: with (a, b, c) = v / max(x, y, z),
//   |a - b| (1/4, 1/4, 1/3) + |a - c| (1/4, 1/2, 1/3) + |b - c| (1/2, 1/4, 1/3),
// times 37836 for the integer kind, 147 for rgb. `out` is made new at f's size and kind; it
// takes f's matrix, and the last voxel's result, negated, as its offset.
void distancefactor(const tvectorfield& f, tvectorfield& out);
// Two fields of equal voxel count: the six components (v1, v2) over their largest, and for
// every pair i < j of them |u_i - u_j| (0.2 i, 0.2 j, 0.2 (j - i)). False (nothing done)
// when the counts differ.
bool distancefactor(const tvectorfield& f, const tvectorfield& g, tvectorfield& out);

// Each (x, y) takes the rounded vector at the z of the largest scalar value (the lowest
// such z, none when all are 0) as its colour, the zero colour when that z is the first or
// last slice or none. An empty image is made at the smaller size of both fields in `kind`
// with the vector field's place; a filled one is kept with a warning. Needs nz > 2.
void fusevectors(const tvectorfield& f, const tscalarfield& s, timagefield& image, uint8_t kind);
