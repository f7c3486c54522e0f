// The field of the tensor workspace: a symmetric 3x3 tensor per voxel, kept in two
// volumes of the vector record, (xx, yy, zz) and (xy, xz, yz), as 64-bit floats or
// integers. Either volume missing means an empty field; the zero tensor means no data.
#pragma once
#include <concepts>
#include <type_traits>

#include "field/grid.h"
#include "field/vectorfield.h"

struct ttensorfield {
  static constexpr int axes = 3;
  static constexpr const char* unknowntext = "Unknown tensorfield!";
  static constexpr double centerdivisor = -2.0;  // as a volume

  uint8_t kind = 0;  // vectorfloat or vectorinteger
  tvectorvolume diagonal{}, offdiagonal{};
  tintvectorvolume intdiagonal{}, intoffdiagonal{};
  tspatial space{};
  uint8_t copymethod = 1;  // how copies with a factor bin or interpolate
};

template <class F, class Op>
  requires std::same_as<std::remove_const_t<F>, ttensorfield>
bool eachstorage(F& f, Op op) {
  switch (f.kind) {
    case vectorfloat:
      op(f.diagonal);
      op(f.offdiagonal);
      return true;
    case vectorinteger:
      op(f.intdiagonal);
      op(f.intoffdiagonal);
      return true;
  }
  return false;
}

const char* kindword(const ttensorfield& f);
void fieldrelease(ttensorfield& f);
