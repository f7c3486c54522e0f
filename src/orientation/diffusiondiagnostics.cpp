#include "orientation/diffusiondiagnostics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "field/imagefield.h"
#include "field/owned.h"
#include "base/filebuffer.h"
#include "drawing/draw.h"
#include "drawing/serieschart.h"
#include "formats/imagefile.h"
#include "orientation/scan.h"
#include "orientation/scanwalk.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

const trgba lowcolour{30, 60, 160, 255};
const trgba highcolour{200, 60, 40, 255};

struct tdiagline {
  trawscanpoint raw;
  tvector polar;
  std::vector<int64_t> values;
};

// The raw rows of the sphere with their unrounded polar points and the line of each.
std::vector<tdiagline> rawlines(const tscalarfield& f, int64_t r, const tnatvector& p) {
  std::vector<tdiagline> lines;
  const double R = static_cast<double>(r);
  for (const trawscanpoint& q : rawscanpoints(r)) {
    const double ring = R * std::sin(static_cast<double>(q.i) / R);
    const double theta = static_cast<double>(q.i + 1) / R, phi = static_cast<double>(q.j + 1) / ring;
    tdiagline l{q, {R * std::sin(theta) * std::cos(phi), R * std::sin(theta) * std::sin(phi), R * std::cos(theta)}, {}};
    const tscanpoint& d = q.point;
    scanline(f, {p[0] + d[0], p[1] + d[1], p[2] + d[2]}, {p[0] - d[0], p[1] - d[1], p[2] - d[2]}, l.values);
    lines.push_back(std::move(l));
  }
  return lines;
}

utf16 withsuffix(const utf16& name, const char* suffix) {
  const utf16 ext = fileextension(name);
  return copy(name, 1, length(name) - length(ext) - 1) + suffix + ext;
}

int64_t rowcount(const std::vector<tdiagline>& lines, int64_t i) {
  return std::count_if(lines.begin(), lines.end(), [&](const tdiagline& l) { return l.raw.i == i; });
}

// The image position of a raw direction: row i + 1, column side / 2 - np / 2 + j + 1.
std::array<int64_t, 2> mapposition(const std::vector<tdiagline>& lines, const tdiagline& l, int64_t side) {
  return {side / 2 - rowcount(lines, l.raw.i) / 2 + l.raw.j + 1, l.raw.i + 1};
}

// A 16-bit image of side round(pi r) with each raw direction at its map position, the value
// from `level`; 0 for lines shorter than r.
template <class Level>
void mapimage(timagefield& img, const std::vector<tdiagline>& lines, int64_t r, Level level, uint8_t kind = imagefullgray) {
  const int64_t side = roundnat(std::numbers::pi * static_cast<double>(r));
  fieldcreate(img, kind, {side, side, 1});
  for (const tdiagline& l : lines) {
    const int64_t v = static_cast<int64_t>(l.values.size()) < r ? 0 : std::min<int64_t>(level(l.values), 65535);
    const auto at = mapposition(lines, l, side);
    setvalue(img, at[0], at[1], static_cast<double>(v));
  }
}

void plot(timagefield& img, const tpixels& pixels, int64_t value) {
  const tnatvector n = fieldsize(img);
  for (const auto& p : pixels)
    if (p[0] >= 1 && p[1] >= 1 && p[0] <= n[0] && p[1] <= n[1]) setvalue(img, p[0], p[1], static_cast<double>(value));
}

// With more than two accepted lines (r values or more): the directions tied for the lowest
// SD get a ring of radius 2 in the image's lowest value and one of radius 3 in its highest
// when fewer than three tie, and the tie count is written at the top left.
void marklowest(timagefield& img, const std::vector<tdiagline>& lines, int64_t r) {
  std::vector<std::pair<double, const tdiagline*>> accepted;
  for (const tdiagline& l : lines)
    if (static_cast<int64_t>(l.values.size()) >= r) accepted.push_back({linestatistic(l.values, 2), &l});
  if (accepted.size() <= 2) return;
  const double lowest = std::min_element(accepted.begin(), accepted.end())->first;
  const tnatvector n = fieldsize(img);
  int64_t lo = std::numeric_limits<int64_t>::max(), hi = std::numeric_limits<int64_t>::min();
  for (int64_t y = 1; y <= n[1]; ++y)
    for (int64_t x = 1; x <= n[0]; ++x) lo = std::min(lo, getvalue(img, x, y)), hi = std::max(hi, getvalue(img, x, y));
  const auto ties = std::count_if(accepted.begin(), accepted.end(), [&](const auto& a) { return a.first == lowest; });
  if (ties < 3)
    for (const auto& [sd, l] : accepted) {
      if (sd != lowest) continue;
      const auto at = mapposition(lines, *l, n[0]);
      plot(img, circlepixels(at[0], at[1], 2), lo);
      plot(img, circlepixels(at[0], at[1], 3), hi);
    }
  plot(img, textpixels(1, 1, nattext(ties)), hi);
}

