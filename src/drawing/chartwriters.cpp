// The chart's three ways out: SVG text (plain or gzip), EPS text, and a raster image
// drawn with the bitmap font and written by the image writers.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "drawing/chart.h"
#include "drawing/draw.h"
#include "base/filebuffer.h"
#include "base/gzip.h"
#include "formats/imagefile.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

// Coordinates with at most two decimals, trailing zeros cut.
std::string number(double v) {
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", std::abs(v) < 0.005 ? 0.0 : v);
  std::string s = text;
  while (s.back() == '0') s.pop_back();
  if (s.back() == '.') s.pop_back();
  return s;
}

std::string hex(const trgba& c) {
  char text[8];
  std::snprintf(text, sizeof text, "%02X%02X%02X", static_cast<unsigned>(std::clamp<int64_t>(c[0], 0, 255)),
                static_cast<unsigned>(std::clamp<int64_t>(c[1], 0, 255)),
                static_cast<unsigned>(std::clamp<int64_t>(c[2], 0, 255)));
  return text;
}

std::string opacity(const trgba& c) { return number(static_cast<double>(std::clamp<int64_t>(c[3], 0, 255)) / 255); }

std::string escapexml(const utf16& text) {
  std::string out;
  for (char ch : utf16toutf8(text)) {
    if (ch == '&') out += "&amp;";
    else if (ch == '<') out += "&lt;";
    else if (ch == '>') out += "&gt;";
    else if (ch == '"') out += "&quot;";
    else out += ch;
  }
  return out;
}

const char* anchorword(tanchor a) { return a == tanchor::middle ? "middle" : a == tanchor::end ? "end" : "start"; }

std::string svgitem(const tchartitem& it) {
  const auto& p = it.points;
  std::string s = "\t\t";
  switch (it.kind) {
    case tchartkind::line:
      s += "<line x1=\"" + number(p[0][0]) + "\" y1=\"" + number(p[0][1]) + "\" x2=\"" + number(p[1][0]) + "\" y2=\"" +
           number(p[1][1]) + "\" style=\"fill:none;stroke-width:" + number(it.width) + ";stroke:#" + hex(it.stroke) +
           ";opacity=" + opacity(it.stroke) + ";\"/>";
      break;
    case tchartkind::curve: {
      // Quadratic pieces through the midpoints, with the points as control points.
      s += "<path d=\"M" + number(p[0][0]) + "," + number(p[0][1]);
      for (size_t i = 1; i + 1 < p.size(); ++i)
        s += " Q" + number(p[i][0]) + "," + number(p[i][1]) + " " + number((p[i][0] + p[i + 1][0]) / 2) + "," +
             number((p[i][1] + p[i + 1][1]) / 2);
      s += " L" + number(p.back()[0]) + "," + number(p.back()[1]) + "\" style=\"fill:none;stroke-width:" +
           number(it.width) + ";stroke:#" + hex(it.stroke) + "\"/>";
      break;
    }
    case tchartkind::rectangle:
      s += "<rect x=\"" + number(std::min(p[0][0], p[1][0])) + "\" y=\"" + number(std::min(p[0][1], p[1][1])) +
           "\" width=\"" + number(std::abs(p[1][0] - p[0][0])) + "\" height=\"" + number(std::abs(p[1][1] - p[0][1])) +
           "\" style=\"fill:#" + hex(it.fill) + ";stroke-width:1;stroke:#" + hex(it.stroke) + "\"/>";
      break;
    case tchartkind::circle:
      s += "<circle cx=\"" + number(p[0][0]) + "\" cy=\"" + number(p[0][1]) + "\" r=\"" + number(it.radius) +
           "\" style=\"fill:" + (it.fill[3] > 0 ? "#" + hex(it.fill) : std::string("none")) +
           ";stroke-width:1;stroke:#" + hex(it.stroke) + "\"/>";
      break;
    case tchartkind::text: {
      std::string text = "<text x=\"" + number(p[0][0]) + "\" y=\"" + number(p[0][1]) + "\" font-size=\"" +
                         number(it.size) + "em\"" + (it.italic ? " font-style=\"italic\"" : "") +
                         (it.bold ? " font-weight=\"bold\"" : "") + " text-anchor=\"" + anchorword(it.anchor) + "\">" +
                         escapexml(it.text) + "</text>";
      if (it.rotated)
        s += "<g transform=\"rotate(-90 " + number(p[0][0]) + " " + number(p[0][1]) + ")\">" + text + "</g>";
      else
        s += text;
      break;
    }
  }
  return s + "\n";
}

