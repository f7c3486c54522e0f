// The image field: kinds, accessors and clamping, value and background, copies; and the
// smaller raster formats (own RGB, raw, IMGF) with the choice of reader and writer; Pillow
// reads the TGA files in images_clients.sh.
#include "imagetest.h"

#include "formats/bmp.h"
#include "formats/imagefile.h"
#include "formats/imgf.h"
#include "formats/pnm.h"
#include "formats/raw.h"
#include "formats/rgb.h"
#include "formats/scalarfile.h"

using namespace imagetest;

TEST(ImageField, WritesClampAndRoundToTheKindsRange) {
  Field g(imagegray, 3, 3), w(imagefullgray, 2, 2), c(imagergb, 2, 2);
  setvalue(g, 1, 1, 300);
  setvalue(g, 2, 1, -5);
  setvalue(g, 3, 1, 2.5);
  setvalue(g, 1, 2, 3.5);
  EXPECT_EQ(getvalue(g, 1, 1), 255);
  EXPECT_EQ(getvalue(g, 2, 1), 0);
  EXPECT_EQ(getvalue(g, 3, 1), 2);  // ties to even
  EXPECT_EQ(getvalue(g, 1, 2), 4);
  setvalue(w, 1, 1, 70000);
  setvalue(w, 2, 1, 1000.4);
  EXPECT_EQ(getvalue(w, 1, 1), 65535);
  EXPECT_EQ(getgray(w, 1, 1), 255);
  EXPECT_EQ(getvalue(w, 2, 1), 1000);
  EXPECT_EQ(getrgb(w, 2, 1), (trgb{1000, 1000, 1000}));  // unreduced
  setvalue(c, 1, 1, 300);
  EXPECT_EQ(getrgb(c, 1, 1), (trgb{255, 255, 255}));
  EXPECT_EQ(getvalue(c, 1, 1), 765);
  setrgb(c, 2, 1, {300, -4, 7});
  EXPECT_EQ(getrgb(c, 2, 1), (trgb{255, 0, 7}));
  // Writes outside are ignored, reads outside give the background.
  setvalue(g, 0, 1, 9);
  setvalue(g, 4, 1, 9);
  setbackground(g, 17);
  EXPECT_EQ(getvalue(g, 0, 1), 17);
  EXPECT_EQ(getvalue(g, 1, 4), 17);
  EXPECT_EQ(getbackground(g), 17);
}

TEST(ImageField, ColourToScalarAndAlpha) {
  Field g(imagegray, 1, 1), w(imagefullgray, 1, 1), a(imagergba, 2, 1);
  setrgb(g, 1, 1, {10, 20, 32});
  EXPECT_EQ(getvalue(g, 1, 1), 20);  // (10 + 20 + 32) div 3
  setrgb(w, 1, 1, {300, 300, 300});
  EXPECT_EQ(getvalue(w, 1, 1), 900);  // the sum
  setrgba(a, 1, 1, {255, 255, 255, 0});
  EXPECT_EQ(getvalue(a, 1, 1), 0);
  EXPECT_EQ(getgray(a, 1, 1), 0);
  EXPECT_EQ(getalpha(a, 1, 1), 0);
  setrgb(a, 2, 1, {255, 255, 255});
  EXPECT_EQ(getvalue(a, 2, 1), 765);
  EXPECT_EQ(getrgba(a, 2, 1), (trgba{255, 255, 255, 255}));
  EXPECT_EQ(getalpha(g, 1, 1), 255);
  EXPECT_EQ(getrgba(w, 1, 1), (trgba{900, 900, 900, 255}));
  EXPECT_EQ(getzrgb(g, 1, 1), (trgba{65535, 20, 20, 20}));
  EXPECT_EQ(getdepth(g, 1, 1), 0);
}

TEST(ImageField, AlphaBlendsWithTheBackgroundInKindsWithoutAlpha) {
  Field g(imagegray, 1, 1), c(imagergb, 1, 1);
  setbackground(g, 100);
  setrgba(g, 1, 1, {200, 200, 200, 128});
  EXPECT_EQ(getvalue(g, 1, 1), 100 + 100 * 128 / 255);
  setbackgroundrgb(c, {0, 100, 200});
  setrgba(c, 1, 1, {255, 100, 0, 51});
  EXPECT_EQ(getrgb(c, 1, 1), (trgb{255 * 51 / 255, 100, 200 - 200 * 51 / 255}));
}

