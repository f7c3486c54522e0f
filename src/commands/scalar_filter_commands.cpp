// The scalar family's smoothing and filters; the voxel work lives in ops/.
#include <algorithm>
#include <array>
#include <limits>

#include "commands/threads.h"
#include "commands/scalar_rows.h"
#include "field/workspaces.h"
#include "ops/filter.h"
#include "ops/slices.h"
#include "ops/smooth.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

tscalarfield& current() { return currentfield(scalarworkspace); }

template <tsmoothkind kind>
void smoothcmd(tscript& s) {
  if (checkparams(s, 0)) smoothfield(current(), kind, threadlimit(s));
}

// 27 weights and the divisor. Weights are kept to 32 bits so that no sum overflows.
void filtercmd(tscript& s) {
  if (!checkparams(s, 28)) return;
  constexpr int64_t limit = std::numeric_limits<int32_t>::max();
  std::array<int64_t, 27> weights{};
  for (int64_t k = 0; k < 27; ++k) weights[k] = std::clamp(textnat(param(s, k + 1)), -limit, limit);
  filterfield(current(), weights, textnat(param(s, 28)));
}

void labelcmd(tscript& s) {
  if (checkparams(s, 1)) labelsmoothfield(current(), textnat(param(s, 1)));
}

template <tmediankind kind>
void mediancmd(tscript& s) {
  if (checkparams(s, 0)) medianfield(current(), kind);
}

using enum tcommandkind;
const tcommand rows[] = {
    {"softsmooth", procedure, smoothcmd<tsmoothkind::soft>, nullptr, "softsmooth // 3x3x3 smoothing, midpoint is stronger"},
    {"smooth", procedure, smoothcmd<tsmoothkind::smooth>, nullptr, "smooth // 3x3x3 smoothing, all the same"},
    {"smooth0", procedure, smoothcmd<tsmoothkind::smooth0>, nullptr, "smooth0 // as smooth, do not smooth at zero"},
    {"hardsmooth", procedure, smoothcmd<tsmoothkind::hard>, nullptr, "hardsmooth // 3x3x3 smoothing, midpoint is weaker"},
    {"unsharpmasking", procedure, smoothcmd<tsmoothkind::unsharp>, nullptr,
     "unsharpmasking // 3x3x3 sharpening: 2 * midpoint - mean"},
    {"smooth.label", procedure, labelcmd, nullptr,
     "smooth.label 10 // look for highest amount of value, ignore highest zeros from 27 to 10"},
    {"filter", procedure, filtercmd, nullptr,
     "filter 0 0 0 0 1 0 0 0 0 0 1 0 1 1 1 0 1 0 0 0 0 0 1 0 0 0 0 7 // matrix [1..27] div [28]"},
    {"filter.median.add", procedure, mediancmd<tmediankind::add>, nullptr,
     "filter.median.add // median of the sums of the axis lines"},
    {"filter.median.mean", procedure, mediancmd<tmediankind::mean>, nullptr,
     "filter.median.mean // median of the means of the axis lines"},
    {"filter.median.mul", procedure, mediancmd<tmediankind::mul>, nullptr,
     "filter.median.mul // median of the products of the axis lines"},
};

}  // namespace

std::span<const tcommand> scalarfilterrows() { return rows; }
