// The level commands whose table comes from the histogram: shares cut at both ends,
// equalisation, the histogram's peak moved, ends cropped, signs unwrapped, inversion.
// Images do each colour on its own histogram; a volume has one. Mono fields stay.
#pragma once
#include <cstdint>

#include "ops/leveladjust.h"

enum class tlevelrule {
  percentage,  // cut the shares low and high, stretch what is left onto 0..top
  weak,        // as percentage, onto c..d when given, else half way from the identity
  outliers,    // stretch the fences q.25 - 1.5 (q.75 - q.25) .. q.75 + 1.5 (q.75 - q.25)
  equal,       // histogram equalisation
  peaklower,   // the peak to 0
  peakmiddle,  // the peak to top div 2
  peakhigher,  // the peak to top
  sign,        // wrapped signed levels unwrapped: top div 2 + 1 .. top, 0 .. top div 2
  range,       // the first occupied level to 0
  crop,        // levels beyond the first and last held by more than one voxel clamped to them
  invert,      // top - level
};

struct tlevelshares {
  double low = 0.006, high = 0.006;  // shares outside 0..1 fall back to 0.006
  int64_t c = -1, d = -1;            // the weak rule's target levels, when both are 0 or more
};

// The table of a rule for a histogram of top + 1 levels; empty when nothing is to change.
tleveltable ruletable(tlevelhistogram h, int64_t top, tlevelrule rule, const tlevelshares& shares);

// Comb gaps of one or two empty levels between occupied ones filled from their neighbours.
void repairhistogram(tlevelhistogram& h);

void adjustlevels(tscalarfield& f, tlevelrule rule, const tlevelshares& shares = {});
void adjustlevels(timagefield& f, tlevelrule rule, const tlevelshares& shares = {});

// Levels lo..hi become n (each colour alike).
void setlevels(tscalarfield& f, int64_t lo, int64_t hi, int64_t n);
void setlevels(timagefield& f, int64_t lo, int64_t hi, int64_t n);
