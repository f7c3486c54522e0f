// Planes and volumes over a list record L: contiguous, x fastest, z slowest, coordinates
// from 1. Element (x, y, z) is index x + (y - 1) * sizex + (z - 1) * sizex * sizey of L.
// A grid whose base came out empty (failed allocation or a zero factor) has all sizes 0.
#pragma once
#include <cmath>
#include <concepts>

#include "field/array_list.h"

template <class L>
struct tplane : L {
  using T = typename L::elementtype;
  using L::get;
  using L::getchecked;
  using L::put;

  int64_t sizex = 0;
  int64_t sizey = 0;

  void create(int64_t x, int64_t y) {
    L::create(fieldcount(x, y));
    setsizes(x, y);
  }
  void createdynamic() {
    L::createdynamic();
    setsizes(0, 0);
  }
  // The contents keep their linear order: a resized picture is re-wrapped, not re-laid.
  void resize(int64_t x, int64_t y) {
    L::resizecount(fieldcount(x, y));
    setsizes(x, y);
  }
  void release() {
    L::release();
    sizex = sizey = 0;
  }
  void setsizes(int64_t x, int64_t y) {
    const bool empty = this->itemcount() < 1;
    sizex = empty ? 0 : x;
    sizey = empty ? 0 : y;
    this->sorted = true;
  }

  int64_t index(int64_t x, int64_t y) const { return x + (y - 1) * sizex; }
  bool inside(int64_t x, int64_t y) const { return x >= 1 && x <= sizex && y >= 1 && y <= sizey; }

  T get(int64_t x, int64_t y) const { return L::get(index(x, y)); }
  void put(int64_t x, int64_t y, const T& v) { L::put(index(x, y), v); }
  T getchecked(int64_t x, int64_t y) const {
    return inside(x, y) ? L::getchecked(index(x, y)) : this->defaultvalue;
  }
  // Ignores an outside coordinate; a dynamic plane grows to take the element instead.
  void putchecked(int64_t x, int64_t y, const T& v) {
    if (this->dynamic < 1) {
      if (inside(x, y)) L::put(index(x, y), v);
      return;
    }
    if (x < 1 || y < 1) return;
    if (sizey < 2 && y == 1) {
      L::putgrow(x, v);
      if (x <= this->length) {
        sizex = std::max(sizex, x);
        sizey = 1;
      }
      return;
    }
    if (x > sizex && !relayout(x)) return;
    L::putgrow(index(x, y), v);
    if (index(x, y) <= this->length) sizey = std::max(sizey, y);
  }

  // Drawing with value. The spans aren't clipped to the plane, only to the block, so a
  // span past the right edge continues on the next row.
  void drawpoint(int64_t x, int64_t y) {
    if (inside(x, y)) put(x, y, this->value);
  }
  void hline(int64_t x1, int64_t x2, int64_t y) {
    for (int64_t x = std::min(x1, x2); x <= std::max(x1, x2); ++x) putlinear(index(x, y), this->value);
  }
  void vline(int64_t x, int64_t y1, int64_t y2) {
    for (int64_t y = std::min(y1, y2); y <= std::max(y1, y2); ++y) putlinear(index(x, y), this->value);
  }
  // A soft edge: each element moves a quarter of the way to value.
  void blendvline(int64_t x, int64_t y1, int64_t y2)
    requires std::integral<T>
  {
    for (int64_t y = std::min(y1, y2); y <= std::max(y1, y2); ++y) {
      const int64_t i = index(x, y);
      if (i < 1 || i > this->length) continue;
      const auto old = static_cast<int64_t>(L::get(i));
      L::put(i, static_cast<T>((old * 3 + static_cast<int64_t>(this->value)) >> 2));
    }
  }

 private:
  void putlinear(int64_t i, const T& v) {
    if (i >= 1 && i <= this->length) L::put(i, v);
  }
  // Re-lays the rows of a dynamic plane to a greater width through a temporary plane.
  bool relayout(int64_t width) {
    L wide{};
    wide.create(fieldcount(width, sizey));
    if (wide.length != fieldcount(width, sizey)) {
      wide.release();
      return false;
    }
    for (int64_t y = 1; y <= sizey; ++y)
      for (int64_t x = 1; x <= sizex; ++x)
        if (index(x, y) <= this->length) wide.put(x + (y - 1) * width, L::get(index(x, y)));
    this->copyfrom(wide);
    wide.release();
    sizex = width;
    return this->length == fieldcount(width, sizey);
  }
};

template <class L>
struct tvolume : L {
  using T = typename L::elementtype;
  using L::get;
  using L::getchecked;
  using L::put;

  int64_t sizex = 0;
  int64_t sizey = 0;
  int64_t sizez = 0;

  void create(int64_t x, int64_t y, int64_t z) {
    L::create(fieldcount(x, y, z));
    setsizes(x, y, z);
  }
  void resize(int64_t x, int64_t y, int64_t z) {
    L::resizecount(fieldcount(x, y, z));
    setsizes(x, y, z);
  }
  void release() {
    L::release();
    sizex = sizey = sizez = 0;
  }
  void setsizes(int64_t x, int64_t y, int64_t z) {
    const bool empty = this->itemcount() < 1;
    sizex = empty ? 0 : x;
    sizey = empty ? 0 : y;
    sizez = empty ? 0 : z;
    this->sorted = true;
  }

  int64_t index(int64_t x, int64_t y, int64_t z) const { return x + (y - 1) * sizex + (z - 1) * sizex * sizey; }
  bool inside(int64_t x, int64_t y, int64_t z) const {
    return x >= 1 && x <= sizex && y >= 1 && y <= sizey && z >= 1 && z <= sizez;
  }

  T get(int64_t x, int64_t y, int64_t z) const { return L::get(index(x, y, z)); }
  void put(int64_t x, int64_t y, int64_t z, const T& v) { L::put(index(x, y, z), v); }
  T getchecked(int64_t x, int64_t y, int64_t z) const {
    return inside(x, y, z) ? L::getchecked(index(x, y, z)) : this->defaultvalue;
  }
  void putchecked(int64_t x, int64_t y, int64_t z, const T& v) {
    if (inside(x, y, z)) L::put(index(x, y, z), v);
  }

  // A digital differential analyser in 16.16 fixed point over round(|to - from|) steps:
  // the first point is from itself, then one point after each step.
  void line(const tnatvector& from, const tnatvector& to, bool v)
    requires std::same_as<T, bool>
  {
    double delta[3], squared = 0;
    for (int a = 0; a < 3; ++a) {
      delta[a] = static_cast<double>(to[a] - from[a]);
      squared += delta[a] * delta[a];
    }
    const int64_t steps = roundnat(std::sqrt(squared));
    int64_t position[3], step[3];
    for (int a = 0; a < 3; ++a) {
      position[a] = from[a] * 65536;
      step[a] = steps > 0 ? roundnat(delta[a] / static_cast<double>(steps) * 65535) : 0;
    }
    putchecked(from[0], from[1], from[2], v);
    for (int64_t s = 1; s <= steps; ++s) {
      for (int a = 0; a < 3; ++a) position[a] += step[a];
      putchecked(position[0] >> 16, position[1] >> 16, position[2] >> 16, v);
    }
  }
};
