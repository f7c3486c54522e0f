// Grey-level remapping of images and volumes. Every level command comes down to a table
// from old to new level, built from the field's histogram or from given ranges, and then
// applied to every voxel; the two steps are kept apart so that each command only says how
// its table is made.
//
// A histogram and a table have one entry per level of the kind, entry v for level v (from
// 0): 256 for gray and the colour kinds, 65536 for fullgray. Mono volumes and empty fields
// have no levels to adjust: their top is 0, and every step leaves them as they are.
#pragma once
#include <cstdint>
#include <vector>

#include "field/imagefield.h"
#include "field/scalarfield.h"

using tlevelhistogram = std::vector<int64_t>;
using tleveltable = std::vector<int64_t>;

// The largest level: 255 for gray and each colour, 65535 for fullgray; 0 for a mono or
// empty field.
int64_t leveltop(const tscalarfield& f);
int64_t leveltop(const timagefield& f);

// The count of each level, top + 1 entries (none for top 0). The colour kinds count red,
// green and blue together in one histogram.
tlevelhistogram levelhistogram(const tscalarfield& f);
tlevelhistogram levelhistogram(const timagefield& f);

// The first and the last level with a count; false for a histogram without any.
bool occupiedrange(const tlevelhistogram& h, int64_t& lo, int64_t& hi);

// The stretch of a..b onto c..d, all four clamped to 0..top and each pair put in order:
// levels up to a become c, levels from b on d, those between them the rounded linear
// step. Empty (nothing to do) when a equals b or top is 0.
tleveltable stretchtable(int64_t a, int64_t b, int64_t c, int64_t d, int64_t top);

// Every level v becomes table[v], clipped to the kind. An empty table, or one whose size
// isn't the kind's level count, changes nothing. Images: gray and fullgray their plane,
// the colour kinds red, green and blue with the one table; alpha and depth stay.
void applytable(tscalarfield& f, const tleveltable& table);
void applytable(timagefield& f, const tleveltable& table);

// The array's levels through the table, each entry clipped to the element type once; an
// empty table changes nothing.
template <class A>
void remaparray(A& a, const tleveltable& table) {
  if (table.empty()) return;
  using T = typename A::elementtype;
  std::vector<T> clipped(table.size());
  for (size_t v = 0; v < table.size(); ++v) clipped[v] = toelement<T>(static_cast<double>(table[v]));
  T* p = a.items();
  for (int64_t i = 0; i < a.length; ++i) p[i] = clipped[p[i]];
  a.sorted = false;
}

// The stretch of the field's own occupied levels onto 0..top.
void stretchoccupied(tscalarfield& f);
void stretchoccupied(timagefield& f);
