#include "formats/sniff.h"

#include <gtest/gtest.h>

#include <string>

#include "field/imagefield.h"

namespace {
tsniff sniff(const std::string& file, const char* extension = "") {
  return sniffimage(reinterpret_cast<const uint8_t*>(file.data()), static_cast<int64_t>(file.size()), extension);
}
std::string le16(int v) { return std::string{static_cast<char>(v & 255), static_cast<char>(v >> 8)}; }
}  // namespace

TEST(Sniff, ClaimsAreHeldAgainstTheBytesThatFollow) {
  const std::string pgm = "P5\n# note\n4 3\n255\n";
  EXPECT_TRUE(sniff(pgm + std::string(12, 'x')).plausible);
  EXPECT_FALSE(sniff(pgm + std::string(11, 'x')).plausible);
  EXPECT_EQ(sniff(pgm + std::string(12, 'x')).pixels, 12);
  EXPECT_TRUE(sniff("P6\n2 2\n65535\n" + std::string(24, 'x')).plausible);
  EXPECT_FALSE(sniff("P6\n2 2\n65535\n" + std::string(23, 'x')).plausible);
  EXPECT_TRUE(sniff("P4\n9 2\n" + std::string(4, 'x')).plausible);
  EXPECT_FALSE(sniff("P4\n100000000000000000000 2\n" + std::string(400, 'x')).plausible);
  // TGA has no signature: only its extension lets the header be judged.
  const std::string tga = std::string("\0\0\2", 3) + std::string(9, '\0') + le16(3) + le16(2) + std::string("\x18\0", 2);
  EXPECT_TRUE(sniff(tga + std::string(18, 'x'), "tga").plausible);
  EXPECT_FALSE(sniff(tga + std::string(17, 'x'), "tga").plausible);
  EXPECT_FALSE(sniff(tga + std::string(17, 'x')).known);
}

TEST(Sniff, PackedFormatsAreHeldToARatioAndTheMemory) {
  auto png = [](uint32_t w, uint32_t h) {
    std::string s = "\x89PNG\r\n\x1a\n" + std::string("\0\0\0\x0dIHDR", 8);
    for (uint32_t v : {w, h})
      for (int shift = 24; shift >= 0; shift -= 8) s.push_back(static_cast<char>(v >> shift & 255));
    return s + std::string("\x08\x02\0\0\0", 5) + std::string(100, 'x');
  };
  EXPECT_TRUE(sniff(png(2000, 2000)).plausible);  // 12 MB from 133 bytes: under the floor of a packed claim
  EXPECT_FALSE(sniff(png(4096, 4096)).plausible);
  EXPECT_FALSE(sniff(png(1000000, 1000000)).plausible);
  EXPECT_FALSE(sniff(png(0, 5)).plausible);
  EXPECT_FALSE(sniffpixellimit() < 1);
  EXPECT_TRUE(plainpnm(reinterpret_cast<const uint8_t*>("P5 2 2 255 "), 11, imagegray));
  EXPECT_FALSE(plainpnm(reinterpret_cast<const uint8_t*>("P5 2 2 65535 "), 13, imagegray));
  EXPECT_FALSE(plainpnm(reinterpret_cast<const uint8_t*>("P6 2 2 255 "), 11, imagegray));
  EXPECT_TRUE(plainpnm(reinterpret_cast<const uint8_t*>("P6 2 2 255 "), 11, imagergba));
}
