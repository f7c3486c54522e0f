// The TIFF writer: header, pixel block, and the fixed directory whose strip byte count and
// sample range entries carry the program's values as they stand, for 8-bit data as well.
// Fullgray and rgb files are read back by Pillow in images_clients.sh.
#include "imagetest.h"

#include "formats/tiff.h"

using namespace imagetest;

namespace {

struct Entry {
  uint32_t tag, type, count, value;
};

std::vector<Entry> directory(const std::string& t, size_t at) {
  std::vector<Entry> out;
  const uint32_t n = getle16(t, at);
  for (uint32_t i = 0; i < n; ++i) {
    const size_t e = at + 2 + 12 * i;
    const uint32_t type = getle16(t, e + 2);
    const uint32_t count = getle32(t, e + 4);
    out.push_back({getle16(t, e), type, count, type == 3 && count == 1 ? getle16(t, e + 8) : getle32(t, e + 8)});
  }
  return out;
}

}  // namespace

TEST(TiffWrite, GrayKeepsTheFixedTagTable) {
  Field g(imagegray, 3, 2);
  setvalue(g, 3, 2, 9);
  printed([&] { EXPECT_TRUE(tiffwrite(g, path("g.tif").c_str())); });
  const std::string t = readbytes(path("g.tif"));
  EXPECT_EQ(t.substr(0, 4), std::string("II*\0", 4));
  EXPECT_EQ(getle32(t, 4), 3u * 2 + 8);
  EXPECT_EQ(t[8 + 5], 9);
  const std::vector<Entry> d = directory(t, 14);
  ASSERT_EQ(d.size(), 13u);
  const uint32_t wh2 = 12;  // w * h * 2
  const std::vector<std::array<uint32_t, 4>> expected = {
      {256, 4, 1, 3}, {257, 4, 1, 2}, {258, 3, 1, 8}, {259, 3, 1, 1}, {262, 3, 1, 1},
      {273, 4, 1, 8}, {274, 3, 1, 1}, {277, 3, 1, 1}, {278, 4, 1, 2}, {279, 4, 1, wh2},
      {280, 3, 1, wh2 + 170}, {281, 3, 1, wh2 + 172}, {284, 3, 1, 1}};
  for (size_t i = 0; i < 13; ++i) {
    SCOPED_TRACE(expected[i][0]);
    EXPECT_EQ(d[i].tag, expected[i][0]);
    EXPECT_EQ(d[i].type, expected[i][1]);
    EXPECT_EQ(d[i].count, expected[i][2]);
    EXPECT_EQ(d[i].value, expected[i][3]);
  }
  const size_t tail = 14 + 2 + 13 * 12;
  ASSERT_EQ(t.size(), tail + 8);
  EXPECT_EQ(t.substr(tail), std::string("\0\0\0\0\0\0\xFF\0", 8));
}
