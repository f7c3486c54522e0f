// The one colour table of the program: numbers become colours for charts, overlays and
// meshes. It is filled from 108 named maps in nine families (A to I), by interpolation
// between each map's anchors, and its alpha can be reshaped.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "script/utf16.h"

using tcolour = std::array<double, 4>;  // red, green, blue, alpha in 0..255

struct tcolormap {
  std::vector<tcolour> entries;  // entry i at index i - 1
};
tcolormap& colormap();

// The number of maps of a family letter, 0 for another letter.
int64_t colormapcount(char family);
// Fills the table from map `index` (clamped to the family) with |steps| entries, or the
// anchors alone for steps 0 and the discrete families; a negative count flips the map.
// Returns the label "#<index> <name>".
utf16 colormapfill(char family, int64_t index, int64_t steps);

enum class talpharule { rising, falling, clear, half, opaque };
// rising: 0 at the first entry to 255 at the last (255 for a single one); falling the
// reverse; clear, half, opaque: 0, 128, 255 everywhere.
void colormapalpha(talpharule rule);

// Entry ((|i| - 1) mod n) + 1, wrapping, of the table; black for an empty one.
tcolour colormapentry(int64_t i);
// The entry of a value in lo..hi mapped onto 1..n with rounding; black when hi <= lo.
tcolour colormapvalue(double v, double lo, double hi);