int64_t twosd(const std::vector<int64_t>& v) { return roundnat(2 * linestatistic(v, 2)); }
int64_t mean(const std::vector<int64_t>& v) { return roundnat(linestatistic(v, 1)); }

// All steps + 1 samples of the line from p1 to p2, zeros and outside (0) included.
std::vector<int64_t> wholeline(const tscalarfield& f, const tscanpoint& p1, const tscanpoint& p2) {
  std::vector<int64_t> out;
  const tscanstep s = scanstep({p2[0] - p1[0], p2[1] - p1[1], p2[2] - p1[2]}, 1, 1);
  for (int64_t k = 0; k <= s.steps; ++k) {
    int64_t c[3];
    for (int a = 0; a < 3; ++a) c[a] = (p1[a] * 65536 + k * s.step[a]) >> 16;
    out.push_back(getvalue(f, c[0], c[1], c[2]));
  }
  return out;
}

}  // namespace

tnatvector diagnosticpoint(const tscalarfield& f, const tvector& point, const tvector& offset) {
  const tnatvector n = fieldsize(f);
  tnatvector p{roundnat(point[0]), roundnat(point[1]), roundnat(point[2])};
  if (p[0] < 1 || p[1] < 1 || p[2] < 1) p = {n[0] / 2, n[1] / 2, n[2] / 2};
  for (int a = 0; a < 3; ++a) p[a] += roundnat(offset[a]);
  return p;
}

