#include "formats/sniff.h"

#include <cstring>
#include <utility>

#include "field/imagefield.h"
#include "field/memory.h"

namespace {

// A packed stream (deflate, LZW, RLE, JPEG) inflates at most this many bytes from one
// stored byte in any real file; below the floor a claim is harmless whatever the file.
constexpr int64_t packedratio = 4096;
constexpr int64_t packedfloor = int64_t{1} << 24;
// Sides beyond this overflow the libraries' own int arithmetic.
constexpr int64_t largestside = (int64_t{1} << 31) - 1;

struct tbytes {
  const uint8_t* p;
  int64_t n;
  uint32_t u8(int64_t at) const { return at >= 0 && at < n ? p[at] : 0; }
  uint32_t le16(int64_t at) const { return u8(at) | u8(at + 1) << 8; }
  uint32_t be16(int64_t at) const { return u8(at) << 8 | u8(at + 1); }
  uint32_t le32(int64_t at) const { return le16(at) | le16(at + 2) << 16; }
  uint32_t be32(int64_t at) const { return be16(at) << 16 | be16(at + 2); }
  bool starts(const char* magic) const {
    const size_t k = std::strlen(magic);
    return n >= static_cast<int64_t>(k) && std::memcmp(p, magic, k) == 0;
  }
};

// The verdict on a claim of w x h pixels decoding to `decoded` bytes out of `stored` bytes.
tsniff judge(int64_t w, int64_t h, double decoded, int64_t stored, bool packed) {
  tsniff s{true, false, 0};
  if (w < 1 || h < 1 || w > largestside || h > largestside) return s;
  if (static_cast<double>(w) * static_cast<double>(h) > static_cast<double>(sniffpixellimit())) return s;
  s.pixels = w * h;
  const double room = packed ? static_cast<double>(stored) * packedratio + packedfloor : static_cast<double>(stored);
  s.plausible = stored >= 0 && decoded <= room;
  return s;
}
tsniff implausible() { return {true, false, 0}; }

// PNM header tokens: runs above the blank, "#" comments to the line's end.
struct tpnmtokens {
  tbytes b;
  int64_t at = 2;
  bool number(int64_t& v) {
    while (at < b.n && (b.p[at] <= 32 || b.p[at] == '#')) {
      if (b.p[at] == '#')
        while (at < b.n && b.p[at] != '\n' && b.p[at] != '\r') ++at;
      else
        ++at;
    }
    v = 0;
    int digits = 0;
    for (; at < b.n && b.p[at] >= '0' && b.p[at] <= '9'; ++at, ++digits)
      if (digits < 12) v = v * 10 + (b.p[at] - '0');
    // A number of more digits than any side may have is as bad as none.
    return digits > 0 && digits <= 11 && (at >= b.n || b.p[at] <= 32 || b.p[at] == '#');
  }
};

tsniff pnm(const tbytes& b) {
  const int magic = static_cast<int>(b.u8(1)) - '0';
  tpnmtokens t{b};
  int64_t w, h, maxval = 1;
  if (!t.number(w) || !t.number(h) || (magic != 1 && magic != 4 && !t.number(maxval))) return implausible();
  if (maxval < 1 || maxval > 65535) return implausible();
  const int64_t left = b.n - t.at - 1, sample = maxval > 255 ? 2 : 1;
  const double pixels = static_cast<double>(w) * static_cast<double>(h);
  // Text forms need at least one character a sample.
  const double need = magic == 4   ? static_cast<double>((w + 7) / 8) * static_cast<double>(h)
                      : magic == 1 ? pixels
                      : magic == 2 || magic == 5 ? pixels * (magic == 5 ? sample : 1)
                                                 : pixels * 3 * (magic == 6 ? sample : 1);
  return judge(w, h, need, left, false);
}

tsniff pam(const tbytes& b) {
  int64_t w = 0, h = 0, depth = 0, maxval = 0, at = 2;
  while (at < b.n) {
    int64_t end = at;
    while (end < b.n && b.p[end] != '\n') ++end;
    const std::string_view line(reinterpret_cast<const char*>(b.p + at), static_cast<size_t>(end - at));
    at = end + 1;
    if (line.starts_with("ENDHDR")) {
      const double need = static_cast<double>(w) * static_cast<double>(h) * static_cast<double>(depth) * (maxval > 255 ? 2 : 1);
      if (depth < 1 || maxval < 1 || maxval > 65535) return implausible();
      return judge(w, h, need, b.n - at, false);
    }
    for (auto [key, value] : {std::pair{"WIDTH", &w}, {"HEIGHT", &h}, {"DEPTH", &depth}, {"MAXVAL", &maxval}}) {
      if (!line.starts_with(key)) continue;
      std::string_view rest = line.substr(std::strlen(key));
      while (!rest.empty() && rest.front() <= 32) rest.remove_prefix(1);
      *value = 0;
      size_t digits = 0;
      for (; digits < rest.size() && rest[digits] >= '0' && rest[digits] <= '9'; ++digits)
        if (digits < 12) *value = *value * 10 + (rest[digits] - '0');
      if (digits == 0 || digits > 11) return implausible();
    }
  }
  return implausible();
}

tsniff bmp(const tbytes& b) {
  const uint32_t info = b.le32(14), dataoffset = b.le32(10);
  int64_t w, h, bits, compression = 0;
  if (info == 12) {
    w = b.le16(18), h = b.le16(20), bits = b.le16(24);
  } else if (info >= 40 && info <= 124) {
    w = static_cast<int32_t>(b.le32(18)), h = static_cast<int32_t>(b.le32(22)), bits = b.le16(28), compression = b.le32(30);
  } else {
    return implausible();
  }
  if (h < 0) h = -h;
  if (dataoffset > b.n || (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32))
    return implausible();
  const double rowbytes = static_cast<double>((w * bits + 31) / 32 * 4);
  // Plain rows and bit fields lie in the file as they are; the rest is packed.
  return judge(w, h, rowbytes * static_cast<double>(h), b.n - dataoffset, compression != 0 && compression != 3);
}

tsniff tga(const tbytes& b) {
  if (b.n < 18) return implausible();
  const uint32_t idlength = b.u8(0), maptype = b.u8(1), type = b.u8(2), maplength = b.le16(5), mapbits = b.u8(7);
  const int64_t w = b.le16(12), h = b.le16(14), bits = b.u8(16);
  const bool packed = type >= 9 && type <= 11;
  if (maptype > 1 || !((type >= 1 && type <= 3) || packed) || (bits != 8 && bits != 15 && bits != 16 && bits != 24 && bits != 32))
    return implausible();
  const int64_t pixelbytes = (bits + 7) / 8, left = b.n - 18 - idlength - (maptype ? maplength * ((mapbits + 7) / 8) : 0);
  const double pixels = static_cast<double>(w) * static_cast<double>(h);
  // A run packet of one header byte and one pixel stands for at most 128 pixels.
  const double need = packed ? (pixels / 128) * static_cast<double>(1 + pixelbytes) : pixels * static_cast<double>(pixelbytes);
  return judge(w, h, need, left, false);
}

tsniff tiff(const tbytes& b) {
  const bool big = b.u8(0) == 'M';
  auto u16 = [&](int64_t at) { return big ? b.be16(at) : b.le16(at); };
  auto u32 = [&](int64_t at) { return big ? b.be32(at) : b.le32(at); };
  const int64_t ifd = u32(4), entries = u16(ifd);
  if (ifd < 8 || ifd + 2 + entries * 12 > b.n) return implausible();
  int64_t w = 0, h = 0, bits = 1, samples = 1, compression = 1;
  for (int64_t i = 0; i < entries; ++i) {
    const int64_t at = ifd + 2 + i * 12;
    const uint32_t tag = u16(at), type = u16(at + 2), count = u32(at + 4);
    const int64_t value = type == 3 ? u16(at + 8) : u32(at + 8);
    if (tag == 256) w = value;
    if (tag == 257) h = value;
    // Several bits-per-sample values lie elsewhere; they are alike in every real file.
    if (tag == 258) bits = count == 1 ? value : u16(u32(at + 8));
    if (tag == 259) compression = value;
    if (tag == 277) samples = value;
  }
  if (bits < 1 || bits > 64 || samples < 1 || samples > 16) return implausible();
  const double decoded = static_cast<double>(w) * static_cast<double>(h) * static_cast<double>(bits * samples) / 8;
  return judge(w, h, decoded, b.n, compression != 1);
}

tsniff png(const tbytes& b) {
  if (b.be32(8) != 13 || !tbytes{b.p + 12, b.n - 12}.starts("IHDR")) return implausible();
  const int64_t w = b.be32(16), h = b.be32(20), depth = b.u8(24), colour = b.u8(25);
  const int channels = colour == 0 || colour == 3 ? 1 : colour == 2 ? 3 : colour == 4 ? 2 : colour == 6 ? 4 : 0;
  if (channels == 0 || depth < 1 || depth > 16) return implausible();
  const double rowbytes = 1 + static_cast<double>(w) * channels * static_cast<double>(depth) / 8;
  return judge(w, h, rowbytes * static_cast<double>(h), b.n, true);
}

tsniff gif(const tbytes& b) {
  const int64_t w = b.le16(6), h = b.le16(8);
  // Some writers leave the screen size 0; the frames then carry it.
  if (w == 0 || h == 0) return {true, true, 0};
  return judge(w, h, static_cast<double>(w) * static_cast<double>(h), b.n, true);
}

tsniff jpeg(const tbytes& b) {
  int64_t at = 2;
  while (at + 4 <= b.n) {
    if (b.u8(at) != 0xFF) return implausible();
    const uint32_t marker = b.u8(at + 1);
    if (marker == 0xFF) {
      ++at;
      continue;
    }
    if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
      at += 2;
      continue;
    }
    const int64_t length = b.be16(at + 2);
    if (length < 2) return implausible();
    const bool frame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    if (frame) {
      const int64_t h = b.be16(at + 5), w = b.be16(at + 7), components = b.u8(at + 9);
      if (components < 1 || components > 4) return implausible();
      // A height of 0 is given later by its own marker.
      if (h == 0) return {true, true, 0};
      return judge(w, h, static_cast<double>(w) * static_cast<double>(h) * components, b.n, true);
    }
    at += 2 + length;
  }
  return implausible();
}

}  // namespace

