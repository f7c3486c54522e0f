// What the grid fields (image, scalar, vector, tensor) share. Each keeps the arrays of all
// its storage kinds by value and uses those of its kind; it tells which through
// eachstorage(field, op), which calls op on each array of the kind in order and is false
// for a kind its table doesn't list. Creation, size and the dump's description are
// written once on top of that.
#pragma once
#include <concepts>
#include <cstdint>

#include "field/arrays.h"
#include "field/spatial.h"
#include "shell/console.h"

template <class F>
concept tgridfield = requires(F& f) {
  { F::axes } -> std::convertible_to<int>;
  { F::unknowntext } -> std::convertible_to<const char*>;
  f.kind;
  f.space;
};

// How many array elements a field keeps per pixel and axis; the render target of the
// projections is the one field that supersamples.
template <class F>
int64_t supersampling(const F&) {
  return 1;
}

template <class A>
void createarray(A& a, const tnatvector& size) {
  if constexpr (requires { a.sizez; })
    a.create(size[0], size[1], size[2]);
  else
    a.create(size[0], size[1]);
}

template <class A>
tnatvector arraysize(const A& a) {
  if constexpr (requires { a.sizez; })
    return {a.sizex, a.sizey, a.sizez};
  else
    return {a.sizex, a.sizey, 1};
}

// The size in voxels. The last array of the kind counts: when memory ran out part way
// through a creation, the field keeps the size of the array set last. An image has the
// depth 1: it is a slice in space.
template <tgridfield F>
tnatvector fieldsize(const F& f) {
  tnatvector size{0, 0, 0};
  eachstorage(f, [&](const auto& a) { size = arraysize(a); });
  for (int a = 0; a < F::axes; ++a) size[a] /= supersampling(f);
  if (F::axes == 2) size[2] = 1;
  return size;
}

template <tgridfield F>
bool fieldempty(const F& f) {
  const tnatvector size = fieldsize(f);
  return fieldcount(size[0], size[1], size[2]) < 1;
}

// Releases what the field held and makes it new: of the given kind, at the identity in
// space, and sized when the size holds at least one voxel. A failed allocation has been
// reported by the arrays and leaves the field empty; an unknown kind leaves it without
// arrays (kind 0).
template <tgridfield F>
void fieldcreate(F& f, uint8_t kind, const tnatvector& size = {0, 0, 0}) {
  fieldrelease(f);
  f = F{};
  f.kind = kind;
  if (!eachstorage(f, [](auto&) {})) {
    println(F::unknowntext);
    f.kind = 0;
    return;
  }
  const int64_t z = F::axes == 2 ? 1 : size[2];
  if (fieldcount(size[0], size[1], z) < 1) return;
  const int64_t k = supersampling(f);
  eachstorage(f, [&](auto& a) { createarray(a, {size[0] * k, size[1] * k, z}); });
}

// The sizes joined by "x": "3x4" for an image, "3x4x5" for a volume.
template <tgridfield F>
utf16 dimensionstext(const F& f) {
  const tnatvector size = fieldsize(f);
  utf16 out = nattext(size[0]);
  for (int a = 1; a < F::axes; ++a) out = out + "x" + nattext(size[a]);
  return out;
}

// "fullgray(3x4)" and the like, "unknown" for a kind that has no word.
template <tgridfield F>
utf16 fielddescription(const F& f) {
  const char* word = kindword(f);
  return word ? word + ("(" + dimensionstext(f) + ")") : utf16("unknown");
}

// The position rule of absolute and relative values along axis 1, 2 or 3 of the field,
// and per component of a vector.
template <tgridfield F>
int64_t fieldposition(const F& f, double v, int axis) {
  return position(v, fieldsize(f)[axis - 1]);
}

template <tgridfield F>
tnatvector fieldpositions(const F& f, const tvector& v) {
  return positions(v, fieldsize(f));
}
