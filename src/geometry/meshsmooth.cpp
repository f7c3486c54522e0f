#include "geometry/meshsmooth.h"

#include <cmath>
#include <vector>

#include "geometry/meshbuild.h"
#include "geometry/meshneighbours.h"
#include "geometry/meshtransform.h"
#include "library/mathvector.h"
#include "shell/console.h"

namespace {

// The weight of the point itself against the mean of its k neighbours.
tvector smoothed(tsmoothing kind, const tvector& p, const tvector& sum, int64_t k) {
  switch (kind) {
    case tsmoothing::soft: return {(sum[0] / k + p[0]) / 2, (sum[1] / k + p[1]) / 2, (sum[2] / k + p[2]) / 2};
    case tsmoothing::plain: return {(sum[0] + p[0]) / (k + 1), (sum[1] + p[1]) / (k + 1), (sum[2] + p[2]) / (k + 1)};
    case tsmoothing::hard: break;
  }
  return {sum[0] / k, sum[1] / k, sum[2] / k};
}

// One pass of the rule over a list with one entry per point; the result replaces it.
void smoothpass(const tpointlinks& links, tvectorlist& list, tsmoothing kind, const char* label) {
  const int64_t n = list.length;
  const tvector* old = list.items();
  std::vector<tvector> next(old, old + n);
  for (int64_t p = 1; p <= n; ++p) {
    if ((p & 0xFFFF) == 0) progress(label, static_cast<double>(p) / n);
    const int64_t first = links.start[p], k = links.start[p + 1] - first;
    if (!k) continue;
    tvector sum{0, 0, 0};
    for (int64_t i = first; i < first + k; ++i) {
      const tvector& v = old[links.points[i] - 1];
      sum[0] += v[0];
      sum[1] += v[1];
      sum[2] += v[2];
    }
    next[p - 1] = smoothed(kind, old[p - 1], sum, k);
  }
  std::copy(next.begin(), next.end(), list.items());
  progressend();
}

const char* label(tsmoothing kind) {
  switch (kind) {
    case tsmoothing::soft: return "  Soft smooth";
    case tsmoothing::plain: return "  Smooth";
    case tsmoothing::hard: break;
  }
  return "  Hard smooth";
}

tvector facenormal(const tmesh& m, const tface& f) {
  auto at = [&](int c) { return m.points.get(f.corners[c]); };
  if (f.corners[3] >= 1) return cross(added(at(2), scaled(at(0), -1)), added(at(3), scaled(at(1), -1)));
  return cross(added(at(1), scaled(at(0), -1)), added(at(2), scaled(at(0), -1)));
}

void normalsfromfaces(tmesh& m, const char* text) {
  if (!m.points.length) return;
  println(text);
  const tmeshneighbours nb = meshneighbours(m);
  m.normals.resize(m.points.length);
  for (int64_t p = 1; p <= m.points.length; ++p) {
    tvector sum{0, 0, 0};
    for (int64_t k = nb.start[p]; k < nb.start[p + 1]; ++k) {
      const tface f = m.faces.get(nb.faces[k]);
      if (validface(m, f)) sum = added(sum, facenormal(m, f));
    }
    m.normals.put(p, normalised(sum));
  }
}

}  // namespace

void meshsmooth(tmesh& m, tsmoothing kind, int64_t n) {
  if (n < 1 || !m.points.length || !m.faces.length) return;
  const tpointlinks links = meshlinks(meshneighbours(m), m, false);
  for (int64_t i = 0; i < n; ++i) smoothpass(links, m.points, kind, label(kind));
  if (m.normals.length == m.points.length) smoothpass(links, m.normals, kind, "  Smooth normals");
  meshpointsmoved(m);
}

void meshnormals(tmesh& m) { normalsfromfaces(m, "  Calculate normals"); }

void meshorthonormals(tmesh& m) {
  normalsfromfaces(m, "  Calculate orthonormals");
  for (int64_t p = 1; p <= m.normals.length; ++p) {
    const tvector v = m.normals.get(p);
    int axis = 0;
    for (int a = 1; a < 3; ++a)
      if (std::fabs(v[a]) > std::fabs(v[axis])) axis = a;
    tvector o{0, 0, 0};
    if (v[axis] != 0) o[axis] = v[axis] > 0 ? 1 : -1;
    m.normals.put(p, o);
  }
}
