// BMP reading over every header size and bit depth, its refusals, and the 24-bit writer.
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

TEST(BmpRead, TrueColourAndPaletteBytes) {
  // 24 bit: BGR, rows padded to four bytes; 2 by 2.
  const std::string rows24 = std::string("\x01\x02\x03\x04\x05\x06\0\0\x07\x08\x09\x0A\x0B\x0C\0\0", 16);
  Read c(imagergb, bitmap(40, 2, 2, 24, "", rows24));
  EXPECT_EQ(getrgb(c.f, 1, 2), (trgb{3, 2, 1}));
  EXPECT_EQ(getrgb(c.f, 2, 1), (trgb{12, 11, 10}));
  Read g(imagegray, bitmap(40, 2, 2, 24, "", rows24));
  EXPECT_EQ(getvalue(g.f, 1, 2), 2);
  // 32 bit reads as 24 with the fourth byte passed over.
  Read a(imagergba, bitmap(40, 1, 1, 32, "", std::string("\x01\x02\x03\x44", 4)));
  EXPECT_EQ(getrgba(a.f, 1, 1), (trgba{3, 2, 1, 255}));
  std::string pal256;
  for (int i = 0; i < 256; ++i) pal256 += std::string{static_cast<char>(i), static_cast<char>(i), static_cast<char>(255 - i), 0};
  Read p8(imagergb, bitmap(40, 1, 1, 8, pal256, std::string("\x10\0\0\0", 4)));
  EXPECT_EQ(getrgb(p8.f, 1, 1), (trgb{0xEF, 0x10, 0x10}));
  EXPECT_EQ(utf16toutf8(p8.f->name), path("t.bmp"));
}

TEST(BmpRead, RefusalsEachWithItsLine) {
  Read sig(imagergb, bitmap(40, 1, 1, 24, "", std::string(4, '\0'), 0, "XY"));
  EXPECT_EQ(sig.lines, (std::vector<std::string>{"Unknown header type (22872).", "  Bad Magic Identifier! Create empty field."}));
  Read other(imagergb, bitmap(40, 1, 1, 24, "", std::string(4, '\0'), 0, "IC"));
  EXPECT_TRUE(other.ok);  // one of the six published signatures
  Read size(imagergb, bitmap(52, 1, 1, 24, "", std::string(4, '\0')));
  EXPECT_EQ(size.lines.back(), "Unknown header size (52).");
  Read rle(imagergb, bitmap(40, 1, 1, 8, std::string(1024, '\0'), std::string(4, '\0'), 1));
  EXPECT_EQ(rle.lines.back(), "I'm to stupid for compressed images.");
  Read bits(imagergb, bitmap(40, 1, 1, 16, "", std::string(4, '\0')));
  EXPECT_EQ(bits.lines.back(), "  Bad BitsPerPixel Identifier (16). Empty image created!");
  Read topdown(imagergb, bitmap(40, 1, -1, 24, "", std::string(4, '\0')));
  EXPECT_EQ(topdown.lines.back(), "  Bad image size (1x-1). Empty image created!");
  Read huge(imagergb, bitmap(40, 1000000, 1000000, 24, "", std::string(40, '\0')));
  EXPECT_EQ(huge.lines.back(), "Wrong file size (94).");
  Read cut(imagegray, "BM\x10");
  EXPECT_EQ(cut.lines.back(), "Wrong file size (3).");
  for (Read* r : {&sig, &size, &rle, &bits, &topdown, &huge, &cut}) {
    EXPECT_FALSE(r->ok);
    EXPECT_TRUE(fieldempty(r->f.f));
    EXPECT_EQ(r->lines.size(), r == &sig ? 2u : 1u);
  }
}