std::string escapeps(const utf16& text) {
  std::string out;
  for (char ch : utf16toutf8(text)) {
    if (ch == '(' || ch == ')' || ch == '\\') out += '\\';
    out += ch;
  }
  return out;
}

std::string pscolour(const trgba& c) {
  return number(static_cast<double>(c[0]) / 255) + " " + number(static_cast<double>(c[1]) / 255) + " " +
         number(static_cast<double>(c[2]) / 255) + " setrgbcolor ";
}

std::string epsitem(const tchartitem& it, double height) {
  const auto x = [&](size_t i) { return number(it.points[i][0]); };
  const auto y = [&](size_t i) { return number(height - it.points[i][1]); };
  switch (it.kind) {
    case tchartkind::line:
      return pscolour(it.stroke) + number(it.width) + " setlinewidth newpath " + x(0) + " " + y(0) + " moveto " + x(1) +
             " " + y(1) + " lineto stroke\n";
    case tchartkind::curve: {
      std::string s = pscolour(it.stroke) + number(it.width) + " setlinewidth newpath " + x(0) + " " + y(0) + " moveto";
      for (size_t i = 1; i < it.points.size(); ++i) {
        s += ' ';
        s += x(i);
        s += ' ';
        s += y(i);
        s += " lineto";
      }
      return s + " stroke\n";
    }
    case tchartkind::rectangle:
      return pscolour(it.fill) + "newpath " + x(0) + " " + y(0) + " moveto " + x(1) + " " + y(0) + " lineto " + x(1) +
             " " + y(1) + " lineto " + x(0) + " " + y(1) + " lineto closepath fill\n";
    case tchartkind::circle: {
      const std::string arc = "newpath " + x(0) + " " + y(0) + " " + number(it.radius) + " 0 360 arc ";
      return (it.fill[3] > 0 ? pscolour(it.fill) + arc + "fill " : std::string()) + pscolour(it.stroke) + arc + "stroke\n";
    }
    case tchartkind::text: {
      const std::string show = "(" + escapeps(it.text) + ")";
      const std::string shift = it.anchor == tanchor::start ? "" : show + " stringwidth pop " +
                                (it.anchor == tanchor::middle ? std::string("-2 div") : std::string("neg")) + " 0 rmoveto ";
      return pscolour(it.stroke) + "gsave " + x(0) + " " + y(0) + " translate " + (it.rotated ? "90 rotate " : "") +
             "/Helvetica" + (it.bold ? "-Bold" : "") + " findfont " + number(12 * it.size) + " scalefont setfont 0 0 moveto " +
             shift + show + " show grestore\n";
    }
  }
  return "";
}

int64_t pixel(double v) { return static_cast<int64_t>(std::floor(v)) + 1; }

void rasteritem(timagefield& f, const tchartitem& it) {
  const auto& p = it.points;
  switch (it.kind) {
    case tchartkind::line:
      drawline(f, pixel(p[0][0]), pixel(p[0][1]), pixel(p[1][0]), pixel(p[1][1]), it.stroke);
      break;
    case tchartkind::curve:
      for (size_t i = 1; i < p.size(); ++i)
        drawline(f, pixel(p[i - 1][0]), pixel(p[i - 1][1]), pixel(p[i][0]), pixel(p[i][1]), it.stroke);
      break;
    case tchartkind::rectangle:
      fillrectangle(f, pixel(p[0][0]), pixel(p[0][1]), pixel(p[1][0]), pixel(p[1][1]), it.fill);
      drawrectangle(f, pixel(p[0][0]), pixel(p[0][1]), pixel(p[1][0]), pixel(p[1][1]), it.stroke);
      break;
    case tchartkind::circle: {
      const int64_t r = std::llround(it.radius);
      if (it.fill[3] > 0)
        for (int64_t k = r - 1; k >= 1; --k) drawcircle(f, pixel(p[0][0]), pixel(p[0][1]), k, it.fill);
      drawcircle(f, pixel(p[0][0]), pixel(p[0][1]), r, it.stroke);
      break;
    }
    case tchartkind::text: {
      const tfontstyle style = it.bold ? tfontstyle::bold : tfontstyle::normal;
      const int64_t w = textwidth(it.text, style);
      const int64_t shift = it.anchor == tanchor::middle ? w / 2 : it.anchor == tanchor::end ? w : 0;
      if (it.rotated)
        drawtextup(f, pixel(p[0][0]) - 12, pixel(p[0][1]) + shift, it.text, it.stroke);
      else
        drawtext(f, pixel(p[0][0]) - shift, pixel(p[0][1]) - 12, it.text, it.stroke, style);
      break;
    }
  }
}

