#include "geometry/meshneighbours.h"

#include <algorithm>

#include "geometry/meshbuild.h"

tmeshneighbours meshneighbours(tmesh& m) {
  if (!m.pairssorted) sortpairs(m);
  tmeshneighbours nb;
  const int64_t points = m.points.length, faces = m.faces.length;
  nb.corners = m.trianglesonly ? 3 : 4;
  nb.start.assign(points + 2, 0);
  nb.faces.reserve(m.pairs.length);
  const auto* p = m.pairs.items();
  // The pairs are sorted by point, so a running count gives each point's start.
  for (int64_t i = 0; i < m.pairs.length; ++i) {
    const int64_t point = p[i][0], face = p[i][1];
    if (point < 1 || point > points || face < 1 || face > faces) continue;
    ++nb.start[point + 1];
    nb.faces.push_back(face);
  }
  nb.start[1] = 0;
  for (int64_t i = 2; i <= points + 1; ++i) nb.start[i] += nb.start[i - 1];
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
