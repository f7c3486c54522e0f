// XML clip files of a device: tags one a line inside <clip> and <data>, closed by <\clip> and
// <\data> as the device writes them, and the voxels as one text line of reals a slice
// below <cells>.
#include <algorithm>
#include <cmath>
#include <string>

#include "base/linefile.h"
#include "formats/volumeformats.h"
#include "formats/volumeload.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

// The value of a tag line: the attribute named like the tag when there is one, else the
// text behind the tag.
std::string_view tagvalue(std::string_view line, std::string_view word) {
  const std::string attribute = std::string(word) + "=\"";
  const size_t at = line.find(attribute);
  if (at != std::string_view::npos) {
    const std::string_view rest = line.substr(at + attribute.size());
    return rest.substr(0, rest.find('"'));
  }
  const size_t close = line.find('>');
  return close == std::string_view::npos ? std::string_view() : line.substr(close + 1);
}

struct tclip {
  tnatvector size{0, 0, 0};
  tvector offset{0, 0, 0}, scale{1, 1, 1};
  int64_t slice = 0;  // slices taken
  bool cells = false;
};

void taketag(tclip& c, std::string_view line) {
  const auto value = [&](const char* word) { return textnumbers(tagvalue(line, word)); };
  const auto pair = [&](const char* word, auto take) {
    const std::vector<double> v = value(word);
    for (size_t a = 0; a < 2 && a < v.size(); ++a) take(a, v[a]);
  };
  if (line.starts_with("<begin")) c.offset[2] = firstnumber(tagvalue(line, "begin"));
  else if (line.starts_with("<frequency")) {
    const double f = firstnumber(tagvalue(line, "frequency"));
    c.scale[2] = f > 0 ? 1 / f : 1;
  } else if (line.starts_with("<count")) c.size[2] = headersize(firstnumber(tagvalue(line, "count")));
  else if (line.starts_with("<cell_count")) pair("cell_count", [&](size_t a, double v) { c.size[a] = headersize(v); });
  else if (line.starts_with("<cell_size")) pair("cell_size", [&](size_t a, double v) { c.scale[a] = v != 0 ? v : 1; });
  else if (line.starts_with("<cell_begin")) pair("cell_begin", [&](size_t a, double v) { c.offset[a] = v; });
}

// One slice of reals, each twice its value within 0..255, as the kind stores it.
template <class A>
void takeslice(A& a, const std::vector<double>& v, int64_t first) {
  for (size_t k = 0; k < v.size(); ++k)
    a.put(first + static_cast<int64_t>(k) + 1, voxelof<A>(std::clamp(std::nearbyint(2 * v[k]), 0.0, 255.0)));
}

}  // namespace

bool xmlclipload(tscalarfield& f, uint8_t kind, const utf16& name) {
  tlinefile text{};
  if (!fileexists(name) || !linefileread(text, name))
    return volumefail(f, kind, "  Couldn't read File (" + name + ")! Create empty field.");
  fieldcreate(f, kind);
  tclip c;
  bool inclip = false, indata = false;
  utf16 failure;
  for (int64_t n = 1; n <= linefilecount(text) && empty(failure); ++n) {
    std::string_view line = linefileview(text, n);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const std::string low = lowertext(line);
    if (low.starts_with("<clip>")) inclip = true;
    else if (low.starts_with("<\\clip>")) inclip = false;
    else if (low.starts_with("<data>")) indata = true;
    else if (low.starts_with("<\\data>")) indata = false;
    if (!inclip || !indata) continue;
    if (low.starts_with("<cells")) c.cells = true;
    else if (low.starts_with("<")) c.cells = false;
    if (!c.cells) {
      taketag(c, low);
      continue;
    }
    const std::vector<double> v = textnumbers(low.starts_with("<") ? tagvalue(low, "cells") : std::string_view(low));
    if (v.empty()) continue;
    const int64_t plane = fieldcount(c.size[0], c.size[1]);
    const utf16 sizes = nattext(c.size[0]) + "x" + nattext(c.size[1]) + "x" + nattext(c.size[2]);
    if (static_cast<int64_t>(v.size()) != plane) {
      failure = "  Local size missmatch: " + nattext(static_cast<int64_t>(v.size())) + " <> " + nattext(plane);
      break;
    }
    if (c.slice == 0) {
      progress("  3Dgrey (Float) with (" + sizes + ")", 0);
      // Every slice is a line of the file, which refuses absurd sizes unallocated.
      if (fieldcount(c.size[0], c.size[1], c.size[2]) < 1 || c.size[2] > linefilecount(text)) {
        failure = "  Wrong dimension (" + sizes + ")!";
        break;
      }
      fieldcreate(f, kind, c.size);
      if (fieldempty(f)) break;
    }
    if (c.slice < c.size[2]) eachstorage(f, [&](auto& a) { takeslice(a, v, c.slice * plane); });
    progress("  3Dgrey (Float) with (" + sizes + ")", static_cast<double>(++c.slice) / static_cast<double>(c.size[2]));
  }
  progressend();
  linefilerelease(text);
  if (!empty(failure)) return volumefail(f, kind, failure);
  volumeplace(f, c.offset, diagonalrows(c.scale), name);
  return !fieldempty(f);
}
