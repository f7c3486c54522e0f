#include "drawing/serieschart.h"

#include <algorithm>
#include <limits>

tchart serieschart(const std::vector<tseries>& series, const utf16& ytitle, const utf16& xtitle) {
  double xmin = std::numeric_limits<double>::infinity(), xmax = -xmin, ymin = 0, ymax = 1;
  for (const tseries& s : series)
    for (const auto& p : s.points) {
      xmin = std::min(xmin, p[0]), xmax = std::max(xmax, p[0]);
      ymin = std::min(ymin, p[1]), ymax = std::max(ymax, p[1]);
    }
  if (xmin > xmax) xmin = 0, xmax = 1;
  if (xmax == xmin) xmax = xmin + 1;
  tchart c = chartcreate(640, 480);
  charttitles(c, ytitle, utf16(), xtitle);
  chartranges(c, xmin, xmax, ymin, ymax);
  chartaxes(c);
  for (const tseries& s : series) {
    std::vector<std::array<double, 2>> pixels;
    for (const auto& p : s.points) pixels.push_back(chartpoint(c, p[0], p[1]));
    chartcurve(c, pixels, s.colour);
  }
  return c;
}
