// The operations on the line cloud; the work is in geometry/lineops.
#include "commands/line_rows.h"
#include "commands/workspace_handlers.h"
#include "field/workspaces.h"
#include "geometry/lineops.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

template <void (*op)(tcloud&)>
void plaincmd(tscript& s) {
  if (checkparams(s, 0)) op(currentfield(lineworkspace));
}
template <void (*op)(tcloud&, double)>
void valuecmd(tscript& s) {
  if (checkparams(s, 1)) op(currentfield(lineworkspace), textreal(param(s, 1)));
}
template <tstatistic st>
void statisticcmd(tscript& s) {
  if (checkparams(s, 0)) linestatistic(currentfield(lineworkspace), st);
}
template <bool withtime>
void discretecmd(tscript& s) {
  if (checkparams(s, 1)) linediscrete(currentfield(lineworkspace), textreal(param(s, 1)), withtime);
}
template <tvectorop op, bool valued>
void vectorcmd(tscript& s) {
  if (checkparams(s, valued ? 1 : 0)) linevectorop(currentfield(lineworkspace), op, valued ? textreal(param(s, 1)) : 1);
}

// No factor, one factor, <fx, fy, fz> (t stays) or <fx, fy, fz, ft>.
void copycmd(tscript& s) {
  if (paramcount(s) > 1) return reportcount(s, 1);
  tvector f{1, 1, 1};
  double ft = 1;
  if (paramcount(s) == 1) {
    const utf16 text = param(s, 1);
    int64_t commas = 0;
    for (int64_t i = 1; i <= length(text); ++i) commas += charat(text, i) == ',';
    const thyper h = texthyper(text);
    if (commas == 0) f = {h[0], h[0], h[0]}, ft = 1;
    else f = {h[0], h[1], h[2]}, ft = commas >= 3 ? h[3] : 1;
  }
  const tcloud& from = currentfield(lineworkspace);
  tcloud* to = resulttarget<lineworkspace>(s, true);
  if (to) linecopy(from, *to, f, ft);
}

void objectnamecmd(tscript& s) {
  if (checkparams(s, 2)) lineobjectname(currentfield(lineworkspace), textnat(param(s, 1)), param(s, 2));
}

using enum tcommandkind;
const tcommand rows[] = {
    eitherway("copy", copycmd, "new := line.copy // a copy as a new entry"),
    eitherway("copyscale", copycmd, "new := line.copyscale <2, 2, 2, 1> // scaled copy; a fourth entry scales t"),
    {"object.name", procedure, objectnamecmd, nullptr, "object.name 1 \"fibres\" // renames an object"},
    {"center", procedure, plaincmd<linecenter>, nullptr, "center // all points moved by minus their mean"},
    {"center.objects", procedure, plaincmd<linecenterobjects>, nullptr, "center.objects // the same for each object"},
    {"number", procedure, plaincmd<linenumber>, nullptr, "number // t = number of the point within its line"},
    {"distance", procedure, plaincmd<linedistance>, nullptr, "distance // t = distance to the neighbour point"},
    {"length", procedure, plaincmd<linelengths>, nullptr, "length // t = length along the line from its start"},
    {"mean.t", procedure, statisticcmd<tstatistic::mean>, nullptr, "mean.t // t of a line = mean of its t"},
    {"sd.t", procedure, statisticcmd<tstatistic::sd>, nullptr, "sd.t // t of a line = SD of its t"},
    {"min.t", procedure, statisticcmd<tstatistic::min>, nullptr, "min.t // t of a line = minimum of its t"},
    {"median.t", procedure, statisticcmd<tstatistic::median>, nullptr, "median.t // t of a line = median of its t"},
    {"max.t", procedure, statisticcmd<tstatistic::max>, nullptr, "max.t // t of a line = maximum of its t"},
    {"erase.t.min", procedure, valuecmd<lineerasetmin>, nullptr, "erase.t.min 1 // erase lines with any t below"},
    {"erase.t.max", procedure, valuecmd<lineerasetmax>, nullptr, "erase.t.max 9 // erase lines with any t above"},
    {"erase.length.min", procedure, valuecmd<lineeraselengthmin>, nullptr, "erase.length.min 10 // erase shorter lines"},
    {"erase.length.max", procedure, valuecmd<lineeraselengthmax>, nullptr, "erase.length.max 99 // erase longer lines"},
    {"erase.duplicates", procedure, plaincmd<lineeraseduplicates>, nullptr, "erase.duplicates // exact duplicates, either way"},
    {"erase.duplicates.near", procedure, valuecmd<lineeraseduplicatesnear>, nullptr,
     "erase.duplicates.near 1 // lines near an earlier one"},
    {"erase.duplicates.begin", procedure, valuecmd<lineeraseduplicatesbegin>, nullptr,
     "erase.duplicates.begin 1 // lines starting near an earlier start"},
    {"mean.duplicates.near", procedure, valuecmd<linemeanduplicatesnear>, nullptr,
     "mean.duplicates.near 0.5 // near points merged into their mean"},
    {"discrete", procedure, discretecmd<true>, nullptr, "discrete 1 // x, y, z and t rounded to multiples"},
    {"discrete.3d", procedure, discretecmd<false>, nullptr, "discrete.3d 1 // x, y, z rounded to multiples; t stays"},
    {"vector.norm", procedure, vectorcmd<tvectorop::norm, false>, nullptr, "vector.norm // two-point lines of length 1"},
    {"vector.normscale", procedure, vectorcmd<tvectorop::normscale, true>, nullptr, "vector.normscale 2 // of length s"},
    {"vector.scale", procedure, vectorcmd<tvectorop::scale, true>, nullptr, "vector.scale 2 // times s"},
    {"vector.minscale", procedure, vectorcmd<tvectorop::minscale, false>, nullptr, "vector.minscale // over the shortest"},
    {"vector.maxscale", procedure, vectorcmd<tvectorop::maxscale, false>, nullptr, "vector.maxscale // over the longest"},
    {"vector.negate", procedure, vectorcmd<tvectorop::negate, false>, nullptr, "vector.negate // reversed"},
    {"vector.invert", procedure, vectorcmd<tvectorop::invert, false>, nullptr, "vector.invert // 1/v per component"},
};

}  // namespace

std::span<const tcommand> lineoperationrows() { return rows; }

