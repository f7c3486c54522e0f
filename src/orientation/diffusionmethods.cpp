#include "orientation/diffusionmethods.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "field/array_sort.h"
#include "script/values.h"

namespace {

using tv = tscanunit;

tv operator+(const tv& a, const tv& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
tv operator-(const tv& a, const tv& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
tv operator*(const tv& a, double f) { return {a[0] * f, a[1] * f, a[2] * f}; }
tv operator/(const tv& a, double f) { return {a[0] / f, a[1] / f, a[2] / f}; }
tv operator-(const tv& a) { return {-a[0], -a[1], -a[2]}; }
double norm(const tv& a) { return std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]); }
tv normalised(const tv& a) {
  const double l = norm(a);
  return l == 0 ? tv{0, 0, 0} : a / l;
}
tv real(const tscanpoint& p) { return {static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2])}; }
constexpr tv zero{0, 0, 0};

tv brell2013(const tdiffusionsettings&, const tscandirectionset& d, const double* values, const uint8_t* accepted) {
  double best = noscan;
  tv result = zero;
  for (size_t i = 0; i < d.points.size(); ++i) {
    if (!accepted[i]) continue;
    const double v = values[i];
    if (v < best) {
      best = v;
      result = d.units[i] * v;
    } else if (v == best) {
      result = zero;  // a tie cancels until a strictly better line comes
    }
  }
  return result;
}

tv brell2014a(const tdiffusionsettings& s, const tscandirectionset& d, const double* values, const uint8_t* accepted) {
  double best = noscan;
  tv result = zero;
  bool paired = false;
  // Unit vectors are at most 2 apart, so above r = 4 the first case always holds.
  const double near = static_cast<double>(s.r) / 2;
  for (size_t i = 0; i < d.points.size(); ++i) {
    if (!accepted[i]) continue;
    const double v = values[i];
    const tv& u = d.units[i];
    if (v < best) {
      best = v;
      result = u * v;
      paired = true;
    } else if (v == best && paired) {
      const tv m = normalised(result);
      if (norm(m - u) < near)
        result = (result + u * v) / 2;
      else if (norm(m + u) < near)
        result = (result + (-u) * v) / 2;
      else
        result = zero;
      paired = false;
    } else if (v == best) {
      result = zero;
    }
  }
  return result;
}

tv brell2014b(const tdiffusionsettings& s, const tscandirectionset& d, const double* values, const uint8_t* accepted) {
  double best = noscan;
  tv result = zero;
  int64_t n = 0;
  const int64_t looked = static_cast<int64_t>(d.points.size());  // skipped lines count too
  for (size_t i = 0; i < d.points.size(); ++i) {
    if (!accepted[i]) continue;
    const double v = values[i];
    const tv& u = d.units[i];
    if (v < best) {
      best = v;
      result = u * v;
      n = 1;
    } else if (v == best && n >= 1) {
      const tv a = norm(result + u) < norm(result) ? -u : u;
      result = result + a * v;
      ++n;
    }
  }
  if (!(static_cast<double>(looked) * s.max > static_cast<double>(n))) return zero;
  return n >= 2 ? result / static_cast<double>(n) : result;
}

