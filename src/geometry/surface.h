// Surfaces cut from a scalar field into a mesh: marching cubes with three corner tests,
// and the visible faces of voxels. Triangles are added to what the mesh holds.
#pragma once
#include <cstdint>

#include "field/mesh.h"
#include "field/scalarfield.h"
#include "field/vectorfield.h"

enum class tcornertest {
  weak,    // corner value >= low
  range,   // corner value in low..high
  smooth,  // density of the range in the 3x3x3 block > 127
};

// Vertices lie on the voxel lattice (each edge point rounded), triangles whose corners
// coincide are dropped, corners go in reversed table order. Slices are computed on up to
// `threads` workers; the mesh is the same for any count. Progress "Precalculation" and
// "Calculate surface". With `colors` (a field with voxels) each triangle takes the vector at
// its cube's corner voxel / 255 as colour, else black.
void marchingsurface(tmesh& m, const tscalarfield& f, tcornertest test, double low, double high, int64_t threads,
                     const tvectorfield* colors = nullptr);

// One quad for each face between a voxel in the range and one outside it, on a cube of 0.9
// voxel size. Progress "Calculate cubic surface".
void cubesurface(tmesh& m, const tscalarfield& f, double low, double high, const tvectorfield* colors = nullptr);

// The two warning lines when the field's matrix has a negative entry.
void warnnegativematrix(const tscalarfield& f);
