#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

#include "field/arrays.h"
#include "field/imagefield.h"
#include "field/memory.h"
#include "field/scalarfield.h"
#include "ops/filter.h"
#include "ops/smooth.h"

namespace {

struct tfield {
  tscalarfield f{};
  tfield(uint8_t kind, tnatvector size) { fieldcreate(f, kind, size); }
  ~tfield() { fieldrelease(f); }
};

void fillrandom(tscalarfield& f, uint32_t seed) {
  std::mt19937 g(seed);
  const int64_t top = kindmaximum(f.kind);
  const tnatvector n = {f.gray.sizex + f.full.sizex, f.gray.sizey + f.full.sizey, f.gray.sizez + f.full.sizez};
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) setvalue(f, x, y, z, static_cast<double>(g() % (top + 1)));
}

tnatvector sizes(const tscalarfield& f) {
  return {f.gray.sizex + f.full.sizex, f.gray.sizey + f.full.sizey, f.gray.sizez + f.full.sizez};
}

std::vector<int64_t> voxels(const tscalarfield& f) {
  const tnatvector n = sizes(f);
  std::vector<int64_t> out;
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) out.push_back(getvalue(f, x, y, z));
  return out;
}

// The kernels straight from their definition: a window cut at the border, the first and
// last slice in their own plane, truncating divisions in the written order.
std::vector<int64_t> modelsmooth(const tscalarfield& f, tsmoothkind kind) {
  const tnatvector n = sizes(f);
  std::vector<int64_t> out;
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) {
        const bool flat = z == 1 || z == n[2];
        int64_t s = 0, count = 0;
        for (int64_t dz = flat ? 0 : -1; dz <= (flat ? 0 : 1); ++dz)
          for (int64_t dy = -1; dy <= 1; ++dy)
            for (int64_t dx = -1; dx <= 1; ++dx) {
              if (x + dx < 1 || x + dx > n[0] || y + dy < 1 || y + dy > n[1]) continue;
              s += getvalue(f, x + dx, y + dy, z + dz);
              ++count;
            }
        const int64_t c = getvalue(f, x, y, z);
        int64_t v = 0;
        switch (kind) {
          case tsmoothkind::soft: v = flat ? (s / count + c * 8) / 9 : (s / count + c * 26) / 27; break;
          case tsmoothkind::smooth: v = (c + s / count) / 2; break;
          case tsmoothkind::smooth0: v = c == 0 ? 0 : (c + s / count) / 2; break;
          case tsmoothkind::hard: v = s / count; break;
          case tsmoothkind::unsharp: v = std::clamp<int64_t>(2 * c - s / count, 0, kindmaximum(f.kind)); break;
        }
        out.push_back(v);
      }
  return out;
}

std::vector<int64_t> modelinterior(const tscalarfield& f, auto op) {
  const tnatvector n = sizes(f);
  const int64_t top = kindmaximum(f.kind);
  std::vector<int64_t> out;
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) {
        const bool inner = x > 1 && x < n[0] && y > 1 && y < n[1] && z > 1 && z < n[2];
        out.push_back(inner ? std::clamp<int64_t>(op(x, y, z), 0, top) : getvalue(f, x, y, z));
      }
  return out;
}

// The progress lines stay out of the test log.
class Quiet : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStdout(); }
  void TearDown() override { printed = testing::internal::GetCapturedStdout(); }
  std::string printed;
};
using Smooth = Quiet;
using Filter = Quiet;

const tsmoothkind allkinds[] = {tsmoothkind::soft, tsmoothkind::smooth, tsmoothkind::smooth0, tsmoothkind::hard,
                                tsmoothkind::unsharp};
const tnatvector shapes[] = {{5, 4, 3}, {1, 1, 1}, {2, 3, 1}, {1, 4, 2}, {6, 1, 4}, {3, 3, 3}};

