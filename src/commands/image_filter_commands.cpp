// The image family's smoothing and free kernel; the pixel work lives in ops/.
#include <algorithm>
#include <array>
#include <limits>

#include "commands/fieldrows.h"
#include "field/workspaces.h"
#include "ops/filter.h"
#include "ops/smooth.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

timagefield& current() { return currentfield(imageworkspace); }

// None or the number of passes.
template <tsmoothkind kind>
void smoothcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n > 1) return reportmax(s, 1);
  smoothimage(current(), kind, n == 1 ? textnat(param(s, 1)) : 1);
}

// 9 weights and the divisor. Weights are kept to 32 bits so that no sum overflows.
void filtercmd(tscript& s) {
  if (!checkparams(s, 10)) return;
  constexpr int64_t limit = std::numeric_limits<int32_t>::max();
  std::array<int64_t, 9> weights{};
  for (int64_t k = 0; k < 9; ++k) weights[k] = std::clamp(textnat(param(s, k + 1)), -limit, limit);
  filterimage(current(), weights, textnat(param(s, 10)));
}

using enum tcommandkind;
const tcommand rows[] = {
    {"softsmooth", procedure, smoothcmd<tsmoothkind::soft>, nullptr,
     "softsmooth // or softsmooth n: 3x3 smoothing, midpoint is stronger"},
    {"smooth", procedure, smoothcmd<tsmoothkind::smooth>, nullptr, "smooth // or smooth n: 3x3 smoothing, all the same"},
    {"hardsmooth", procedure, smoothcmd<tsmoothkind::hard>, nullptr,
     "hardsmooth // or hardsmooth n: 3x3 smoothing, midpoint is weaker"},
    {"unsharpmasking", procedure, smoothcmd<tsmoothkind::unsharp>, nullptr,
     "unsharpmasking // or unsharpmasking n: 3x3 sharpening, 2 * midpoint - mean"},
    {"filter", procedure, filtercmd, nullptr, "filter 0 1 0 1 4 1 0 1 0 8 // matrix [1..9] div [10]"},
};

}  // namespace

std::span<const tcommand> imagefilterrows() { return rows; }
