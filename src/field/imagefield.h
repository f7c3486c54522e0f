// The 2-D field of the image workspace: a shell over the planes of its storage kind.
// Gray keeps one byte plane, fullgray one word plane, rgb and rgba three and four byte
// planes (red, green, blue, alpha), and zrgb a word plane of depth with three colour
// planes, all at twice the logical size in each direction: it is the supersampled
// render target of the projections. value and background are those of the planes.
#pragma once
#include <concepts>
#include <type_traits>

#include "field/grid.h"

enum : uint8_t {
  imagegray = 145,
  imagefullgray = 146,
  imagergb = 161,
  imagergba = 162,
  imagezrgb = 165,
};

struct timagefield {
  static constexpr int axes = 2;
  static constexpr const char* unknowntext = "Unknown imagefield!";
  static constexpr double centerdivisor = 2.0;  // an image's offset centre lies in the positive

  uint8_t kind = 0;          // 0 only after a creation of an unknown kind
  tbyteplane channels[4]{};  // gray; or red, green, blue, alpha
  twordplane words{};        // fullgray; or the depth of zrgb
  tspatial space{};
};

template <class F, class Op>
  requires std::same_as<std::remove_const_t<F>, timagefield>
bool eachstorage(F& f, Op op) {
  switch (f.kind) {
    case imagegray: op(f.channels[0]); return true;
    case imagefullgray: op(f.words); return true;
    case imagergb:
    case imagergba:
      for (int c = 0; c < (f.kind == imagergba ? 4 : 3); ++c) op(f.channels[c]);
      return true;
    case imagezrgb:
      op(f.words);
      for (int c = 0; c < 3; ++c) op(f.channels[c]);
      return true;
  }
  return false;
}

inline int64_t supersampling(const timagefield& f) { return f.kind == imagezrgb ? 2 : 1; }
// zrgb has no word in the dump: it shows as unknown.
const char* kindword(const timagefield& f);
void fieldrelease(timagefield& f);