TEST_F(Smooth, EveryKernelMatchesTheModelOnGrayAndFullgrayAndAnyShape) {
  for (const uint8_t kind : {scalargray, scalarfullgray})
    for (const tnatvector& shape : shapes)
      for (const tsmoothkind k : allkinds) {
        tfield t(kind, shape);
        fillrandom(t.f, 7);
        if (k == tsmoothkind::smooth0) setvalue(t.f, 1, 1, 1, 0);
        const std::vector<int64_t> want = modelsmooth(t.f, k);
        smoothfield(t.f, k, 1);
        EXPECT_EQ(voxels(t.f), want) << smoothword(k) << " kind " << int(kind) << " " << shape[0] << "x" << shape[1]
                                     << "x" << shape[2];
      }
}

TEST_F(Smooth, CheckerboardImageCornerAndInterior) {
  timagefield f{};
  fieldcreate(f, imagegray, {4, 4, 0});
  for (int64_t y = 1; y <= 4; ++y)
    for (int64_t x = 1; x <= 4; ++x) setvalue(f, x, y, (x + y) % 2 ? 255 : 0);
  smoothimage(f, tsmoothkind::hard, 1);
  EXPECT_EQ(getvalue(f, 1, 1), (0 + 255 + 255 + 0) / 4);
  EXPECT_EQ(getvalue(f, 2, 2), 4 * 255 / 9);
  EXPECT_EQ(getvalue(f, 2, 3), 5 * 255 / 9);
  fieldrelease(f);
}

// An image plane is a volume of one slice, whose model is the plane's own form.
TEST_F(Smooth, ImagePlanesMatchTheModelAndColoursStayApart) {
  for (const uint8_t kind : {imagegray, imagefullgray, imagergb})
    for (const tsmoothkind k : {tsmoothkind::soft, tsmoothkind::smooth, tsmoothkind::hard, tsmoothkind::unsharp}) {
      const int64_t nx = 6, ny = 5, passes = 2;
      tfield red(kind == imagefullgray ? scalarfullgray : scalargray, {nx, ny, 1});
      fillrandom(red.f, 4);
      timagefield f{};
      fieldcreate(f, kind, {nx, ny, 0});
      for (int64_t y = 1; y <= ny; ++y)
        for (int64_t x = 1; x <= nx; ++x) {
          const int64_t v = getvalue(red.f, x, y, 1);
          if (kind == imagergb)
            setrgb(f, x, y, {v, 255 - v, 7});
          else
            setvalue(f, x, y, static_cast<double>(v));
        }
      for (int64_t i = 0; i < passes; ++i) {
        const std::vector<int64_t> next = modelsmooth(red.f, k);
        for (int64_t j = 0; j < nx * ny; ++j) setvalue(red.f, j % nx + 1, j / nx + 1, 1, static_cast<double>(next[j]));
      }
      smoothimage(f, k, passes);
      for (int64_t y = 1; y <= ny; ++y)
        for (int64_t x = 1; x <= nx; ++x) {
          const int64_t want = getvalue(red.f, x, y, 1);
          const int64_t got = kind == imagergb ? getrgb(f, x, y)[0] : getvalue(f, x, y);
          ASSERT_EQ(got, want) << smoothword(k) << " kind " << int(kind) << " at " << x << "," << y;
          if (kind == imagergb) {
            ASSERT_EQ(getrgb(f, x, y)[2], 7);  // a plain channel stays plain
          }
        }
      fieldrelease(f);
    }
}

TEST_F(Smooth, ResultIsTheSameForOneTwoAndThirtyTwoThreads) {
  for (const tsmoothkind k : allkinds) {
    std::vector<int64_t> results[3];
    const int64_t counts[3] = {1, 2, 32};
    for (int i = 0; i < 3; ++i) {
      tfield t(scalarfullgray, {23, 17, 40});
      fillrandom(t.f, 11);
      const std::string before = testing::internal::GetCapturedStdout();
      testing::internal::CaptureStdout();
      smoothfield(t.f, k, counts[i]);
      const std::string lines = testing::internal::GetCapturedStdout();
      testing::internal::CaptureStdout();
      const std::string threads = "Working threads: 40\nParallel: " + std::to_string(counts[i]) + "\n";
      EXPECT_EQ(lines.find(threads) != std::string::npos, counts[i] > 1) << lines;
      results[i] = voxels(t.f);
    }
    EXPECT_EQ(results[0], results[1]) << smoothword(k);
    EXPECT_EQ(results[0], results[2]) << smoothword(k);
  }
}

