#include "geometry/camera.h"

#include <cmath>
#include <numbers>
#include <string>

#include "geometry/meshbuild.h"
#include "library/mathvector.h"
#include "shell/console.h"

namespace {

const char* progressword(tcamerashape shape, bool focused) {
  if (shape == tcamerashape::tube) return focused ? "  Add screen (tube) with focus point" : "  Add screen (tube)";
  return focused ? "  Add screen with focus point" : "  Add screen";
}

}  // namespace

void addcamera(tmesh& m, int64_t w, int64_t h, tcamerashape shape, const std::optional<tvector>& focus) {
  fieldrelease(m);
  fieldcreate(m);
  if (w < 1 || h < 1) return;
  const utf16 word = progressword(shape, focus.has_value());
  // Far beyond any memory: refused before a size product can overflow.
  constexpr int64_t side = int64_t{1} << 30;
  if (w < side && h < side) meshreserve(m, w * h, (w + 1) * (h + 1));
  if (w >= side || h >= side || m.faces.maximal < w * h || m.points.maximal < (w + 1) * (h + 1)) {
    println("  Screen too large (" + std::to_string(w) + " x " + std::to_string(h) + ")!");
    return fieldcreate(m);
  }
  for (int64_t j = 0; j <= h; ++j) {
    progress(word, static_cast<double>(j) / static_cast<double>(h) * 0.5);
    const double z = static_cast<double>(j) / static_cast<double>(h) - 0.5;
    for (int64_t i = 0; i <= w; ++i) {
      tvector p, n;
      if (shape == tcamerashape::tube) {
        const double a = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(w);
        p = {std::sin(a), std::cos(a), z};
        n = {-p[0], -p[1], 0};
      } else {
        p = {static_cast<double>(i) / static_cast<double>(w) - 0.5, z, 0};
        n = {0, 0, 1};
      }
      if (focus) n = added(*focus, scaled(p, -1));
      appendpoint(m, p, normalised(n));
    }
  }
  for (int64_t j = 0; j < h; ++j)
    for (int64_t i = 0; i < w; ++i) {
      const int64_t a = (w + 1) * j + i + 1;
      appendface(m, {a, a + 1, a + w + 2, a + w + 1}, {0, 0, 0});
    }
  m.trianglesonly = false;
  progressend();
}
