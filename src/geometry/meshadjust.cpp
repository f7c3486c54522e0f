#include "geometry/meshadjust.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <queue>
#include <vector>

#include "geometry/meshtransform.h"
#include "library/matheigen.h"
#include "library/mathvector.h"
#include "shell/console.h"

namespace {

struct tdifference {
  double length2, du, dv;
  bool operator>(const tdifference& o) const { return length2 > o.length2; }
};

// The sum of the k longest differences of the points in plane (u, v), each turned into
// the half-plane du > 0 (or du = 0, dv >= 0). A min-heap keeps memory at k entries.
std::array<double, 2> longestsum(const std::vector<tvector>& p, int u, int v, int64_t k) {
  std::priority_queue<tdifference, std::vector<tdifference>, std::greater<>> heap;
  for (size_t i = 0; i < p.size(); ++i)
    for (size_t j = i + 1; j < p.size(); ++j) {
      double du = p[j][u] - p[i][u], dv = p[j][v] - p[i][v];
      const double l2 = du * du + dv * dv;
      if (!std::isfinite(l2)) continue;
      if (static_cast<int64_t>(heap.size()) == k && !(l2 > heap.top().length2)) continue;
      if (du < 0 || (du == 0 && dv < 0)) du = -du, dv = -dv;
      if (static_cast<int64_t>(heap.size()) == k) heap.pop();
      heap.push({l2, du, dv});
    }
  std::array<double, 2> sum{0, 0};
  for (; !heap.empty(); heap.pop()) sum[0] += heap.top().du, sum[1] += heap.top().dv;
  return sum;
}

std::vector<tvector> takenpoints(const tmesh& m, int64_t stride) {
  std::vector<tvector> p;
  for (int64_t i = 1; i <= m.points.length; i += stride) p.push_back(m.points.get(i));
  return p;
}

bool finite(const tvector& p) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); }

}  // namespace

void meshadjust(tmesh& m, int64_t steps, double fraction, int64_t stride, double stopdegrees) {
  steps = std::max<int64_t>(steps, 1);
  stride = std::max<int64_t>(stride, 1);
  const int64_t taken = (m.points.length + stride - 1) / stride;
  const int64_t k = roundnat(static_cast<double>(taken) * fraction);
  if (k < 1) return;
  constexpr int planes[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  const bool shown = taken > 2000;  // small meshes are done before a progress line would tell
  for (int64_t round = 0; round < steps; ++round) {
    double largest = 0;
    for (int a = 0; a < 3; ++a) {
      if (shown) progress("  Adjust object", static_cast<double>(3 * round + a) / (3 * steps));
      meshtranslate(m, scaled(meshgravity(m), -1));
      const auto [u, v] = planes[a];
      const auto sum = longestsum(takenpoints(m, stride), u, v, k);
      const double angle = std::atan2(sum[1], sum[0]);
      meshplaneturn(m, u, v, angle);
      largest = std::max(largest, std::fabs(angle));
    }
    if (stopdegrees > 0 && largest * 180 / std::numbers::pi < stopdegrees) break;
  }
  if (shown) progressend();
}

void meshprincipal(tmesh& m, int64_t stride) {
  if (!m.points.length) return;
  meshtranslate(m, scaled(meshgravity(m), -1));
  tsymmetric c;
  for (const tvector& p : takenpoints(m, std::max<int64_t>(stride, 1))) {
    if (!finite(p)) continue;
    c.xx += p[0] * p[0], c.yy += p[1] * p[1], c.zz += p[2] * p[2];
    c.xy += p[0] * p[1], c.xz += p[0] * p[2], c.yz += p[1] * p[2];
  }
  const teigensystem e = orderedeigen(c);
  const tvector e1 = normalised(e.vectors[0]), e2 = normalised(e.vectors[1]), e3 = cross(e1, e2);
  if (vectorlength(e3) < 0.5) return;  // no frame: a degenerate or failed solution
  // New coordinates (p.e1, p.e2, p.e3): image of axis k is (e1[k], e2[k], e3[k]).
  const trows rows{tvector{e1[0], e2[0], e3[0]}, tvector{e1[1], e2[1], e3[1]}, tvector{e1[2], e2[2], e3[2]}};
  meshrotate(m, rows, {0, 0, 0});
}
