#include "ops/split.h"

#include <algorithm>

#include "ops/combine.h"
#include "ops/combinewords.h"
#include "script/values.h"

namespace {

template <class V>
trgb colour8(const V& v, int64_t x, int64_t y) {
  trgb c = v.getrgb(x, y);
  if constexpr (V::kind == imagefullgray)
    for (int64_t& k : c) k >>= 8;
  return c;
}

int64_t colourkey(const trgb& c) { return c[0] * 65536 + c[1] * 256 + c[2]; }

struct tsplitpixel {
  trgb colour;    // 8 bits
  int64_t alpha;  // 255 where the kind has none
  int64_t gray;   // 8 bits; rgba weighted by alpha
};

// Makes the planes gray images of the source's size and place, then hands each pixel to
// classify(pixel, values), which sets one value per plane; the values start at 0.
template <class Classify>
void splitinto(const timagefield& source, std::span<timagefield* const> planes, Classify classify) {
  const tnatvector size = fieldsize(source);
  for (timagefield* p : planes) {
    fieldcreate(*p, imagegray, size);
    p->space = source.space;
  }
  std::vector<int64_t> values(planes.size());
  withkind(source, [&](auto v) {
    for (int64_t y = 1; y <= size[1]; ++y)
      for (int64_t x = 1; x <= size[0]; ++x) {
        std::fill(values.begin(), values.end(), int64_t{0});
        classify(tsplitpixel{colour8(v, x, y), v.getalpha(x, y), v.getgray(x, y)}, values.data());
        for (size_t k = 0; k < planes.size(); ++k)
          planes[k]->channels[0].putchecked(x, y, static_cast<uint8_t>(clampto(values[k], 255)));
      }
  });
}

}  // namespace

bool colourtext(const utf16& text) { return poschar(' ', text) > 0 || poschar(',', text) > 0 || poschar(';', text) > 0; }

trgb textcolour(const utf16& text) {
  if (!colourtext(text)) {
    const int64_t v = clampround(textreal(text), 255);
    return {v, v, v};
  }
  const tvector c = textvector(text);
  return {clampround(c[0], 255), clampround(c[1], 255), clampround(c[2], 255)};
}

trgb splitcolour(const timagefield& f, int64_t x, int64_t y) {
  return withkind(f, [&](auto v) { return colour8(v, x, y); }, trgb{0, 0, 0});
}

bool splitreduces(const timagefield& source, bool togray) {
  if (fieldempty(source)) return false;
  return source.kind == imagefullgray || (togray && colourkind(source.kind));
}

void splitrgb(const timagefield& source, std::span<timagefield* const> planes) {
  const bool alpha = planes.size() > 3;
  splitinto(source, planes, [alpha](const tsplitpixel& p, int64_t* values) {
    std::copy(p.colour.begin(), p.colour.end(), values);
    if (alpha) values[3] = p.alpha;
  });
}

void splitrainbow(const timagefield& source, int shift, std::span<timagefield* const> planes) {
  // A pixel belongs to the plane of its strongest components, after the reduction that
  // lets nearly equal components count as equal: one of them is red, green or blue, red
  // and green are yellow, green and blue cyan, red and blue purple, all three (black
  // among them) gray. The plane takes the strongest component at full 8 bits, so that a
  // pure colour keeps its brightness. Indexed by the set of strongest: red 1, green 2, blue 4.
  static constexpr int planeof[8] = {6, 0, 1, 3, 2, 5, 4, 6};
  shift = std::clamp(shift, 0, 8);
  splitinto(source, planes, [shift](const tsplitpixel& p, int64_t* values) {
    const trgb& c = p.colour;
    const int64_t r = c[0] >> shift, g = c[1] >> shift, b = c[2] >> shift;
    const int64_t m = std::max({r, g, b});
    const int strongest = (r == m ? 1 : 0) | (g == m ? 2 : 0) | (b == m ? 4 : 0);
    values[planeof[strongest]] = std::max({c[0], c[1], c[2]});
  });
}

void splitcolours(const timagefield& source, std::span<const trgb> colours, std::span<timagefield* const> planes) {
  splitinto(source, planes, [colours](const tsplitpixel& p, int64_t* values) {
    // The squared distance in rgb; on a tie the colour given first.
    size_t nearest = 0;
    int64_t best = -1;
    for (size_t k = 0; k < colours.size(); ++k) {
      int64_t d = 0;
      for (int i = 0; i < 3; ++i) d += (p.colour[i] - colours[k][i]) * (p.colour[i] - colours[k][i]);
      if (best < 0 || d < best) best = d, nearest = k;
    }
    if (!colours.empty()) values[nearest] = p.gray;
  });
}

int64_t textkey(const utf16& text) {
  if (!colourtext(text)) return textnat(text);
  const tnatvector c = textnatvector(text);
  return colourkey({clampto(c[0], 255), clampto(c[1], 255), clampto(c[2], 255)});
}

int64_t pixelkey(const timagefield& f, int64_t x, int64_t y) {
  return colourkind(f.kind) ? colourkey(getrgb(f, x, y)) : getvalue(f, x, y);
}

void imageextract(timagefield& target, const timagefield& source, std::vector<int64_t> keys) {
  std::sort(keys.begin(), keys.end());
  // The source twice: in the target's mode for what is copied, in its own for the key.
  const int mode = channelmode(target), keymode = colourkind(source.kind) ? 3 : 1;
  const timagefield* operands[] = {&source, &source};
  const int channels[] = {mode, keymode};
  combineimages(target, mode, operands, channels, combinewords::extracting, [&](const tpixel& p, int64_t* out) {
    const int64_t key = keymode == 1 ? p.value(1) : colourkey({p.get(1, 0), p.get(1, 1), p.get(1, 2)});
    if (!std::binary_search(keys.begin(), keys.end(), key)) return;
    for (int c = 0; c < mode; ++c) out[c] = p.get(0, c);
  });
}

void imagecombineplanes(timagefield& target, std::span<const timagefield* const> operands) {
  const int64_t w = imagesizex(target), h = imagesizey(target);
  const auto n = static_cast<int>(operands.size());
  if (w < 1 || h < 1 || n < 2 || n > 4) return;
  const int mode = n == 4 ? 4 : 3;
  // The channel each operand fills: two operands leave green at 0.
  static constexpr int twochannels[] = {0, 2}, morechannels[] = {0, 1, 2, 3};
  const int* channelof = n == 2 ? twochannels : morechannels;
  std::vector<int64_t> out(w * mode);
  for (int64_t y = 1; y <= h; ++y) {
    std::fill(out.begin(), out.end(), int64_t{0});
    for (int i = 0; i < n; ++i)
      withkind(*operands[i], [&](auto v) {
        for (int64_t x = 1; x <= w; ++x) out[(x - 1) * mode + channelof[i]] = v.getgray(x, y);
      });
    writerow(target, y, mode, w, out.data());
  }
}
