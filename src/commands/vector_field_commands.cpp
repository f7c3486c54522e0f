// Fields made from the vector field (scalars, tensors, an image, the distance factor), its
// plain numbers, copies and flips, and its arithmetic; the voxel work lives in orientation/.
#include <algorithm>
#include <vector>

#include "commands/combine_handlers.h"
#include "commands/vector_rows.h"
#include "field/workspaces.h"
#include "ops/slices.h"
#include "orientation/vectoraccess.h"
#include "orientation/vectorderive.h"
#include "orientation/vectorgrid.h"
#include "orientation/vectorpoint.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

constexpr auto& W = vectorworkspace;
tvectorfield& current() { return currentfield(W); }

// The field named left of ":=" in workspace w, else its current one.
template <class F>
F& namedorcurrent(tscript& s, tworkspacelist<F>& w) {
  const utf16 name = gettarget(s);
  settarget(s, utf16());
  F* f = empty(name) ? nullptr : workspacetarget(w, name);
  return f ? *f : currentfield(w);
}

void lengthcmd(tscript& s) {
  if (checkparams(s, 0))
    vectorlengths(current(), namedorcurrent(s, scalarworkspace), scalarworkspace.defaultkind, threadlimit(s));
}

template <int axis>
void componentcmd(tscript& s) {
  if (checkparams(s, 0))
    vectorcomponents(current(), axis, namedorcurrent(s, scalarworkspace), scalarworkspace.defaultkind, threadlimit(s));
}

void tensorcmd(tscript& s) {
  if (checkparams(s, 0))
    orientationtensors(current(), namedorcurrent(s, tensorworkspace), tensorworkspace.defaultkind, threadlimit(s));
}

// None: the current field; one name: that field; two: the comparison of both. The result
// is computed apart, so that the target may be one of the sources.
void factorcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n > 2) return reportmax(s, 2);
  tvectorfield* target = resulttarget<W>(s, false);
  const tvectorfield* first = n >= 1 ? workspaceoperand(s, W, param(s, 1)) : &current();
  const tvectorfield* second = n == 2 ? workspaceoperand(s, W, param(s, 2)) : nullptr;
  if (!target || !first || (n == 2 && !second)) return;
  tvectorfield result{};
  if (n == 2 ? distancefactor(*first, *second, result) : (distancefactor(*first, result), true))
    copyvectors(result, *target);
  else
    println("  Different field sizes!");
  fieldrelease(result);
}

void fusecmd(tscript& s) {
  if (checkparams(s, 0))
    fusevectors(current(), currentfield(scalarworkspace), currentfield(imageworkspace), imageworkspace.defaultkind);
}

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
  if (checkparams(s, 0)) flipvectors(current(), axis);
}

// Only the exact copy: no factor, or one of 0 and below.
void copycmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  if (paramcount(s) == 1 && textreal(param(s, 1)) > 0) {
    println("  Vector fields are copied only as they are (factor 0)!");
    return;
  }
  if (tvectorfield* target = resulttarget<W>(s, true)) copyvectors(current(), *target);
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

tvector sum(std::span<const tvector> v, const tvector&) {
  tvector r{0, 0, 0};
  for (const tvector& a : v)
    for (int c = 0; c < 3; ++c) r[c] += a[c];
  return r;
}
tvector difference(std::span<const tvector> v, const tvector&) {
  tvector r = v[0];
  for (size_t i = 1; i < v.size(); ++i)
    for (int c = 0; c < 3; ++c) r[c] -= v[i][c];
  return r;
}
tvector product(std::span<const tvector> v, const tvector&) {
  tvector r = v[0];
  for (size_t i = 1; i < v.size(); ++i)
    for (int c = 0; c < 3; ++c) r[c] *= v[i][c];
  return r;
}
tvector mean(std::span<const tvector> v, const tvector& own) {
  const tvector r = sum(v, own);
  const double n = static_cast<double>(v.size());
  return {r[0] / n, r[1] / n, r[2] / n};
}

