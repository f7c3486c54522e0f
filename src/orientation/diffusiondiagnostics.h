// The scan of one voxel shown whole: its lines as text, the sphere of line statistics as
// images, and how the tie count and the window statistics change with the scan length.
// The point of a diagnostic: a coordinate below 1 puts the whole point at the field's
// centre (n / 2 per axis); the offset is added afterwards.
#pragma once
#include <cstdint>

#include "field/scalarfield.h"
#include "script/utf16.h"

tnatvector diagnosticpoint(const tscalarfield& f, const tvector& point, const tvector& offset);

// The raw sphere rows with each line's values, the accepted index, mean and SD, and the
// three lowest SDs at the end.
bool diffusiondump(const tscalarfield& f, int64_t r, const tnatvector& p, const utf16& name);
// round(2 SD) of each raw direction on a 16-bit image of side round(pi r), the directions
// tied for the lowest SD marked, and an 8-bit copy named with "-low." before the extension.
bool diffusionmap(const tscalarfield& f, int64_t r, const tnatvector& p, const utf16& name);
// The mean and the round(2 SD) maps ("-mean.", "-sd.") and a colour image of both (red the
// mean, blue the SD, each capped at 255).
bool diffusioncolormap(const tscalarfield& f, int64_t r, const tnatvector& p, const utf16& name);
// For s from round(min size / 2) down to 1, the number of directions tied for the lowest SD
// among the lines of at least s values (0 below three such lines), as a chart.
bool diffusionhistogram(const tscalarfield& f, const tnatvector& p, const utf16& name);
// For window half widths w = 1..s: the lowest and highest mean and SD (count as divisor)
// over the centre windows of all whole lines, as two charts ("-mean.", "-sd.").
bool diffusionsd(const tscalarfield& f, const tnatvector& p, const utf16& name);
