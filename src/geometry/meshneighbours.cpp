#include "geometry/meshneighbours.h"

#include <algorithm>

tmeshneighbours meshneighbours(const tmesh& m) {
  // A counting sort of the (point, face) pairs by point: faces stay ascending per point,
  // which is the order of the sorted pairs, in linear time.
  tmeshneighbours nb;
  const int64_t points = m.points.length, faces = m.faces.length;
  nb.corners = m.trianglesonly ? 3 : 4;
  nb.start.assign(points + 2, 0);
  const tface* f = m.faces.items();
  auto eachcorner = [&](auto&& visit) {
    for (int64_t i = 0; i < faces; ++i)
      for (int c = 0; c < nb.corners; ++c) {
        const int64_t p = f[i].corners[c];
        if (p >= 1 && p <= points) visit(p, i + 1);
      }
  };
  eachcorner([&](int64_t p, int64_t) { ++nb.start[p + 1]; });
  for (int64_t i = 2; i <= points + 1; ++i) nb.start[i] += nb.start[i - 1];
  nb.faces.resize(nb.start[points + 1]);
  std::vector<int64_t> next(nb.start.begin(), nb.start.end() - 1);
  eachcorner([&](int64_t p, int64_t face) { nb.faces[next[p]++] = face; });
  return nb;
}

tpointlinks meshlinks(const tmeshneighbours& nb, const tmesh& m, bool unique) {
  tpointlinks links;
  const int64_t points = m.points.length;
  links.start.assign(points + 2, 0);
  links.points.reserve(nb.faces.size() * (nb.corners - 1));
  for (int64_t p = 1; p <= points; ++p) {
    const auto first = links.points.size();
    forneighbours(nb, m, p, [&](int64_t q) { links.points.push_back(q); });
    if (unique) {
      const auto begin = links.points.begin() + static_cast<std::ptrdiff_t>(first);
      std::sort(begin, links.points.end());
      links.points.erase(std::unique(begin, links.points.end()), links.points.end());
    }
    links.start[p + 1] = static_cast<int64_t>(links.points.size());
  }
  return links;
}
