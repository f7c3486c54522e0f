// The histogram and analysis commands of images and volumes, written once and instantiated
// per family; counting and analysis live in ops/histogram, charts in drawing/.
#pragma once
#include <span>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "drawing/histogramchart.h"
#include "base/filebuffer.h"
#include "ops/histogram.h"
#include "script/registry.h"
#include "script/values.h"
#include "shell/console.h"

// None: 70 columns by 2 lines; one: <columns, lines>.
template <auto& W>
void histogramcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  int64_t width = 70, height = 2;
  if (paramcount(s) == 1) {
    const tnatvector size = textnatvector(param(s, 1));
    width = size[0] > 0 ? size[0] : width;
    height = size[1] > 0 ? size[1] : height;
  }
  for (const std::string& line : histogramchart(fieldhistogram(currentfield(W)), width, height)) println(line);
}

template <auto& W>
void histogramrawcmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  const utf16 name = param(s, 1);
  const std::vector<int64_t> counts = fieldhistogram(currentfield(W));
  if (length(name) > 0 && !counts.empty()) bufferwrite(name, histogramtable(counts));
}

inline void printanalysis(const tanalysis& a) {
  for (const utf16& line : analysislines(a)) println(line);
}

template <auto& W>
void analysiscmd(tscript& s) {
  if (checkparams(s, 0)) printanalysis(analysehistogram(fieldhistogram(currentfield(W)), false));
}

// The table of the counts and a second one of their logarithms, then the points found.
template <auto& W>
void analysisrawcmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  const utf16 name = param(s, 1);
  const std::vector<int64_t> counts = fieldhistogram(currentfield(W));
  const tanalysis a = analysehistogram(counts, false);
  if (length(name) < 1 || a.points.empty()) return;
  bufferwrite(name, analysistable(a));
  bufferwrite(logtablename(name), analysistable(analysehistogram(counts, true)));
  printanalysis(a);
}

inline utf16 fieldfilename(const timagefield& f) { return f.name; }
inline utf16 fieldfilename(const tscalarfield& f) { return f.title; }
inline utf16 fieldfilename(const tvectorfield&) { return utf16("vectors"); }

template <class F>
utf16 charttitleof(const F& f) {
  const tnatvector size = fieldsize(f);
  return charttitle(fieldfilename(f), size[0], size[1]);
}

// The chart's name with ".txt" in place of its extension.
inline utf16 textname(const utf16& name) {
  const std::string text = utf16toutf8(name);
  const size_t dot = text.find_last_of('.'), slash = text.find_last_of('/');
  const bool plain = dot == std::string::npos || (slash != std::string::npos && dot < slash);
  return utf16((plain ? text : text.substr(0, dot)) + ".txt");
}

// An empty name is a silent no-op.
template <auto& W>
void histogramimagecmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  const utf16 name = param(s, 1);
  const auto& f = currentfield(W);
  const std::vector<int64_t> counts = fieldhistogram(f);
  if (length(name) > 0 && !counts.empty()) chartsave(histogramchart(counts, charttitleof(f), fieldsize(f)[1]), name);
}

template <auto& W>
void analysisimagecmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  const utf16 name = param(s, 1);
  const auto& f = currentfield(W);
  const std::vector<int64_t> counts = fieldhistogram(f);
  if (length(name) < 1 || counts.empty()) return;
  const tanalysis a = analysehistogram(counts, false);
  chartsave(analysischart(a, static_cast<int64_t>(counts.size()), charttitleof(f), fieldsize(f)[1]), name);
  std::string text;
  for (const utf16& line : analysislines(a)) text += utf16toutf8(line) + "\n";
  if (!text.empty()) bufferwrite(textname(name), text, false);
}

template <auto& W>
std::span<const tcommand> histogramrows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"histogram", procedure, histogramcmd<W>, nullptr,
       "histogram // or histogram <70, 2>: the value distribution on the console, log10 scale"},
      {"histogram.image", procedure, histogramimagecmd<W>, nullptr,
       "histogram.image \"histogram.svg\" // the histogram as a chart: svg, svgz, eps, png, bmp, ppm ..."},
      {"histogram.raw", procedure, histogramrawcmd<W>, nullptr, "histogram.raw \"histogram.txt\" // write value count"},
      {"analysis", procedure, analysiscmd<W>, nullptr,
       "analysis // maxima, minima and inflection points of the smoothed histogram"},
      {"analysis.image", procedure, analysisimagecmd<W>, nullptr,
       "analysis.image \"analysis.svg\" // chart of the smoothed histogram with the points found, and analysis.txt"},
      {"analysis.raw", procedure, analysisrawcmd<W>, nullptr,
       "analysis.raw \"analysis.txt\" // write i value f f' f'' (and of log10 counts to analysis-log.txt)"},
  };
  return rows;
}

// Volumes count straight from the voxel array as well.
template <auto& W>
std::span<const tcommand> histogramfastrows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"histogram.fast", procedure, histogramcmd<W>, nullptr, "histogram.fast // same as histogram, from the voxel array"},
  };
  return rows;
}