void meancmd(tscript& s) {
  if (!checkcount(s, operandlist)) return;
  auto c = combination<W>(s, 1, paramcount(s));
  if (c) combinevectors(*c.target, c.operands, combinewords::averaging, mean);
}

// old mask values...: old where the rounded length of the mask's vector is one of the
// values or ranges; elsewhere the target stays.
void maskcmd(tscript& s) {
  if (!checkcount(s, {3, maxoperands})) return;
  std::vector<std::pair<int64_t, int64_t>> ranges;
  for (int64_t i = 3; i <= paramcount(s); ++i) {
    int64_t lo = 0, hi = 0;
    cutrange(param(s, i), lo, hi);
    ranges.emplace_back(std::min(lo, hi), std::max(lo, hi));
  }
  auto c = combination<W>(s, 1, 2);
  if (!c) return;
  combinevectors(*c.target, c.operands, combinewords::masking, [&](std::span<const tvector> v, const tvector& own) {
    const int64_t m = roundnat(std::sqrt(v[1][0] * v[1][0] + v[1][1] * v[1][1] + v[1][2] * v[1][2]));
    return std::any_of(ranges.begin(), ranges.end(), [m](auto r) { return r.first <= m && m <= r.second; }) ? v[0]
                                                                                                           : own;
  });
}

using enum tcommandkind;
using namespace combinewords;
const tcommand deriverows[] = {
    eitherway("measure.length", lengthcmd, "measure.length // scalar field of the rounded vector lengths"),
    eitherway("get.x", componentcmd<1>, "get.x // scalar field of the rounded x components"),
    eitherway("get.y", componentcmd<2>, "get.y // scalar field of the rounded y components"),
    eitherway("get.z", componentcmd<3>, "get.z // scalar field of the rounded z components"),
    eitherway("gettensor", tensorcmd, "gettensor // tensor field of v * v^T"),
    eitherway("gettensors", tensorcmd, "gettensors // same as gettensor"),
    eitherway("factor.distance", factorcmd,
              "new := factor.distance old1 old2 // or old1 or nothing: the distance factor of the vectors"),
    {"fuse", k1, fusecmd, nullptr,
     "fuse // fuse color image stack (vector field along z) with best scalar value to new image value"},
};

const tcommand fieldrows[] = {
    {"ifvector", k4, ifvector, nullptr, "ifvector // true, if the field has a size bigger than 0x0x0"},
    {"ifplain", k4, ifplain, nullptr, "ifplain // true, if all vectors are the same"},
    {"min", k4, minfunc, nullptr, "min // the shortest vector length"},
    {"max", k4, maxfunc, nullptr, "max // the longest vector length"},
    {"count", k2, countfunc, nullptr, "a := count 1 5 // or <1, 5>: vectors of length 1..5; none: the non-zero ones"},
    {"count.all", k4, countallfunc, nullptr, "count.all // number of voxels"},
    {"flip.x", k1, flipcmd<1>, nullptr, "flip.x // reverse the x axis"},
    {"flip.y", k1, flipcmd<2>, nullptr, "flip.y // reverse the y axis"},
    {"flip.z", k1, flipcmd<3>, nullptr, "flip.z // reverse the z axis"},
    eitherway("copy", copycmd, "new := copy // an exact copy of the current field"),
    eitherway("add", arithmeticcmd<addition, addone, sum>,
              "new := add old1 old2 ... // the sum of 2 to 99 fields; add <x, y, z>: added to every vector"),
    eitherway("sub", arithmeticcmd<subtraction, subone, difference>,
              "new := sub old1 old2 // old1 - old2; sub <x, y, z>: subtracted from every vector"),
    eitherway("mul", arithmeticcmd<multiply, mulone, product>,
              "new := mul old1 old2 // per component; mul <x, y, z>: every vector per component"),
    eitherway("mean", meancmd, "new := mean old1 old2 ... // the mean of 2 to 99 fields"),
    eitherway("mask", maskcmd, "new := mask old mask 1 <5, 9> // old where the mask's rounded length is listed"),
};

}  // namespace

std::span<const tcommand> vectorderiverows() { return deriverows; }
std::span<const tcommand> vectorfieldrows() { return fieldrows; }
