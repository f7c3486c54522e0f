#include "ops/compose.h"

#include <algorithm>
#include <vector>

#include "field/owned.h"
#include "ops/combine.h"
#include "ops/combinewords.h"

namespace {

// The progress words of the passes after the first pair of three or more operands.
constexpr char overfirst[] = "  Over 1+2";
constexpr char overfurther[] = "  Over +";

// Background b (operand 0) under foreground f (operand 1), both rgba.
void overpixel(const tpixel& p, int64_t* out) {
  const double ba = static_cast<double>(p.get(0, 3)) / 255.0, fa = static_cast<double>(p.get(1, 3)) / 255.0;
  for (int c = 0; c < 3; ++c) {
    const double b = static_cast<double>(p.get(0, c)) / 255.0, f = static_cast<double>(p.get(1, c)) / 255.0;
    out[c] = roundnat(((1 - fa) * ba * b + fa * f) * 255.0);
  }
  out[3] = roundnat(((1 - fa) * ba + fa) * 255.0);
}

}  // namespace

void imageover(timagefield& target, std::span<const timagefield* const> operands) {
  constexpr int rgba[] = {4, 4};
  if (operands.size() < 2) return;
  if (operands.size() == 2) {
    combineimages(target, 4, operands, rgba, combinewords::over, overpixel);
    return;
  }
  // The passes overwrite the target, so a later operand that is the target itself is read
  // from a copy of what it held before.
  std::vector<const timagefield*> sources(operands.begin(), operands.end());
  tlocalfield<timagefield> copy;
  timagefield& before = *copy;
  for (size_t i = 2; i < sources.size(); ++i) {
    if (sources[i] != &target) continue;
    if (fieldempty(before)) imagecopyfrom(before, target);
    sources[i] = &before;
  }
  const timagefield* pair[] = {sources[0], sources[1]};
  combineimages(target, 4, pair, rgba, overfirst, overpixel);
  for (size_t i = 2; i < sources.size(); ++i) {
    pair[0] = &target;
    pair[1] = sources[i];
    combineimages(target, 4, pair, rgba, overfurther, overpixel);
  }
}

namespace {

// Row y of an image in a channel mode with one pixel more on either side: x from 0 to
// width + 1. The rows outside the image read as its background like the pixels do.
void paddedrow(const timagefield& f, int64_t y, int mode, int64_t width, int64_t* out) {
  if (mode == 1) {
    out[0] = getvalue(f, 0, y);
  } else if (mode == 3) {
    const trgb c = getrgb(f, 0, y);
    std::copy(c.begin(), c.end(), out);
  } else {
    const trgba c = getrgba(f, 0, y);
    std::copy(c.begin(), c.end(), out);
  }
  readrow(f, y, mode, width + 1, out + mode);
}

}  // namespace

void imagestacking(timagefield& target, std::span<const timagefield* const> operands) {
  const int64_t w = imagesizex(target), h = imagesizey(target);
  const auto n = static_cast<int64_t>(operands.size());
  if (w < 1 || h < 1 || n < 1) return;
  const int mode = channelmode(target);
  const int64_t top = sampletop(target), stride = (w + 2) * mode;
  // Three padded rows per operand, y - 1, y and y + 1, rotated as y advances.
  std::vector<std::vector<int64_t>> rows(static_cast<size_t>(n) * 3, std::vector<int64_t>(stride));
  auto row = [&](int64_t i, int k) { return rows[static_cast<size_t>(i * 3 + k)].data(); };
  for (int64_t i = 0; i < n; ++i) {
    paddedrow(*operands[i], 0, mode, w, row(i, 1));
    paddedrow(*operands[i], 1, mode, w, row(i, 2));
  }
  std::vector<int64_t> out(w * mode);
  for (int64_t y = 1; y <= h; ++y) {
    progress(combinewords::stacking, static_cast<double>(y) / static_cast<double>(h));
    for (int64_t i = 0; i < n; ++i) {
      std::rotate(rows.begin() + i * 3, rows.begin() + i * 3 + 1, rows.begin() + i * 3 + 3);
      paddedrow(*operands[i], y + 1, mode, w, row(i, 2));
    }
    for (int64_t x = 1; x <= w; ++x) {
      for (int c = 0; c < mode; ++c) {
        const int64_t at = x * mode + c;
        // Five times the weight, n - v with n the mean of the pixel and its four
        // neighbours, kept in integers so that a flat neighbourhood weighs exactly 0.
        int64_t sumw = 0, sumvw = 0, sumv = 0;
        for (int64_t i = 0; i < n; ++i) {
          const int64_t *up = row(i, 0), *mid = row(i, 1), *down = row(i, 2);
          const int64_t v = mid[at];
          const int64_t weight = mid[at - mode] + mid[at + mode] + up[at] + down[at] - 4 * v;
          sumw += weight;
          sumvw += v * weight;
          sumv += v;
        }
        // Weights that cancel out say nothing about sharpness: the plain mean then.
        const double result = sumw != 0 ? static_cast<double>(sumvw) / static_cast<double>(sumw)
                                        : static_cast<double>(sumv) / static_cast<double>(n);
        out[(x - 1) * mode + c] = clampround(result, top);
      }
    }
    writerow(target, y, mode, w, out.data());
  }
  progressend();
}
