#include "drawing/histogramchart.h"

#include <algorithm>
#include <cmath>

#include "script/values.h"

namespace {

const trgba barcolour{70, 110, 180, 255};
const trgba countcolour{30, 60, 160, 255};
const trgba firstcolour{40, 150, 60, 255};
const trgba secondcolour{200, 60, 40, 255};
const trgba markcolour{220, 120, 0, 255};

tchart framed(int64_t width, int64_t height, int64_t sizey, const utf16& title, double entries, double top) {
  const bool large = 2 * sizey > width;
  tchart c = chartcreate(large ? 2 * sizey : width, large ? sizey : height);
  charttitles(c, "log10 frequency", title, "values");
  chartranges(c, 0, std::max(entries - 1, 1.0), 0, std::max(top, 1.0));
  chartaxes(c);
  return c;
}

double logcount(double v) { return v > 1 ? std::log10(v) : 0; }

}  // namespace

utf16 charttitle(const utf16& filename, int64_t sizex, int64_t sizey) {
  std::string name = utf16toutf8(filename);
  const size_t slash = name.find_last_of("/\\");
  if (slash != std::string::npos) name = name.substr(slash + 1);
  const size_t dot = name.find('.');
  if (dot != std::string::npos) name = name.substr(0, dot);
  std::replace(name.begin(), name.end(), '_', ' ');
  return utf16(name + "(" + std::to_string(sizex) + "x" + std::to_string(sizey) + ")");
}

tchart histogramchart(const std::vector<int64_t>& counts, const utf16& title, int64_t sizey) {
  const int64_t n = static_cast<int64_t>(counts.size());
  const int64_t most = counts.empty() ? 0 : *std::max_element(counts.begin(), counts.end());
  tchart c = framed(640, 320, sizey, title, static_cast<double>(n), std::ceil(logcount(static_cast<double>(most))));
  // One bar a pixel column: the largest count of the values that fall into it.
  std::vector<int64_t> column;
  const double left = chartpoint(c, 0, 0)[0], right = chartpoint(c, static_cast<double>(n - 1), 0)[0];
  column.assign(static_cast<size_t>(std::max(1.0, right - left + 1)), 0);
  for (int64_t v = 0; v < n; ++v) {
    const auto at = static_cast<size_t>(std::clamp(chartpoint(c, static_cast<double>(v), 0)[0] - left, 0.0,
                                                   static_cast<double>(column.size() - 1)));
    column[at] = std::max(column[at], counts[v]);
  }
  for (size_t k = 0; k < column.size(); ++k) {
    if (column[k] < 1) continue;
    const double x = left + static_cast<double>(k);
    const double y = chartpoint(c, 0, logcount(static_cast<double>(column[k])))[1];
    const double base = chartpoint(c, 0, 0)[1];
    chartline(c, {x, base}, {x, std::min(y, base - 1)}, barcolour);
  }
  return c;
}

tchart analysischart(const tanalysis& a, int64_t entries, const utf16& title, int64_t sizey) {
  double top = 0, slope = 0, bend = 0;
  for (size_t i = 0; i < a.f.size(); ++i) {
    top = std::max(top, logcount(a.f[i]));
    slope = std::max(slope, std::abs(a.f1[i]));
    bend = std::max(bend, std::abs(a.f2[i]));
  }
  tchart c = framed(800, 450, sizey, title, static_cast<double>(entries), std::ceil(top));
  const double middle = c.ymax / 2;
  std::vector<std::array<double, 2>> counts, first, second;
  for (size_t i = 0; i < a.points.size(); ++i) {
    const double v = static_cast<double>(a.points[i].value);
    counts.push_back(chartpoint(c, v, logcount(a.f[i])));
    first.push_back(chartpoint(c, v, middle + (slope > 0 ? a.f1[i] / slope : 0) * middle * 0.9));
    second.push_back(chartpoint(c, v, middle + (bend > 0 ? a.f2[i] / bend : 0) * middle * 0.9));
  }
  chartcurve(c, second, secondcolour);
  chartcurve(c, first, firstcolour);
  chartcurve(c, counts, countcolour);
  for (const tanalysispoint& p : a.found) {
    const auto at = chartpoint(c, static_cast<double>(p.value), logcount(a.f[p.position]));
    chartcircle(c, at, 4, markcolour, {255, 255, 255, 255});
    const char* word = p.kind == tanalysiskind::maximum ? "max " : p.kind == tanalysiskind::minimum ? "min " : "inf ";
    charttext(c, {at[0], at[1] - 8}, utf16(word) + nattext(p.value), tanchor::middle, 0.7);
  }
  return c;
}
