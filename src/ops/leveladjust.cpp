#include "ops/leveladjust.h"

#include <algorithm>
#include <concepts>
#include <type_traits>

#include "script/values.h"

namespace {

// The arrays that hold a field's levels: a volume's one array; an image's plane, or its
// three colours. Colour kinds share one histogram and one table over red, green and blue:
// a stretch per colour would tint the image, while the joint one keeps its colour balance
// (a grey pixel stays grey).
template <class F, class Op>
  requires std::same_as<std::remove_const_t<F>, tscalarfield>
void eachlevelarray(F& f, Op op) {
  if (f.kind == scalargray) op(f.gray);
  if (f.kind == scalarfullgray) op(f.full);
}

template <class F, class Op>
  requires std::same_as<std::remove_const_t<F>, timagefield>
void eachlevelarray(F& f, Op op) {
  switch (f.kind) {
    case imagegray: op(f.channels[0]); break;
    case imagefullgray: op(f.words); break;
    case imagergb:
    case imagergba:
    case imagezrgb:
      for (int c = 0; c < 3; ++c) op(f.channels[c]);
      break;
  }
}

template <class A>
void countlevels(const A& a, tlevelhistogram& h) {
  const auto* p = a.items();
  for (int64_t i = 0; i < a.length; ++i) ++h[p[i]];
}

template <class F>
tlevelhistogram histogramof(const F& f, int64_t top) {
  tlevelhistogram h;
  if (top < 1) return h;
  h.assign(static_cast<size_t>(top + 1), 0);
  eachlevelarray(f, [&](const auto& a) { countlevels(a, h); });
  return h;
}

template <class F>
void stretchown(F& f) {
  int64_t lo = 0, hi = 0;
  const int64_t top = leveltop(f);
  if (occupiedrange(levelhistogram(f), lo, hi)) applytable(f, stretchtable(lo, hi, 0, top, top));
}

}  // namespace

int64_t leveltop(const tscalarfield& f) {
  if (f.kind == scalarmono || fieldempty(f)) return 0;
  return kindmaximum(f.kind);
}

int64_t leveltop(const timagefield& f) {
  if (fieldempty(f)) return 0;
  switch (f.kind) {
    case imagegray:
    case imagergb:
    case imagergba:
    case imagezrgb: return 255;
    case imagefullgray: return 65535;
  }
  return 0;
}

tlevelhistogram levelhistogram(const tscalarfield& f) { return histogramof(f, leveltop(f)); }
tlevelhistogram levelhistogram(const timagefield& f) { return histogramof(f, leveltop(f)); }

bool occupiedrange(const tlevelhistogram& h, int64_t& lo, int64_t& hi) {
  const auto first = std::find_if(h.begin(), h.end(), [](int64_t n) { return n > 0; });
  if (first == h.end()) return false;
  const auto last = std::find_if(h.rbegin(), h.rend(), [](int64_t n) { return n > 0; });
  lo = first - h.begin();
  hi = h.rend() - last - 1;
  return true;
}

tleveltable stretchtable(int64_t a, int64_t b, int64_t c, int64_t d, int64_t top) {
  if (top < 1) return {};
  a = std::clamp<int64_t>(a, 0, top), b = std::clamp<int64_t>(b, 0, top);
  c = std::clamp<int64_t>(c, 0, top), d = std::clamp<int64_t>(d, 0, top);
  if (a > b) std::swap(a, b);
  if (c > d) std::swap(c, d);
  if (a == b) return {};
  tleveltable t(static_cast<size_t>(top + 1));
  for (int64_t i = 0; i <= top; ++i) {
    if (i <= a)
      t[i] = c;
    else if (i >= b)
      t[i] = d;
    else
      t[i] = std::clamp<int64_t>(roundnat(static_cast<double>(c) + static_cast<double>((d - c) * (i - a)) /
                                                             static_cast<double>(b - a)),
                                 0, top);
  }
  return t;
}

void applytable(tscalarfield& f, const tleveltable& table) {
  const int64_t top = leveltop(f);
  if (top < 1 || static_cast<int64_t>(table.size()) != top + 1) return;
  remap(f, table.data(), top + 1);
}

void applytable(timagefield& f, const tleveltable& table) {
  const int64_t top = leveltop(f);
  if (top < 1 || static_cast<int64_t>(table.size()) != top + 1) return;
  eachlevelarray(f, [&](auto& a) { remaparray(a, table); });
}

void stretchoccupied(tscalarfield& f) { stretchown(f); }
void stretchoccupied(timagefield& f) { stretchown(f); }
