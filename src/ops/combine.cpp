#include "ops/combine.h"

#include <type_traits>

int channelmode(const timagefield& f) {
  if (f.kind == imagergba) return 4;
  return colourkind(f.kind) ? 3 : 1;
}

int64_t sampletop(const timagefield& f) { return f.kind == imagefullgray ? 65535 : 255; }
int64_t sampletop(const tscalarfield& f) { return kindmaximum(f.kind); }

namespace {

// Pixel x of view v into `out` in the channel mode; the reads outside give the background.
template <int channels, class V>
void readpixels(const V& v, int64_t y, int64_t width, int64_t* out, int64_t stride) {
  for (int64_t x = 1; x <= width; ++x, out += stride) {
    if constexpr (channels == 1) {
      out[0] = v.getvalue(x, y);
    } else if constexpr (channels == 3) {
      const trgb c = v.getrgb(x, y);
      std::copy(c.begin(), c.end(), out);
    } else {
      const trgba c = v.getrgba(x, y);
      std::copy(c.begin(), c.end(), out);
    }
  }
}

template <int channels, class V>
void writepixels(const V& v, int64_t y, int64_t width, const int64_t* in) {
  const int64_t w = std::min(width, v.sizex());
  for (int64_t x = 1; x <= w; ++x, in += channels) {
    if constexpr (channels == 1) {
      if constexpr (V::colour)
        v.setvalue(x, y, static_cast<double>(in[0]));
      else
        v.plane().put(x, y, static_cast<typename std::remove_cvref_t<decltype(v.plane())>::T>(clampto(in[0], V::top)));
    } else if constexpr (channels == 3) {
      v.setrgb(x, y, {in[0], in[1], in[2]});
    } else {
      v.setrgba(x, y, {in[0], in[1], in[2], in[3]});
    }
  }
}

// Calls op with the mode as a compile-time constant.
template <class Op>
void bymode(int channels, Op op) {
  if (channels == 1) op(std::integral_constant<int, 1>{});
  if (channels == 3) op(std::integral_constant<int, 3>{});
  if (channels == 4) op(std::integral_constant<int, 4>{});
}

}  // namespace

void readrow(const timagefield& f, int64_t y, int channels, int64_t width, int64_t* out, int64_t stride) {
  if (stride == 0) stride = channels;
  const bool known = withkind(f, [&](auto v) {
    bymode(channels, [&](auto mode) { readpixels<decltype(mode)::value>(v, y, width, out, stride); });
  });
  if (!known)
    for (int64_t x = 0; x < width; ++x) std::fill_n(out + x * stride, channels, int64_t{0});
}

void writerow(timagefield& f, int64_t y, int channels, int64_t width, const int64_t* in) {
  if (y < 1 || y > imagesizey(f)) return;
  withkind(f, [&](auto v) {
    bymode(channels, [&](auto mode) { writepixels<decltype(mode)::value>(v, y, width, in); });
  });
}

void readrow(const tscalarfield& f, int64_t y, int64_t z, int64_t width, int64_t* out, int64_t stride) {
  int64_t from = 0;  // the first pixel that reads the background
  eachstorage(f, [&](const auto& a) {
    if (y < 1 || y > a.sizey || z < 1 || z > a.sizez) return;
    from = std::min(width, a.sizex);
    using T = typename std::remove_cvref_t<decltype(a)>::elementtype;
    if constexpr (std::is_same_v<T, bool>) {
      for (int64_t x = 0; x < from; ++x) out[x * stride] = a.get(x + 1, y, z) ? 1 : 0;
    } else {
      const T* row = a.items() + a.index(1, y, z) - 1;  // indices count from 1
      for (int64_t x = 0; x < from; ++x) out[x * stride] = row[x];
    }
  });
  const int64_t background = getbackground(f);
  for (int64_t x = from; x < width; ++x) out[x * stride] = background;
}

void writerow(tscalarfield& f, int64_t y, int64_t z, int64_t width, const int64_t* in) {
  const int64_t top = kindmaximum(f.kind);
  eachstorage(f, [&](auto& a) {
    using T = typename std::remove_cvref_t<decltype(a)>::elementtype;
    if (y < 1 || y > a.sizey || z < 1 || z > a.sizez) return;
    const int64_t w = std::min(width, a.sizex);
    if constexpr (std::is_same_v<T, bool>) {
      for (int64_t x = 1; x <= w; ++x) a.put(x, y, z, in[x - 1] > 0);
    } else {
      T* row = a.items() + a.index(1, y, z) - 1;  // indices count from 1
      for (int64_t x = 0; x < w; ++x) row[x] = static_cast<T>(clampto(in[x], top));
    }
  });
}
