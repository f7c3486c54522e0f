// The tracer of one streamline: init(seed) fills `front` (seed first) and `back` (without
// the seed), each half stepping along the normalised, trilinearly interpolated field until
// a stop rule ends it.
#pragma once
#include <cmath>
#include <vector>

#include "field/scalarfield.h"
#include "field/spatial.h"
#include "library/mathvector.h"
#include "orientation/streamlines.h"

struct tstreamlimits {
  tvector step;  // the voxel sizes times steps
  tvector low, high;
  int64_t maxpoints;
  double angles, stopangle;
  int64_t contrast;
  const tscalarfield* scalar;  // read for the contrast stop
};

template <class V>
class ttracer {
 public:
  std::vector<tvector> front, back;

  ttracer(const V& v, const tspatial& s, const tstreamlimits& l) : vol(v), space(s), lim(l) {}

  void init(const tvector& seed) {
    front.clear();
    back.clear();
    front.push_back(seed);
    thalf f{seed, {0, 0, 0}, seed, 1, front}, b{seed, {0, 0, 0}, seed, -1, back};
    // The halves are independent. A step is one long chain of dependent arithmetic, so
    // stepped side by side the processor works on both chains at once.
    bool forward = true, backward = true;
    while (forward && backward) {
      forward = step(f);
      backward = step(b);
    }
    while (forward) forward = step(f);
    while (backward) backward = step(b);
  }

 private:
  const V& vol;
  const tspatial& space;
  const tstreamlimits& lim;
  const double stopcosine = std::cos(lim.stopangle);
  const tanglelimit thinning = anglelimit(lim.angles);

  // A global point in local voxel coordinates.
  tvector local(const tvector& p) const {
    const tvector a = added(p, space.negoffset);
    tvector l{1, 1, 1};
    for (int k = 0; k < 3; ++k) l = added(l, scaled(space.inverse[k], a[k]));
    return l;
  }

  // The field at local point l: trilinear over the eight voxels around it, zero outside.
  tvector sample(const tvector& l) const {
    int64_t i[3];
    double f[3];
    for (int k = 0; k < 3; ++k) {
      i[k] = static_cast<int64_t>(std::trunc(l[k]));
      f[k] = l[k] - static_cast<double>(i[k]);
    }
    tvector sum{0, 0, 0};
    const auto corner = [&](int a, int b, int c, const auto& v) {
      const double w = (a ? f[0] : 1 - f[0]) * (b ? f[1] : 1 - f[1]) * (c ? f[2] : 1 - f[2]);
      for (int k = 0; k < 3; ++k) sum[k] += w * static_cast<double>(v[k]);
    };
    if (i[0] >= 1 && i[1] >= 1 && i[2] >= 1 && i[0] < vol.sizex && i[1] < vol.sizey && i[2] < vol.sizez) {
      // all eight inside: fixed offsets from the first
      const auto* base = vol.items() + (vol.index(i[0], i[1], i[2]) - 1);
      const int64_t dy = vol.sizex, dz = vol.sizex * vol.sizey;
      for (int c = 0; c < 2; ++c)
        for (int b = 0; b < 2; ++b)
          for (int a = 0; a < 2; ++a) corner(a, b, c, base[a + b * dy + c * dz]);
      return sum;
    }
    for (int c = 0; c < 2; ++c)
      for (int b = 0; b < 2; ++b)
        for (int a = 0; a < 2; ++a)
          if (vol.inside(i[0] + a, i[1] + b, i[2] + c)) corner(a, b, c, vol.get(i[0] + a, i[1] + b, i[2] + c));
    return sum;
  }

  int64_t valueat(const tvector& p) const {
    const tnatvector c = globaltolocal(space, p);
    const tnatvector n = fieldsize(*lim.scalar);
    for (int k = 0; k < 3; ++k)
      if (c[k] < 1 || c[k] > n[k]) return 0;
    return getvalue(*lim.scalar, c[0], c[1], c[2]);
  }

  // angle(d, prev) < stop angle for unit or zero vectors; a zero vector counts as angle 0.
  bool turnbelow(const tvector& d, const tvector& prev) const {
    const double c = dot(d, prev);
    if (c == 0 && (d == tvector{0, 0, 0} || prev == tvector{0, 0, 0})) return lim.stopangle > 0;
    return c > stopcosine;
  }

  bool inbox(const tvector& p) const {
    for (int k = 0; k < 3; ++k)
      if (p[k] < lim.low[k] || p[k] > lim.high[k]) return false;
    return true;
  }

  // One half line on its way: where it stands, the direction it came, the list it fills.
  struct thalf {
    tvector p, d, last;  // last: the last stored point, for the thinning
    double sign;
    std::vector<tvector>& list;
  };

  // One step of a half line; false when it has ended.
  [[gnu::always_inline]] bool step(thalf& h) {
    const tvector prev = h.d, q = h.p;
    h.d = normalised(sample(local(q)));
    tvector& p = h.p;
    for (int k = 0; k < 3; ++k) p[k] = q[k] + h.sign * h.d[k] * lim.step[k];
    const bool moved = p != q;
    if (moved) {
      if (lim.angles <= 0) {
        h.list.push_back(p);
      } else if (anglebeyond(added(q, scaled(h.last, -1)), added(p, scaled(q, -1)), thinning)) {
        h.list.push_back(p);
        h.last = p;
      }
    }
    bool go = inbox(p) && moved && turnbelow(h.d, prev) && static_cast<int64_t>(h.list.size()) < lim.maxpoints;
    if (go && lim.contrast != 0) go = std::abs(valueat(p) - valueat(q)) <= lim.contrast;
    if (!go && lim.angles > 0 && p != h.last) h.list.push_back(p);
    return go;
  }
};
