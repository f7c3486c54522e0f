#include <gtest/gtest.h>

#include "drawing/colormap.h"
#include "drawing/draw.h"

namespace {

struct timage {
  timagefield f{};
  timage(int64_t w, int64_t h) { fieldcreate(f, imagergb, {w, h, 1}); }
  ~timage() { fieldrelease(f); }
  int64_t lit() const {
    int64_t n = 0;
    for (int64_t y = 1; y <= imagesizey(f); ++y)
      for (int64_t x = 1; x <= imagesizex(f); ++x) n += getrgb(f, x, y)[0] > 0;
    return n;
  }
};

const trgba white{255, 255, 255, 255};

// Glyph lookup: Unifont's "A", the box for controls and code points without a glyph, and
// combining marks that do not advance.
TEST(Drawing, GlyphsAndWidths) {
  const uint8_t a[16] = {0, 0, 0, 0, 0x18, 0x24, 0x24, 0x42, 0x42, 0x7E, 0x42, 0x42, 0x42, 0x42, 0, 0};
  EXPECT_TRUE(std::equal(a, a + 16, glyphrows('A')));
  EXPECT_EQ(glyphrows(0), nullptr);
  EXPECT_EQ(glyphrows(7), glyphrows(0x4E00));
  EXPECT_NE(glyphrows(0x3B1), glyphrows(7));  // Greek alpha has its own
  EXPECT_EQ(textwidth(utf16("e\xcc\x81x")), 16);  // e, combining acute, x
}

// Text: nothing for an empty one, cut at the edge, bold adds pixels; lines reach both ends;
// half alpha blends with what is there.
TEST(Drawing, TextLinesAndBlending) {
  timage img(20, 20);
  drawtext(img.f, 1, 1, utf16(), white);
  EXPECT_EQ(img.lit(), 0);
  drawtext(img.f, 15, 1, utf16("H"), white);
  const int64_t cut = img.lit();
  EXPECT_GT(cut, 0);
  timage full(40, 20), bold(40, 20);
  drawtext(full.f, 1, 1, utf16("H"), white);
  drawtext(bold.f, 1, 1, utf16("H"), white, tfontstyle::bold);
  EXPECT_LT(cut, full.lit());
  EXPECT_GT(bold.lit(), full.lit());
  timage line(10, 10);
  drawline(line.f, 2, 3, 9, 7, white);
  EXPECT_EQ(getrgb(line.f, 2, 3)[0], 255);
  EXPECT_EQ(getrgb(line.f, 9, 7)[0], 255);
  EXPECT_EQ(line.lit(), 8);  // one pixel a step along the longer axis
  drawpoint(line.f, 1, 1, {200, 0, 0, 128});
  EXPECT_EQ(getrgb(line.f, 1, 1)[0], 100);
}

TEST(Drawing, AlphaRamps) {
  colormapfill('A', 1, 2);
  colormapalpha(talpharule::rising);
  EXPECT_EQ(colormapentry(1)[3], 0);
  EXPECT_EQ(colormapentry(2)[3], 255);
  colormapfill('A', 1, 1);
  colormapalpha(talpharule::rising);
  EXPECT_EQ(colormapentry(1)[3], 255);
}

}  // namespace
