// The plain field operations of the vector family that take the vector length where a
// value is needed: crops, moved blocks, the histogram family, and fields of its size.
#include <algorithm>
#include <limits>

#include "commands/histogram_handlers.h"
#include "commands/reshape_handlers.h"
#include "commands/vector_rows.h"
#include "field/workspaces.h"
#include "ops/reshape.h"

namespace {

constexpr auto& W = vectorworkspace;
tvectorfield& current() { return currentfield(W); }

// A length or <lo, hi>, hi raised to lo when below it; none: every non-zero vector.
tmorphrange lengthrange(tscript& s, int64_t i) {
  if (paramcount(s) < i) return {1, std::numeric_limits<int64_t>::max()};
  const tnatvector v = textnatvector(param(s, i));
  return {v[0], std::max(v[0], v[1])};
}

// crop r in place; new := crop old1 r.
void cropcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n > 2) return reportmax(s, 2);
  const bool function = !empty(gettarget(s));
  tvectorfield* source = &current();
  if (n == 2 && !(source = workspaceoperand(s, W, param(s, 1)))) return;
  tvectorfield* target = function ? resulttarget<W>(s, false) : source;
  if (target) cropfield(*target, *source, lengthrange(s, std::max<int64_t>(n, 1)));
}

using enum tcommandkind;
const tcommand rows[] = {
    eitherway("crop", cropcmd, "crop <1, 10> // cut to the box of the vectors with a length in range; none: the non-zero ones"),
    {"move", procedure, moveblockcmd<W>, nullptr, "move <10, 10, 10> <20, 20, 20> <0, 50, 50> // move the block between two corners by a step"},
    {"make", procedure, makecmd<W, W>, nullptr, "make // the vector field made anew at its size (all zero)"},
    {"make.vector", procedure, makecmd<W, W>, nullptr, "make.vector // same as make"},
    {"make.scalar", procedure, makecmd<W, scalarworkspace>, nullptr, "make.scalar // new scalar field of the vector field's size"},
    {"make.tensor", procedure, makecmd<W, tensorworkspace>, nullptr, "make.tensor // new tensor field of the vector field's size"},
};

}  // namespace

std::span<const tcommand> vectorplainrows() { return rows; }
std::span<const tcommand> vectorhistogramrows() { return histogramrows<W>(); }
