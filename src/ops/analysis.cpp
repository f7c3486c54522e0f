// The analysis of a histogram works on the occurring values only, so that its x axis does
// not depend on the kind's range: index i is the i-th occurring value.
#include <algorithm>
#include <cmath>

#include "ops/histogram.h"
#include "script/values.h"

namespace {

// Each pass sees the entry to its left already smoothed; the ends stay.
void smooth(std::vector<double>& f) {
  const size_t n = f.size();
  for (size_t pass = 0; pass < n / 100; ++pass)
    for (size_t i = 1; i + 1 < n; ++i) f[i] = (f[i] + (f[i - 1] + f[i + 1]) * 0.5) * 0.5;
}

bool changesign(double before, double after, bool rising) {
  return rising ? before < 0 && after > 0 : before > 0 && after < 0;
}

const char* kindword(tanalysiskind k) {
  switch (k) {
    case tanalysiskind::maximum: return "Maximum point:";
    case tanalysiskind::minimum: return "Minimum point:";
    default: return "Inflection point:";
  }
}

}  // namespace

std::vector<double> histogramderivative(const std::vector<double>& v) {
  const size_t n = v.size();
  if (n < 2) return v;
  std::vector<double> d(n);
  for (size_t i = n - 1; i >= 1; --i) d[i] = v[i] - v[i - 1];
  d[0] = d[1];
  for (size_t i = 1; i + 1 < n; ++i) d[i] = (d[i] + d[i + 1]) * 0.5;
  return d;
}

tanalysis analysehistogram(const std::vector<int64_t>& counts, bool logcounts) {
  tanalysis a;
  for (size_t v = 0; v < counts.size(); ++v)
    if (counts[v] > 0) a.points.push_back({static_cast<int64_t>(v), static_cast<double>(counts[v])});
  if (a.points.size() < 11) {
    a.points.clear();
    return a;
  }
  for (const thistogrampoint& p : a.points) a.f.push_back(logcounts ? std::log10(p.count) : p.count);
  smooth(a.f);
  a.f1 = histogramderivative(a.f);
  a.f2 = histogramderivative(a.f1);
  // Points of one kind in a row merge into their mean value.
  int64_t sum = 0, members = 0;
  tanalysiskind current = tanalysiskind::maximum;
  const auto flush = [&] {
    if (members == 0) return;
    const int64_t m = roundnat(static_cast<double>(sum) / static_cast<double>(members));
    const auto at = std::lower_bound(a.points.begin(), a.points.end(), m,
                                     [](const thistogrampoint& p, int64_t v) { return p.value < v; });
    const int64_t position = std::min<int64_t>(at - a.points.begin(), static_cast<int64_t>(a.points.size()) - 1);
    a.found.push_back({current, m, position});
    sum = members = 0;
  };
  const int64_t n = static_cast<int64_t>(a.points.size());
  for (int64_t i = 2; i < n - 2; ++i) {
    if (!(a.f[i] > 0.5)) continue;
    tanalysiskind kind;
    if (changesign(a.f1[i - 1], a.f1[i + 1], false))
      kind = tanalysiskind::maximum;
    else if (changesign(a.f1[i - 1], a.f1[i + 1], true))
      kind = tanalysiskind::minimum;
    else if (changesign(a.f2[i - 1], a.f2[i + 1], false) || changesign(a.f2[i - 1], a.f2[i + 1], true))
      kind = tanalysiskind::inflection;
    else
      continue;
    if (members > 0 && kind != current) flush();
    current = kind;
    sum += a.points[i].value;
    ++members;
  }
  flush();
  return a;
}

std::vector<utf16> analysislines(const tanalysis& a) {
  std::vector<utf16> lines;
  for (const tanalysispoint& p : a.found)
    lines.push_back(utf16(kindword(p.kind)) + " " + realtext(static_cast<double>(p.value)) + " f=" +
                    realtext(a.f[p.position]) + " f'=" + realtext(a.f1[p.position]) + " f''=" +
                    realtext(a.f2[p.position]));
  return lines;
}

std::string analysistable(const tanalysis& a) {
  std::string text;
  for (size_t i = 0; i < a.points.size(); ++i)
    text += std::to_string(i + 1) + "\t" + std::to_string(a.points[i].value) + "\t" + utf16toutf8(realtext(a.f[i])) +
            "\t" + utf16toutf8(realtext(a.f1[i])) + "\t" + utf16toutf8(realtext(a.f2[i])) + "\n";
  return text;
}

utf16 logtablename(const utf16& name) {
  std::string text = utf16toutf8(name);
  const size_t slash = text.find_last_of('/');
  const size_t dot = text.find_last_of('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return utf16(text + "-log");
  return utf16(text.substr(0, dot) + "-log" + text.substr(dot));
}
