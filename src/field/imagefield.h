// The 2-D field of the image workspace: a shell over the planes of its storage kind.
// Gray keeps one byte plane, fullgray one word plane, rgb and rgba three and four byte
// planes (red, green, blue, alpha), and zrgb a word plane of depth with three colour
// planes, all at twice the logical size in each direction: it is the supersampled
// render target of the projections. value and background are those of the planes.
//
// Pixels are read and written through a view of one kind, timageview<K>; withkind()
// picks the view once, so that a command's loops run without a branch on the kind.
// The free accessors (getvalue, setrgb ...) pick it per call, for single pixels.
#pragma once
#include <algorithm>
#include <array>
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

using trgb = std::array<int64_t, 3>;
using trgba = std::array<int64_t, 4>;

struct timagefield {
  static constexpr int axes = 2;
  static constexpr const char* unknowntext = "Unknown imagefield!";
  static constexpr double centerdivisor = 2.0;  // an image's offset centre lies in the positive

  uint8_t kind = 0;          // 0 only after a creation of an unknown kind
  tbyteplane channels[4]{};  // gray; or red, green, blue, alpha
  twordplane words{};        // fullgray; or the depth of zrgb
  tspatial space{};
  utf16 name;  // the title: the file it came from

  // Settings of the resampling and diffusion commands, kept with the field.
  uint8_t method = 0;
  uint8_t copymethod = 1;
  uint8_t submethod = 2;
  bool fullscan = false;
  double diffusionangle = 0.08726646259971647;  // 5 degrees
  double diffusionmax = 0.25;
  // zrgb: depth scale and the depth that maps onto 65535.
  double zscale = 2;
  double zmaximum = 65535;
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

// A real to 0..top, rounded to nearest with ties to even.
inline int64_t clampround(double v, int64_t top) {
  if (!(v > 0)) return 0;
  if (v >= static_cast<double>(top)) return top;
  return roundnat(v);
}
inline int64_t clampto(int64_t v, int64_t top) { return std::clamp<int64_t>(v, 0, top); }

// The pixels of one storage kind. Reads outside the size give the planes' defaults,
// writes outside are ignored, writes clamp to the kind's range.
template <uint8_t K>
struct timageview {
  timagefield& f;
  static constexpr uint8_t kind = K;
  static constexpr bool colour = K == imagergb || K == imagergba || K == imagezrgb;
  static constexpr bool hasalpha = K == imagergba;
  static constexpr bool hasdepth = K == imagezrgb;
  static constexpr int64_t top = K == imagefullgray ? 65535 : 255;  // of one sample

  auto& plane() const {
    if constexpr (K == imagefullgray)
      return f.words;
    else
      return f.channels[0];
  }
  int64_t sizex() const { return plane().sizex / (hasdepth ? 2 : 1); }
  int64_t sizey() const { return plane().sizey / (hasdepth ? 2 : 1); }

  // The colour stored at one element: for zrgb a subpixel.
  trgb element(int64_t x, int64_t y) const {
    return {f.channels[0].getchecked(x, y), f.channels[1].getchecked(x, y), f.channels[2].getchecked(x, y)};
  }
  // zrgb: a subpixel counts as covered once something has been drawn into it.
  int64_t coverage(int64_t x, int64_t y) const { return f.words.getchecked(x, y) > 0 ? 255 : 0; }
  template <class Op>
  void subpixels(int64_t x, int64_t y, Op op) const {
    op(2 * x - 1, 2 * y - 1), op(2 * x, 2 * y - 1), op(2 * x - 1, 2 * y), op(2 * x, 2 * y);
  }

