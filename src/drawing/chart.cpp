// The chart's layout: margins that grow with titles and labels, axes with round ticks.
#include "drawing/chart.h"

#include <algorithm>
#include <cmath>

#include "drawing/draw.h"
#include "script/values.h"

namespace {

double plotleft(const tchart& c) { return c.margin[0]; }
double plottop(const tchart& c) { return c.margin[1]; }
double plotright(const tchart& c) { return static_cast<double>(c.width) - c.margin[2]; }
double plotbottom(const tchart& c) { return static_cast<double>(c.height) - c.margin[3]; }

utf16 ticklabel(double v) { return roundedrealtext(std::abs(v) < 1e-12 ? 0 : v, 2); }

// The tick values of a range: multiples of the step inside it.
std::vector<double> ticks(double lo, double hi, double parts) {
  std::vector<double> out;
  const double step = tickstep(hi - lo, parts);
  if (!(step > 0)) return out;
  for (double k = std::ceil(lo / step - 1e-9); k * step <= hi + step * 1e-9 && out.size() < 1000; k += 1)
    out.push_back(k * step);
  return out;
}

}  // namespace

double tickstep(double range, double parts) {
  if (!(range > 0) || !(parts > 0)) return 0;
  const double raw = range / parts;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 5.0})
    if (raw <= m * power * 1.0000001) return m * power;
  return 10 * power;
}

tchart chartcreate(int64_t width, int64_t height) {
  tchart c;
  c.width = std::max<int64_t>(width, 16);
  c.height = std::max<int64_t>(height, 16);
  return c;
}

void charttitles(tchart& c, const utf16& left, const utf16& top, const utf16& bottom) {
  c.titleleft = left, c.titletop = top, c.titlebottom = bottom;
  if (length(left) > 0) c.margin[0] += 3.0 * c.letterwidth;
  if (length(top) > 0) c.margin[1] += 1.5 * c.letterheight;
  if (length(bottom) > 0) c.margin[3] += 1.5 * c.letterheight;
}

void chartranges(tchart& c, double xmin, double xmax, double ymin, double ymax) {
  c.xmin = xmin, c.xmax = xmax > xmin ? xmax : xmin + 1;
  c.ymin = ymin, c.ymax = ymax > ymin ? ymax : ymin + 1;
  int64_t longest = 0;
  for (double v : ticks(c.ymin, c.ymax, 10)) longest = std::max(longest, length(ticklabel(v)));
  c.margin[0] += static_cast<double>(longest) * c.letterwidth + 8;
  c.margin[3] += c.letterheight + 6;
  c.margin[2] += c.letterwidth * 2;  // room for the last x label's half
}

std::array<double, 2> chartpoint(const tchart& c, double x, double y) {
  const double px = plotleft(c) + (x - c.xmin) / (c.xmax - c.xmin) * (plotright(c) - plotleft(c));
  const double py = plotbottom(c) - (y - c.ymin) / (c.ymax - c.ymin) * (plotbottom(c) - plottop(c));
  return {px, py};
}

void chartline(tchart& c, std::array<double, 2> a, std::array<double, 2> b, const trgba& colour, double width) {
  tchartitem item;
  item.kind = tchartkind::line;
  item.points = {a, b};
  item.stroke = colour;
  item.width = width;
  c.items.push_back(item);
}

void chartcurve(tchart& c, const std::vector<std::array<double, 2>>& points, const trgba& colour) {
  if (points.size() < 2) return;
  tchartitem item;
  item.kind = tchartkind::curve;
  item.points = points;
  item.stroke = colour;
  c.items.push_back(item);
}

void chartcircle(tchart& c, std::array<double, 2> centre, double radius, const trgba& stroke, const trgba& fill) {
  tchartitem item;
  item.kind = tchartkind::circle;
  item.points = {centre};
  item.radius = radius;
  item.stroke = stroke;
  item.fill = fill;
  c.items.push_back(item);
}

void charttext(tchart& c, std::array<double, 2> at, const utf16& text, tanchor anchor, double size, bool bold) {
  tchartitem item;
  item.kind = tchartkind::text;
  item.points = {at};
  item.text = text;
  item.anchor = anchor;
  item.size = size;
  item.bold = bold;
  item.stroke = c.textcolour;
  c.items.push_back(item);
}

// The four sides, each with its ticks: labels on the left and bottom ones.
void chartaxes(tchart& c) {
  const double l = plotleft(c), t = plottop(c), r = plotright(c), b = plotbottom(c);
  for (double v : ticks(c.xmin, c.xmax, 10)) {
    const double x = chartpoint(c, v, c.ymin)[0];
    chartline(c, {x, t}, {x, b}, c.grid);
    chartline(c, {x, b}, {x, b + 4}, c.foreground);
    chartline(c, {x, t - 4}, {x, t}, c.foreground);
    charttext(c, {x, b + 4 + c.letterheight}, ticklabel(v), tanchor::middle);
  }
  for (double v : ticks(c.ymin, c.ymax, 10)) {
    const double y = chartpoint(c, c.xmin, v)[1];
    chartline(c, {l, y}, {r, y}, c.grid);
    chartline(c, {l - 4, y}, {l, y}, c.foreground);
    chartline(c, {r, y}, {r + 4, y}, c.foreground);
    charttext(c, {l - 6, y + 5}, ticklabel(v), tanchor::end);
  }
  chartline(c, {l, b}, {l, t}, c.foreground);
  chartline(c, {l, b}, {r, b}, c.foreground);
  chartline(c, {r, b}, {r, t}, c.foreground);
  chartline(c, {l, t}, {r, t}, c.foreground);
  if (length(c.titletop) > 0) charttext(c, {(l + r) / 2, c.letterheight + 2}, c.titletop, tanchor::middle, 1, true);
  if (length(c.titlebottom) > 0)
    charttext(c, {(l + r) / 2, static_cast<double>(c.height) - 6}, c.titlebottom, tanchor::middle);
  if (length(c.titleleft) > 0) {
    charttext(c, {4 + c.letterheight * 0.8, (t + b) / 2}, c.titleleft, tanchor::middle);
    c.items.back().rotated = true;
  }
}
