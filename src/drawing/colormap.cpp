#include "drawing/colormap.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "script/values.h"

namespace {

struct tcolouranchor {
  double position;
  int red, green, blue;
};
struct tcolourmapdef {
  char family;
  const char* name;
  int first, count;
  bool discrete;
};
#include "drawing/colormapdata.inc"

std::vector<const tcolourmapdef*> familymaps(char family) {
  std::vector<const tcolourmapdef*> maps;
  for (const tcolourmapdef& m : colourmaps)
    if (m.family == family) maps.push_back(&m);
  return maps;
}

tcolour colourof(const tcolouranchor& a) {
  return {static_cast<double>(a.red), static_cast<double>(a.green), static_cast<double>(a.blue), 255};
}

}  // namespace

tcolormap& colormap() {
  static tcolormap table;
  return table;
}

int64_t colormapcount(char family) { return static_cast<int64_t>(familymaps(family).size()); }

utf16 colormapfill(char family, int64_t index, int64_t steps) {
  std::vector<tcolour>& out = colormap().entries;
  out.clear();
  const std::vector<const tcolourmapdef*> maps = familymaps(family);
  if (maps.empty()) return utf16();
  index = std::clamp<int64_t>(index, 1, static_cast<int64_t>(maps.size()));
  const tcolourmapdef& m = *maps[index - 1];
  const tcolouranchor* anchors = colouranchors + m.first;
  if (steps == 0 || m.discrete) {
    for (int k = 0; k < m.count; ++k) out.push_back(colourof(anchors[k]));
  } else {
    const int64_t n = std::llabs(steps);
    out.assign(static_cast<size_t>(n), {0, 0, 0, 255});
    for (int k = 0; k + 1 < m.count; ++k) {
      const double p1 = anchors[k].position, p2 = anchors[k + 1].position;
      if (p1 < 0 || p1 > 1 || p2 < 0 || p2 > 1) continue;
      const int64_t start = roundnat(static_cast<double>(n - 1) * p1);
      const int64_t run = roundnat(static_cast<double>(n - 1) * (p2 - p1));
      const tcolour c1 = colourof(anchors[k]), c2 = colourof(anchors[k + 1]);
      for (int64_t j = 0; j <= run; ++j) {
        if (start + j < 0 || start + j >= n) continue;
        const double t = run > 0 ? static_cast<double>(j) / static_cast<double>(run) : 0;
        for (int c = 0; c < 4; ++c) out[start + j][c] = c1[c] * (1 - t) + c2[c] * t;
      }
    }
  }
  if (steps < 0) std::reverse(out.begin(), out.end());
  std::string title = "#";
  title += std::to_string(index);
  title += ' ';
  title += m.name;
  return utf16(title);
}

void colormapalpha(talpharule rule) {
  std::vector<tcolour>& e = colormap().entries;
  const double n = static_cast<double>(e.size());
  for (size_t i = 0; i < e.size(); ++i) {
    const double ramp = e.size() == 1 ? 255 : 255 * static_cast<double>(i) / (n - 1);
    switch (rule) {
      case talpharule::rising: e[i][3] = ramp; break;
      case talpharule::falling: e[i][3] = e.size() == 1 ? 255 : 255 - ramp; break;
      case talpharule::clear: e[i][3] = 0; break;
      case talpharule::half: e[i][3] = 128; break;
      case talpharule::opaque: e[i][3] = 255; break;
    }
  }
}

tcolour colormapentry(int64_t i) {
  const std::vector<tcolour>& e = colormap().entries;
  if (e.empty()) return {0, 0, 0, 0};
  const int64_t n = static_cast<int64_t>(e.size());
  const int64_t wrapped = ((std::llabs(i) - 1) % n + n) % n;  // 0 wraps to the last entry
  return e[wrapped];
}

tcolour colormapvalue(double v, double lo, double hi) {
  const std::vector<tcolour>& e = colormap().entries;
  if (e.empty() || !(hi > lo)) return {0, 0, 0, 0};
  const double n = static_cast<double>(e.size());
  const double at = std::fma((n - 1) / (hi - lo), v - lo, 1);
  const int64_t i = std::clamp<int64_t>(roundnat(std::clamp(at, -9.2e18, 9.2e18)), 1, static_cast<int64_t>(n));
  return e[i - 1];
}
