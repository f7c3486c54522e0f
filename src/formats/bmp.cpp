#include "formats/bmp.h"

#include <vector>

#include "formats/imagecodec.h"
#include "shell/console.h"

namespace {

bool knownsignature(uint32_t code) {
  for (const uint32_t s : {19778u, 16706u, 18755u, 20547u, 17225u, 21584u})
    if (code == s) return true;
  return false;
}

const char* bmplabel(uint8_t kind, uint32_t bits) {
  const bool full = kind == imagefullgray;
  if (colourkind(kind))
    return bits == 1 ? "  RGB (Mono) with (" : bits == 4 ? "  RGB (4bit) with (" : bits == 8 ? "  RGB (Grey) with (" : "  RGB with (";
  if (bits == 1) return full ? "  Fullgrey (Mono) with (" : "  Grey (Mono) with (";
  if (bits == 4) return full ? "  Fullgrey (4bit) with (" : "  Grey (4bit) with (";
  if (bits == 8) return full ? "  Fullgrey with (" : "  Grey with (";
  return full ? "  Fullgrey (RGB) with (" : "  Grey (RGB) with (";
}

}  // namespace

bool bmpread(timagefield& f, const utf16& name) {
  tscopedbuffer held;
  tfilebuffer& b = held.buffer;
  if (!imagefileread(name, b)) return readfailed(f, utf16());
  tbytereader r = bytereader(b);
  uint32_t code = 0, filesizefield, reserved, offset, infosize;
  if (!r.le16(code) || !r.le32(filesizefield) || !r.le32(reserved) || !r.le32(offset) || !r.le32(infosize)) {
    if (r.size >= 2 && !knownsignature(code)) {
      println("Unknown header type (" + nattext(code) + ").");
      return readfailed(f, "  Bad Magic Identifier! Create empty field.");
    }
    return truncated(f, b.size);
  }
  if (!knownsignature(code)) {
    println("Unknown header type (" + nattext(code) + ").");
    return readfailed(f, "  Bad Magic Identifier! Create empty field.");
  }
  int64_t w = 0, h = 0;
  uint32_t planes = 0, bits = 0, compression = 0, entrysize = 4;
  if (infosize == 12) {
    uint32_t w16, h16;
    if (!r.le16(w16) || !r.le16(h16) || !r.le16(planes) || !r.le16(bits)) return truncated(f, b.size);
    w = static_cast<int16_t>(w16), h = static_cast<int16_t>(h16);
    entrysize = 3;
  } else if (infosize == 40 || infosize == 64 || infosize == 108 || infosize == 124) {
    uint32_t w32, h32;
    if (!r.le32(w32) || !r.le32(h32) || !r.le16(planes) || !r.le16(bits) || !r.le32(compression))
      return truncated(f, b.size);
    w = static_cast<int32_t>(w32), h = static_cast<int32_t>(h32);
    if (!r.skip(infosize - 20)) return truncated(f, b.size);
  } else {
    return readfailed(f, "Unknown header size (" + nattext(infosize) + ").");
  }
  if (compression != 0) return readfailed(f, "I'm to stupid for compressed images.");
  if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32)
    return readfailed(f, "  Bad BitsPerPixel Identifier (" + nattext(bits) + "). Empty image created!");
  // Rows lie bottom-up; a negative height (top-down rows) is not taken.
  if (w < 1 || h < 1)
    return readfailed(f, "  Bad image size (" + nattext(w) + "x" + nattext(h) + "). Empty image created!");
  std::vector<trgb> palette;
  if (bits < 9) {
    palette.resize(size_t{1} << bits, trgb{0, 0, 0});
    for (trgb& c : palette) {
      const uint8_t* e;
      if (!r.take(entrysize, e)) return truncated(f, b.size);
      c = {e[2], e[1], e[0]};
    }
  }
  const int64_t rowbytes = (w * bits + 31) / 32 * 4;
  // The published data offset; where it points nowhere useful, the data follow the palette.
  if (offset >= 26 && offset < b.size) r.at = offset;
  if (fieldcount(rowbytes, h) > r.left()) return truncated(f, b.size);
  if (!readsize(f, w, h)) return false;
  const bool colour = colourkind(f.kind);
  const int channels = colour ? 3 : 1;
  timageprogress p = progressbegin(bmplabel(f.kind, bits), w, h);
  const int64_t start = r.at;
  std::vector<int64_t> row(static_cast<size_t>(w * channels));
  imagefillrows(f, channels, row.data(), [&](int64_t y, int64_t* out) {
    progressrow(p, y);
    const uint8_t* src = b.bytes.data + start + (h - y) * rowbytes;
    for (int64_t x = 0; x < w; ++x) {
      trgb c;
      if (bits < 9) {
        const int64_t bit = x * bits;
        const uint32_t index = (src[bit >> 3] >> (8 - bits - (bit & 7))) & ((1u << bits) - 1);
        c = palette[index];
      } else {
        const uint8_t* px = src + x * (bits / 8);
        c = {px[2], px[1], px[0]};
      }
      if (colour)
        out[3 * x] = c[0], out[3 * x + 1] = c[1], out[3 * x + 2] = c[2];
      else
        out[x] = (c[0] + c[1] + c[2]) / 3;
    }
    return true;
  });
  progressdone(p);
  return readdone(f, name);
}

bool bmpwrite(timagefield& f, const utf16& name) {
  const int64_t w = imagesizex(f), h = imagesizey(f);
  if (w < 1 || h < 1) return false;
  const int64_t rowbytes = (3 * w) % 4 == 0 ? 3 * w : ((3 * w) / 4 + 1) * 4;
  const int64_t rows = rowbytes * h;
  std::string head = "BM";
  putle32(head, static_cast<uint32_t>(54 + rows));
  putle32(head, 0);
  putle32(head, 54);
  putle32(head, 40);
  putle32(head, static_cast<uint32_t>(w));
  putle32(head, static_cast<uint32_t>(h));
  putle16(head, 1);
  putle16(head, 24);
  putle32(head, 0);
  putle32(head, static_cast<uint32_t>(rows));
  head.append(16, '\0');
  // Rows go out bottom first: the image is taken whole, then written from its last row.
  const std::string data = bottomupbgr(f, rowbytes);
  timagesink sink;
  if (!sinkopen(sink, name)) return false;
  sinkwrite(sink, head);
  sinkwrite(sink, data);
  return sinkclose(sink);
}
