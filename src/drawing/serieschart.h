// A chart of one or more measured series as curves over their joint value range.
#pragma once
#include <array>
#include <vector>

#include "drawing/chart.h"

struct tseries {
  std::vector<std::array<double, 2>> points;  // (x, y) in value units
  trgba colour{30, 60, 160, 255};
};

// 640 by 480 with the y title at the left and the x title below.
tchart serieschart(const std::vector<tseries>& series, const utf16& ytitle, const utf16& xtitle);
