#include "geometry/lineops.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "field/spatial.h"
#include "geometry/cloudbuild.h"
#include "library/mathvector.h"

namespace {

double distance3(const tcloudpoint& a, const tcloudpoint& b) {
  return std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) + (a[2] - b[2]) * (a[2] - b[2]));
}
double distance4(const tcloudpoint& a, const tcloudpoint& b) {
  return std::sqrt(distance3(a, b) * distance3(a, b) + (a[3] - b[3]) * (a[3] - b[3]));
}

template <class Op>
void eachline(tcloud& c, Op op) {
  for (int64_t l = 1; l <= linecount(c); ++l) op(linerange(c, l));
}

// Moves the points first..last by minus their mean.
void centerrange(tcloud& c, int64_t first, int64_t last) {
  if (last < first) return;
  double mean[3] = {0, 0, 0};
  for (int64_t i = first; i <= last; ++i)
    for (int k = 0; k < 3; ++k) mean[k] += c.points.get(i)[k];
  const double n = static_cast<double>(last - first + 1);
  for (int64_t i = first; i <= last; ++i) {
    tcloudpoint p = c.points.get(i);
    for (int k = 0; k < 3; ++k) p[k] -= mean[k] / n;
    c.points.put(i, p);
  }
}

// Rewrites the cloud without the marked lines; object names stay with their objects.
void erasemarked(tcloud& c, const std::vector<bool>& erase) {
  struct tline {
    std::vector<tcloudpoint> points;
    int64_t tag;
  };
  std::vector<std::pair<utf16, std::vector<tline>>> objects;
  for (int64_t o = 1; o <= c.objectstarts.length; ++o) {
    const tlinerange ls = objectlines(c, o);
    objects.push_back({c.objectnames.getchecked(o), {}});
    for (int64_t l = ls.first; l <= ls.last; ++l) {
      if (erase[static_cast<size_t>(l - 1)]) continue;
      const tlinerange r = linerange(c, l);
      tline line{{}, c.linetags.getchecked(l)};
      for (int64_t i = r.first; i <= r.last; ++i) line.points.push_back(c.points.get(i));
      objects.back().second.push_back(std::move(line));
    }
  }
  const tvector offset = c.frameoffset, scale = c.framescale, size = c.framesize;
  fieldcreate(c);
  c.frameoffset = offset, c.framescale = scale, c.framesize = size;
  for (const auto& [name, lines] : objects) {
    for (const tline& l : lines) {
      for (const tcloudpoint& p : l.points) addpoint(c, p);
      closeline(c, l.tag);
    }
    closeobject(c, name);
  }
}

template <class Test>
void eraseif(tcloud& c, Test test) {
  const int64_t n = linecount(c);
  std::vector<bool> erase(static_cast<size_t>(n), false);
  for (int64_t l = 1; l <= n; ++l) erase[static_cast<size_t>(l - 1)] = test(linerange(c, l), l);
  if (std::find(erase.begin(), erase.end(), true) != erase.end()) erasemarked(c, erase);
}

template <class Test>
void eraselater(tcloud& c, Test later) {
  const int64_t n = linecount(c);
  std::vector<bool> erase(static_cast<size_t>(n), false);
  for (int64_t a = 1; a <= n; ++a) {
    if (erase[static_cast<size_t>(a - 1)]) continue;
    const tlinerange ra = linerange(c, a);
    if (ra.count() < 1) continue;
    for (int64_t b = a + 1; b <= n; ++b)
      if (!erase[static_cast<size_t>(b - 1)] && later(ra, linerange(c, b))) erase[static_cast<size_t>(b - 1)] = true;
  }
  if (std::find(erase.begin(), erase.end(), true) != erase.end()) erasemarked(c, erase);
}

}  // namespace

void linecenter(tcloud& c) { centerrange(c, 1, c.points.length); }

void linecenterobjects(tcloud& c) {
  for (int64_t o = 1; o <= c.objectstarts.length; ++o) {
    const tlinerange ls = objectlines(c, o);
    if (ls.last < ls.first) continue;
    centerrange(c, linerange(c, ls.first).first, linerange(c, ls.last).last);
  }
}

void linenumber(tcloud& c) {
  eachline(c, [&](tlinerange r) {
    for (int64_t i = r.first; i <= r.last; ++i) {
      tcloudpoint p = c.points.get(i);
      p[3] = static_cast<double>(i - r.first + 1);
      c.points.put(i, p);
    }
  });
}

