#include "field/imagefield.h"

const char* kindword(const timagefield& f) {
  switch (f.kind) {
    case imagegray: return "gray";
    case imagefullgray: return "fullgray";
    case imagergb: return "rgb";
    case imagergba: return "rgba";
  }
  return nullptr;
}

void fieldrelease(timagefield& f) {
  for (tbyteplane& p : f.channels) p.release();
  f.words.release();
}

int64_t getvalue(const timagefield& f, int64_t x, int64_t y) {
  return withkind(f, [&](auto v) { return v.getvalue(x, y); }, int64_t{0});
}
int64_t getgray(const timagefield& f, int64_t x, int64_t y) {
  return withkind(f, [&](auto v) { return v.getgray(x, y); }, int64_t{0});
}
int64_t getalpha(const timagefield& f, int64_t x, int64_t y) {
  return withkind(f, [&](auto v) { return v.getalpha(x, y); }, int64_t{0});
}
trgb getrgb(const timagefield& f, int64_t x, int64_t y) {
  return withkind(f, [&](auto v) { return v.getrgb(x, y); }, trgb{0, 0, 0});
}
trgba getrgba(const timagefield& f, int64_t x, int64_t y) {
  return withkind(f, [&](auto v) { return v.getrgba(x, y); }, trgba{0, 0, 0, 0});
}
trgba getzrgb(const timagefield& f, int64_t x, int64_t y) {
  return withkind(f, [&](auto v) { return v.getzrgb(x, y); }, trgba{0, 0, 0, 0});
}
int64_t getdepth(const timagefield& f, int64_t x, int64_t y) {
  return withkind(f, [&](auto v) { return v.getdepth(x, y); }, int64_t{0});
}
void setvalue(timagefield& f, int64_t x, int64_t y, double value) {
  withkind(f, [&](auto v) { v.setvalue(x, y, value); });
}
void setrgb(timagefield& f, int64_t x, int64_t y, const trgb& c) {
  withkind(f, [&](auto v) { v.setrgb(x, y, c); });
}
void setrgba(timagefield& f, int64_t x, int64_t y, const trgba& c) {
  withkind(f, [&](auto v) { v.setrgba(x, y, c); });
}
void setzrgb(timagefield& f, int64_t x, int64_t y, double depth, const trgb& c) {
  withkind(f, [&](auto v) { v.setzrgb(x, y, depth, c); });
}

namespace {

// value and background are the same two slots of every plane: the element drawing writes
// and the element outside reads return. One routine serves both through a member pointer.
template <class Slot>
trgba slotrgba(const timagefield& f, Slot slot) {
  return withkind(
      f,
      [&](auto v) -> trgba {
        using V = decltype(v);
        if constexpr (!V::colour) {
          const int64_t s = v.plane().*slot(v.plane());
          return {s, s, s, 255};
        } else {
          const int64_t a = V::hasalpha ? int64_t{f.channels[3].*slot(f.channels[3])} : 255;
          return {f.channels[0].*slot(f.channels[0]), f.channels[1].*slot(f.channels[1]),
                  f.channels[2].*slot(f.channels[2]), a};
        }
      },
      trgba{0, 0, 0, 0});
}

template <class Slot>
int64_t slotnumber(const timagefield& f, Slot slot) {
  const trgba c = slotrgba(f, slot);
  if (!colourkind(f.kind)) return c[0];
  return (c[0] + c[1] + c[2]) * c[3] / 255;
}

// colour < 0 in the first component means: every sample the number v.
template <class Slot>
void setslot(timagefield& f, Slot slot, bool number, double value, const trgb& c, int64_t alpha) {
  withkind(f, [&](auto v) {
    using V = decltype(v);
    if constexpr (!V::colour) {
      auto& p = v.plane();
      using T = typename std::remove_reference_t<decltype(p)>::T;
      p.*slot(p) = static_cast<T>(number ? clampround(value, V::top) : v.scalarof(c));
    } else {
      for (int i = 0; i < 3; ++i)
        f.channels[i].*slot(f.channels[i]) =
            static_cast<uint8_t>(number ? clampround(value, 255) : clampto(c[i], 255));
      if constexpr (V::hasalpha) f.channels[3].*slot(f.channels[3]) = static_cast<uint8_t>(alpha < 0 ? 255 : clampto(alpha, 255));
      if constexpr (V::hasdepth) f.words.*slot(f.words) = 65535;
    }
  });
}

// Member pointers to the two slots; the planes are of two element types, so the slot is
// picked per plane type.
struct tvalueslot {
  template <class P>
  auto operator()(const P&) const {
    return &P::value;
  }
};
struct tbackgroundslot {
  template <class P>
  auto operator()(const P&) const {
    return &P::defaultvalue;
  }
};

}  // namespace