TEST_F(Smooth, MonoFieldStaysAsItIs) {
  tfield t(scalarmono, {4, 4, 4});
  setvalue(t.f, 2, 2, 2, 1);
  const std::vector<int64_t> before = voxels(t.f);
  smoothfield(t.f, tsmoothkind::soft, 2);
  medianfield(t.f, tmediankind::mean);
  EXPECT_EQ(before, voxels(t.f));
  EXPECT_EQ(getvalue(t.f, 2, 2, 2), 1);
}

TEST_F(Filter, FreeKernelMatchesTheModelAndClamps) {
  std::array<int64_t, 27> w{};
  for (int64_t k = 0; k < 27; ++k) w[k] = (k * 7) % 11 - 4;
  for (const uint8_t kind : {scalargray, scalarfullgray})
    for (const int64_t d : {int64_t{5}, int64_t{-3}}) {
      tfield t(kind, {5, 6, 4});
      fillrandom(t.f, 3);
      const std::vector<int64_t> want = modelinterior(t.f, [&](int64_t x, int64_t y, int64_t z) {
        int64_t s = 0;
        for (int64_t k = 0; k < 27; ++k) s += w[k] * getvalue(t.f, x + k % 3 - 1, y + k / 3 % 3 - 1, z + k / 9 - 1);
        return s / d;
      });
      filterfield(t.f, w, d);
      EXPECT_EQ(voxels(t.f), want) << int(kind) << " " << d;
    }
}

TEST_F(Filter, ZeroDivisorDoesNothing) {
  tfield t(scalargray, {4, 4, 4});
  fillrandom(t.f, 5);
  const std::vector<int64_t> before = voxels(t.f);
  std::array<int64_t, 27> w{};
  w.fill(1);
  filterfield(t.f, w, 0);
  EXPECT_EQ(before, voxels(t.f));
}

