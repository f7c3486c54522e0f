// Laying a mesh into the xy-plane: its longest extent along x, its shortest along z.
#pragma once
#include <cstdint>

#include "field/mesh.h"

// 3 * steps passes (steps below 1 count as 1) with the plane cycling through (x, y) about z,
// (x, z) about y and (y, z) about x. Each pass centres the mesh on the mean of its points,
// adds up the round(n * fraction) longest differences of the n points taken (every
// stride-th point) in that plane, each turned into the half-plane of a positive first
// coordinate, and turns the mesh so that this sum lies along the plane's first axis.
// Nothing happens when round(n * fraction) is below 1. With stopdegrees > 0 the rounds of
// three passes go on, up to steps of them, until one turns by less than stopdegrees in all.
// Time grows with the square of n. Progress "  Adjust object".
void meshadjust(tmesh& m, int64_t steps, double fraction, int64_t stride = 1, double stopdegrees = 0);

// The same aim in one step: centred on the mean and turned onto the principal axes of
// every stride-th point (largest spread along x, a right-handed frame). Points that are
// not finite are left out of the axes.
void meshprincipal(tmesh& m, int64_t stride);
