// Neighbour-count morphology on value ranges. A pass looks at each pixel's 8 (plane) or
// 26 (volume) neighbours, reading the background outside the field:
//   shrink    a pixel in the range whose count k of neighbours outside the range exceeds
//             n becomes the given value, or the integer mean of those k neighbours
//   grow      the mirror: a pixel outside whose count of neighbours inside exceeds n
//   skeleton  shrink, but a pixel with 21 or more outside neighbours (a tip) stays
// The label form takes the most frequent deciding value in place of the mean. A pass reads
// only old values; its result is the count of changed pixels.
#pragma once
#include <cstdint>
#include <optional>

#include "field/imagefield.h"
#include "field/scalarfield.h"

struct tmorphrange {
  int64_t lo = 1, hi = 0;
  bool contains(int64_t v) const { return v >= lo && v <= hi; }
};

enum class tmorphkind { shrink, grow, skeleton };

struct tmorphstep {
  tmorphkind kind = tmorphkind::shrink;
  tmorphrange range;
  int64_t n = 4;                 // clamped to 0..8 or 0..26 by the pass
  std::optional<int64_t> value;  // the new value; the neighbours' mean or label without it
  bool label = false;
};

// One pass. Colour images run on red, green and blue alone and answer the blue count;
// alpha and depth stay.
int64_t morphpass(tscalarfield& f, const tmorphstep& step);
int64_t morphpass(timagefield& f, const tmorphstep& step);

// One pass, then more while the last one changed something, at most 9999 more; the sum
// of the counts.
int64_t morphfull(tscalarfield& f, const tmorphstep& step);
int64_t morphfull(timagefield& f, const tmorphstep& step);

// The most frequent of n values; of equally frequent ones, the one the list order of the
// frequency sort puts last.
int64_t mostfrequent(int64_t* values, int64_t n);