void linedistance(tcloud& c) {
  eachline(c, [&](tlinerange r) {
    if (r.count() < 1) return;
    if (r.count() == 1) {
      tcloudpoint p = c.points.get(r.first);
      p[3] = 0;
      return c.points.put(r.first, p);
    }
    if (c.points.get(r.first) == c.points.get(r.last)) return;
    std::vector<double> t(static_cast<size_t>(r.count()));
    t[0] = distance3(c.points.get(r.first), c.points.get(r.first + 1));
    for (int64_t i = r.first + 1; i < r.last; ++i) t[static_cast<size_t>(i - r.first)] = distance4(c.points.get(i), c.points.get(i - 1));
    t.back() = distance3(c.points.get(r.last), c.points.get(r.last - 1));
    for (int64_t i = r.first; i <= r.last; ++i) {
      tcloudpoint p = c.points.get(i);
      p[3] = t[static_cast<size_t>(i - r.first)];
      c.points.put(i, p);
    }
  });
}

void linelengths(tcloud& c) {
  eachline(c, [&](tlinerange r) {
    double sum = 0;
    for (int64_t i = r.first; i <= r.last; ++i) {
      tcloudpoint p = c.points.get(i);
      if (i > r.first) sum += distance3(p, c.points.get(i - 1));
      p[3] = sum;
      c.points.put(i, p);
    }
  });
}

void linestatistic(tcloud& c, tstatistic s) {
  eachline(c, [&](tlinerange r) {
    if (r.count() < 1) return;
    std::vector<double> t;
    for (int64_t i = r.first; i <= r.last; ++i) t.push_back(c.points.get(i)[3]);
    const double n = static_cast<double>(t.size());
    double mean = 0;
    for (double x : t) mean += x;
    mean /= n;
    double v = mean;
    if (s == tstatistic::sd) {
      double q = 0;
      for (double x : t) q += (x - mean) * (x - mean);
      v = t.size() > 1 ? std::sqrt(q / (n - 1)) : 0;
    } else if (s == tstatistic::min) {
      v = *std::min_element(t.begin(), t.end());
    } else if (s == tstatistic::max) {
      v = *std::max_element(t.begin(), t.end());
    } else if (s == tstatistic::median) {
      std::sort(t.begin(), t.end());
      v = t.size() % 2 ? t[t.size() / 2] : (t[t.size() / 2 - 1] + t[t.size() / 2]) / 2;
    }
    for (int64_t i = r.first; i <= r.last; ++i) {
      tcloudpoint p = c.points.get(i);
      p[3] = v;
      c.points.put(i, p);
    }
  });
}

void lineerasetmin(tcloud& c, double v) {
  eraseif(c, [&](tlinerange r, int64_t) {
    for (int64_t i = r.first; i <= r.last; ++i)
      if (c.points.get(i)[3] < v) return true;
    return false;
  });
}

void lineerasetmax(tcloud& c, double v) {
  eraseif(c, [&](tlinerange r, int64_t) {
    for (int64_t i = r.first; i <= r.last; ++i)
      if (c.points.get(i)[3] > v) return true;
    return false;
  });
}

void lineeraselengthmin(tcloud& c, double v) {
  eraseif(c, [&](tlinerange, int64_t l) { return linelength(c, l) < v; });
}
void lineeraselengthmax(tcloud& c, double v) {
  eraseif(c, [&](tlinerange, int64_t l) { return linelength(c, l) > v; });
}

void lineeraseduplicates(tcloud& c) {
  eraselater(c, [&](tlinerange a, tlinerange b) {
    if (a.count() != b.count()) return false;
    bool same = true, reversed = true;
    for (int64_t k = 0; k < a.count() && (same || reversed); ++k) {
      same = same && c.points.get(a.first + k) == c.points.get(b.first + k);
      reversed = reversed && c.points.get(a.last - k) == c.points.get(b.first + k);
    }
    return same || reversed;
  });
}

void lineeraseduplicatesnear(tcloud& c, double d) {
  eraselater(c, [&](tlinerange a, tlinerange b) {
    if (b.count() < 1) return false;
    // up to 9 samples of a, each within d of some point of b
    const int64_t samples = std::min<int64_t>(9, a.count());
    for (int64_t k = 0; k < samples; ++k) {
      const int64_t i = a.first + (samples > 1 ? k * (a.count() - 1) / (samples - 1) : 0);
      bool near = false;
      for (int64_t j = b.first; j <= b.last && !near; ++j) near = distance3(c.points.get(i), c.points.get(j)) <= d;
      if (!near) return false;
    }
    return true;
  });
}

