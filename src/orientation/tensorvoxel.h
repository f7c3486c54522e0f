// One voxel of a tensor field as the six numbers of the eigen-solver, whatever the
// storage kind: integer fields round on the way in.
#pragma once
#include <cstdint>

#include "field/tensorfield.h"
#include "library/matheigen.h"

// The two volumes of the field's kind, handed to op(diagonal, offdiagonal); false for an
// empty or unknown field.
template <class F, class Op>
bool withtensorvolumes(F& f, Op op) {
  if (fieldempty(f)) return false;
  if (f.kind == vectorfloat) op(f.diagonal, f.offdiagonal);
  else if (f.kind == vectorinteger) op(f.intdiagonal, f.intoffdiagonal);
  else return false;
  return true;
}

// i is the 0-based linear index of the voxel.
template <class V>
tsymmetric tensorat(const V& diagonal, const V& offdiagonal, int64_t i) {
  const auto& d = diagonal.items()[i];
  const auto& o = offdiagonal.items()[i];
  return {static_cast<double>(d[0]), static_cast<double>(d[1]), static_cast<double>(d[2]),
          static_cast<double>(o[0]), static_cast<double>(o[1]), static_cast<double>(o[2])};
}

template <class V>
void puttensor(V& diagonal, V& offdiagonal, int64_t i, const tsymmetric& t) {
  using C = typename V::elementtype::value_type;
  diagonal.items()[i] = {toelement<C>(t.xx), toelement<C>(t.yy), toelement<C>(t.zz)};
  offdiagonal.items()[i] = {toelement<C>(t.xy), toelement<C>(t.xz), toelement<C>(t.yz)};
}

inline bool zerotensor(const tsymmetric& t) {
  return t.xx == 0 && t.yy == 0 && t.zz == 0 && t.xy == 0 && t.xz == 0 && t.yz == 0;
}
