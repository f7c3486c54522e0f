// The six ways of turning the line statistics of one voxel into its orientation. Each
// direction i of the list has a statistic values[i], or is not accepted (too short a line).
// Smaller is better; ties are exact equality of the 64-bit values. The zero vector means
// no orientation.
//   1 brell2013   the single best direction, length the statistic; a tie cancels it
//   2 brell2014a  the mean of the best two (the second flipped when it points away)
//   3 brell2014b  the mean of all tied best, unless they are at least `max` of all
//   4 brell2015a  the sum of the tied best inside the cone of `angle` around their mean
//   5 brell2015b  the same, walking the ranking while it stays inside the cone (also 0
//                 and every unknown number)
//   6 brell2019   as 5, normalised and scaled by the statistic
#pragma once
#include <cstdint>
#include <utility>
#include <vector>

#include "orientation/scan.h"
#include "script/utf16.h"

struct tdiffusionsettings {
  int method = 5;  // 1..6, already mapped by diffusionmethod
  int submethod = 2;
  bool fullscan = false;
  double angle = 0;  // radian
  double max = 0.25;
  int64_t r = 1;
};

// 0 and unknown numbers behave as 5.
int diffusionmethod(uint8_t stored);
// The "Method: " line of a command.
utf16 diffusionmethodline(const tdiffusionsettings& s);

// The working lists of one worker, reused from voxel to voxel.
struct tdiffusionscratch {
  std::vector<tscanpoint> chosen;                 // accepted directions of the voxel
  std::vector<std::pair<double, double>> ranking;  // (index into chosen, statistic)
};

tscanunit diffusionresult(const tdiffusionsettings& s, const tscandirectionset& dirs, const double* values,
                          const uint8_t* accepted, tdiffusionscratch& scratch);

// arccos of the normalised dot product, 0 when either vector is zero.
double coneangle(const tscanunit& a, const tscanunit& b);
