// A chart: a small vector drawing that records primitives in pixel coordinates and is
// rendered either to a raster image (with the bitmap font) or written as SVG or EPS.
// Created per command and dropped after saving.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "field/imagefield.h"
#include "script/utf16.h"

enum class tchartkind { line, curve, rectangle, circle, text };
enum class tanchor { start, middle, end };

struct tchartitem {
  tchartkind kind = tchartkind::line;
  std::vector<std::array<double, 2>> points;  // line: 2; curve: many; rectangle: 2 corners; circle: centre
  double radius = 0, width = 1;
  trgba stroke{0, 0, 0, 255};
  trgba fill{0, 0, 0, 0};  // alpha 0: not filled
  utf16 text;              // at points[0], its baseline
  double size = 1;         // em
  bool bold = false, italic = false, rotated = false;  // rotated: reads upward
  tanchor anchor = tanchor::start;
};

struct tchart {
  int64_t width = 640, height = 320;
  double letterwidth = 8, letterheight = 16;
  std::array<double, 4> margin{4, 4, 4, 4};  // left, top, right, bottom
  utf16 titleleft, titletop, titlebottom;
  std::vector<tchartitem> items;
  trgba foreground{0, 0, 0, 255}, background{255, 255, 255, 255}, grid{210, 210, 210, 255}, textcolour{0, 0, 0, 255};
  double xmin = 0, xmax = 1, ymin = 0, ymax = 1;
};

tchart chartcreate(int64_t width, int64_t height);
// Each title widens its margin: 1.5 letters (3 on the left).
void charttitles(tchart& c, const utf16& left, const utf16& top, const utf16& bottom);
// The value ranges; the left and bottom margins grow by the tick labels.
void chartranges(tchart& c, double xmin, double xmax, double ymin, double ymax);
// Frame, grid, ticks with their labels and the titles.
void chartaxes(tchart& c);
// The pixel position of a value pair.
std::array<double, 2> chartpoint(const tchart& c, double x, double y);
// A round step of 1, 2 or 5 times a power of ten that cuts the range into about `parts`.
double tickstep(double range, double parts);

void chartline(tchart& c, std::array<double, 2> a, std::array<double, 2> b, const trgba& colour, double width = 1);
void chartcurve(tchart& c, const std::vector<std::array<double, 2>>& points, const trgba& colour);
void chartcircle(tchart& c, std::array<double, 2> centre, double radius, const trgba& stroke, const trgba& fill);
void charttext(tchart& c, std::array<double, 2> at, const utf16& text, tanchor anchor, double size = 1,
               bool bold = false);

std::string chartsvg(const tchart& c);
std::string charteps(const tchart& c);
// The chart drawn into an rgb image of its size.
void chartraster(const tchart& c, timagefield& image);
// By the lower-cased extension: pbm, pgm, pnm, ppm (P6), the raster formats of the image
// writers, svg, svgz and svg.gz, eps; others are told and written as P6.
bool chartsave(const tchart& c, const utf16& name);
