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

TEST(PngWrite, IdatLengthFormula) {
  EXPECT_EQ(pngidatlength(90300), 11 * 5 + 2 + 5 + 90300 + 4);
  EXPECT_EQ(pngidatlength(8192), 5 + 2 + 8192 + 4);
  EXPECT_EQ(pngidatlength(1), 2 + 5 + 1 + 4);
}

TEST(PngWrite, SmallImageIsOneIdatOfStoredBlocks) {
  Field g(imagegray, 300, 300);
  for (int64_t y = 1; y <= 300; ++y)
    for (int64_t x = 1; x <= 300; ++x) setvalue(g, x, y, (x * 7 + y) % 256);
  const std::vector<Chunk> cs = written(g, "g.png");
  ASSERT_EQ(cs.size(), 3u);
  EXPECT_EQ(cs[0].type, "IHDR");
  EXPECT_EQ(cs[0].data, std::string("\0\0\x01\x2C\0\0\x01\x2C\x08\0\0\0\0", 13));
  EXPECT_EQ(cs[1].type, "IDAT");
  EXPECT_EQ(static_cast<int64_t>(cs[1].data.size()), pngidatlength(90300));
  EXPECT_EQ(cs[1].data.substr(0, 2), "\x08\x1D");
  EXPECT_EQ(cs[1].data.substr(2, 5), std::string("\0\0\x20\xFF\xDF", 5));  // stored, 8192 bytes, not final
  EXPECT_EQ(cs[2].type, "IEND");
  const std::string raw = inflated(cs, 90300);
  EXPECT_EQ(raw[0], 0);
  EXPECT_EQ(static_cast<uint8_t>(raw[1 + 10]), (11 * 7 + 1) % 256);
  EXPECT_EQ(static_cast<uint8_t>(raw[301 * 2 + 1]), (7 + 3) % 256);
  EXPECT_EQ(readbytes(path("g.png")).substr(readbytes(path("g.png")).size() - 4), "\xAE\x42\x60\x82");
}

TEST(PngWrite, LargeImageIsOneIdatARow) {
  Field g(imagegray, 2000, 2000);
  setvalue(g, 2000, 2000, 77);
  const std::vector<Chunk> cs = written(g, "big.png");
  ASSERT_EQ(cs.size(), 2002u);
  EXPECT_EQ(cs[1].data.size(), 2u + 5 + 2001);     // the zlib header travels with the first row
  EXPECT_EQ(cs[2].data.size(), 5u + 2001);
  EXPECT_EQ(cs[2000].data.size(), 5u + 2001 + 4);  // the last holds the final block and the Adler-32
  EXPECT_EQ(cs[2000].data[0], 1);
  EXPECT_EQ(cs[1999].data[0], 0);
  const std::string raw = inflated(cs, 2001 * 2000);
  EXPECT_EQ(static_cast<uint8_t>(raw.back()), 77);
}

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
