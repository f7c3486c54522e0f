// Charts of a histogram and of its analysis, titled and labelled as the commands show them.
#pragma once
#include <cstdint>
#include <vector>

#include "drawing/chart.h"
#include "ops/histogram.h"

// The title of a field's charts: the file name without folder and extension, "_" as
// blanks, then "(" x "x" y ")".
utf16 charttitle(const utf16& filename, int64_t sizex, int64_t sizey);
// 640 by 320, or (2 * sizey, sizey) when that is wider: one bar of log10 counts a column.
tchart histogramchart(const std::vector<int64_t>& counts, const utf16& title, int64_t sizey);
// 800 by 450, or (2 * sizey, sizey) when wider: the smoothed counts (log10), both
// derivatives scaled into the chart, and a labelled mark at each point found.
tchart analysischart(const tanalysis& a, int64_t entries, const utf16& title, int64_t sizey);
