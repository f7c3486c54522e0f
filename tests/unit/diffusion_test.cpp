// The scan directions, the fixed-point line walk, the line statistics and the methods on
// hand-worked cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "orientation/diffusionmethods.h"
#include "orientation/scan.h"

namespace {

TEST(ScanDirections, RadiusOneByHand) {
  // Raw rows: i = 1 gives (0,1,0) (-1,1,0) (-1,0,0), i = 2 three times (0,0,-1); the
  // repeats go, the heap sort of three equal z leaves this order.
  const tscandirectionset d = scandirections(1);
  const std::vector<tscanpoint> want{{-1, 1, 0}, {-1, 0, 0}, {0, 1, 0}};
  EXPECT_EQ(d.points, want);
  EXPECT_DOUBLE_EQ(d.units[0][0], -1 / std::sqrt(2.0));
}

TEST(ScanDirections, LastRawEntryIsAlwaysLostAndZIsSorted) {
  for (int64_t r = 2; r <= 12; ++r) {
    const auto raw = rawscanpoints(r);
    const tscanpoint last = raw.back().point, minus{-last[0], -last[1], -last[2]};
    const tscandirectionset d = scandirections(r);
    EXPECT_EQ(std::count(d.points.begin(), d.points.end(), last), 0) << r;
    EXPECT_EQ(std::count(d.points.begin(), d.points.end(), minus), 0) << r;
    EXPECT_TRUE(std::is_sorted(d.points.begin(), d.points.end(),
                               [](const tscanpoint& a, const tscanpoint& b) { return a[2] < b[2]; }));
    for (size_t a = 0; a < d.points.size(); ++a)
      for (size_t b = a + 1; b < d.points.size(); ++b) {
        const tscanpoint& p = d.points[a];
        EXPECT_NE(p, d.points[b]);
        EXPECT_NE((tscanpoint{-p[0], -p[1], -p[2]}), d.points[b]);
      }
  }
  EXPECT_EQ(scandirections(0).points.size(), 0u);
}

TEST(ScanDirections, RandomSubsetIsDistinct) {
  int64_t next = 0;
  const tscandirectionset all = scandirections(6);
  const tscandirectionset some = scandirections(6, 10, [&](int64_t m) { return (next += 7) % m; });
  ASSERT_EQ(some.points.size(), 10u);
  for (const tscanpoint& p : some.points) EXPECT_EQ(std::count(all.points.begin(), all.points.end(), p), 1);
}

struct ScanLine : ::testing::Test {
  tscalarfield f{};
  void SetUp() override {
    fieldcreate(f, scalargray, {10, 1, 1});
    for (int64_t x = 1; x <= 10; ++x) setvalue(f, x, 1, 1, 10 * x);
  }
  void TearDown() override { fieldrelease(f); }
  std::vector<int64_t> line(int64_t a, int64_t b) {
    std::vector<int64_t> v;
    scanline(f, {a, 1, 1}, {b, 1, 1}, v);
    return v;
  }
};

TEST_F(ScanLine, ForwardFallsShortBackwardDoesNot) {
  // Steps of 65535/65536: the forward walk reads its first voxel twice and never reaches p2.
  EXPECT_EQ(line(2, 8), (std::vector<int64_t>{20, 20, 30, 40, 50, 60, 70}));
  // p1 outside reads 0: from p2 backwards, which lands on every voxel, out of the field.
  EXPECT_EQ(line(-3, 3), (std::vector<int64_t>{30, 20, 10}));
  setvalue(f, 2, 1, 1, 0);
  EXPECT_EQ(line(2, 8), (std::vector<int64_t>{80, 70, 60, 50, 40, 30}));
}

TEST_F(ScanLine, OneRunOfNonZeroValues) {
  setvalue(f, 5, 1, 1, 0);
  EXPECT_EQ(line(2, 8), (std::vector<int64_t>{20, 20, 30, 40}));  // stops at the first 0
  setvalue(f, 2, 1, 1, 0);
  setvalue(f, 8, 1, 1, 0);
  EXPECT_EQ(line(2, 8), (std::vector<int64_t>{30, 40}));  // both ends 0: the first run
  EXPECT_EQ(line(4, 4), (std::vector<int64_t>{}));
  tscalarfield mono{};
  fieldcreate(mono, scalarmono, {10, 1, 1});
  std::vector<int64_t> v{1};
  scanline(mono, {1, 1, 1}, {5, 1, 1}, v);
  EXPECT_TRUE(v.empty());
  fieldrelease(mono);
}

TEST(LineStatistic, QuantilesTakeOneEntry) {
  const std::vector<int64_t> even{5, 1, 4, 2}, odd{5, 1, 4, 2, 3}, two{7, 3};
  EXPECT_EQ(linestatistic(even, 4), 1);
  EXPECT_EQ(linestatistic(even, 5), 2);  // the lower middle, not 3
  EXPECT_EQ(linestatistic(even, 6), 4);
  EXPECT_EQ(linestatistic(odd, 4), 2);
  EXPECT_EQ(linestatistic(odd, 5), 3);
  EXPECT_EQ(linestatistic(odd, 6), 4);
  EXPECT_EQ(linestatistic(two, 4), 3);
  EXPECT_EQ(linestatistic(even, 0), 12);
  EXPECT_EQ(linestatistic(even, 1), 3);
  EXPECT_EQ(linestatistic(even, 3), 1);
  EXPECT_EQ(linestatistic(even, 7), 5);
  EXPECT_DOUBLE_EQ(linestatistic(even, 2), std::sqrt(10.0 / 3));
  EXPECT_DOUBLE_EQ(linestatistic(even, 200), std::sqrt(10.0 / 3));
  EXPECT_EQ(linestatistic({9}, 2), 0);
  EXPECT_EQ(linestatistic({}, 1), 0);
}

struct DiffusionMethods : ::testing::Test {
  tscandirectionset d;
  tdiffusionscratch w;
  tdiffusionsettings s;
  void SetUp() override {
    for (const tscanpoint& p : std::vector<tscanpoint>{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}}) {
      d.points.push_back(p);
      const double l = std::sqrt(double(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]));
      d.units.push_back({p[0] / l, p[1] / l, p[2] / l});
    }
    s.r = 8;
  }
  tscanunit run(int method, std::vector<double> v, std::vector<uint8_t> ok = {1, 1, 1, 1}) {
    s.method = method;
    return diffusionresult(s, d, v.data(), ok.data(), w);
  }
};

