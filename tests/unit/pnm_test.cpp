// PNM reading by magic number and kind, with the program's own pixel rules, and the four
// writers byte by byte.
#include "imagetest.h"

#include "formats/pnm.h"

using namespace imagetest;

namespace {

// Reads the bytes as a PNM file into a field of the kind; the console's last line.
struct Read {
  Field f;
  std::vector<std::string> lines;
  bool ok = false;
  Read(uint8_t kind, const std::string& bytes, const std::string& name = "t.pnm") : f(kind) {
    writebytes(path(name), bytes);
    lines = printed([&] { ok = pnmread(f, path(name).c_str()); });
  }
  int64_t at(int64_t x, int64_t y = 1) { return getvalue(f, x, y); }
  std::string last() const { return lines.empty() ? "" : lines.back(); }
};

}  // namespace

TEST(PnmRead, TextFormsIntoGray) {
  // P1 as a set bit 0 and a clear one 1, P6 clamped before the division and 16-bit PGM
  // low byte first: images_clients.sh on netpbm's files.
  Read packed(imagegray, "P1\n3 1\n101");
  EXPECT_EQ(packed.at(2), 1);
  EXPECT_EQ(packed.at(3), 0);
  Read p2(imagegray, "P2 3 1 255 300 -4 17");
  EXPECT_EQ(p2.at(1), 255);
  EXPECT_EQ(p2.at(2), 0);
  EXPECT_EQ(p2.at(3), 17);
  Read p3(imagegray, "P3\n1 1\n255\n30 60 91\n");
  EXPECT_EQ(p3.at(1), 60);
  Read wide(imagegray, "P2\n2 1\n1000\n1000 65535\n");
  EXPECT_EQ(wide.at(1), 3);  // value div 256
  EXPECT_EQ(wide.at(2), 255);
  Read widecolour(imagegray, "P3\n1 1\n65535\n65535 65535 1000\n");
  EXPECT_EQ(widecolour.at(1), (65535 * 2 + 1000) / 3 / 256);
  EXPECT_EQ(utf16toutf8(p3.f->name), path("t.pnm"));
}

TEST(PnmRead, BinaryFormsIntoGrayAndFullgray) {
  Read p5(imagegray, std::string("P5\n2 1\n255\n\x07\xFF", 14));
  EXPECT_EQ(p5.at(1), 7);
  EXPECT_EQ(p5.at(2), 255);
  Read p6full(imagefullgray, std::string("P6\n1 1\n255\n\xC8\xC8\xC8", 14));
  EXPECT_EQ(p6full.at(1), 200);  // 16-bit results: no clamp to 255
  Read p16(imagegray, std::string("P6\n1 1\n65535\n\xC8\x00\xC8\x00\x10\x00", 19));
  EXPECT_EQ(p16.at(1), 255 / 3);  // high bytes summed and clamped, then divided
  Read p5full(imagefullgray, std::string("P5\n1 1\n255\n\xC8", 12));
  EXPECT_EQ(p5full.at(1), 200);  // 8-bit data are not widened
  Read p1full(imagefullgray, "P1 2 1 0 1");
  EXPECT_EQ(p1full.at(1), 1);
}

TEST(PnmRead, ColourKindsTakeTheMagicAsText) {
  Read p6(imagergb, std::string("P6\n1 1\n255\n\x01\x02\x03", 14));
  EXPECT_EQ(getrgb(p6.f, 1, 1), (trgb{1, 2, 3}));
  Read p5(imagergba, std::string("P5\n1 1\n255\n\x09", 12));
  EXPECT_EQ(getrgba(p5.f, 1, 1), (trgba{9, 9, 9, 255}));
  Read p3(imagezrgb, "P3 1 1 255 4 5 6");
  EXPECT_EQ(getzrgb(p3.f, 1, 1), (trgba{65535, 4, 5, 6}));
  Read pam(imagergba, std::string("P7\nWIDTH 2\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n") +
                          "\x01\x02\x03\x04\x05\x06\x07\x08");
  ASSERT_TRUE(pam.ok);
  EXPECT_EQ(getrgba(pam.f, 2, 1), (trgba{5, 6, 7, 8}));
  Read graya(imagergba, "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 2\nMAXVAL 255\nENDHDR\n\x20\x40");
  EXPECT_EQ(getrgba(graya.f, 1, 1), (trgba{32, 32, 32, 64}));
  Read p1(imagergb, "P1 1 1 1");
  EXPECT_EQ(p1.last(), "  Bad Magic Identifier (P1)!");
  EXPECT_TRUE(fieldempty(p1.f.f));
  Read deep(imagergb, "P3 1 1 1000 1 2 3");
  EXPECT_EQ(deep.last(), "  Bad value Depth (1000) max = 255.");
}

TEST(PnmRead, BinaryColourRowsReachBeyondTheFirstBlock) {
  // Rows of 2100 bytes: the second ends behind the first 4096 bytes of the file.
  std::string samples(700 * 3 * 3, '\0');
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<char>(i % 251);
  const std::string head = "P6\n700 3\n255\n";
  Read whole(imagezrgb, head + samples);
  const int64_t last = static_cast<int64_t>(samples.size()) - 3;
  EXPECT_EQ(getzrgb(whole.f, 700, 3), (trgba{65535, last % 251, (last + 1) % 251, (last + 2) % 251}));
  Read cut(imagergb, head + samples.substr(0, 5000));
  EXPECT_EQ(cut.last(), "Wrong file size (" + std::to_string(head.size() + 5000) + ").");
  EXPECT_TRUE(fieldempty(cut.f.f));
}

TEST(PnmWrite, BitmapRowsAndTheirLengthFormula) {
  // A bit is set where the gray is below 128; rows are padded to bytes.
  Field c(imagergb, 10, 2);
  for (int64_t x = 1; x <= 10; ++x) setvalue(c, x, 1, x % 2 ? 0 : 255);
  const std::string p = path("b.pbm");
  printed([&] { pnmwrite(c, p.c_str(), tpnmform::pbm); });
  const std::string head = "P4\n#" + p + "\n10 2\n";
  const std::string file = readbytes(p);
  ASSERT_EQ(file.substr(0, head.size()), head);
  // (w - 1) mod 8 is 1, so ((w + 1) * h) div 8 = 2 bytes of the 4 that the rows hold.
  EXPECT_EQ(file.substr(head.size()), "\xAA\x80");  // widths 9 and 16: images_clients.sh
}

TEST(PnmRead, ASizeThatCannotBeHadFailsThroughTheAllocator) {
  // The file's buffer fits under the limit, the image beside it does not. (Binary gray of
  // 8 bits goes straight into the image, with no buffer: colour into gray keeps one.)
  const std::string file = "P6\n100 100\n255\n" + std::string(30000, '\x05');
  setfieldmemorylimit(fieldmemoryheld() + 35000);
  Read r(imagegray, file);
  setfieldmemorylimit(0);
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.last(), "  Wrong static allocation (Out of memory?)! Create empty field.");
  EXPECT_TRUE(fieldempty(r.f.f));
  Read again(imagegray, file);
  EXPECT_EQ(again.at(100, 100), 5);
}
