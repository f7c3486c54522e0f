#include "geometry/meshsample.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "geometry/meshbuild.h"
#include "library/mathvector.h"

namespace {

// The local position 1..size of a global point, unrounded.
tvector localreal(const tspatial& s, const tvector& p) {
  const tvector a = added(p, s.negoffset);
  tvector b{1, 1, 1};
  for (int k = 0; k < 3; ++k) b = added(b, scaled(s.inverse[k], a[k]));
  return b;
}

// Trilinear between the eight voxels around a local position; outside reads the background.
double interpolated(const tscalarfield& f, const tvector& local) {
  const double fx = std::floor(local[0]), fy = std::floor(local[1]), fz = std::floor(local[2]);
  if (!(std::fabs(fx) + std::fabs(fy) + std::fabs(fz) < 1e15)) return static_cast<double>(getbackground(f));
  const double wx = local[0] - fx, wy = local[1] - fy, wz = local[2] - fz;
  const auto x = static_cast<int64_t>(fx), y = static_cast<int64_t>(fy), z = static_cast<int64_t>(fz);
  double sum = 0;
  for (int k = 0; k < 8; ++k) {
    const int dx = k & 1, dy = (k >> 1) & 1, dz = k >> 2;
    const double w = (dx ? wx : 1 - wx) * (dy ? wy : 1 - wy) * (dz ? wz : 1 - wz);
    if (w) sum += w * static_cast<double>(getvalue(f, x + dx, y + dy, z + dz));
  }
  return sum;
}

double smallestvoxel(const tspatial& s) {
  const tvector a = axisscales(s);
  const double v = std::min({a[0], a[1], a[2]});
  return v > 0 ? v : 1;
}

double unit(double v) { return std::isfinite(v) ? std::clamp(v, 0.0, 1.0) : 0; }

// colour(i, point) for every point, then the faces from their corners.
template <class Color>
void colorpoints(tmesh& m, Color color) {
  m.colors.resize(m.points.length);
  for (int64_t i = 1; i <= m.points.length; ++i) m.colors.put(i, color(i, m.points.get(i)));
  facecolorsfrompoints(m);
}

tvector grey(double v) { return {unit(v), unit(v), unit(v)}; }

// Each point's neighbours along face edges, as sorted unique (point, neighbour) pairs.
std::vector<std::pair<int64_t, int64_t>> edgepairs(const tmesh& m) {
  std::vector<std::pair<int64_t, int64_t>> pairs;
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface f = m.faces.get(i);
    const int n = f.corners[3] ? 4 : 3;
    for (int k = 0; k < n; ++k) {
      const int64_t a = f.corners[k], b = f.corners[(k + 1) % n];
      if (a < 1 || b < 1 || a > m.points.length || b > m.points.length || a == b) continue;
      pairs.emplace_back(a, b), pairs.emplace_back(b, a);
    }
  }
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  return pairs;
}

// The stored normal, or where it is zero the sum of the point's face normals (by winding).
std::vector<tvector> pointnormals(const tmesh& m) {
  std::vector<tvector> sums(static_cast<size_t>(m.points.length) + 1, tvector{0, 0, 0});
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface f = m.faces.get(i);
    const int n = f.corners[3] ? 4 : 3;
    if (!validface(m, f)) continue;
    const tvector a = m.points.get(f.corners[0]);
    const tvector normal = cross(added(m.points.get(f.corners[1]), scaled(a, -1)), added(m.points.get(f.corners[n - 1]), scaled(a, -1)));
    for (int k = 0; k < n; ++k) sums[f.corners[k]] = added(sums[f.corners[k]], normal);
  }
  for (int64_t i = 1; i <= m.points.length; ++i) {
    const tvector stored = m.normals.getchecked(i);
    sums[i] = normalised(vectorlength(stored) > 0 ? stored : sums[i]);
  }
  return sums;
}

}  // namespace

void facecolorsfrompoints(tmesh& m) {
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    tface f = m.faces.get(i);
    tvector sum{0, 0, 0};
    int n = 0;
    for (int64_t c : f.corners)
      if (c >= 1 && c <= m.colors.length) sum = added(sum, m.colors.get(c)), ++n;
    if (!n) continue;
    f.color = {sum[0] / n, sum[1] / n, sum[2] / n, 1};
    m.faces.put(i, f);
  }
}

void colordensity(tmesh& m, const tscalarfield& f, double lo, double hi) {
  colorpoints(m, [&](int64_t, const tvector& p) { return grey((interpolated(f, localreal(f.space, p)) - lo) / (hi - lo)); });
}

void colorthickness(tmesh& m, const tscalarfield& f, double threshold, double maxlength) {
  const double step = 0.25 * smallestvoxel(f.space);
  auto run = [&](const tvector& p, const tvector& n) {
    double t = step;
    while (t <= maxlength && t < step * 1e6 && interpolated(f, localreal(f.space, added(p, scaled(n, t)))) >= threshold) t += step;
    return t - step;
  };
  colorpoints(m, [&](int64_t i, const tvector& p) {
    const tvector n = normalised(m.normals.getchecked(i));
    if (vectorlength(n) == 0 || !(maxlength > 0)) return grey(0);
    return grey((run(p, n) + run(p, scaled(n, -1))) / maxlength);
  });
}