TEST_F(DiffusionMethods, TiesByHand) {
  EXPECT_EQ(run(1, {3, 2, 1, 5}), (tscanunit{0, 0, 1}));
  EXPECT_EQ(run(1, {3, 2, 2, 5}), (tscanunit{0, 0, 0}));            // a tie cancels
  EXPECT_EQ(run(1, {3, 2, 2, 5}, {1, 1, 0, 1}), (tscanunit{0, 2, 0}));  // unless skipped
  EXPECT_EQ(run(2, {2, 1, 1, 5}), (tscanunit{0, 0.5, 0.5}));
  EXPECT_EQ(run(2, {1, 1, 1, 5}), (tscanunit{0, 0, 0}));  // a third equal one cancels
  s.max = 0.75;
  EXPECT_EQ(run(3, {1, 1, 5, 5}), (tscanunit{0.5, 0.5, 0}));
  s.max = 0.25;
  EXPECT_EQ(run(3, {1, 1, 5, 5}), (tscanunit{0, 0, 0}));  // 4 * 0.25 is not above 2
}

TEST_F(DiffusionMethods, ConeMethodsByHand) {
  s.max = 1;
  s.angle = 50 * M_PI / 180;
  EXPECT_EQ(run(4, {1, 1, 3, 4}), (tscanunit{1, 1, 0}));
  EXPECT_EQ(run(5, {1, 1, 3, 4}), (tscanunit{1, 1, 0}));
  const tscanunit r = run(6, {1, 1, 3, 4});
  EXPECT_DOUBLE_EQ(r[0], 1 / std::sqrt(2.0));
  EXPECT_EQ(run(5, {1, 1, 3, 4}, {1, 1, 0, 0}), (tscanunit{0, 0, 0}));  // at most two accepted
  s.angle = 10 * M_PI / 180;  // (1,0,0) is 45 degrees off the mean: the pass ends at once
  EXPECT_EQ(run(5, {1, 1, 3, 4}), (tscanunit{0, 0, 0}));
  EXPECT_EQ(diffusionmethod(0), 5);
  EXPECT_EQ(diffusionmethod(7), 5);
  EXPECT_EQ(diffusionmethod(6), 6);
}

}  // namespace
