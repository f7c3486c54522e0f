#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "field/arrays.h"
#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "ops/arithmetic.h"
#include "ops/combine.h"

namespace {

// The per-voxel statistics run on a sorted copy; they must give what the list type gives.
TEST(Combine, SortedSamplesAgreeWithTheListStatistics) {
  std::mt19937 g(7);
  for (int64_t n = 1; n <= maxoperands; ++n) {
    std::vector<int64_t> v(n);
    for (auto& x : v) x = g() % 300;
    tintlist list{};
    list.create(n);
    for (int64_t i = 1; i <= n; ++i) list.put(i, v[i - 1]);
    pixelmath::tsortedsamples s(v.data(), n);
    const tvector q = list.quartiles();
    EXPECT_EQ(s.median(), list.median()) << n;
    EXPECT_EQ(s.at(quantilepositions(n)[0]), q[0]) << n;
    EXPECT_EQ(s.at(quantilepositions(n)[2]), q[2]) << n;
    EXPECT_EQ(s.mean(), roundnat(list.mean())) << n;
    list.release();
  }
}

struct tvolume3 {
  tscalarfield f{};
  tvolume3(uint8_t kind, tnatvector size, uint32_t seed, int64_t background) {
    fieldcreate(f, kind, size);
    std::mt19937 g(seed);
    for (int64_t z = 1; z <= size[2]; ++z)
      for (int64_t y = 1; y <= size[1]; ++y)
        for (int64_t x = 1; x <= size[0]; ++x) setvalue(f, x, y, z, static_cast<double>(g() % (kindmaximum(kind) + 1)));
    setbackground(f, static_cast<double>(background));
  }
  ~tvolume3() { fieldrelease(f); }
};

// Operands of other sizes and kinds than the target read their background outside and
// the target clamps: the row walk must equal the voxel-by-voxel definition.
TEST(Combine, RowWalkEqualsTheVoxelDefinition) {
  tvolume3 a(scalarfullgray, {5, 3, 4}, 1, 1000), b(scalargray, {3, 6, 2}, 2, 9), t(scalargray, {6, 5, 3}, 3, 0);
  const tscalarfield* operands[] = {&a.f, &b.f};
  combinefields(t.f, operands, "  Test", perchannel(1, [](const int64_t* v, int64_t) { return v[0] - 3 * v[1]; }));
  for (int64_t z = 1; z <= 3; ++z)
    for (int64_t y = 1; y <= 5; ++y)
      for (int64_t x = 1; x <= 6; ++x) {
        const int64_t want = std::clamp<int64_t>(getvalue(a.f, x, y, z) - 3 * getvalue(b.f, x, y, z), 0, 255);
        ASSERT_EQ(getvalue(t.f, x, y, z), want) << x << "," << y << "," << z;
      }
}

// The same for images in the four-channel mode, with a gray and an rgb operand.
TEST(Combine, ImageChannelsReadWhatTheAccessorsRead) {
  timagefield gray{}, rgb{}, target{};
  fieldcreate(gray, imagegray, {4, 2, 1});
  fieldcreate(rgb, imagergb, {2, 3, 1});
  fieldcreate(target, imagergba, {4, 3, 1});
  std::mt19937 g(5);
  for (int64_t y = 1; y <= 3; ++y)
    for (int64_t x = 1; x <= 4; ++x) {
      setvalue(gray, x, y, static_cast<double>(g() % 256));
      setrgb(rgb, x, y, {static_cast<int64_t>(g() % 256), static_cast<int64_t>(g() % 256), static_cast<int64_t>(g() % 256)});
    }
  setbackgroundrgb(rgb, {1, 2, 3}, 40);
  const timagefield* operands[] = {&gray, &rgb};
  combineimages(target, operands, "  Test", perchannel(4, [](const int64_t* v, int64_t) { return v[0] + v[1]; }));
  for (int64_t y = 1; y <= 3; ++y)
    for (int64_t x = 1; x <= 4; ++x) {
      const trgba a = getrgba(gray, x, y), b = getrgba(rgb, x, y), got = getrgba(target, x, y);
      for (int c = 0; c < 4; ++c) ASSERT_EQ(got[c], std::min<int64_t>(a[c] + b[c], 255)) << x << "," << y << " " << c;
    }
  fieldrelease(gray);
  fieldrelease(rgb);
  fieldrelease(target);
}

}  // namespace
