// The 3-D field of the scalar workspace: a volume of 1, 8 or 16 bits per voxel, chosen
// by the storage kind. value and background are those of the volume.
#pragma once
#include <concepts>
#include <type_traits>

#include "field/grid.h"

enum : uint8_t {
  scalarmono = 149,
  scalargray = 150,
  scalarfullgray = 151,
};

struct tscalarfield {
  static constexpr int axes = 3;
  static constexpr const char* unknowntext = "Unknown imagefield!";  // the word users know
  static constexpr double centerdivisor = -2.0;                      // centres the volume on the global origin

  uint8_t kind = 0;
  tbitvolume mono{};
  tbytevolume gray{};
  twordvolume full{};
  tspatial space{};
};

template <class F, class Op>
  requires std::same_as<std::remove_const_t<F>, tscalarfield>
bool eachstorage(F& f, Op op) {
  switch (f.kind) {
    case scalarmono: op(f.mono); return true;
    case scalargray: op(f.gray); return true;
    case scalarfullgray: op(f.full); return true;
  }
  return false;
}

const char* kindword(const tscalarfield& f);
void fieldrelease(tscalarfield& f);
