#include <gtest/gtest.h>

#include <vector>

#include "field/scalarfield.h"
#include "orientation/measure.h"

namespace {

struct tfield {
  tscalarfield f{};
  explicit tfield(tnatvector size) { fieldcreate(f, scalargray, size); }
  ~tfield() { fieldrelease(f); }
};

TEST(Measure, LadderRungs) {
  EXPECT_EQ(thicknessladder(3), (std::vector<int64_t>{3}));
  EXPECT_EQ(thicknessladder(8), (std::vector<int64_t>{2, 4, 8}));
  EXPECT_EQ(thicknessladder(31), (std::vector<int64_t>{7, 15, 31}));
  EXPECT_EQ(thicknessladder(32), (std::vector<int64_t>{2, 4, 8, 16, 32}));
}

// A slab of 3 in z and, beside it, a block deeper than the lines reach: the slab measures
// 3 in its middle and never more, the block nothing (no line of length 3 leaves it on both
// sides), the background 0; the skeleton keeps no more than the thickness.
TEST(Measure, SlabAndBlockAtOneScale) {
  tfield src({30, 30, 30}), t({0, 0, 0}), sk({0, 0, 0});
  for (int64_t z = 1; z <= 30; ++z)
    for (int64_t y = 1; y <= 30; ++y)
      for (int64_t x = 1; x <= 30; ++x) {
        const bool slab = x <= 14 && z >= 10 && z <= 12, block = x >= 17 && z >= 10 && z <= 21;
        setvalue(src.f, x, y, z, slab || block ? 100 : 0);
      }
  thicknessmap(src.f, t.f, tthickness::thickness, 3, 2, scalargray);
  thicknessmap(src.f, sk.f, tthickness::skeleton, 3, 2, scalargray);
  EXPECT_EQ(getvalue(t.f, 7, 15, 11), 3);
  for (int64_t z = 10; z <= 12; ++z) {
    EXPECT_LE(getvalue(t.f, 7, 15, z), 3) << z;
    EXPECT_LE(getvalue(sk.f, 7, 15, z), getvalue(t.f, 7, 15, z)) << z;
  }
  EXPECT_EQ(getvalue(t.f, 24, 15, 15), 0);
  EXPECT_EQ(getvalue(t.f, 7, 15, 5), 0);
}

}  // namespace
