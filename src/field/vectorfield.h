// The field of the vector workspace: three components per voxel, as 64-bit floats,
// 64-bit integers or bytes. The zero vector means no data.
#pragma once
#include <concepts>
#include <type_traits>

#include "field/grid.h"

enum : uint8_t {
  vectorfloat = 88,
  vectorinteger = 89,
  vectorrgb = 170,
};

using tbytevectorvolume = tvolume<ttuplelist<uint8_t, 3, 'Z'>>;

struct tvectorfield {
  static constexpr int axes = 3;
  static constexpr const char* unknowntext = "Unknown vectorfield!";
  static constexpr double centerdivisor = -2.0;  // as a volume

  uint8_t kind = 0;
  tvectorvolume real{};
  tintvectorvolume integer{};
  tbytevectorvolume rgb{};
  tvector background{0, 0, 0};
  tspatial space{};
  uint8_t copymethod = 1;  // how copies with a factor bin or interpolate
};

template <class F, class Op>
  requires std::same_as<std::remove_const_t<F>, tvectorfield>
bool eachstorage(F& f, Op op) {
  switch (f.kind) {
    case vectorfloat: op(f.real); return true;
    case vectorinteger: op(f.integer); return true;
    case vectorrgb: op(f.rgb); return true;
  }
  return false;
}

const char* kindword(const tvectorfield& f);
void fieldrelease(tvectorfield& f);
