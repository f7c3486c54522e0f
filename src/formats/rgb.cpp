#include "formats/rgb.h"

#include <vector>

#include "formats/imagecodec.h"

bool rgbpixels(timagefield& f, const tfilebuffer& b, int64_t at, int64_t w, int64_t h, const char* badsize) {
  const int64_t n = b.size - at;
  const int64_t pixels = fieldcount(w, h);
  int bytes = 0;
  if (pixels >= 1 && n == pixels * 2) bytes = 2;
  else if (pixels >= 1 && n == pixels * 3) bytes = 3;
  else if (pixels >= 1 && n == pixels * 4) bytes = 4;
  if (bytes == 0) return readfailed(f, badsize);
  if (!readsize(f, w, h)) return false;
  const bool rgba = f.kind == imagergba;
  static const char* const labels[2][3] = {{"  RGB (16bit) with (", "  RGB (24bit) with (", "  RGB (32bit) with ("},
                                           {"  RGBA (16bit) with (", "  RGBA (24bit) with (", "  RGBA (32bit) with ("}};
  timageprogress p = progressbegin(labels[rgba][bytes - 2], w, h);
  // Colour goes in as it is; a scalar kind takes it as setrgb does.
  const int channels = bytes == 4 ? 4 : 3;
  std::vector<int64_t> row(static_cast<size_t>(w * channels));
  imagefillrows(f, channels, row.data(), [&](int64_t y, int64_t* out) {
    progressrow(p, y);
    const uint8_t* src = b.bytes.data + at + (y - 1) * w * bytes;
    for (int64_t x = 0; x < w; ++x, src += bytes, out += channels) {
      if (bytes == 2) {
        // 12-bit colour: blue and green in the first byte's nibbles, red in the second's high one.
        out[0] = src[1] & 0xF0, out[1] = (src[0] & 0x0F) << 4, out[2] = src[0] & 0xF0;
      } else {
        for (int i = 0; i < bytes; ++i) out[i] = src[i];
      }
    }
    return true;
  });
  progressdone(p);
  return true;
}

bool rgbread(timagefield& f, const utf16& name) {
  tfilebuffer b;
  if (!imagefileread(name, b)) {
    bufferrelease(b);
    return readfailed(f, utf16());
  }
  bool ok;
  if (b.size < 8) {
    ok = readfailed(f, "  Wrong header. Empty image created!");
  } else {
    const uint8_t* d = b.bytes.data;
    ok = rgbpixels(f, b, 8, d[4] | d[5] << 8, d[6] | d[7] << 8, "  Bad file size. Empty image created!");
  }
  bufferrelease(b);
  return ok && readdone(f, name);
}

bool rgbwrite(timagefield& f, const utf16& name) {
  const int64_t w = imagesizex(f), h = imagesizey(f);
  if (w < 1 || h < 1) return false;
  std::string head("\0\0\x20\0", 4);
  putle16(head, static_cast<uint32_t>(w));
  putle16(head, static_cast<uint32_t>(h));
  timagesink sink;
  if (!sinkopen(sink, name)) return false;
  sinkwrite(sink, head);
  timageprogress p = progressbegin("  RGB with (", w, h);
  std::vector<uint8_t> row(static_cast<size_t>(4 * w));
  imageemitrows(f, 4, row.data(), [&](int64_t y, const uint8_t* c) {
    progressrow(p, y);
    return sinkwrite(sink, c, static_cast<size_t>(4 * w));
  });
  progressdone(p);
  return sinkclose(sink);
}
