// A field's samples as plain arrays, the element type chosen once: the kernels of the
// neighbourhood operations are written over T and see x fastest, z slowest, from 0.
// A mono volume is lent as bytes 0 and 1 and packed again afterwards.
#pragma once
#include <cstdint>
#include <vector>

#include "field/imagefield.h"
#include "field/scalarfield.h"

template <class T>
struct tgrid {
  T* v = nullptr;
  int64_t nx = 0, ny = 0, nz = 0;
  T background{};
  int64_t top = 0;  // the largest value the kind stores

  int64_t area() const { return nx * ny; }
  int64_t count() const { return nx * ny * nz; }
  bool inside(int64_t x, int64_t y, int64_t z) const {
    return x >= 0 && x < nx && y >= 0 && y < ny && z >= 0 && z < nz;
  }
  T at(int64_t x, int64_t y, int64_t z) const { return inside(x, y, z) ? v[x + nx * (y + ny * z)] : background; }
  T& operator()(int64_t x, int64_t y, int64_t z) const { return v[x + nx * (y + ny * z)]; }
};

template <class A>
tgrid<typename A::elementtype> gridof(A& a, int64_t top) {
  a.sorted = false;  // the kernels write through the pointer
  if constexpr (requires { a.sizez; })
    return {a.items(), a.sizex, a.sizey, a.sizez, a.defaultvalue, top};
  else
    return {a.items(), a.sizex, a.sizey, 1, a.defaultvalue, top};
}

// op(tgrid<T>) on the volume's voxels; nothing for an empty field or one without storage.
template <class Op>
void withgrid(tscalarfield& f, Op op) {
  if (fieldempty(f)) return;
  switch (f.kind) {
    case scalargray: op(gridof(f.gray, 255)); break;
    case scalarfullgray: op(gridof(f.full, 65535)); break;
    case scalarmono: {
      tbitvolume& m = f.mono;
      const int64_t n = fieldcount(m.sizex, m.sizey, m.sizez);
      std::vector<uint8_t> bytes(static_cast<size_t>(n));
      for (int64_t i = 0; i < n; ++i) bytes[i] = m.get(i + 1);
      op(tgrid<uint8_t>{bytes.data(), m.sizex, m.sizey, m.sizez, m.defaultvalue, 1});
      for (int64_t i = 0; i < n; ++i) m.put(i + 1, bytes[i] != 0);
      break;
    }
  }
}

// op(tgrid<T>) on each sample plane of an image: gray or fullgray its one plane, colour
// kinds red, green and blue in turn (alpha and depth stay).
template <class Op>
void withgrids(timagefield& f, Op op) {
  if (fieldempty(f)) return;
  switch (f.kind) {
    case imagegray: op(gridof(f.channels[0], 255)); break;
    case imagefullgray: op(gridof(f.words, 65535)); break;
    case imagergb:
    case imagergba:
    case imagezrgb:
      for (int c = 0; c < 3; ++c) op(gridof(f.channels[c], 255));
      break;
  }
}