std::string lowerextension(const utf16& name) {
  std::string s = utf16toutf8(name);
  std::transform(s.begin(), s.end(), s.begin(), [](unsigned char ch) { return static_cast<char>(std::tolower(ch)); });
  const size_t slash = s.find_last_of('/');
  const std::string file = slash == std::string::npos ? s : s.substr(slash + 1);
  if (file.size() > 7 && file.ends_with(".svg.gz")) return "svg.gz";
  const size_t dot = file.find_last_of('.');
  return dot == std::string::npos ? "" : file.substr(dot + 1);
}

bool writeppm(const tchart& c, const utf16& name) {
  timagefield image;
  chartraster(c, image);
  std::string bytes = "P6\n" + std::to_string(c.width) + " " + std::to_string(c.height) + "\n255\n";
  for (int64_t y = 1; y <= c.height; ++y)
    for (int64_t x = 1; x <= c.width; ++x)
      for (int64_t v : getrgb(image, x, y)) bytes += static_cast<char>(v);
  fieldrelease(image);
  return bufferwrite(name, bytes, false);
}

}  // namespace

std::string chartsvg(const tchart& c) {
  std::string s = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg version=\"1.1\" xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                  std::to_string(c.width) + "\" height=\"" + std::to_string(c.height) + "\">\n\t<g>\n";
  s += "\t\t<rect x=\"0\" y=\"0\" width=\"" + std::to_string(c.width) + "\" height=\"" + std::to_string(c.height) +
       "\" style=\"fill:#" + hex(c.background) + ";stroke-width:0;stroke:#" + hex(c.background) + "\"/>\n";
  for (const tchartitem& it : c.items) s += svgitem(it);
  s += "\t\t<title>" + escapexml(c.titletop) + "</title>\n\t\t<desc>" + escapexml(c.titleleft) + " / " +
       escapexml(c.titlebottom) + "</desc>\n\t</g>\n</svg>\n";
  return s;
}

std::string charteps(const tchart& c) {
  std::string s = "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 " + std::to_string(c.width) + " " +
                  std::to_string(c.height) + "\n%%EndComments\n";
  s += pscolour(c.background) + "newpath 0 0 moveto " + std::to_string(c.width) + " 0 lineto " + std::to_string(c.width) +
       " " + std::to_string(c.height) + " lineto 0 " + std::to_string(c.height) + " lineto closepath fill\n";
  for (const tchartitem& it : c.items) s += epsitem(it, static_cast<double>(c.height));
  return s + "showpage\n%%EOF\n";
}

void chartraster(const tchart& c, timagefield& image) {
  fieldcreate(image, imagergb, {c.width, c.height, 1});
  if (fieldempty(image)) return;
  fillrectangle(image, 1, 1, c.width, c.height, c.background);
  for (const tchartitem& it : c.items) rasteritem(image, it);
}

bool chartsave(const tchart& c, const utf16& name) {
  const std::string ext = lowerextension(name);
  if (ext == "svg") return bufferwrite(name, chartsvg(c), false);
  if (ext == "svgz" || ext == "svg.gz") return bufferwrite(name, chartsvg(c), true);
  if (ext == "eps") return bufferwrite(name, charteps(c), false);
  if (ext == "pbm" || ext == "pgm" || ext == "pnm" || ext == "ppm") return writeppm(c, name);
  for (const char* raster : {"pam", "bmp", "dib", "tga", "tif", "tiff", "png"})
    if (ext == raster) {
      timagefield image;
      chartraster(c, image);
      const bool ok = imagesave(image, name);
      fieldrelease(image);
      return ok;
    }
  println("  Chart type (" + ext + ") not written, saved as PNM instead.");
  return writeppm(c, name);
}
