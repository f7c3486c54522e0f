// The morphology commands of images and volumes, written once and instantiated per family
// with its workspace; the pixel work lives in ops/morphology and ops/holefill.
#pragma once
#include <span>
#include <type_traits>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "ops/holefill.h"
#include "ops/morphology.h"
#include "script/registry.h"
#include "script/values.h"
#include "shell/console.h"

// The scalar family's own rows (skeletons, label forms, caves and hulls) and the image
// family's (zero and gap filling).
std::span<const tcommand> scalarmorphologyrows();
std::span<const tcommand> imagemorphologyrows();

// The default range runs from 1 to the kind's top; images take <1, 65535> whatever
// their kind.
template <class F>
int64_t rangetop(const F& f) {
  if constexpr (std::is_same_v<F, tscalarfield>)
    return kindmaximum(f.kind);
  else
    return 65535;
}

// Parameter i as a value range: a number or <lo, hi>, hi raised to lo when below it.
template <auto& W>
tmorphrange rangeparam(tscript& s, int64_t i) {
  if (paramcount(s) < i) return {1, rangetop(currentfield(W))};
  const tnatvector v = textnatvector(param(s, i));
  return {v[0], std::max(v[0], v[1])};
}

inline void printcount(const char* word, int64_t count) { println(utf16(word) + nattext(count)); }

template <tmorphkind kind>
constexpr const char* morphword = kind == tmorphkind::grow ? "  Filled pixels: " : "  Removed pixels: ";

// r n v, each optional; the label forms take r and n only.
template <auto& W, tmorphkind kind, bool full, bool label = false>
void morphcmd(tscript& s) {
  constexpr int64_t most = label ? 2 : 3;
  const int64_t count = paramcount(s);
  if (count > most) return reportmax(s, most);
  tmorphstep step{kind, rangeparam<W>(s, 1), count >= 2 ? textnat(param(s, 2)) : 4, {}, label};
  if (count >= 3) step.value = textnat(param(s, 3));
  auto& f = currentfield(W);
  printcount(morphword<kind>, full ? morphfull(f, step) : morphpass(f, step));
}

// r n1 n2 v1 v2: open shrinks with n1, v1 and grows with n2, v2; close grows first.
template <auto& W, bool close, bool label = false>
void openclosecmd(tscript& s) {
  constexpr int64_t most = label ? 3 : 5;
  const int64_t count = paramcount(s);
  if (count > most) return reportmax(s, most);
  const tmorphrange range = rangeparam<W>(s, 1);
  auto stepof = [&](tmorphkind kind, int64_t n, int64_t v) {
    tmorphstep step{kind, range, count >= n ? textnat(param(s, n)) : 4, {}, label};
    if (count >= v) step.value = textnat(param(s, v));
    return step;
  };
  auto& f = currentfield(W);
  const tmorphkind first = close ? tmorphkind::grow : tmorphkind::shrink;
  const tmorphkind second = close ? tmorphkind::shrink : tmorphkind::grow;
  const int64_t changed = morphpass(f, stepof(first, 2, 4));
  printcount("  Changed pixels: ", changed + morphpass(f, stepof(second, 3, 5)));
}

// None or the factor of the quartile distance.
template <auto& W>
void outlierscmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  const int64_t factor = paramcount(s) == 1 ? textnat(param(s, 1)) : 2;
  printcount("  Removed outliers: ", removeoutliers(currentfield(W), factor));
}

// Images fill with their value; volumes with v, or their value when it is left out.
template <auto& W>
void fillholescmd(tscript& s) {
  auto& f = currentfield(W);
  constexpr int64_t most = std::is_same_v<std::remove_cvref_t<decltype(f)>, tscalarfield> ? 2 : 1;
  if (paramcount(s) > most) return reportmax(s, most);
  if constexpr (most == 2)
    fillholes(f, rangeparam<W>(s, 1), paramcount(s) == 2 ? textnat(param(s, 2)) : getdrawvalue(f));
  else
    fillholes(f, rangeparam<W>(s, 1));
}

template <auto& W>
std::span<const tcommand> morphologyrows() {
  using enum tcommandkind;
  using enum tmorphkind;
  constexpr bool image = std::is_same_v<workspacefieldof<W>, timagefield>;
  static const tcommand rows[] = {
      {"shrink", procedure, morphcmd<W, shrink, false>, nullptr,
       image ? "shrink <128, 255> 4 // remove single spots, if 4 neighbors (max 8) outside value or range"
             : "shrink <128, 255> 13 // remove single spots, if 13 neighbors (max 26) outside value or range"},
      {"erode", procedure, morphcmd<W, shrink, false>, nullptr, "erode // same as shrink"},
      {"grow", procedure, morphcmd<W, grow, false>, nullptr,
       image ? "grow <128, 255> 4 1 // replace single hole with 1, if 4 neighbors (max 8) inside value or range"
             : "grow <128, 255> 13 1 // replace single hole with 1, if 13 neighbors (max 26) inside value or range"},
      {"dilate", procedure, morphcmd<W, grow, false>, nullptr, "dilate // same as grow"},
      {"fullshrink", procedure, morphcmd<W, shrink, true>, nullptr,
       image ? "fullshrink <128, 255> 4 // loop image.shrink until be found no more shrinking points or iteration steps > 9999"
             : "fullshrink <128, 255> 13 // loop scalar.shrink until be found no more shrinking points or iteration steps > 9999"},
      {"fullerode", procedure, morphcmd<W, shrink, true>, nullptr, "fullerode // same as fullshrink"},
      {"ultimate_erosion", procedure, morphcmd<W, shrink, true>, nullptr, "ultimate_erosion // same as fullshrink"},
      {"fullgrow", procedure, morphcmd<W, grow, true>, nullptr,
       image ? "fullgrow <128, 255> 4 // loop image.grow until be found no more growing points or iteration steps > 9999"
             : "fullgrow <128, 255> 13 // loop scalar.grow until be found no more growing points or iteration steps > 9999"},
      {"fulldilate", procedure, morphcmd<W, grow, true>, nullptr, "fulldilate // same as fullgrow"},
      {"ultimate_dilation", procedure, morphcmd<W, grow, true>, nullptr, "ultimate_dilation // same as fullgrow"},
      {"open", procedure, openclosecmd<W, false>, nullptr,
       "open <128, 255> 4 4 1 1 // shrink <128, 255> 4 1 + grow <128, 255> 4 1"},
      {"close", procedure, openclosecmd<W, true>, nullptr,
       "close <128, 255> 4 4 1 1 // grow <128, 255> 4 1 + shrink <128, 255> 4 1"},
      {"remove.outliers", procedure, outlierscmd<W>, nullptr,
       "remove.outliers 2 // if value outside of median+/-(factor * abs(q.25-q.75))"},
      {"fill.holes", procedure, fillholescmd<W>, nullptr,
       image ? "fill.holes <5, 15> // fill holes with image.value from structures 5..15"
             : "fill.holes <5, 15> 1 // fill holes with 1 (or scalar.value) from structures 5..15"},
  };
  return rows;
}