TEST(ImageField, ZBufferKeepsTheNearestAndAveragesSubpixels) {
  Field z(imagezrgb, 2, 2);
  EXPECT_EQ(getalpha(z, 1, 1), 0);  // nothing drawn yet
  setzrgb(z, 1, 1, 100, {10, 20, 30});
  EXPECT_EQ(getdepth(z, 1, 1), 100);
  EXPECT_EQ(getalpha(z, 1, 1), 255);
  setzrgb(z, 1, 1, 50, {99, 99, 99});  // farther: hidden
  EXPECT_EQ(getrgb(z, 1, 1), (trgb{10, 20, 30}));
  setzrgb(z, 1, 1, 100, {40, 50, 60});  // as near: taken
  EXPECT_EQ(getzrgb(z, 1, 1), (trgba{100, 40, 50, 60}));
  // One subpixel differs: the mean of four, each component (a + b + c + d) div 4.
  z->channels[0].put(1, 1, 0);
  z->words.put(1, 1, 0);
  EXPECT_EQ(getrgb(z, 1, 1)[0], 30);
  EXPECT_EQ(getdepth(z, 1, 1), 75);
  EXPECT_EQ(getalpha(z, 1, 1), 191);
  // getvalue reads the supersampled plane itself at (x, y).
  EXPECT_EQ(getvalue(z, 2, 1), 40 + 50 + 60);
  // A depth beyond zmaximum counts as zmaximum; zmaximum maps onto 65535.
  z->zmaximum = 1000;
  setzrgb(z, 2, 2, 5000, {1, 2, 3});
  EXPECT_EQ(getdepth(z, 2, 2), 65535);
  setvalue(z, 2, 1, 7);
  EXPECT_EQ(getzrgb(z, 2, 1), (trgba{65535, 7, 7, 7}));
}

TEST(ImageField, ValueAndBackgroundByNumberColourAndAlpha) {
  Field g(imagegray), w(imagefullgray), a(imagergba);
  setvaluevalue(g, 300);
  EXPECT_EQ(getvaluevalue(g), 255);
  setvaluergb(g, {30, 60, 91});
  EXPECT_EQ(getvaluevalue(g), 60);
  setvaluergb(w, {30, 60, 91});
  EXPECT_EQ(getvaluevalue(w), 181);
  setbackgroundrgb(a, {255, 255, 255}, 51);
  EXPECT_EQ(getbackgroundrgba(a), (trgba{255, 255, 255, 51}));
  EXPECT_EQ(getbackground(a), 765 * 51 / 255);
  setvaluevalue(a, 2.5);
  EXPECT_EQ(getvaluergba(a), (trgba{2, 2, 2, 255}));
}

TEST(ImageField, RowsInAndOutInEveryKind) {
  for (uint8_t kind : {imagegray, imagefullgray, imagergb, imagergba, imagezrgb}) {
    Field f(kind, 3, 2);
    int64_t row[12];
    imagefillrows(f.f, 4, row, [&](int64_t y, int64_t* out) {
      for (int x = 0; x < 3; ++x) out[4 * x] = 10 * x + y, out[4 * x + 1] = 0, out[4 * x + 2] = 300, out[4 * x + 3] = 7;
      return true;
    });
    uint8_t bytes[12];
    std::vector<int64_t> seen;
    imageemitrows(f.f, 4, bytes, [&](int64_t, const uint8_t* p) {
      for (int i = 0; i < 12; ++i) seen.push_back(p[i]);
      return true;
    });
    SCOPED_TRACE(kind);
    if (colourkind(kind)) {
      EXPECT_EQ(seen[4], 11);
      EXPECT_EQ(seen[6], 255);  // clamped
      EXPECT_EQ(seen[7], kind == imagergba ? 7 : 255);
    } else {
      // A scalar kind takes colour as setrgb: the mean, or for fullgray the sum.
      EXPECT_EQ(getvalue(f, 2, 1), kind == imagegray ? (11 + 0 + 300) / 3 : 311);
    }
  }
}

TEST(OwnRgb, SizeTellsTheLayoutAndTheWriterReadsBack) {
  // 16-bit layout: blue and green in the first byte, red in the high nibble of the second.
  std::string file = std::string("\0\0\x20\0", 4) + le16(2) + le16(1) + "\xAB\xC0\x12\x30";
  writebytes(path("a.rgb"), file);
  Field c(imagergb);
  printed([&] { EXPECT_TRUE(rgbread(c, path("a.rgb").c_str())); });
  EXPECT_EQ(getrgb(c, 1, 1), (trgb{0xC0, 0xB0, 0xA0}));
  EXPECT_EQ(getrgb(c, 2, 1), (trgb{0x30, 0x20, 0x10}));

  Field a(imagergba, 2, 1);
  setrgba(a, 1, 1, {1, 2, 3, 4});
  setrgb(a, 2, 1, {5, 6, 7});
  printed([&] { EXPECT_TRUE(rgbwrite(a, path("d.rgb").c_str())); });
  EXPECT_EQ(readbytes(path("d.rgb")), std::string("\0\0\x20\0\x02\0\x01\0\x01\x02\x03\x04\x05\x06\x07\xFF", 16));
  Field back(imagergba);
  printed([&] { EXPECT_TRUE(rgbread(back, path("d.rgb").c_str())); });
  EXPECT_EQ(getrgba(back, 1, 1), (trgba{1, 2, 3, 4}));
}

