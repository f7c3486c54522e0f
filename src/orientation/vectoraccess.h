// The two accessors under every vector command: a read that gives each storage kind as a
// float vector, and a write that rounds and clamps for the integer and byte kinds. The
// kernels are templates over the volume type, picked once per command by eachstorage.
#pragma once
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "field/vectorfield.h"
#include "library/mathvector.h"

template <class A>
using vectorelement = typename std::remove_cvref_t<A>::elementtype;
template <class A>
using vectorcomponent = typename vectorelement<A>::value_type;

template <class E>
inline tvector readvector(const E& e) {
  return {static_cast<double>(e[0]), static_cast<double>(e[1]), static_cast<double>(e[2])};
}

template <class E>
inline E writevector(const tvector& v) {
  using C = typename E::value_type;
  return {toelement<C>(v[0]), toelement<C>(v[1]), toelement<C>(v[2])};
}

// What a unit vector is multiplied by before it is stored: the byte kind spans 0..255 and
// the integer kind its whole range (the write clamps 2^64 to the largest integer).
template <class C>
constexpr double unitscale() {
  if constexpr (std::is_floating_point_v<C>)
    return 1;
  else if constexpr (sizeof(C) == 1)
    return 255;
  else
    return 18446744073709551616.0;  // 2^64
}

inline bool iszero(const tvector& v) { return v[0] == 0 && v[1] == 0 && v[2] == 0; }

// The voxel count of the field's storage; 0 for an empty field or an unknown kind.
inline int64_t vectorcount(const tvectorfield& f) {
  int64_t n = 0;
  eachstorage(f, [&](const auto& a) { n = a.length; });
  return n;
}

// v := op(v) on every voxel, through read and write.
template <class Op>
void mapvectors(tvectorfield& f, Op op) {
  eachstorage(f, [&](auto& a) {
    using E = vectorelement<decltype(a)>;
    E* p = a.items();
    for (int64_t i = 0; i < a.length; ++i) p[i] = writevector<E>(op(readvector(p[i])));
    a.sorted = false;
  });
}

// op(v) on every voxel in memory order, reading only.
template <class Op>
void eachvector(const tvectorfield& f, Op op) {
  eachstorage(f, [&](const auto& a) {
    const auto* p = a.items();
    for (int64_t i = 0; i < a.length; ++i) op(readvector(p[i]));
  });
}