int64_t getvaluevalue(const timagefield& f) { return slotnumber(f, tvalueslot{}); }
int64_t getbackground(const timagefield& f) { return slotnumber(f, tbackgroundslot{}); }
trgba getvaluergba(const timagefield& f) { return slotrgba(f, tvalueslot{}); }
trgba getbackgroundrgba(const timagefield& f) { return slotrgba(f, tbackgroundslot{}); }
void setvaluevalue(timagefield& f, double v) { setslot(f, tvalueslot{}, true, v, {}, -1); }
void setvaluergb(timagefield& f, const trgb& c, int64_t alpha) { setslot(f, tvalueslot{}, false, 0, c, alpha); }
void setbackground(timagefield& f, double v) { setslot(f, tbackgroundslot{}, true, v, {}, -1); }
void setbackgroundrgb(timagefield& f, const trgb& c, int64_t alpha) {
  setslot(f, tbackgroundslot{}, false, 0, c, alpha);
}

void imageresize(timagefield& f, int64_t x, int64_t y) {
  timagefield keep = f;  // settings and place; the planes are made anew
  fieldcreate(f, keep.kind, {x, y, 1});
  f.space = keep.space;
  f.name = keep.name;
  f.method = keep.method, f.copymethod = keep.copymethod, f.submethod = keep.submethod, f.fullscan = keep.fullscan;
  f.diffusionangle = keep.diffusionangle, f.diffusionmax = keep.diffusionmax;
  f.zscale = keep.zscale, f.zmaximum = keep.zmaximum;
}

namespace {
template <class P>
void copyplane(P& to, const P& from) {
  if (from.length > 0) {
    to.create(from.sizex, from.sizey);
    to.copyfrom(from);
    if (to.length != from.length) to.release();
  }
  to.value = from.value, to.defaultvalue = from.defaultvalue;
}
}  // namespace

void imagecopyfrom(timagefield& f, const timagefield& source) {
  if (&f == &source) return;
  fieldrelease(f);
  f = timagefield{};
  f.kind = source.kind;
  const int colours = source.kind == imagergba ? 4 : colourkind(source.kind) ? 3 : source.kind == imagegray ? 1 : 0;
  for (int c = 0; c < colours; ++c) copyplane(f.channels[c], source.channels[c]);
  if (source.kind == imagefullgray || source.kind == imagezrgb) copyplane(f.words, source.words);
  f.space = source.space;
  f.name = source.name;
  f.method = source.method, f.copymethod = source.copymethod, f.submethod = source.submethod;
  f.fullscan = source.fullscan, f.diffusionangle = source.diffusionangle, f.diffusionmax = source.diffusionmax;
  f.zscale = source.zscale, f.zmaximum = source.zmaximum;
}

bool imagecomplete(timagefield& f) {
  bool complete = f.kind != 0;
  int64_t count = -1;
  eachstorage(f, [&](const auto& a) {
    if (count >= 0 && a.length != count) complete = false;
    count = a.length;
  });
  if (count < 1) complete = false;
  if (!complete && f.kind != 0) fieldcreate(f, f.kind);
  return complete;
}

bool imageplain(const timagefield& f) {
  return withkind(
      f,
      [&](auto v) {
        using V = decltype(v);
        const int64_t w = v.sizex(), h = v.sizey();
        if (w < 1 || h < 1) return true;
        // Scalar kinds compare values, rgba its four samples, rgb and zrgb the colour.
        auto sample = [&](int64_t x, int64_t y) {
          if constexpr (!V::colour) return trgba{v.getvalue(x, y), 0, 0, 0};
          else if constexpr (V::hasalpha) return v.getrgba(x, y);
          else {
            const trgb c = v.getrgb(x, y);
            return trgba{c[0], c[1], c[2], 0};
          }
        };
        const trgba first = sample(1, 1);
        for (int64_t y = 1; y <= h; ++y)
          for (int64_t x = 1; x <= w; ++x)
            if (sample(x, y) != first) return false;
        return true;
      },
      true);
}
