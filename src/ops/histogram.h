// The value distribution of a field and its analysis: the characteristic values of a
// smoothed histogram as maxima, minima and inflection points.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "field/vectorfield.h"
#include "script/utf16.h"

// Entry v counts the voxels of value v: 256 entries for gray (and for the colour kinds,
// which count their gray value), 65536 for fullgray; none for mono or a field without kind.
std::vector<int64_t> fieldhistogram(const tscalarfield& f);
std::vector<int64_t> fieldhistogram(const timagefield& f);
// A vector field counts its rounded vector lengths in 65536 entries, the longest in the last.
std::vector<int64_t> fieldhistogram(const tvectorfield& f);

// The console chart of the counts: `height` lines of `width + 1` cells in eighth blocks on
// a log10 scale, "0 " in front of the last line and the last value behind it.
std::vector<std::string> histogramchart(const std::vector<int64_t>& counts, int64_t width, int64_t height);

// "value<TAB>count" for each value that occurs.
std::string histogramtable(const std::vector<int64_t>& counts);

struct thistogrampoint {
  int64_t value;
  double count;
};
enum class tanalysiskind { maximum, minimum, inflection };
struct tanalysispoint {
  tanalysiskind kind;
  int64_t value;      // the mean of the merged points, rounded
  int64_t position;   // of that value among the occurring ones, from 0
};
struct tanalysis {
  std::vector<thistogrampoint> points;  // the occurring values in ascending order
  std::vector<double> f, f1, f2;        // smoothed counts, their derivative and its derivative
  std::vector<tanalysispoint> found;
};
// Fewer than 11 occurring values give no analysis (nothing found, empty lists). With
// `logcounts` the counts enter as their logarithms (base 10).
tanalysis analysehistogram(const std::vector<int64_t>& counts, bool logcounts);
// "Maximum point: 57 f=... f'=... f''=..." per point found.
std::vector<utf16> analysislines(const tanalysis& a);
// "i<TAB>value<TAB>f<TAB>f'<TAB>f''" per occurring value, i from 1.
std::string analysistable(const tanalysis& a);
// The name of the table of the logarithms: "-log." in place of the point before the extension.
utf16 logtablename(const utf16& name);

// The derivative as the analysis takes it: backward differences, the first copied from the
// second, then one forward pass of means; the same length as its input.
std::vector<double> histogramderivative(const std::vector<double>& v);