void lineeraseduplicatesbegin(tcloud& c, double d) {
  eraselater(c, [&](tlinerange a, tlinerange b) {
    return b.count() > 0 && distance3(c.points.get(a.first), c.points.get(b.first)) <= d;
  });
}

void linemeanduplicatesnear(tcloud& c, double d) {
  for (int64_t i = 1; i <= c.points.length; ++i) {
    const tcloudpoint p = c.points.get(i);
    std::vector<int64_t> near;
    tcloudpoint sum{0, 0, 0, 0};
    for (int64_t j = i + 1; j <= c.points.length; ++j)
      if (distance3(p, c.points.get(j)) <= d) {
        near.push_back(j);
        for (int k = 0; k < 4; ++k) sum[k] += c.points.get(j)[k];
      }
    if (near.empty()) continue;
    for (int k = 0; k < 4; ++k) sum[k] /= static_cast<double>(near.size());
    for (int64_t j : near) c.points.put(j, sum);
  }
}

void linediscrete(tcloud& c, double s, bool withtime) {
  if (s == 0) return;
  for (int64_t i = 1; i <= c.points.length; ++i) {
    tcloudpoint p = c.points.get(i);
    for (int k = 0; k < (withtime ? 4 : 3); ++k) p[k] = s * std::nearbyint(p[k] / s);
    c.points.put(i, p);
  }
}

void linevectorop(tcloud& c, tvectorop op, double s) {
  double shortest = INFINITY, longest = 0;
  eachline(c, [&](tlinerange r) {
    if (r.count() != 2) return;
    const double len = distance3(c.points.get(r.first), c.points.get(r.last));
    shortest = std::min(shortest, len);
    longest = std::max(longest, len);
  });
  eachline(c, [&](tlinerange r) {
    if (r.count() != 2) return;
    const tcloudpoint a = c.points.get(r.first);
    tcloudpoint b = c.points.get(r.last);
    tvector v{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    switch (op) {
      case tvectorop::norm: v = normalised(v); break;
      case tvectorop::normscale: v = scaled(normalised(v), s); break;
      case tvectorop::scale: v = scaled(v, s); break;
      case tvectorop::minscale: v = scaled(v, 1 / shortest); break;
      case tvectorop::maxscale: v = scaled(v, 1 / longest); break;
      case tvectorop::negate: v = scaled(v, -1); break;
      case tvectorop::invert:
        for (double& x : v) x = 1 / x;
        break;
    }
    for (int k = 0; k < 3; ++k) b[k] = a[k] + v[k];
    c.points.put(r.last, b);
  });
}

void linecopy(const tcloud& from, tcloud& to, const tvector& f, double ft) {
  fieldcreate(to);
  for (int64_t o = 1; o <= from.objectstarts.length; ++o) {
    const tlinerange ls = objectlines(from, o);
    for (int64_t l = ls.first; l <= ls.last; ++l) {
      const tlinerange r = linerange(from, l);
      for (int64_t i = r.first; i <= r.last; ++i) {
        const tcloudpoint p = from.points.get(i);
        addpoint(to, {p[0] * f[0], p[1] * f[1], p[2] * f[2], p[3] * ft});
      }
      closeline(to, from.linetags.getchecked(l));
    }
    closeobject(to, from.objectnames.getchecked(o));
  }
  to.frameoffset = from.frameoffset;
  to.framescale = from.framescale;
  to.framesize = from.framesize;
}

bool lineobjectname(tcloud& c, int64_t object, const utf16& name) {
  if (object < 1 || object > c.objectstarts.length) return false;
  c.objectnames.putgrow(object, name);
  return true;
}

void linesfromvectors(const tvectorfield& f, tcloud& c) {
  bool any = false;
  eachstorage(f, [&](const auto& vol) {
    for (int64_t z = 1; z <= vol.sizez; ++z)
      for (int64_t y = 1; y <= vol.sizey; ++y)
        for (int64_t x = 1; x <= vol.sizex; ++x) {
          const auto v = vol.get(x, y, z);
          if (v[0] == 0 && v[1] == 0 && v[2] == 0) continue;
          const tvector p = localtoglobal(f.space, {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)});
          addpoint(c, {p[0], p[1], p[2], 0});
          addpoint(c, {p[0] + static_cast<double>(v[0]), p[1] + static_cast<double>(v[1]), p[2] + static_cast<double>(v[2]), 0});
          closeline(c, 0);
          any = true;
        }
  });
  if (any) closeobject(c, "Vectors");
}
