// Orientation fields from gray values: every object voxel (value >= 1) gets the direction
// of the most homogeneous scan line through it (see scan.h and diffusionmethods.h); a
// background voxel gets the zero vector at the cost of one read.
#pragma once
#include <cstdint>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "field/vectorfield.h"
#include "orientation/diffusionmethods.h"

// The settings a field keeps, with the method number mapped, for scan length r.
tdiffusionsettings diffusionsettings(const tscalarfield& f, int64_t r);
tdiffusionsettings diffusionsettings(const timagefield& f, int64_t r);

// The whole command: r must lie in 1..65535 and every size exceed 2r, else "Wrong scan
// size (r)!" and nothing changes. k = 1 fills a field of the scalar's size; k = 2..5 one of
// size / k, scanning every k-th voxel (adaptive: with its retries and its eight-cell
// writes). The vector field is made anew in newkind only when its size differs; it takes
// the scalar's place in space (the matrix times k). Slices run on at most `parallel`
// threads; the result does not depend on that number.
bool scalardiffusion(const tscalarfield& f, tvectorfield& out, int64_t r, int64_t k, bool adaptive, int64_t parallel,
                     uint8_t newkind);

// The orientation of each pixel as a gray level of its angle; an empty target takes the
// source's size and place, a filled one is computed into as it is (with a warning).
bool imagediffusion(const timagefield& f, timagefield& target, int64_t r, uint8_t newkind);