// brell2015a (4), brell2015b (5) and brell2019 (6).
tv brellcone(const tdiffusionsettings& s, const tscandirectionset& d, const double* values, const uint8_t* accepted,
             tdiffusionscratch& w) {
  double best = noscan;
  int64_t n = 0, count = 0;
  size_t first = 0;  // the best direction, while it is the only one
  for (size_t i = 0; i < d.points.size(); ++i) {
    if (!accepted[i]) continue;
    ++count;
    const double v = values[i];
    if (v < best) {
      best = v;
      first = i;
      n = 1;
    } else if (v == best && n >= 1) {
      ++n;
    }
  }
  if (count <= 2 || n == 0) return zero;
  if (!(static_cast<double>(count) * s.max > static_cast<double>(n))) return zero;
  // One best direction: the ranking starts with it, it lies in its own cone and no other
  // is summed, so the sort can't change the result. (Cones of about 0 or pi excepted.)
  if (n == 1 && s.angle >= 1e-6 && s.angle <= 3) {
    const tv e = real(d.points[first]);
    return s.method == 6 ? normalised(e) * best : e;
  }
  tv mean = zero;
  best = noscan;
  n = 0;
  w.chosen.clear();
  w.ranking.clear();
  for (size_t i = 0; i < d.points.size(); ++i) {
    if (!accepted[i]) continue;
    const double v = values[i];
    if (v < best) {
      best = v;
      mean = real(d.points[i]);
      n = 1;
    } else if (v == best && n >= 1) {
      mean = mean + real(d.points[i]);
      ++n;
    }
    w.ranking.emplace_back(static_cast<double>(w.chosen.size()), v);
    w.chosen.push_back(d.points[i]);
  }
  auto& r = w.ranking;
  heapsort(
      count, [&](int64_t a, int64_t b) { return r[a - 1].second < r[b - 1].second; },
      [&](int64_t a, int64_t b) { std::swap(r[a - 1], r[b - 1]); });
  tv sum = zero;
  int64_t q = 1;
  for (;; ++q) {
    const auto& [index, v] = r[static_cast<size_t>(q - 1)];
    const tv e = real(w.chosen[static_cast<size_t>(index)]);
    const double positive = coneangle(mean, e), negative = coneangle(mean, -e);
    if (v == best) {
      if (positive <= s.angle)
        sum = sum + e;
      else if (negative <= s.angle)
        sum = sum - e;
    }
    if (s.method == 4) {
      if (!(v == best && q < count)) break;
    } else if (positive > s.angle || negative <= s.angle || q == count) {
      break;
    }
  }
  if (q < 2) return zero;
  return s.method == 6 ? normalised(sum) * best : sum;
}

std::string twodecimals(double x) {
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", x);
  return text;
}

}  // namespace

double coneangle(const tscanunit& a, const tscanunit& b) {
  const double la = norm(a), lb = norm(b);
  if (la == 0 || lb == 0) return 0;
  // Clamped: a direction parallel to the mean must read as angle 0, not as NaN.
  return std::acos(std::clamp((a[0] * b[0] + a[1] * b[1] + a[2] * b[2]) / (la * lb), -1.0, 1.0));
}

int diffusionmethod(uint8_t stored) { return stored >= 1 && stored <= 6 ? stored : 5; }

utf16 diffusionmethodline(const tdiffusionsettings& s) {
  const std::string cone = twodecimals(s.angle * 57.29577951308232) + "°), only for " + twodecimals(s.max * 100) + " %";
  switch (s.method) {
    case 1: return "Method: brell2013 = only the single best vector";
    case 2: return "Method: brell2014a = mean the two best vectors, if distance < " + realtext(static_cast<double>(s.r) * 0.5);
    case 3: return utf16("Method: brell2014b = mean (same SD) best vectors, only for " + twodecimals(s.max * 100) + " %");
    case 4: return utf16("Method: brell2015a = mean (same SD) best vectors (around " + cone);
    case 6: return utf16("Method: brell2019 = mean (same SD) best vectors (around " + cone);
  }
  return utf16("Method: brell2015b = mean the best vectors (around " + cone);
}

tscanunit diffusionresult(const tdiffusionsettings& s, const tscandirectionset& dirs, const double* values,
                          const uint8_t* accepted, tdiffusionscratch& scratch) {
  switch (s.method) {
    case 1: return brell2013(s, dirs, values, accepted);
    case 2: return brell2014a(s, dirs, values, accepted);
    case 3: return brell2014b(s, dirs, values, accepted);
  }
  return brellcone(s, dirs, values, accepted, scratch);
}
