#include "geometry/meshtransform.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "library/mathvector.h"

namespace {

// f(point, normal) on every point and its normal, if it has one.
template <class F>
void eachpoint(tmesh& m, F&& f) {
  if (!m.points.length) return;
  tvector* p = m.points.items();
  tvector* n = m.normals.length == m.points.length ? m.normals.items() : nullptr;
  tvector none{0, 0, 0};
  for (int64_t i = 0; i < m.points.length; ++i) f(p[i], n ? n[i] : none);
  meshpointsmoved(m);
}

template <class F>
void eachnormal(tmesh& m, F&& f) {
  tvector* n = m.normals.items();
  for (int64_t i = 0; i < m.normals.length; ++i) f(n[i]);
}

bool finite(const tvector& p) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); }

}  // namespace

void meshpointsmoved(tmesh& m) {
  const bool sorted = m.pairssorted;
  meshpointschanged(m);
  m.pairssorted = sorted;
}

void meshtranslate(tmesh& m, const tvector& move) {
  eachpoint(m, [&](tvector& p, tvector&) { p = added(p, move); });
}

void meshscale(tmesh& m, const tvector& s, const tvector& centre) {
  // The adjugate of diag(s), with the sign of the determinant: the inverse transpose
  // up to a positive factor, and defined for a zero scale too.
  const double det = s[0] * s[1] * s[2];
  const double sign = det < 0 ? -1 : 1;
  const tvector cof{sign * s[1] * s[2], sign * s[0] * s[2], sign * s[0] * s[1]};
  eachpoint(m, [&](tvector& p, tvector& n) {
    for (int a = 0; a < 3; ++a) p[a] = centre[a] + s[a] * (p[a] - centre[a]);
    const double length = vectorlength(n);
    n = scaled(normalised({n[0] * cof[0], n[1] * cof[1], n[2] * cof[2]}), length);
  });
}

void meshrotate(tmesh& m, const trows& r, const tvector& centre) {
  auto turn = [&r](const tvector& v) {
    return tvector{r[0][0] * v[0] + r[1][0] * v[1] + r[2][0] * v[2], r[0][1] * v[0] + r[1][1] * v[1] + r[2][1] * v[2],
                   r[0][2] * v[0] + r[1][2] * v[1] + r[2][2] * v[2]};
  };
  eachpoint(m, [&](tvector& p, tvector& n) {
    p = added(centre, turn(added(p, scaled(centre, -1))));
    n = turn(n);
  });
}

void meshplaneturn(tmesh& m, int a, int b, double angle) {
  const double c = std::cos(angle), s = std::sin(angle);
  auto turn = [&](tvector& v) {
    const double u = v[a], w = v[b];
    v[a] = u * c + w * s;
    v[b] = -u * s + w * c;
  };
  eachpoint(m, [&](tvector& p, tvector& n) {
    turn(p);
    turn(n);
  });
}

void meshcoordinate(tmesh& m, int axis, tcoordinateedit edit) {
  eachpoint(m, [&](tvector& p, tvector& n) {
    switch (edit) {
      case tcoordinateedit::clear: p[axis] = 0; break;
      case tcoordinateedit::absolute:
        if (!(p[axis] < 0)) break;
        [[fallthrough]];
      case tcoordinateedit::mirror:
        p[axis] = -p[axis];
        n[axis] = -n[axis];
        break;
    }
  });
}

void meshswapaxes(tmesh& m, int a, int b) {
  eachpoint(m, [&](tvector& p, tvector& n) {
    std::swap(p[a], p[b]);
    std::swap(n[a], n[b]);
  });
}

tvector meshboxcentre(const tmesh& m) {
  constexpr double big = std::numeric_limits<double>::infinity();
  tvector low{big, big, big}, high{-big, -big, -big};
  for (int64_t i = 1; i <= m.points.length; ++i) {
    const tvector p = m.points.get(i);
    if (!finite(p)) continue;
    for (int a = 0; a < 3; ++a) {
      low[a] = std::min(low[a], p[a]);
      high[a] = std::max(high[a], p[a]);
    }
  }
  if (low[0] > high[0]) return {0, 0, 0};
  return {(low[0] + high[0]) / 2, (low[1] + high[1]) / 2, (low[2] + high[2]) / 2};
}

tvector meshgravity(const tmesh& m) {
  tvector sum{0, 0, 0};
  int64_t n = 0;
  for (int64_t i = 1; i <= m.points.length; ++i) {
    const tvector p = m.points.get(i);
    if (!finite(p)) continue;
    sum = added(sum, p);
    ++n;
  }
  return n ? scaled(sum, 1.0 / n) : tvector{0, 0, 0};
}

void meshnormalscale(tmesh& m, double f) {
  eachnormal(m, [f](tvector& n) { n = scaled(n, f); });
}

void meshnormalnorm(tmesh& m) {
  eachnormal(m, [](tvector& n) { n = normalised(n); });
}

void meshnormalremove(tmesh& m) {
  eachnormal(m, [](tvector& n) { n = {0, 0, 0}; });
}

void meshfaceflip(tmesh& m) {
  tface* f = m.faces.items();
  for (int64_t i = 0; i < m.faces.length; ++i) {
    const int k = f[i].corners[3] ? 4 : 3;
    std::reverse(f[i].corners.begin(), f[i].corners.begin() + k);
    std::reverse(f[i].extra.begin(), f[i].extra.begin() + k);
  }
}