TEST(Raw, HeaderSkippedAndSizeDetected) {
  writebytes(path("a.raw"), "HEAD" + std::string("\x01\x02\x03\x04\x05\x06", 6));
  Field c(imagergb), a(imagergba);
  printed([&] { EXPECT_TRUE(rawread(c, path("a.raw").c_str(), 4, 2, 1)); });
  EXPECT_EQ(getrgb(c, 2, 1), (trgb{4, 5, 6}));
  std::vector<std::string> lines = printed([&] { EXPECT_FALSE(rawread(a, path("a.raw").c_str(), 3, 2, 1)); });
  EXPECT_EQ(lines.back(), "  Bad file size! Create empty field.");
  lines = printed([&] { EXPECT_FALSE(rawread(c, path("a.raw").c_str(), 0, 100000, 100000)); });
  EXPECT_EQ(lines.back(), "  Bad file size. Empty image created!");
}

TEST(Imgf, DepthsCompressionAndBackground) {
  auto file = [](uint32_t depth, uint32_t compression, const std::string& data) {
    return "IMGF" + le32(28) + le32(2) + le32(1) + le32(depth) + le32(compression) + le32(9) + data;
  };
  Field g(imagegray), w(imagefullgray);
  writebytes(path("a.imgf"), file(16, 1, std::string("\x34\x12\xFF\x00", 4)));
  printed([&] { EXPECT_TRUE(imgfread(g, path("a.imgf").c_str())); });
  EXPECT_EQ(getvalue(g, 1, 1), 0x34);  // the low byte
  EXPECT_EQ(getvalue(g, 2, 1), 0xFF);
  printed([&] { EXPECT_TRUE(imgfread(w, path("a.imgf").c_str())); });
  EXPECT_EQ(getvalue(w, 1, 1), 0x1234);
  writebytes(path("b.imgf"), file(8, 2, "ab"));
  std::vector<std::string> lines = printed([&] { imgfread(g, path("b.imgf").c_str()); });
  EXPECT_EQ(lines.back(), "  Error - compressed file (2)!");
  EXPECT_EQ(getvalue(g, 2, 1), 9);  // sized, and filled with the background value
  writebytes(path("c.imgf"), file(12, 1, "abcdef"));
  lines = printed([&] { imgfread(g, path("c.imgf").c_str()); });
  EXPECT_EQ(lines.back(), "  Error - wrong bit depth (12)!");
}

TEST(Dispatch, ReadersAndWritersByExtensionAndKind) {
  const auto reader = [](const char* ext) {
    const timageformat* r = formatrow(imageformats(), utf16(ext), false);
    return r ? r->read : nullptr;
  };
  EXPECT_EQ(reader("pgm"), pnmread);
  EXPECT_EQ(reader("pam.gz"), pnmread);
  EXPECT_EQ(reader("dib"), bmpread);
  EXPECT_EQ(reader("t2"), imgfread);
  EXPECT_EQ(reader("png"), nullptr);
  EXPECT_EQ(reader("gz"), nullptr);
  // The help lists what the table writes, in the words users know.
  EXPECT_EQ(imageoutputnote(), "PNM (PBM, PGM, PPM), BMP (DIB), TGA, TIF, PNG");
  EXPECT_EQ(scalaroutputnote(), "HDR, NII, gz NII, PNM, BMP, TGA, TIF, PNG");
  EXPECT_EQ(utf16toutf8(writername("a.foo", ".ppm")), "a.foo.ppm");
  EXPECT_EQ(utf16toutf8(writername("a.pnm", ".ppm")), "a.pnm");
  EXPECT_EQ(utf16toutf8(writername("a.ppm.gz", ".ppm.gz")), "a.ppm.gz");

}

// gzip files, missing files and empty saves: the images gzip and bad-input macros.
TEST(Dispatch, FailedLoadsWithoutLibrariesAndTheirLines) {
  // gzip data under a plain name is no image: readers see no gzip by content.
  Field back(imagegray, 2, 1);
  writebytes(path("y.ppm"), std::string("\x1f\x8b\x08\x00", 4));
  setoffset(back->space, {1, 1, 1});
  std::vector<std::string> lines = printed([&] { EXPECT_FALSE(imageload(back, path("y.ppm").c_str(), imagergb)); });
  EXPECT_EQ(lines.back().substr(0, 24), "  Bad Magic Identifier (");
  EXPECT_TRUE(fieldempty(back.f));
  EXPECT_EQ(back->space.offset[0], 0);
  lines = printed([&] { imageload(back, path("z.png").c_str(), imagergb); });
  EXPECT_EQ(lines.back(), "  Couldn't read File (" + path("z.png") + ")! Create empty field.");
  writebytes(path("z.jpg"), "x");
  lines = printed([&] { imageload(back, path("z.jpg").c_str(), imagergb); });
  EXPECT_EQ(lines.back(), "  Couldn't read File (" + path("z.jpg") + ")! Create empty field.");
  lines = printed([&] { imageload(back, path("z.jpg").c_str(), 99); });
  EXPECT_EQ(lines, std::vector<std::string>{"Unknown imagefield!"});
}
