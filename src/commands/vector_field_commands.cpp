// The vector field's plain numbers, copies and flips, and its arithmetic; the voxel work
// lives in orientation/.
#include <algorithm>
#include <vector>

#include "commands/combine_handlers.h"
#include "commands/reshape_handlers.h"
#include "commands/resample_handlers.h"
#include "commands/vector_rows.h"
#include "field/workspaces.h"
#include "ops/reshape.h"
#include "ops/resample.h"
#include "orientation/vectoraccess.h"
#include "orientation/vectorgrid.h"
#include "orientation/vectormath.h"
#include "orientation/vectorpoint.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

constexpr auto& W = vectorworkspace;
tvectorfield& current() { return currentfield(W); }

// False is the empty text.
void ifvector(tscript& s) { setresult(s, fieldempty(current()) ? "" : "1"); }
void ifplain(tscript& s) { setresult(s, plainvectors(current()) ? "1" : ""); }
void minfunc(tscript& s) { setresult(s, realtext(shortestvector(current()))); }
void maxfunc(tscript& s) { setresult(s, realtext(longestvector(current()))); }
void countallfunc(tscript& s) { setresult(s, nattext(vectorcount(current()))); }

// lo hi, <lo, hi> or nothing: the vectors with a length in the range, else the non-zero ones.
void countfunc(tscript& s) {
  const int64_t n = paramcount(s);
  if (n > 2) return reportmax(s, 2);
  double lo = std::nextafter(0.0, 1.0), hi = HUGE_VAL;
  if (n == 1) {
    utf16 rest = param(s, 1);
    lo = cutreal(rest);
    hi = cutreal(rest);
  } else if (n == 2) {
    lo = textreal(param(s, 1));
    hi = textreal(param(s, 2));
  }
  setresult(s, nattext(countlengths(current(), std::min(lo, hi), std::max(lo, hi))));
}

template <int axis>
void flipcmd(tscript& s) {
  if (checkparams(s, 0)) flipfield(current(), axis);
}

// One vector: the current field changes by it; two to 99 names: new := op old1 old2 ...
template <const char* word, auto byvector, auto expression>
void arithmeticcmd(tscript& s) {
  if (paramcount(s) == 1) return byvector(current(), textvector(param(s, 1)));
  if (!checkcount(s, operandlist)) return;
  auto c = combination<W>(s, 1, paramcount(s));
  if (c) combinevectors(*c.target, c.operands, word, expression);
}

void addone(tvectorfield& f, const tvector& v) { addvector(f, v); }
void subone(tvectorfield& f, const tvector& v) { addvector(f, {-v[0], -v[1], -v[2]}); }
void mulone(tvectorfield& f, const tvector& v) { mulvector(f, v); }

void meancmd(tscript& s) {
  if (!checkcount(s, operandlist)) return;
  auto c = combination<W>(s, 1, paramcount(s));
  if (c) combinevectors(*c.target, c.operands, combinewords::averaging, vectormath::mean);
}

// old mask values...: old where the rounded length of the mask's vector is one of the
// values or ranges; elsewhere the target stays.
void maskcmd(tscript& s) {
  if (!checkcount(s, {3, maxoperands})) return;
  const std::vector<std::pair<int64_t, int64_t>> ranges = maskranges(s, 3);
  auto c = combination<W>(s, 1, 2);
  if (c) combinevectors(*c.target, c.operands, combinewords::masking, vectormath::masked{ranges});
}

using enum tcommandkind;
using namespace combinewords;
const tcommand fieldrows[] = {
    {"ifvector", variablefunction, ifvector, nullptr, "ifvector // true, if the field has a size bigger than 0x0x0"},
    {"ifplain", variablefunction, ifplain, nullptr, "ifplain // true, if all vectors are the same"},
    {"min", variablefunction, minfunc, nullptr, "min // the shortest vector length"},
    {"max", variablefunction, maxfunc, nullptr, "max // the longest vector length"},
    {"count", function, countfunc, nullptr, "a := count 1 5 // or <1, 5>: vectors of length 1..5; none: the non-zero ones"},
    {"count.all", variablefunction, countallfunc, nullptr, "count.all // number of voxels"},
    {"flip.x", procedure, flipcmd<0>, nullptr, "flip.x // reverse the x axis"},
    {"flip.y", procedure, flipcmd<1>, nullptr, "flip.y // reverse the y axis"},
    {"flip.z", procedure, flipcmd<2>, nullptr, "flip.z // reverse the z axis"},
    eitherway("substack", substackcmd<W>, "new := substack <10, 10, 10> <50%, 50%, 50%> // copy the block between two corners"),
    {"copy.method", procedure, copymethodcmd<W>, nullptr,
     "copy.method 1 // per component, binning: 0 sum, 1 mean, 2 sd, 3 min, 4 Q.25, 5 median, 6 Q.75, 7 max; upscaling: 0 block, 1 trilinear, 2 Lanczos"},
    eitherway("copy", copycmd<W>, "new := copy 0.5 // or <fx, fy, fz>: copy and scale each component to new; no factor: exact copy"),
    eitherway("copyscale", copycmd<W>, "new := copyscale 0.5 // same as copy"),
    eitherway("resize", resizecmd<W>, "new := resize <100, 100, 100> // copy and scale to this size"),
    eitherway("add", arithmeticcmd<addition, addone, vectormath::sum>,
              "new := add old1 old2 ... // the sum of 2 to 99 fields; add <x, y, z>: added to every vector"),
    eitherway("sub", arithmeticcmd<subtraction, subone, vectormath::difference>,
              "new := sub old1 old2 // old1 - old2; sub <x, y, z>: subtracted from every vector"),
    eitherway("mul", arithmeticcmd<multiply, mulone, vectormath::product>,
              "new := mul old1 old2 // per component; mul <x, y, z>: every vector per component"),
    eitherway("mean", meancmd, "new := mean old1 old2 ... // the mean of 2 to 99 fields"),
    eitherway("mask", maskcmd, "new := mask old mask 1 <5, 9> // old where the mask's rounded length is listed"),
};

}  // namespace

std::span<const tcommand> vectorfieldrows() { return fieldrows; }