  trgb getrgb(int64_t x, int64_t y) const {
    if constexpr (!colour) {
      const int64_t v = plane().getchecked(x, y);
      return {v, v, v};
    } else if constexpr (hasdepth) {
      trgb sum{0, 0, 0};
      subpixels(x, y, [&](int64_t sx, int64_t sy) {
        const trgb c = element(sx, sy);
        for (int i = 0; i < 3; ++i) sum[i] += c[i];
      });
      return {sum[0] / 4, sum[1] / 4, sum[2] / 4};
    } else {
      return element(x, y);
    }
  }
  int64_t getalpha(int64_t x, int64_t y) const {
    if constexpr (hasalpha) {
      return f.channels[3].getchecked(x, y);
    } else if constexpr (hasdepth) {
      int64_t sum = 0;
      subpixels(x, y, [&](int64_t sx, int64_t sy) { sum += coverage(sx, sy); });
      return sum / 4;
    } else {
      return 255;
    }
  }
  // The sum of the colours; rgba weighted by alpha; zrgb of the supersampled plane at (x, y).
  int64_t getvalue(int64_t x, int64_t y) const {
    if constexpr (!colour) {
      return plane().getchecked(x, y);
    } else {
      const trgb c = element(x, y);
      const int64_t sum = c[0] + c[1] + c[2];
      if constexpr (hasalpha) return sum * f.channels[3].getchecked(x, y) / 255;
      return sum;
    }
  }
  int64_t getgray(int64_t x, int64_t y) const {
    if constexpr (K == imagegray) {
      return plane().getchecked(x, y);
    } else if constexpr (K == imagefullgray) {
      return plane().getchecked(x, y) >> 8;
    } else {
      const trgb c = getrgb(x, y);
      const int64_t mean = (c[0] + c[1] + c[2]) / 3;
      if constexpr (hasalpha) return mean * f.channels[3].getchecked(x, y) / 255;
      return mean;
    }
  }
  trgba getrgba(int64_t x, int64_t y) const {
    const trgb c = getrgb(x, y);
    return {c[0], c[1], c[2], getalpha(x, y)};
  }
  int64_t getdepth(int64_t x, int64_t y) const {
    if constexpr (hasdepth) {
      int64_t sum = 0;
      subpixels(x, y, [&](int64_t sx, int64_t sy) { sum += f.words.getchecked(sx, sy); });
      return sum >> 2;
    } else {
      return 0;
    }
  }
  trgba getzrgb(int64_t x, int64_t y) const {
    const trgb c = getrgb(x, y);
    return {hasdepth ? getdepth(x, y) : 65535, c[0], c[1], c[2]};
  }

  void putelement(int64_t x, int64_t y, const trgb& c) const {
    for (int i = 0; i < 3; ++i) f.channels[i].putchecked(x, y, static_cast<uint8_t>(c[i]));
  }
  // Colour components already clamped; alpha 255 where the kind has it.
  void putcolour(int64_t x, int64_t y, const trgb& c) const {
    if constexpr (hasdepth) {
      subpixels(x, y, [&](int64_t sx, int64_t sy) {
        putelement(sx, sy, c);
        f.words.putchecked(sx, sy, 65535);
      });
    } else {
      putelement(x, y, c);
      if constexpr (hasalpha) f.channels[3].putchecked(x, y, 255);
    }
  }
  // The z-buffer: a subpixel takes the colour when its stored depth is at most the new one.
  void zwrite(int64_t x, int64_t y, double depth, const trgb& c) const {
    const double zmax = f.zmaximum > 0 ? f.zmaximum : 65535;
    const auto z = static_cast<uint16_t>(clampround(std::min(depth, zmax) * 65535.0 / zmax, 65535));
    const trgb clamped{clampto(c[0], 255), clampto(c[1], 255), clampto(c[2], 255)};
    subpixels(x, y, [&](int64_t sx, int64_t sy) {
      if (!f.words.inside(sx, sy) || f.words.get(sx, sy) > z) return;
      f.words.put(sx, sy, z);
      putelement(sx, sy, clamped);
    });
  }