void colorcount(tmesh& m, const tscalarfield& f, double radius) {
  const tvector voxel = axisscales(f.space);
  const int64_t background = getbackground(f);
  colorpoints(m, [&](int64_t, const tvector& p) {
    const tvector c = localreal(f.space, p);
    int64_t inside = 0, set = 0;
    std::array<int64_t, 3> lo, hi;
    for (int k = 0; k < 3; ++k) {
      const double reach = voxel[k] > 0 ? radius / voxel[k] : 0;
      if (!(std::fabs(c[k]) < 1e15) || !(reach <= 1e4)) return grey(0);
      lo[k] = static_cast<int64_t>(std::ceil(c[k] - reach)), hi[k] = static_cast<int64_t>(std::floor(c[k] + reach));
    }
    for (int64_t z = lo[2]; z <= hi[2]; ++z)
      for (int64_t y = lo[1]; y <= hi[1]; ++y)
        for (int64_t x = lo[0]; x <= hi[0]; ++x) {
          const tvector g = localtoglobal(f.space, {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)});
          if (vectorlength(added(g, scaled(p, -1))) > radius) continue;
          ++inside;
          set += getvalue(f, x, y, z) != background;
        }
    return grey(inside ? static_cast<double>(set) / static_cast<double>(inside) : 0);
  });
}

void colorvector(tmesh& m, const tvectorfield& f) {
  colorpoints(m, [&](int64_t, const tvector& p) {
    const tnatvector l = globaltolocal(f.space, p);
    tvector v{0, 0, 0};
    eachstorage(f, [&](const auto& a) {
      if (!a.inside(l[0], l[1], l[2])) return;
      const auto e = a.get(a.index(l[0], l[1], l[2]));
      v = {static_cast<double>(e[0]), static_cast<double>(e[1]), static_cast<double>(e[2])};
    });
    const tvector n = normalised(v);
    return tvector{std::fabs(n[0]), std::fabs(n[1]), std::fabs(n[2])};
  });
}

void colorall(tmesh& m, const std::array<double, 4>& c) {
  colorpoints(m, [&](int64_t, const tvector&) { return tvector{c[0], c[1], c[2]}; });
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    tface f = m.faces.get(i);
    f.color = c;
    m.faces.put(i, f);
  }
}

void colornormals(tmesh& m) {
  const std::vector<tvector> normals = pointnormals(m);
  colorpoints(m, [&](int64_t i, const tvector&) {
    const tvector& n = normals[i];
    return tvector{std::fabs(n[0]), std::fabs(n[1]), std::fabs(n[2])};
  });
}

void colorcurvature(tmesh& m, double scale) {
  const auto pairs = edgepairs(m);
  const std::vector<tvector> normals = pointnormals(m);
  std::vector<double> curvature(static_cast<size_t>(m.points.length) + 1, 0);
  for (size_t b = 0, e; b < pairs.size(); b = e) {
    const int64_t i = pairs[b].first;
    const tvector p = m.points.get(i), n = normals[i];
    tvector sum{0, 0, 0};
    double squares = 0;
    for (e = b; e < pairs.size() && pairs[e].first == i; ++e) {
      const tvector d = added(m.points.get(pairs[e].second), scaled(p, -1));
      sum = added(sum, d), squares += dot(d, d);
    }
    // On a sphere a ring at distance e lies e^2 / 2r below the tangent plane.
    if (squares > 0) curvature[i] = -2 * dot(sum, n) / squares;
  }
  colorpoints(m, [&](int64_t i, const tvector&) {
    const double t = unit(0.5 + 0.5 * curvature[i] * scale);
    return tvector{t, 0.5 * (1 - std::fabs(2 * t - 1)), 1 - t};
  });
}

void drawmesh(tscalarfield& f, const tmesh& m, double value) {
  const double spacing = 0.5 * smallestvoxel(f.space);
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface face = m.faces.get(i);
    if (!face.visible) continue;
    const int corners = face.corners[3] ? 4 : 3;
    std::array<tvector, 4> p;
    bool valid = true;
    for (int k = 0; k < corners; ++k) {
      valid = valid && face.corners[k] >= 1 && face.corners[k] <= m.points.length;
      if (valid) p[k] = m.points.get(face.corners[k]);
    }
    if (!valid) continue;
    for (int t = 0; t + 2 < corners; ++t) {
      const tvector a = p[0], b = p[t + 1], c = p[t + 2];
      const double longest = std::max({vectorlength(added(b, scaled(a, -1))), vectorlength(added(c, scaled(a, -1))),
                                       vectorlength(added(c, scaled(b, -1)))});
      if (!std::isfinite(longest) || longest / spacing > 1e5) continue;
      const auto steps = static_cast<int64_t>(std::ceil(longest / spacing)) + 1;
      for (int64_t j = 0; j <= steps; ++j)
        for (int64_t k = 0; j + k <= steps; ++k) {
          const double u = static_cast<double>(j) / static_cast<double>(steps), v = static_cast<double>(k) / static_cast<double>(steps);
          const tvector q = added(a, added(scaled(added(b, scaled(a, -1)), u), scaled(added(c, scaled(a, -1)), v)));
          const tnatvector l = globaltolocal(f.space, q);
          setvalue(f, l[0], l[1], l[2], value);
        }
    }
  }
}
