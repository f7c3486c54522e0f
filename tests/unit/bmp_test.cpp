// BMP reading over every header size and the palette depths, and its refusals.
#include "imagetest.h"

#include "formats/bmp.h"

using namespace imagetest;

namespace {

// A BMP of the info size and bit count; rows bottom-up as given, the palette in front.
std::string bitmap(uint32_t info, int32_t w, int32_t h, uint32_t bits, const std::string& palette,
                   const std::string& rows, uint32_t compression = 0, const char* signature = "BM") {
  std::string block;
  if (info == 12) {
    block = le32(12) + le16(static_cast<uint16_t>(w)) + le16(static_cast<uint16_t>(h)) + le16(1) + le16(bits);
  } else {
    block = le32(info) + le32(static_cast<uint32_t>(w)) + le32(static_cast<uint32_t>(h)) + le16(1) + le16(bits) +
            le32(compression) + le32(static_cast<uint32_t>(rows.size())) + std::string(info - 24, '\0');
  }
  const uint32_t offset = static_cast<uint32_t>(14 + block.size() + palette.size());
  return std::string(signature) + le32(offset + static_cast<uint32_t>(rows.size())) + le32(0) + le32(offset) + block +
         palette + rows;
}

struct Read {
  Field f;
  std::vector<std::string> lines;
  bool ok = false;
  Read(uint8_t kind, const std::string& bytes) : f(kind) {
    writebytes(path("t.bmp"), bytes);
    lines = printed([&] { ok = bmpread(f, path("t.bmp").c_str()); });
  }
};

// Two colours of a palette in BGRx (or BGR for the OS/2 header): white and red.
std::string twocolours(bool os2) {
  return os2 ? std::string("\xFF\xFF\xFF\x00\x00\xFF", 6) : std::string("\xFF\xFF\xFF\0\x00\x00\xFF\0", 8);
}

}  // namespace

TEST(BmpRead, EveryHeaderSizeAndDepth) {
  for (const uint32_t info : {12u, 40u, 64u, 108u, 124u}) {
    SCOPED_TRACE(info);
    const bool os2 = info == 12;
    // 1 bit, 3 by 2: bottom row 100 (index 1 = red at x = 1), top row 011.
    std::string pal = twocolours(os2);
    Read mono(imagergb, bitmap(info, 3, 2, 1, pal, std::string("\x80\0\0\0\x60\0\0\0", 8)));
    ASSERT_TRUE(mono.ok);
    EXPECT_EQ(getrgb(mono.f, 1, 2), (trgb{255, 0, 0}));
    EXPECT_EQ(getrgb(mono.f, 2, 2), (trgb{255, 255, 255}));
    EXPECT_EQ(getrgb(mono.f, 2, 1), (trgb{255, 0, 0}));
    Read gray(imagegray, bitmap(info, 3, 2, 1, pal, std::string("\x80\0\0\0\x60\0\0\0", 8)));
    EXPECT_EQ(getvalue(gray.f, 1, 2), 85);  // (255 + 0 + 0) div 3
    // 4 bit: the high nibble first; a palette of 16 entries.
    std::string pal16 = pal;
    for (int i = 2; i < 16; ++i) pal16 += os2 ? std::string(3, static_cast<char>(i)) : std::string(3, static_cast<char>(i)) + '\0';
    Read four(imagefullgray, bitmap(info, 3, 1, 4, pal16, std::string("\x12\xF0\0\0", 4)));
    EXPECT_EQ(getvalue(four.f, 1, 1), 85);
    EXPECT_EQ(getvalue(four.f, 2, 1), 2);
    EXPECT_EQ(getvalue(four.f, 3, 1), 15);
  }
}

// True colour, 32 bit and 8-bit palettes: images_clients.sh reads Pillow's and netpbm's files.
// Signature, RLE, bit count, negative height and file size: the images bad-input macro.
TEST(BmpRead, RefusalsEachWithItsLine) {
  Read other(imagergb, bitmap(40, 1, 1, 24, "", std::string(4, '\0'), 0, "IC"));
  EXPECT_TRUE(other.ok);  // one of the six published signatures
  Read size(imagergb, bitmap(52, 1, 1, 24, "", std::string(4, '\0')));
  EXPECT_EQ(size.lines.back(), "Unknown header size (52).");
  Read cut(imagegray, "BM\x10");
  EXPECT_EQ(cut.lines.back(), "Wrong file size (3).");
  for (Read* r : {&size, &cut}) {
    EXPECT_FALSE(r->ok);
    EXPECT_TRUE(fieldempty(r->f.f));
    EXPECT_EQ(r->lines.size(), 1u);
  }
}