  void setvalue(int64_t x, int64_t y, double v) const {
    if constexpr (!colour) {
      plane().putchecked(x, y, static_cast<typename std::remove_reference_t<decltype(plane())>::T>(clampround(v, top)));
    } else {
      const int64_t c = clampround(v, 255);
      putcolour(x, y, {c, c, c});
    }
  }
  // Gray takes the mean, fullgray the sum, colour kinds each component.
  int64_t scalarof(const trgb& c) const {
    if constexpr (K == imagegray) return clampto((c[0] + c[1] + c[2]) / 3, 255);
    return clampto(c[0] + c[1] + c[2], 65535);
  }
  void setrgb(int64_t x, int64_t y, const trgb& c) const {
    if constexpr (!colour)
      plane().putchecked(x, y, static_cast<typename std::remove_reference_t<decltype(plane())>::T>(scalarof(c)));
    else if constexpr (hasdepth)
      zwrite(x, y, 65535, c);
    else
      putcolour(x, y, {clampto(c[0], 255), clampto(c[1], 255), clampto(c[2], 255)});
  }
  // Alpha blends with the background, except where the kind keeps alpha itself.
  void setrgba(int64_t x, int64_t y, const trgba& c) const {
    const int64_t a = clampto(c[3], 255);
    if constexpr (!colour) {
      const int64_t back = plane().defaultvalue;
      const int64_t mean = scalarof({c[0], c[1], c[2]});
      using T = typename std::remove_reference_t<decltype(plane())>::T;
      plane().putchecked(x, y, static_cast<T>(clampto(back + (mean - back) * a / 255, top)));
    } else if constexpr (hasdepth) {
      zwrite(x, y, 65535, {c[0], c[1], c[2]});
    } else if constexpr (hasalpha) {
      for (int i = 0; i < 4; ++i) f.channels[i].putchecked(x, y, static_cast<uint8_t>(clampto(c[i], 255)));
    } else {
      trgb out;
      for (int i = 0; i < 3; ++i) {
        const int64_t back = f.channels[i].defaultvalue;
        out[i] = clampto(back + (clampto(c[i], 255) - back) * a / 255, 255);
      }
      putelement(x, y, out);
    }
  }
  void setzrgb(int64_t x, int64_t y, double depth, const trgb& c) const {
    if constexpr (hasdepth)
      zwrite(x, y, depth, c);
    else
      setrgb(x, y, c);
  }
};

// Calls op with the view of the field's kind and returns its result; fallback for a field
// without planes.
template <class Op, class R>
R withkind(const timagefield& field, Op op, R fallback) {
  timagefield& f = const_cast<timagefield&>(field);
  switch (f.kind) {
    case imagegray: return op(timageview<imagegray>{f});
    case imagefullgray: return op(timageview<imagefullgray>{f});
    case imagergb: return op(timageview<imagergb>{f});
    case imagergba: return op(timageview<imagergba>{f});
    case imagezrgb: return op(timageview<imagezrgb>{f});
  }
  return fallback;
}
template <class Op>
bool withkind(const timagefield& f, Op op) {
  return withkind(f, [&](auto v) { op(v); return true; }, false);
}

inline bool colourkind(uint8_t kind) { return kind == imagergb || kind == imagergba || kind == imagezrgb; }
inline int64_t imagesizex(const timagefield& f) { return fieldsize(f)[0]; }
inline int64_t imagesizey(const timagefield& f) { return fieldsize(f)[1]; }

// Single pixels, the kind chosen per call.
int64_t getvalue(const timagefield& f, int64_t x, int64_t y);
int64_t getgray(const timagefield& f, int64_t x, int64_t y);
int64_t getalpha(const timagefield& f, int64_t x, int64_t y);
trgb getrgb(const timagefield& f, int64_t x, int64_t y);
trgba getrgba(const timagefield& f, int64_t x, int64_t y);
trgba getzrgb(const timagefield& f, int64_t x, int64_t y);
int64_t getdepth(const timagefield& f, int64_t x, int64_t y);
void setvalue(timagefield& f, int64_t x, int64_t y, double v);
void setrgb(timagefield& f, int64_t x, int64_t y, const trgb& c);
void setrgba(timagefield& f, int64_t x, int64_t y, const trgba& c);
void setzrgb(timagefield& f, int64_t x, int64_t y, double depth, const trgb& c);

// value (what drawing writes) and background (what outside reads give), as numbers: gray
// and fullgray directly, rgb the sum, rgba the alpha-weighted sum.
int64_t getvaluevalue(const timagefield& f);
int64_t getbackground(const timagefield& f);
trgba getvaluergba(const timagefield& f);
trgba getbackgroundrgba(const timagefield& f);
// A number sets every sample; a colour gives gray its mean and fullgray its sum; alpha < 0
// leaves an rgba field opaque.
void setvaluevalue(timagefield& f, double v);
void setvaluergb(timagefield& f, const trgb& c, int64_t alpha = -1);
void setbackground(timagefield& f, double v);
void setbackgroundrgb(timagefield& f, const trgb& c, int64_t alpha = -1);

// The kind's planes at x by y, pixels 0, settings and place kept; an empty size empties.
void imageresize(timagefield& f, int64_t x, int64_t y);
// An equal copy: kind, size, pixels, title, place in space and settings.
void imagecopyfrom(timagefield& f, const timagefield& source);
// The field as its kind with every plane present, or false (then it is emptied): a colour
// image whose planes were not all allocated is no image.
bool imagecomplete(timagefield& f);
// All pixels equal the first (an empty image is plain).
bool imageplain(const timagefield& f);

// Whole images row by row, the kind chosen once. decode(y, row) fills row with sizex
// pixels of `channels` samples (1 gray, 3 rgb, 4 rgba) and returns false to stop; samples
// are clamped to the kind's range. A scalar kind given colour takes it as setrgb does.
template <class T, class Decode>
bool imagefillrows(timagefield& field, int channels, T* row, Decode decode) {
  return withkind(
      field,
      [&](auto v) {
        using V = decltype(v);
        const int64_t w = v.sizex(), h = v.sizey();
        for (int64_t y = 1; y <= h; ++y) {
          if (!decode(y, row)) return false;
          const T* p = row;
          if constexpr (!V::colour) {
            using E = typename std::remove_reference_t<decltype(v.plane())>::T;
            E* out = v.plane().items() + (y - 1) * w;
            if (channels == 1) {
              for (int64_t x = 0; x < w; ++x) out[x] = static_cast<E>(clampto(static_cast<int64_t>(p[x]), V::top));
            } else {
              for (int64_t x = 1; x <= w; ++x, p += channels)
                v.setrgb(x, y, {static_cast<int64_t>(p[0]), static_cast<int64_t>(p[1]), static_cast<int64_t>(p[2])});
            }
          } else if constexpr (V::hasdepth) {
            for (int64_t x = 1; x <= w; ++x, p += channels) {
              const int64_t r = clampto(static_cast<int64_t>(p[0]), 255);
              v.putcolour(x, y, channels == 1 ? trgb{r, r, r}
                                              : trgb{r, clampto(static_cast<int64_t>(p[1]), 255),
                                                     clampto(static_cast<int64_t>(p[2]), 255)});
            }
          } else {
            // Straight into the planes: one row of each.
            uint8_t* out[4];
            for (int c = 0; c < (V::hasalpha ? 4 : 3); ++c) out[c] = v.f.channels[c].items() + (y - 1) * w;
            for (int64_t x = 0; x < w; ++x, p += channels) {
              for (int c = 0; c < 3; ++c)
                out[c][x] = static_cast<uint8_t>(clampto(static_cast<int64_t>(p[channels == 1 ? 0 : c]), 255));
              if constexpr (V::hasalpha)
                out[3][x] = channels == 4 ? static_cast<uint8_t>(clampto(static_cast<int64_t>(p[3]), 255)) : 255;
            }
          }
        }
        return true;
      },
      false);
}

// The way out: emit(y, row) gets sizex pixels of `channels` samples. One channel of bytes
// is getgray, one of words the value itself (fullgray, or gray unwidened), three getrgb,
// four getrgba.
template <class T, class Emit>
bool imageemitrows(const timagefield& field, int channels, T* row, Emit emit) {
  return withkind(
      field,
      [&](auto v) {
        using V = decltype(v);
        const int64_t w = v.sizex(), h = v.sizey();
        for (int64_t y = 1; y <= h; ++y) {
          T* p = row;
          if constexpr (!V::colour) {
            const auto* in = v.plane().items() + (y - 1) * w;
            if (channels == 1 && (sizeof(T) == 2 || V::kind == imagegray)) {
              for (int64_t x = 0; x < w; ++x) p[x] = static_cast<T>(in[x]);
            } else {
              for (int64_t x = 1; x <= w; ++x, p += channels) {
                if (channels == 1) {
                  p[0] = static_cast<T>(v.getgray(x, y));
                } else {
                  const int64_t g = clampto(in[x - 1], 255);
                  for (int i = 0; i < channels; ++i) p[i] = static_cast<T>(i == 3 ? 255 : g);
                }
              }
            }
          } else if constexpr (V::hasdepth) {
            for (int64_t x = 1; x <= w; ++x, p += channels) {
              if (channels == 1) {
                p[0] = static_cast<T>(sizeof(T) == 1 ? v.getgray(x, y) : clampto(v.getvalue(x, y), 65535));
              } else {
                // zrgb goes out as the rgb of its colour planes: opaque.
                const trgb c = v.getrgb(x, y);
                for (int i = 0; i < channels; ++i) p[i] = static_cast<T>(i == 3 ? 255 : c[i]);
              }
            }
          } else {
            const uint8_t* in[4];
            for (int c = 0; c < (V::hasalpha ? 4 : 3); ++c) in[c] = v.f.channels[c].items() + (y - 1) * w;
            for (int64_t x = 0; x < w; ++x, p += channels) {
              if (channels == 1) {
                const int64_t mean = (in[0][x] + in[1][x] + in[2][x]) / 3;
                if constexpr (sizeof(T) == 1)
                  p[0] = static_cast<T>(V::hasalpha ? mean * in[3][x] / 255 : mean);
                else
                  p[0] = static_cast<T>(V::hasalpha ? (in[0][x] + in[1][x] + in[2][x]) * in[3][x] / 255
                                                    : in[0][x] + in[1][x] + in[2][x]);
              } else {
                for (int c = 0; c < 3; ++c) p[c] = static_cast<T>(in[c][x]);
                if (channels == 4) p[3] = static_cast<T>(V::hasalpha ? in[3][x] : 255);
              }
            }
          }
          if (!emit(y, static_cast<const T*>(row))) return false;
        }
        return true;
      },
      false);
}
