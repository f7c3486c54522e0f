// The histogram and analysis commands of images and volumes, written once and instantiated
// per family; counting and analysis live in ops/histogram, charts in drawing/.
#pragma once
#include <span>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "formats/filebuffer.h"
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

template <auto& W>
std::span<const tcommand> histogramrows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"histogram", k1, histogramcmd<W>, nullptr,
       "histogram // or histogram <70, 2>: the value distribution on the console, log10 scale"},
      {"histogram.raw", k1, histogramrawcmd<W>, nullptr, "histogram.raw \"histogram.txt\" // write value count"},
      {"analysis", k1, analysiscmd<W>, nullptr,
       "analysis // maxima, minima and inflection points of the smoothed histogram"},
      {"analysis.raw", k1, analysisrawcmd<W>, nullptr,
       "analysis.raw \"analysis.txt\" // write i value f f' f'' (and of log10 counts to analysis-log.txt)"},
  };
  return rows;
}

// Volumes count straight from the voxel array as well.
template <auto& W>
std::span<const tcommand> histogramfastrows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"histogram.fast", k1, histogramcmd<W>, nullptr, "histogram.fast // same as histogram, from the voxel array"},
  };
  return rows;
}
