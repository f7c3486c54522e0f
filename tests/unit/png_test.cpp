// The own PNG encoder: chunk layout, stored blocks, CRCs and the Adler-32, one IDAT or one
// a row, and the raw rows of every kind as zlib inflates them.
#include <zlib.h>

#include "imagetest.h"

#include "formats/png.h"

using namespace imagetest;

namespace {

struct Chunk {
  std::string type, data;
};

// The chunks of a PNG file, each CRC checked.
std::vector<Chunk> chunks(const std::string& png) {
  std::vector<Chunk> out;
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  for (size_t at = 8; at + 12 <= png.size();) {
    const uint32_t n = getbe32(png, at);
    Chunk c{png.substr(at + 4, 4), png.substr(at + 8, n)};
    const uLong crc = crc32(0, reinterpret_cast<const Bytef*>(png.data() + at + 4), n + 4);
    EXPECT_EQ(getbe32(png, at + 8 + n), static_cast<uint32_t>(crc)) << c.type;
    out.push_back(c);
    at += 12 + n;
  }
  return out;
}

// The inflated IDAT stream.
std::string inflated(const std::vector<Chunk>& cs, size_t expected) {
  std::string z;
  for (const Chunk& c : cs)
    if (c.type == "IDAT") z += c.data;
  std::string raw(expected, '\0');
  uLongf n = expected;
  EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(raw.data()), &n, reinterpret_cast<const Bytef*>(z.data()), z.size()), Z_OK);
  EXPECT_EQ(n, expected);
  return raw;
}

std::vector<Chunk> written(timagefield& f, const std::string& name) {
  printed([&] { EXPECT_TRUE(pngwrite(f, path(name).c_str())); });
  return chunks(readbytes(path(name)));
}

}  // namespace

TEST(PngWrite, KindsDepthsAndSampleOrder) {
  Field w(imagefullgray, 1, 1), c(imagergb, 1, 1), a(imagergba, 1, 1), z(imagezrgb, 1, 1);
  setvalue(w, 1, 1, 0x1234);
  setrgb(c, 1, 1, {1, 2, 3});
  setrgba(a, 1, 1, {1, 2, 3, 4});
  setrgb(z, 1, 1, {5, 6, 7});
  std::vector<Chunk> cw = written(w, "w.png"), cc = written(c, "c.png"), ca = written(a, "a.png"), cz = written(z, "z.png");
  EXPECT_EQ(cw[0].data.substr(8, 2), std::string("\x10\x00", 2));
  EXPECT_EQ(inflated(cw, 3), std::string("\0\x12\x34", 3));  // big-endian, as the format has it
  EXPECT_EQ(cc[0].data.substr(8, 2), std::string("\x08\x02", 2));
  EXPECT_EQ(inflated(cc, 4), std::string("\0\x01\x02\x03", 4));
  EXPECT_EQ(ca[0].data.substr(8, 2), std::string("\x08\x06", 2));
  EXPECT_EQ(inflated(ca, 5), std::string("\0\x01\x02\x03\x04", 5));
  EXPECT_EQ(inflated(cz, 4), std::string("\0\x05\x06\x07", 4));  // its colour planes, no depth
  Field empty(imagergb);
  EXPECT_FALSE(pngwrite(empty, path("none.png").c_str()));
}