int64_t sniffpixellimit() { return physicalmemory() / 16; }

tsniff sniffimage(const uint8_t* bytes, int64_t size, std::string_view extension) {
  const tbytes b{bytes, size};
  if (size >= 3 && b.u8(0) == 'P' && b.u8(1) >= '1' && b.u8(1) <= '6' && b.u8(2) <= 32) return pnm(b);
  if (b.starts("P7") && size >= 3 && b.u8(2) <= 32) return pam(b);
  if (b.starts("BM")) return bmp(b);
  if ((b.starts("II") && b.le16(2) == 42) || (b.starts("MM") && b.be16(2) == 42)) return tiff(b);
  if (b.starts("\x89PNG\r\n\x1a\n")) return png(b);
  if (b.starts("GIF87a") || b.starts("GIF89a")) return gif(b);
  if (size >= 3 && b.u8(0) == 0xFF && b.u8(1) == 0xD8 && b.u8(2) == 0xFF) return jpeg(b);
  if (extension == "tga" || extension == "targa") return tga(b);
  return {};
}

bool plainpnm(const uint8_t* bytes, int64_t size, uint8_t kind) {
  const tbytes b{bytes, size};
  const bool gray = b.starts("P5"), colour = b.starts("P6");
  if (!(gray || colour) || b.u8(2) > 32) return false;
  // Gray from colour and widened 16-bit samples follow rules of their own here.
  if (!(gray && kind == imagegray) && !((gray || colour) && colourkind(kind))) return false;
  tpnmtokens t{b};
  int64_t w, h, maxval;
  return t.number(w) && t.number(h) && t.number(maxval) && maxval == 255;
}
