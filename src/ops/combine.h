// The skeleton of the combining commands (new := image.sub a b and the like): the target
// is walked row by row, every operand's row is read once into a buffer of 64-bit samples,
// an expression computes the target's pixel from them, and the row is written back
// through the target's setter, which clamps to its kind. Outside an operand its
// background is read, so operands need not be equal in size. The kind of each field is
// looked at once per row, never per pixel.
//
// An image is read in one of three channel modes: 1 (the value: gray and fullgray
// directly, colour the sum), 3 (red, green, blue) or 4 (with alpha). The target's mode
// follows its kind; an operand may be read in another mode (a mask is read as values).
#pragma once
#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "script/utf16.h"
#include "shell/console.h"

// The most operands a command takes.
constexpr int64_t maxoperands = 99;

// The samples of all operands at one pixel, operand after operand: get(i, c) is channel c
// of operand i. When every operand has one channel the block is the list of their values.
struct tpixel {
  const int64_t* block;
  const int64_t* offsets;  // of each operand in the block
  int64_t count;           // of operands
  bool packed;             // one channel each: operand i at block[i]
  int64_t get(int64_t i, int c) const { return block[offsets[i] + c]; }
  int64_t value(int64_t i) const { return block[offsets[i]]; }
};

// The channel mode of an image by its kind: 1 gray and fullgray, 4 rgba, 3 the other colours.
int channelmode(const timagefield& f);
// The largest sample of a kind: 255 for gray and the colours, 65535 for fullgray; for
// scalar fields 1, 255, 65535.
int64_t sampletop(const timagefield& f);
int64_t sampletop(const tscalarfield& f);

// Row y (from 1) of an image in a channel mode, `width` pixels from x = 1, pixel x at
// out + (x - 1) * stride (0: side by side).
void readrow(const timagefield& f, int64_t y, int channels, int64_t width, int64_t* out, int64_t stride = 0);
// Mode 1 sets values, mode 3 rgb, mode 4 rgba; the setters clamp.
void writerow(timagefield& f, int64_t y, int channels, int64_t width, const int64_t* in);
// Row (y, z) of a volume; scalar fields have one channel.
void readrow(const tscalarfield& f, int64_t y, int64_t z, int64_t width, int64_t* out, int64_t stride = 1);
void writerow(tscalarfield& f, int64_t y, int64_t z, int64_t width, const int64_t* in);

namespace combinedetail {

// rowcount rows, of which every `step`th starts a new outer step of the progress display.
// read(i, r, buffer, stride) fills operand i's row r, i == -1 the target's; op(pixel, out)
// writes the target's samples of one pixel into out, which holds the target's own samples
// before. The operands' samples of a pixel lie side by side, so that an expression of one
// channel reads them in place.
template <class Read, class Write, class Op>
void walk(int64_t width, int64_t rowcount, int64_t step, std::span<const int> channels, int targetchannels,
          const utf16& word, Read read, Write write, Op op) {
  const auto n = static_cast<int64_t>(channels.size());
  std::vector<int64_t> offsets(n);
  int64_t block = 0;
  for (int64_t i = 0; i < n; ++i) {
    offsets[i] = block;
    block += channels[i];
  }
  const bool packed = block == n;
  std::vector<int64_t> samples(width * block), out(width * targetchannels);
  for (int64_t r = 0; r < rowcount; ++r) {
    if (r % step == 0) progress(word, static_cast<double>(r / step + 1) / static_cast<double>(rowcount / step));
    for (int64_t i = 0; i < n; ++i) read(i, r, samples.data() + offsets[i], block);
    read(-1, r, out.data(), targetchannels);
    for (int64_t x = 0; x < width; ++x)
      op(tpixel{samples.data() + x * block, offsets.data(), n, packed}, out.data() + x * targetchannels);
    write(r, out.data());
  }
  progressend();
}

}  // namespace combinedetail

// The target's pixels from image operands, operand i read in channel mode channels[i].
// The target is read and written in mode `mode`.
template <class Op>
void combineimages(timagefield& target, int mode, std::span<const timagefield* const> operands,
                   std::span<const int> channels, const utf16& word, Op op) {
  const int64_t w = imagesizex(target), h = imagesizey(target);
  if (w < 1 || h < 1) return;
  combinedetail::walk(
      w, h, 1, channels, mode, word,
      [&](int64_t i, int64_t r, int64_t* buffer, int64_t stride) {
        if (i < 0)
          readrow(target, r + 1, mode, w, buffer, stride);
        else
          readrow(*operands[i], r + 1, channels[i], w, buffer, stride);
      },
      [&](int64_t r, const int64_t* buffer) { writerow(target, r + 1, mode, w, buffer); }, op);
}

// Every operand in the target's own channel mode.
template <class Op>
void combineimages(timagefield& target, std::span<const timagefield* const> operands, const utf16& word, Op op) {
  const int mode = channelmode(target);
  const std::vector<int> channels(operands.size(), mode);
  combineimages(target, mode, operands, channels, word, op);
}

// The same over a volume, z outermost; the progress display counts slices.
template <class Op>
void combinefields(tscalarfield& target, std::span<const tscalarfield* const> operands, const utf16& word, Op op) {
  const tnatvector size = fieldsize(target);
  const int64_t w = size[0], h = size[1], d = size[2];
  if (w < 1 || h < 1 || d < 1) return;
  const std::vector<int> channels(operands.size(), 1);
  auto place = [h](int64_t r) { return std::pair{r % h + 1, r / h + 1}; };
  combinedetail::walk(
      w, h * d, h, channels, 1, word,
      [&](int64_t i, int64_t r, int64_t* buffer, int64_t stride) {
        const auto [y, z] = place(r);
        readrow(i < 0 ? target : *operands[i], y, z, w, buffer, stride);
      },
      [&](int64_t r, const int64_t* buffer) {
        const auto [y, z] = place(r);
        writerow(target, y, z, w, buffer);
      },
      op);
}

// An expression of the operands' samples of one channel, applied to each channel of the
// target: f(values, n) with values[i] the sample of operand i.
template <class F>
auto perchannel(int channels, F f) {
  return [channels, f](const tpixel& p, int64_t* out) {
    if (channels == 1 && p.packed) {
      out[0] = f(p.block, p.count);
      return;
    }
    int64_t values[maxoperands];
    for (int c = 0; c < channels; ++c) {
      for (int64_t i = 0; i < p.count; ++i) values[i] = p.get(i, c);
      out[c] = f(values, p.count);
    }
  };
}