bool diffusiondump(const tscalarfield& f, int64_t r, const tnatvector& p, const utf16& name) {
  std::string text;
  std::vector<std::pair<double, int64_t>> accepted;  // (SD, index)
  int64_t row = 0;
  for (const tdiagline& l : rawlines(f, r, p)) {
    for (; row < l.raw.i; ++row) text += "\n";
    const int64_t n = static_cast<int64_t>(l.values.size());
    const bool counts = n >= r && n > 0;
    text += counts ? std::to_string(accepted.size() + 1) : std::string("-");
    text += " u:" + std::to_string(l.raw.i) + " v:" + std::to_string(l.raw.j) + " x:" + utf16toutf8(realtext(l.polar[0])) +
            " y:" + utf16toutf8(realtext(l.polar[1])) + " z:" + utf16toutf8(realtext(l.polar[2]));
    if (n == 0) {
      text += " len:0";
    } else {
      const double sd = linestatistic(l.values, 2);
      text += " len:";
      text += std::to_string(n);
      text += " mean:";
      text += utf16toutf8(realtext(linestatistic(l.values, 1)));
      text += " SD:";
      text += utf16toutf8(realtext(sd));
      for (const int64_t v : l.values) {
        text += ' ';
        text += std::to_string(v);
      }
      if (counts) accepted.emplace_back(sd, static_cast<int64_t>(accepted.size()) + 1);
    }
    text += "\n";
  }
  text += "\n";
  std::stable_sort(accepted.begin(), accepted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  const char* heads[3] = {" Min SD pos: ", " 2. SD pos: ", " 3. SD pos: "};
  if (accepted.size() > 1)
    for (size_t k = 0; k < std::min<size_t>(3, accepted.size()); ++k)
      text += heads[k] + std::to_string(accepted[k].second) + " (SD:" + utf16toutf8(realtext(accepted[k].first)) + ")\n";
  return bufferwrite(name, text, false);
}

bool diffusionmap(const tscalarfield& f, int64_t r, const tnatvector& p, const utf16& name) {
  const auto lines = rawlines(f, r, p);
  tlocalfield<timagefield> image, lowdepth;
  timagefield &img = *image, &low = *lowdepth;
  mapimage(img, lines, r, twosd);
  marklowest(img, lines, r);
  const tnatvector n = fieldsize(img);
  fieldcreate(low, imagegray, n);
  for (int64_t y = 1; y <= n[1]; ++y)
    for (int64_t x = 1; x <= n[0]; ++x) setvalue(low, x, y, static_cast<double>(std::min<int64_t>(getvalue(img, x, y), 255)));
  return imagesave(img, name) && imagesave(low, withsuffix(name, "-low."));
}

bool diffusioncolormap(const tscalarfield& f, int64_t r, const tnatvector& p, const utf16& name) {
  const auto lines = rawlines(f, r, p);
  tlocalfield<timagefield> meanimage, sdimage, colourimage;
  timagefield &means = *meanimage, &sds = *sdimage, &colour = *colourimage;
  mapimage(means, lines, r, mean);
  mapimage(sds, lines, r, twosd);
  const tnatvector n = fieldsize(means);
  fieldcreate(colour, imagergb, n);
  for (int64_t y = 1; y <= n[1]; ++y)
    for (int64_t x = 1; x <= n[0]; ++x)
      setrgb(colour, x, y, {std::min<int64_t>(getvalue(means, x, y), 255), 0, std::min<int64_t>(getvalue(sds, x, y), 255)});
  return imagesave(means, withsuffix(name, "-mean.")) && imagesave(sds, withsuffix(name, "-sd.")) &&
         imagesave(colour, name);
}

bool diffusionhistogram(const tscalarfield& f, const tnatvector& p, const utf16& name) {
  const tnatvector n = fieldsize(f);
  const int64_t top = roundnat(static_cast<double>(std::min({n[0], n[1], n[2]})) * 0.5);
  std::vector<int64_t> values;
  tseries maxima;
  for (int64_t s = top; s >= 1; --s) {
    std::vector<double> sds;
    for (const tscanpoint& d : scandirections(s).points) {
      scanline(f, {p[0] + d[0], p[1] + d[1], p[2] + d[2]}, {p[0] - d[0], p[1] - d[1], p[2] - d[2]}, values);
      if (static_cast<int64_t>(values.size()) >= s) sds.push_back(linestatistic(values, 2));
    }
    int64_t ties = 0;
    if (sds.size() >= 3) ties = std::count(sds.begin(), sds.end(), *std::min_element(sds.begin(), sds.end()));
    maxima.points.push_back({static_cast<double>(s), static_cast<double>(ties)});
    progress("  Calculate histogram", static_cast<double>(top - s + 1) / static_cast<double>(top));
  }
  progressend();
  std::reverse(maxima.points.begin(), maxima.points.end());
  return chartsave(serieschart({maxima}, "number of maximas", "scansize"), name);
}

bool diffusionsd(const tscalarfield& f, const tnatvector& p, const utf16& name) {
  const tnatvector n = fieldsize(f);
  const int64_t top = roundnat(static_cast<double>(std::min({n[0], n[1], n[2]})) * 0.5);
  std::vector<std::vector<int64_t>> lines;
  for (const tscanpoint& d : scandirections(top).points)
    lines.push_back(wholeline(f, {p[0] + d[0], p[1] + d[1], p[2] + d[2]}, {p[0] - d[0], p[1] - d[1], p[2] - d[2]}));
  // Per statistic (mean, SD): the lowest and the highest curve.
  std::array<tseries, 2> lows, highs;
  for (int k = 0; k < 2; ++k) lows[k].colour = lowcolour, highs[k].colour = highcolour;
  constexpr double none = std::numeric_limits<double>::infinity();
  for (int64_t w = 1; w <= top; ++w) {
    double lo[2] = {none, none}, hi[2] = {-none, -none};
    for (const auto& line : lines) {
      const int64_t L = static_cast<int64_t>(line.size());
      double sum = 0, squares = 0;
      int64_t count = 0;
      for (int64_t k = std::max<int64_t>(L / 2 - w, 1); k <= std::min(L / 2 + w, L); ++k) {
        const double v = static_cast<double>(line[static_cast<size_t>(k - 1)]);
        if (v == 0) continue;
        sum += v, squares += v * v, ++count;
      }
      if (count < w || count == 0) continue;
      const double m = sum / static_cast<double>(count);
      const double sd = std::sqrt(std::max(0.0, squares / static_cast<double>(count) - m * m));
      lo[0] = std::min(lo[0], m), hi[0] = std::max(hi[0], m);
      lo[1] = std::min(lo[1], sd), hi[1] = std::max(hi[1], sd);
    }
    // Minima never reached or above their maximum, and negative maxima, show as 0.
    for (int k = 0; k < 2; ++k) {
      if (lo[k] == none || lo[k] > hi[k]) lo[k] = 0;
      if (hi[k] < 0) hi[k] = 0;
      lows[k].points.push_back({static_cast<double>(w), lo[k]});
      highs[k].points.push_back({static_cast<double>(w), hi[k]});
    }
  }
  return chartsave(serieschart({lows[0], highs[0]}, "minimal & maximal Mean", "scansize"), withsuffix(name, "-mean.")) &&
         chartsave(serieschart({lows[1], highs[1]}, "minimal & maximal SD", "scansize"), withsuffix(name, "-sd."));
}
