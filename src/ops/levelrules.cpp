#include "ops/levelrules.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "field/arrays.h"
#include "field/owned.h"
#include "script/values.h"

namespace {

// The level arrays one table at a time: a volume's array, an image's plane or each colour.
template <class Op>
void eachchannel(tscalarfield& f, Op op) {
  if (fieldempty(f)) return;
  if (f.kind == scalargray) op(f.gray, 255);
  if (f.kind == scalarfullgray) op(f.full, 65535);
}

template <class Op>
void eachchannel(timagefield& f, Op op) {
  if (fieldempty(f)) return;
  switch (f.kind) {
    case imagegray: return op(f.channels[0], 255);
    case imagefullgray: return op(f.words, 65535);
    case imagergb:
    case imagergba:
    case imagezrgb:
      for (int c = 0; c < 3; ++c) op(f.channels[c], 255);
  }
}

template <class A>
tlevelhistogram histogramof(const A& a, int64_t top) {
  tlevelhistogram h(static_cast<size_t>(top + 1), 0);
  const auto* p = a.items();
  for (int64_t i = 0; i < a.length; ++i) ++h[p[i]];
  return h;
}

double share(double s) { return s >= 0 && s <= 1 ? s : 0.006; }

// Walks in from each end adding shares; the entries before the one at which the running
// share exceeds the limit are emptied.
void cutshares(tlevelhistogram& h, double low, double high) {
  const double sum = static_cast<double>(std::accumulate(h.begin(), h.end(), int64_t{0}));
  if (sum <= 0) return;
  const auto cut = [&](auto begin, auto end, double limit) {
    double total = 0;
    for (auto i = begin; i != end; ++i) {
      total += static_cast<double>(*i) / sum;
      if (total > limit) return std::fill(begin, i, 0);
    }
  };
  cut(h.begin(), h.end(), low);
  cut(h.rbegin(), h.rend(), high);
}

// The levels between the first and last occupied ones onto 0..top.
tleveltable percentagetable(const tlevelhistogram& h, int64_t top) {
  int64_t lo = top, hi = 0;
  occupiedrange(h, lo, hi);
  if (lo >= hi) return {};
  const double w = static_cast<double>(hi - lo);
  tleveltable t(h.size());
  for (int64_t i = 0; i <= top; ++i)
    t[i] = i <= lo ? 0 : i >= hi ? top : std::clamp<int64_t>(roundnat(static_cast<double>(i - lo) / w * static_cast<double>(top)), 0, top);
  return t;
}

tleveltable equaltable(const tlevelhistogram& h) {
  const auto n = static_cast<int64_t>(h.size());
  const double count = static_cast<double>(std::accumulate(h.begin(), h.end(), int64_t{0}));
  if (count <= 0) return {};
  std::vector<double> t(h.size(), 0.0);
  int64_t acc = h[0];
  for (int64_t i = 1; i < n - 1; ++i) {
    acc += h[i] / 2;
    t[i] = static_cast<double>(acc) / count;
    acc += h[i] / 2 + h[i] % 2;
  }
  t[n - 1] = static_cast<double>(n - 1);
  tleveltable out(h.size());
  for (int64_t i = 0; i < n; ++i) out[i] = roundnat(static_cast<double>(n - 1) * t[i]);
  return out;
}

// The level at 1-based position k of the sorted voxels.
int64_t levelat(const tlevelhistogram& h, int64_t k) {
  int64_t seen = 0;
  for (size_t v = 0; v < h.size(); ++v)
    if ((seen += h[v]) >= k) return static_cast<int64_t>(v);
  return static_cast<int64_t>(h.size()) - 1;
}

tleveltable outliertable(const tlevelhistogram& h, int64_t top) {
  const int64_t n = std::accumulate(h.begin(), h.end(), int64_t{0});
  int64_t first = 0, last = 0;
  if (!occupiedrange(h, first, last)) return {};
  const auto at = quantilepositions(n);
  const int64_t q1 = levelat(h, std::max<int64_t>(at[0], 1)), q3 = levelat(h, std::max<int64_t>(at[2], 1));
  const double spread = 1.5 * static_cast<double>(q3 - q1);
  const int64_t lo = std::max(first, roundnat(static_cast<double>(q1) - spread));
  const int64_t hi = std::min(last, roundnat(static_cast<double>(q3) + spread));
  return lo < hi ? stretchtable(lo, hi, 0, top, top) : tleveltable{};
}

tleveltable peaktable(tlevelhistogram h, int64_t top, int64_t target) {
  repairhistogram(h);
  tlocalarray<tintlist> list;
  list->createdynamic();
  for (const int64_t e : h) list->add(e);
  list->smooth121();
  for (int64_t i = 1; i <= list->length; ++i) h[i - 1] = list->get(i);
  cutshares(h, 0.01, 0.01);
  const int64_t peak = std::max_element(h.begin(), h.end()) - h.begin();
  tleveltable t(h.size());
  for (int64_t i = 0; i <= top; ++i) t[i] = i - peak + target;
  return t;
}

tleveltable maptable(int64_t top, auto level) {
  tleveltable t(static_cast<size_t>(top + 1));
  for (int64_t i = 0; i <= top; ++i) t[i] = level(i);
  return t;
}

template <class F>
void adjust(F& f, tlevelrule rule, const tlevelshares& shares) {
  eachchannel(f, [&](auto& a, int64_t top) { remaparray(a, ruletable(histogramof(a, top), top, rule, shares)); });
}

template <class F>
void setrange(F& f, int64_t lo, int64_t hi, int64_t n) {
  eachchannel(f, [&](auto& a, int64_t top) {
    remaparray(a, maptable(top, [&](int64_t i) { return i >= lo && i <= hi ? n : i; }));
  });
}

}  // namespace

