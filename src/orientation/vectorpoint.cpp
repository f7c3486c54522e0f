#include "orientation/vectorpoint.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "orientation/vectoraccess.h"
#include "shell/console.h"

double kindscale(const tvectorfield& f) {
  double s = 1;
  eachstorage(f, [&](const auto& a) { s = unitscale<vectorcomponent<decltype(a)>>(); });
  return s;
}

void pointdirection(tvectorfield& f) {
  if (f.kind != vectorfloat && f.kind != vectorinteger) return;
  mapvectors(f, [](const tvector& v) {
    const tvector shifted{v[0] + 1, v[1] + 1, v[2] + 1};
    return vectorlength(shifted) < vectorlength(v) ? scaled(v, -1) : v;
  });
}

void invertvectors(tvectorfield& f) {
  if (f.kind != vectorfloat) return;
  mapvectors(f, [](tvector v) {
    for (double& c : v)
      if (c != 0) c = 1 / c;
    return v;
  });
}

double longestvector(const tvectorfield& f) {
  double m = 0;
  eachvector(f, [&](const tvector& v) { m = std::max(m, vectorlength(v)); });
  return m;
}

double shortestvector(const tvectorfield& f) {
  double m = std::numeric_limits<double>::infinity();
  eachvector(f, [&](const tvector& v) { m = std::min(m, vectorlength(v)); });
  return std::isinf(m) ? 0 : m;
}

namespace {

// v / d times the kind's scale; zero when d is 0.
tvector divided(const tvector& v, double d, double scale) { return d == 0 ? tvector{0, 0, 0} : scaled(v, scale / d); }

}  // namespace

void normvectors(tvectorfield& f, tnormkind kind) {
  const double scale = kindscale(f);
  switch (kind) {
    case tnormkind::length:
      return mapvectors(f, [=](const tvector& v) { return divided(v, vectorlength(v), scale); });
    case tnormkind::min:
      return mapvectors(f, [=](const tvector& v) { return divided(v, std::min({v[0], v[1], v[2]}), scale); });
    case tnormkind::max:
      return mapvectors(f, [=](const tvector& v) { return divided(v, std::max({v[0], v[1], v[2]}), scale); });
    case tnormkind::relative: {
      const double m = longestvector(f);
      return mapvectors(f, [=](const tvector& v) { return divided(v, m, scale); });
    }
  }
}

void setlengths(tvectorfield& f, double s, bool relative) {
  const double m = relative ? longestvector(f) : 0;
  mapvectors(f, [=](const tvector& v) { return divided(v, relative ? m : vectorlength(v), s); });
}

void eraselengths(tvectorfield& f, double s, bool above) {
  mapvectors(f, [=](const tvector& v) {
    const double l = vectorlength(v);
    return (above ? l > s : l < s) ? tvector{0, 0, 0} : v;
  });
}

void scanbackground(tvectorfield& f) {
  const int64_t n = vectorcount(f);
  if (n < 1) return;
  tvector sum{0, 0, 0};
  progress("Scan vectors", 0);
  eachvector(f, [&](const tvector& v) {
    for (int c = 0; c < 3; ++c) sum[c] += v[c];
  });
  progressend();
  f.background = scaled(sum, 1.0 / static_cast<double>(n));
}

void cleanupvectors(tvectorfield& f) {
  const tvector b = f.background;
  const double lb = vectorlength(b);
  progress("Cleanup", 0);
  mapvectors(f, [&](const tvector& v) {
    const double cosine = (v[0] * b[0] + v[1] * b[1] + v[2] * b[2]) / (vectorlength(v) * lb);
    // Rounding may carry the cosine of parallel vectors past 1: that is still an angle.
    const double angle = std::acos(std::clamp(cosine, -1.0, 1.0));
    return angle <= 2 * std::numbers::pi ? v : b;
  });
  progressend();
}

int64_t countlengths(const tvectorfield& f, double lo, double hi) {
  int64_t n = 0;
  eachvector(f, [&](const tvector& v) {
    const double l = vectorlength(v);
    n += l >= lo && l <= hi;
  });
  return n;
}

bool plainvectors(const tvectorfield& f) {
  bool plain = true, first = true;
  tvector seen{};
  eachvector(f, [&](const tvector& v) {
    if (first) seen = v;
    first = false;
    plain = plain && v == seen;
  });
  return plain;
}

void addvector(tvectorfield& f, const tvector& a) {
  mapvectors(f, [&](const tvector& v) { return tvector{v[0] + a[0], v[1] + a[1], v[2] + a[2]}; });
}

void mulvector(tvectorfield& f, const tvector& a) {
  mapvectors(f, [&](const tvector& v) { return tvector{v[0] * a[0], v[1] * a[1], v[2] * a[2]}; });
}
