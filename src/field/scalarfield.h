// The 3-D field of the scalar workspace: a volume of 1, 8 or 16 bits per voxel, chosen
// by the storage kind. value and background are those of the volume. Beside the voxels a
// field keeps the names of its values (an atlas), the load filter that the volume readers
// apply to arriving voxels, and the settings of the orientation analysis.
#pragma once
#include <algorithm>
#include <concepts>
#include <numbers>
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

  tnamelist labels{};  // the name of value i at position i + 1; created on the first label
  utf16 title;         // the file it came from
  // The load filter: (value + filteradd) * filtermul, a negative filtermul divides.
  int64_t filteradd = 0;
  int64_t filtermul = 1;
  // Settings of the copy and the orientation analysis.
  uint8_t method = 0;
  uint8_t copymethod = 1;
  uint8_t submethod = 2;
  bool fullscan = false;
  bool fullscanlocal = false;
  double diffusionangle = degreestoradians(5);
  double diffusionmax = 0.25;
  uint8_t connection = 0;  // the connection method; 0 behaves as 5
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

// The largest value a kind stores: 1, 255 or 65535; 0 without storage.
int64_t kindmaximum(uint8_t kind);

// A real as the kind stores it: mono is set above 0, the others clamp and round.
template <class A>
typename A::elementtype voxelof(double v) {
  using T = typename A::elementtype;
  if constexpr (std::same_as<T, bool>)
    return v > 0;
  else
    return toelement<T>(v);
}

// The accessors of the voxel loops. Outside the volume the getter returns the background
// and the setter does nothing.
inline int64_t getvalue(const tscalarfield& f, int64_t x, int64_t y, int64_t z) {
  switch (f.kind) {
    case scalarmono: return f.mono.getchecked(x, y, z) ? 1 : 0;
    case scalargray: return f.gray.getchecked(x, y, z);
    case scalarfullgray: return f.full.getchecked(x, y, z);
  }
  return 0;
}

inline void setvalue(tscalarfield& f, int64_t x, int64_t y, int64_t z, double v) {
  eachstorage(f, [&](auto& a) { a.putchecked(x, y, z, voxelof<std::remove_cvref_t<decltype(a)>>(v)); });
}

int64_t getbackground(const tscalarfield& f);
void setbackground(tscalarfield& f, double v);
int64_t getdrawvalue(const tscalarfield& f);
void setdrawvalue(tscalarfield& f, double v);

// True when every voxel equals the first one; an empty field is plain.
bool isplain(const tscalarfield& f);

// v := table[v + 1] for each voxel: 256 entries on gray, 65536 on fullgray; mono stays.
void remap(tscalarfield& f, const int64_t* table, int64_t entries);
// The two bytes of each fullgray voxel exchanged ($ABCD -> $CDAB); gray and mono stay.
void setendian(tscalarfield& f);

// Labels: a growing write at position i + 1 for 0 <= i <= the kind's maximum (not on
// mono). A stored "*" reads as the nearest different label below it.
void setlabel(tscalarfield& f, int64_t i, const utf16& name);
utf16 getlabel(const tscalarfield& f, int64_t i);
int64_t labelcount(const tscalarfield& f);
void clearlabels(tscalarfield& f);
void dumplabels(const tscalarfield& f);
void copylabels(tscalarfield& to, const tscalarfield& from);

// The load filter; the command's forms: none resets, one sets the offset and scale 1.
void setloadfilter(tscalarfield& f, int64_t add, int64_t mul);
