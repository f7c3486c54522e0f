#include "formats/png.h"

#include <zlib.h>

#include <vector>

#include "formats/imagecodec.h"
#include "shell/console.h"

namespace {

constexpr int64_t blocksize = 8192;
constexpr int64_t onechunk = 1048576;

// The bit depths each colour type allows; a wrong one is only reported.
void checkdepth(int mode, int depth) {
  auto allowed = [&](std::initializer_list<int> depths) {
    for (const int d : depths)
      if (d == depth) return true;
    return false;
  };
  const char* word = nullptr;
  bool ok = true;
  switch (mode) {
    case 0: word = "gray"; ok = allowed({1, 2, 4, 8, 16}); break;
    case 2: word = "rgb"; ok = allowed({8, 16}); break;
    case 3: word = "palette"; ok = allowed({1, 2, 4, 8}); break;
    case 4: word = "gray+alpha"; ok = allowed({8, 16}); break;
    case 6: word = "rgb+alpha"; ok = allowed({8, 16}); break;
    default: println("Wrong png mode (" + nattext(mode) + ")!"); return;
  }
  if (!ok) println("Wrong png bit depth (" + nattext(depth) + ") in mode " + word + "!");
}

// A chunk written piece by piece, its CRC-32 running over type and data.
struct tchunk {
  timagesink& sink;
  uLong crc = 0;

  void begin(const char* type, uint32_t length) {
    std::string head;
    putbe32(head, length);
    sinkwrite(sink, head);
    crc = crc32(0, nullptr, 0);
    data(type, 4);
  }
  void data(const void* p, size_t n) {
    crc = crc32(crc, static_cast<const Bytef*>(p), static_cast<uInt>(n));
    sinkwrite(sink, p, n);
  }
  void data(const std::string& s) { data(s.data(), s.size()); }
  void end() {
    std::string tail;
    putbe32(tail, static_cast<uint32_t>(crc));
    sinkwrite(sink, tail);
  }
};

// Stored deflate blocks over raw bytes, Adler-32 kept for the stream's end.
struct tstored {
  uLong adler = adler32(0, nullptr, 0);

  // The blocks of n > 0 bytes, at most 8192 each; the last one is marked final when asked.
  std::string blocks(const uint8_t* p, int64_t n, bool final) {
    std::string out;
    for (int64_t done = 0; done < n; done += blocksize) {
      const int64_t len = std::min(blocksize, n - done);
      out += static_cast<char>(final && done + len >= n ? 1 : 0);
      putle16(out, static_cast<uint32_t>(len));
      putle16(out, static_cast<uint32_t>(~len & 0xFFFF));
      out.append(reinterpret_cast<const char*>(p + done), static_cast<size_t>(len));
    }
    adler = adler32(adler, p, static_cast<uInt>(n));
    return out;
  }
};

}  // namespace

int64_t pngidatlength(int64_t n) { return (n >> 13) * 5 + 2 + (n % 8192 ? 5 : 0) + n + 4; }

bool pngwrite(timagefield& f, const utf16& name) {
  const int64_t w = imagesizex(f), h = imagesizey(f);
  if (w < 1 || h < 1) return false;
  int mode = 0, depth = 8, channels = 1;
  const char* label = "  Grey with (";
  switch (f.kind) {
    case imagefullgray: depth = 16; label = "  Fullgray with ("; break;
    case imagergb: case imagezrgb: mode = 2, channels = 3, label = "  RGB with ("; break;
    case imagergba: mode = 6, channels = 4, label = "  RGB with ("; break;
  }
  const int64_t rowbytes = w * channels * (depth / 8) + 1;
  const int64_t raw = rowbytes * h;
  checkdepth(mode, depth);

  timagesink sink;
  if (!sinkopen(sink, name)) return false;
  sinkwrite(sink, "\x89PNG\r\n\x1a\n", 8);
  tchunk chunk{sink};
  std::string ihdr;
  putbe32(ihdr, static_cast<uint32_t>(w));
  putbe32(ihdr, static_cast<uint32_t>(h));
  ihdr += static_cast<char>(depth);
  ihdr += static_cast<char>(mode);
  ihdr.append(3, '\0');
  chunk.begin("IHDR", 13);
  chunk.data(ihdr);
  chunk.end();

  // One raw row: the filter byte 0, then the samples, 16-bit ones big-endian.
  std::vector<uint8_t> line(static_cast<size_t>(rowbytes));
  std::vector<uint8_t> samples8(static_cast<size_t>(w * channels));
  std::vector<uint16_t> samples16(depth == 16 ? static_cast<size_t>(w) : 0);
  tstored stored;
  const char zlibhead[2] = {'\x08', '\x1D'};
  const bool whole = raw < onechunk;
  std::string image;  // the raw stream when it goes out in one chunk
  if (whole) image.reserve(static_cast<size_t>(raw));
  timageprogress p = progressbegin(label, w, h);
  auto emitline = [&](int64_t y) {
    progressrow(p, y);
    if (whole) {
      image.append(reinterpret_cast<const char*>(line.data()), line.size());
      return true;
    }
    std::string body = stored.blocks(line.data(), rowbytes, y == h);
    std::string adler;
    if (y == h) putbe32(adler, static_cast<uint32_t>(stored.adler));
    chunk.begin("IDAT", static_cast<uint32_t>((y == 1 ? 2 : 0) + body.size() + adler.size()));
    if (y == 1) chunk.data(zlibhead, 2);
    chunk.data(body);
    chunk.data(adler);
    chunk.end();
    return !sink.failed;
  };
  if (depth == 16) {
    imageemitrows(f, 1, samples16.data(), [&](int64_t y, const uint16_t* v) {
      line[0] = 0;
      for (int64_t x = 0; x < w; ++x) line[1 + 2 * x] = static_cast<uint8_t>(v[x] >> 8), line[2 + 2 * x] = static_cast<uint8_t>(v[x]);
      return emitline(y);
    });
  } else {
    imageemitrows(f, channels, samples8.data(), [&](int64_t y, const uint8_t* v) {
      line[0] = 0;
      std::copy(v, v + w * channels, line.begin() + 1);
      return emitline(y);
    });
  }
  if (whole) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(image.data());
    std::string body = stored.blocks(bytes, raw, true);
    chunk.begin("IDAT", static_cast<uint32_t>(pngidatlength(raw)));
    chunk.data(zlibhead, 2);
    chunk.data(body);
    std::string adler;
    putbe32(adler, static_cast<uint32_t>(stored.adler));
    chunk.data(adler);
    chunk.end();
  }
  progressdone(p);
  chunk.begin("IEND", 0);
  chunk.end();
  return sinkclose(sink);
}
