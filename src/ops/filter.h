// Free 3 by 3 by 3 kernels and the medians of axis lines, on the interior voxels of gray
// and fullgray volumes (2..size - 1 on each axis); the border stays, a mono field stays.
// Every voxel reads the unchanged volume.
#pragma once
#include <array>
#include <cstdint>

#include "field/imagefield.h"
#include "field/scalarfield.h"

// sum(w * v) / divisor, signed and truncated, clamped to the kind; weights in the order z,
// then y, then x, each from the low side. A divisor of 0 does nothing.
void filterfield(tscalarfield& f, const std::array<int64_t, 27>& weights, int64_t divisor);

// Labels kept labels: a voxel that is 0 stays 0, the others take the most frequent value of
// their window (cut at the x and y border) when it is not 0; otherwise 0 when the value at
// position `threshold` of the frequency-sorted window is 0, else the last value that is not
// 0 above that position. The first and last slice stay.
void labelsmoothfield(tscalarfield& f, int64_t threshold);

// The three numbers a + c + b, (a + c + b) / 3 or a * c * b of the lines through the voxel
// along x, y and z (a, c, b: low, centre, high); the median of the three, clamped.
enum class tmediankind { add, mean, mul };
const char* medianword(tmediankind kind);
void medianfield(tscalarfield& f, tmediankind kind);

// The 3 by 3 form on an image's interior, weights in rows from the top left. Pixels are
// read as values (a colour as its sum) into a copy first, the result is set as a value (a
// colour gets it in each component). Nothing on fewer than 10 pixels or a divisor of 0.
void filterimage(timagefield& f, const std::array<int64_t, 9>& weights, int64_t divisor);