void repairhistogram(tlevelhistogram& h) {
  const auto n = static_cast<int64_t>(h.size());
  const auto at = [&](int64_t i) { return i >= 0 && i < n ? h[i] : 0; };
  for (int64_t i = 0; i < n; ++i) {
    if (h[i] != 0) continue;
    for (const auto& [a, b] : {std::pair{-1, 1}, {-2, 1}, {-1, 2}, {-4, 4}})
      if (at(i + a) > 0 && at(i + b) > 0) {
        h[i] = (at(i + a) + at(i + b)) / 2;
        break;
      }
  }
}

tleveltable ruletable(tlevelhistogram h, int64_t top, tlevelrule rule, const tlevelshares& shares) {
  if (top < 1 || static_cast<int64_t>(h.size()) != top + 1) return {};
  int64_t first = 0, last = 0;
  const bool occupied = occupiedrange(h, first, last);
  switch (rule) {
    case tlevelrule::percentage:
    case tlevelrule::weak: {
      repairhistogram(h);
      cutshares(h, share(shares.low), share(shares.high));
      if (rule == tlevelrule::percentage) return percentagetable(h, top);
      int64_t lo = top, hi = 0;
      occupiedrange(h, lo, hi);
      if (lo >= hi) return {};
      if (shares.c >= 0 && shares.d >= 0) return stretchtable(lo, hi, shares.c, shares.d, top);
      const tleveltable full = stretchtable(lo, hi, 0, top, top);
      return maptable(top, [&](int64_t i) { return (i + full[i]) / 2; });
    }
    case tlevelrule::outliers: return outliertable(h, top);
    case tlevelrule::equal: return equaltable(h);
    case tlevelrule::peaklower: return peaktable(h, top, 0);
    case tlevelrule::peakmiddle: return peaktable(h, top, top / 2);
    case tlevelrule::peakhigher: return peaktable(h, top, top);
    case tlevelrule::sign: return maptable(top, [&](int64_t i) { return (i + (top + 1) / 2) % (top + 1); });
    case tlevelrule::range: return occupied ? maptable(top, [&](int64_t i) { return i - first; }) : tleveltable{};
    case tlevelrule::crop: {
      const auto spot = [](int64_t c) { return c > 1; };
      const auto lo = std::find_if(h.begin(), h.end(), spot);
      const auto hi = std::find_if(h.rbegin(), h.rend(), spot);
      if (lo == h.end()) return {};
      const int64_t a = lo - h.begin(), b = h.rend() - hi - 1;
      return maptable(top, [&](int64_t i) { return std::clamp(i, a, b); });
    }
    case tlevelrule::invert: return maptable(top, [&](int64_t i) { return top - i; });
  }
  return {};
}

void adjustlevels(tscalarfield& f, tlevelrule rule, const tlevelshares& shares) { adjust(f, rule, shares); }
void adjustlevels(timagefield& f, tlevelrule rule, const tlevelshares& shares) { adjust(f, rule, shares); }
void setlevels(tscalarfield& f, int64_t lo, int64_t hi, int64_t n) { setrange(f, lo, hi, n); }
void setlevels(timagefield& f, int64_t lo, int64_t hi, int64_t n) { setrange(f, lo, hi, n); }
