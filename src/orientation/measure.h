// Maps from the line scan: the smallest thickness of a structure through each voxel (tried
// from fine to coarse scan lengths), its centred form (skeleton), its form on border voxels
// (cartoon), and the plane: the direction of the shortest crossing as a vector per voxel.
#pragma once
#include <cstdint>

#include "field/scalarfield.h"
#include "field/vectorfield.h"

enum class tthickness { thickness, skeleton, cartoon };
void thicknessmap(const tscalarfield& f, tscalarfield& target, tthickness m, int64_t r, int64_t parallel, uint8_t newkind);
void planemap(const tscalarfield& f, tvectorfield& out, int64_t r, int64_t parallel, uint8_t newkind);

// The scan lengths tried for r, shortest first: r/16 .. r when r/16 >= 2, r/4 .. r when
// r/4 >= 2, else r alone.
std::vector<int64_t> thicknessladder(int64_t r);
