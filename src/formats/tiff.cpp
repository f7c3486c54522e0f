#include "formats/tiff.h"

#include <vector>

#include "formats/imagecodec.h"

namespace {

enum : uint32_t { tiffshort = 3, tifflong = 4 };

void entry(std::string& out, uint32_t tag, uint32_t type, uint32_t count, uint32_t value) {
  putle16(out, tag);
  putle16(out, type);
  putle32(out, count);
  if (type == tiffshort && count == 1) {
    putle16(out, value & 0xFFFF);
    putle16(out, 0);
  } else {
    putle32(out, value);
  }
}

}  // namespace

bool tiffwrite(timagefield& f, const utf16& name) {
  const int64_t w = imagesizex(f), h = imagesizey(f);
  if (w < 1 || h < 1) return false;
  const bool colour = colourkind(f.kind);
  const bool full = f.kind == imagefullgray;
  const int64_t samples = colour ? 3 : 1;
  const int64_t bytes = w * h * samples * (full ? 2 : 1);
  const auto wh2 = static_cast<uint32_t>(w * h * 2);
  const auto ifd = static_cast<uint32_t>(bytes + 8);
  std::string head = "II";
  putle16(head, 42);
  putle32(head, ifd);

  std::string dir;
  putle16(dir, 13);
  entry(dir, 256, tifflong, 1, static_cast<uint32_t>(w));
  entry(dir, 257, tifflong, 1, static_cast<uint32_t>(h));
  if (colour) {
    // The three bit counts lie behind the directory, after its closing words.
    entry(dir, 258, tiffshort, 3, ifd + 2 + 13 * 12 + 8);
    entry(dir, 259, tiffshort, 1, 1);
    entry(dir, 262, tiffshort, 1, 2);
    entry(dir, 273, tifflong, 1, 8);
    entry(dir, 274, tiffshort, 1, 1);
    entry(dir, 277, tiffshort, 1, 3);
    entry(dir, 278, tifflong, 1, static_cast<uint32_t>(h));
    entry(dir, 279, tifflong, 1, static_cast<uint32_t>(bytes));
    entry(dir, 280, tiffshort, 1, 0);
    entry(dir, 281, tiffshort, 1, 255);
    entry(dir, 284, tiffshort, 1, 1);
    putle16(dir, 0), putle16(dir, 0), putle16(dir, 0), putle16(dir, 255);
    putle16(dir, 8), putle16(dir, 8), putle16(dir, 8);
  } else {
    entry(dir, 258, tiffshort, 1, full ? 16 : 8);
    entry(dir, 259, tiffshort, 1, 1);
    entry(dir, 262, tiffshort, 1, 1);
    entry(dir, 273, tifflong, 1, 8);
    entry(dir, 274, tiffshort, 1, 1);
    entry(dir, 277, tiffshort, 1, 1);
    entry(dir, 278, tifflong, 1, static_cast<uint32_t>(h));
    entry(dir, 279, tifflong, 1, wh2);
    entry(dir, 280, tiffshort, 1, wh2 + 170);
    entry(dir, 281, tiffshort, 1, wh2 + 172);
    entry(dir, 284, tiffshort, 1, 1);
    putle16(dir, 0), putle16(dir, 0), putle16(dir, 0), putle16(dir, 255);
  }

  timagesink sink;
  if (!sinkopen(sink, name)) return false;
  sinkwrite(sink, head);
  timageprogress p = progressbegin(colour ? "  RGB with (" : "  Fullgray with (", w, h);
  std::string bytesout;
  if (full) {
    std::vector<uint16_t> row(static_cast<size_t>(w));
    imageemitrows(f, 1, row.data(), [&](int64_t y, const uint16_t* v) {
      progressrow(p, y);
      bytesout.clear();
      for (int64_t x = 0; x < w; ++x) putle16(bytesout, v[x]);
      return sinkwrite(sink, bytesout);
    });
  } else {
    std::vector<uint8_t> row(static_cast<size_t>(w * samples));
    imageemitrows(f, static_cast<int>(samples), row.data(), [&](int64_t y, const uint8_t* v) {
      progressrow(p, y);
      return sinkwrite(sink, v, static_cast<size_t>(w * samples));
    });
  }
  progressdone(p);
  sinkwrite(sink, dir);
  return sinkclose(sink);
}