TEST_F(Filter, MediansOfAxisLinesMatchTheModel) {
  for (const uint8_t kind : {scalargray, scalarfullgray})
    for (const tmediankind m : {tmediankind::add, tmediankind::mean, tmediankind::mul}) {
      tfield t(kind, {5, 4, 6});
      fillrandom(t.f, 9);
      const std::vector<int64_t> want = modelinterior(t.f, [&](int64_t x, int64_t y, int64_t z) {
        std::array<int64_t, 3> three{};
        const int64_t steps[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
        for (int i = 0; i < 3; ++i) {
          const auto* d = steps[i];
          const int64_t a = getvalue(t.f, x - d[0], y - d[1], z - d[2]), c = getvalue(t.f, x, y, z),
                        b = getvalue(t.f, x + d[0], y + d[1], z + d[2]);
          three[i] = m == tmediankind::add ? a + c + b : m == tmediankind::mean ? (a + c + b) / 3 : a * c * b;
        }
        std::sort(three.begin(), three.end());
        return three[1];
      });
      medianfield(t.f, m);
      EXPECT_EQ(voxels(t.f), want) << medianword(m) << " " << int(kind);
    }
}

TEST_F(Filter, ImageKernelWritesTheInteriorAndColoursGetTheirSum) {
  const std::array<int64_t, 9> w{1, 2, 0, -1, 4, 0, 0, 1, 3};
  timagefield f{};
  fieldcreate(f, imagergb, {5, 4, 0});
  std::vector<int64_t> sums;
  for (int64_t y = 1; y <= 4; ++y)
    for (int64_t x = 1; x <= 5; ++x) {
      setrgb(f, x, y, {x * 10, y * 20, (x * y) % 7});
      sums.push_back(x * 10 + y * 20 + (x * y) % 7);
    }
  filterimage(f, w, 4);
  for (int64_t y = 1; y <= 4; ++y)
    for (int64_t x = 1; x <= 5; ++x) {
      const trgb c = getrgb(f, x, y);
      if (x > 1 && x < 5 && y > 1 && y < 4) {
        int64_t s = 0;
        for (int64_t k = 0; k < 9; ++k) s += w[k] * sums[(x - 2 + k % 3) + (y - 2 + k / 3) * 5];
        const int64_t want = std::clamp<int64_t>(s / 4, 0, 255);
        EXPECT_EQ(c, (trgb{want, want, want})) << x << "," << y;
      } else {  // the border keeps its colour
        EXPECT_EQ(c[0] + c[1] + c[2], sums[(x - 1) + (y - 1) * 5]) << x << "," << y;
      }
    }
  fieldrelease(f);
}

TEST_F(Filter, ImageKernelSkipsSmallPlanesAndZeroDivisor) {
  timagefield f{};
  fieldcreate(f, imagegray, {3, 3, 0});
  for (int64_t i = 0; i < 9; ++i) setvalue(f, i % 3 + 1, i / 3 + 1, static_cast<double>(i * 20));
  const std::array<int64_t, 9> ones{1, 1, 1, 1, 1, 1, 1, 1, 1};
  filterimage(f, ones, 9);
  EXPECT_EQ(getvalue(f, 2, 2), 80);
  fieldcreate(f, imagegray, {4, 3, 0});
  for (int64_t i = 0; i < 12; ++i) setvalue(f, i % 4 + 1, i / 4 + 1, static_cast<double>(i * 20));
  filterimage(f, ones, 0);
  EXPECT_EQ(getvalue(f, 2, 2), 100);
  filterimage(f, ones, 9);
  EXPECT_EQ(getvalue(f, 2, 2), (0 + 20 + 40 + 80 + 100 + 120 + 160 + 180 + 200) / 9);
  fieldrelease(f);
}

// The vote from its definition, on the program's own frequency sort.
int64_t modelvote(const tscalarfield& f, int64_t x, int64_t y, int64_t z, int64_t t) {
  const tnatvector n = sizes(f);
  if (getvalue(f, x, y, z) == 0) return 0;
  twordlist list{};
  list.createdynamic();
  for (int64_t dz = -1; dz <= 1; ++dz)
    for (int64_t dy = -1; dy <= 1; ++dy)
      for (int64_t dx = -1; dx <= 1; ++dx)
        if (x + dx >= 1 && x + dx <= n[0] && y + dy >= 1 && y + dy <= n[1])
          list.add(static_cast<uint16_t>(getvalue(f, x + dx, y + dy, z + dz)));
  list.frequencysort();
  int64_t v = list.get(list.length);
  if (v == 0 && list.getchecked(t) != 0)
    for (int64_t k = list.length; k > t; --k)
      if (list.get(k) != 0) {
        v = list.get(k);
        break;
      }
  list.release();
  return v;
}

TEST_F(Smooth, LabelVoteMatchesTheModelAndKeepsLabels) {
  for (const uint8_t kind : {scalargray, scalarfullgray})
    for (const int64_t t : {int64_t{10}, int64_t{3}, int64_t{30}}) {
      tfield f(kind, {6, 5, 5});
      std::mt19937 g(2);
      const int64_t labels[] = {0, 0, 0, 7, 7, 300, 12};
      for (int64_t z = 1; z <= 5; ++z)
        for (int64_t y = 1; y <= 5; ++y)
          for (int64_t x = 1; x <= 6; ++x)
            setvalue(f.f, x, y, z, static_cast<double>(labels[g() % 7] % (kindmaximum(kind) + 1)));
      std::vector<int64_t> want;
      for (int64_t z = 1; z <= 5; ++z)
        for (int64_t y = 1; y <= 5; ++y)
          for (int64_t x = 1; x <= 6; ++x)
            want.push_back(z == 1 || z == 5 ? getvalue(f.f, x, y, z) : modelvote(f.f, x, y, z, t));
      const std::vector<int64_t> before = voxels(f.f);
      labelsmoothfield(f.f, t);
      const std::vector<int64_t> after = voxels(f.f);
      EXPECT_EQ(after, want) << int(kind) << " " << t;
      for (const int64_t v : after) EXPECT_NE(std::find(before.begin(), before.end(), v), before.end());
    }
}

}  // namespace
