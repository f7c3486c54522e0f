// Smoothing of a mesh by its neighbours, and normals taken from the faces.
#pragma once
#include <cstdint>

#include "field/mesh.h"

// soft: the mean of the neighbours, then the midpoint of that and the point;
// plain: neighbours and the point itself, all of one weight; hard: the neighbours alone.
// Neighbours are the other corners of each face that holds the point, so a neighbour
// shared by two faces counts twice. A point without faces stays.
enum class tsmoothing { soft, plain, hard };

// n passes over the points, each reading only the points of the pass before, then one
// pass over the normals by the same rule. n < 1 or an empty mesh does nothing.
void meshsmooth(tmesh& m, tsmoothing kind, int64_t n);

// Each point's normal: the sum of the area-weighted normals of its faces (corner order,
// right-handed), made a unit vector; a point without faces gets the zero normal.
// Progress "  Calculate normals".
void meshnormals(tmesh& m);
// The same, each then turned to the coordinate axis nearest to it (ties go to x, then y).
// Progress "  Calculate orthonormals".
void meshorthonormals(tmesh& m);
