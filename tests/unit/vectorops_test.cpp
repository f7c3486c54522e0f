#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "field/owned.h"
#include "field/tensorfield.h"
#include "field/vectorfield.h"
#include "orientation/vectoraccess.h"
#include "orientation/vectorderive.h"
#include "orientation/vectorsmooth.h"

namespace {

// A field whose vectors are read and written by coordinates through the kind's array.
struct tfield {
  tvectorfield f{};
  tfield(uint8_t kind, tnatvector size) { fieldcreate(f, kind, size); }
  ~tfield() { fieldrelease(f); }
  tnatvector size() const { return fieldsize(f); }
  tvector get(int64_t x, int64_t y, int64_t z) const {
    tvector v{0, 0, 0};
    eachstorage(f, [&](const auto& a) { v = readvector(a.getchecked(x, y, z)); });
    return v;
  }
  void set(int64_t x, int64_t y, int64_t z, const tvector& v) {
    eachstorage(f, [&](auto& a) { a.put(x, y, z, writevector<vectorelement<decltype(a)>>(v)); });
  }
  std::vector<tvector> all() const {
    std::vector<tvector> out;
    eachvector(f, [&](const tvector& v) { out.push_back(v); });
    return out;
  }
};

// Small whole numbers, so that every sum is exact whatever its order; `span` sets how
// often neighbours tie.
void fillrandom(tfield& t, uint32_t seed, int span) {
  std::mt19937 g(seed);
  const bool bytes = t.f.kind == vectorrgb;
  const tnatvector n = t.size();
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) {
        tvector v;
        for (double& c : v) c = static_cast<double>(static_cast<int>(g() % (span + 1)) - (bytes ? 0 : span / 2));
        t.set(x, y, z, v);
      }
}

// The filters from their definition: inner voxels only, each from the field before the pass.
std::vector<tvector> modelsmooth(const tfield& t, tvectorsmooth kind) {
  const tnatvector n = t.size();
  tfield out(t.f.kind, n);
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) {
        const tvector c = t.get(x, y, z);
        const bool inner = x > 1 && x < n[0] && y > 1 && y < n[1] && z > 1 && z < n[2];
        // The 27 summed along z, then y, then x: one order of the exact sum, so that
        // sums of fractions after a first pass agree to the bit.
        tvector all{0, 0, 0}, corners{0, 0, 0}, r = c;
        for (int k = 0; k < 3; ++k) {
          double rows[3] = {0, 0, 0};
          for (int dx = -1; dx <= 1; ++dx)
            for (int dy = -1; dy <= 1; ++dy) {
              double column = t.get(x + dx, y + dy, z - 1)[k];
              column += t.get(x + dx, y + dy, z)[k];
              column += t.get(x + dx, y + dy, z + 1)[k];
              rows[dx + 1] = dy == -1 ? column : rows[dx + 1] + column;
            }
          all[k] = rows[0] + rows[1] + rows[2];
          for (int dz : {-1, 1})
            for (int dy : {-1, 1})
              for (int dx : {-1, 1}) corners[k] += t.get(x + dx, y + dy, z + dz)[k];
        }
        if (inner)
          for (int k = 0; k < 3; ++k) {
            if (kind == tvectorsmooth::smooth) r[k] = all[k] / 27;
            if (kind == tvectorsmooth::soft) r[k] = (corners[k] / 26 + c[k]) / 2;
            if (kind == tvectorsmooth::hard) r[k] = corners[k] / 26;
          }
        out.set(x, y, z, r);
      }
  return out.all();
}

// Sorted 27 per component with outside zero, entries 7, 14, 19.
std::vector<tvector> modeloutliers(const tfield& t, double f, int64_t& count) {
  const tnatvector n = t.size();
  tfield out(t.f.kind, n);
  count = 0;
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) {
        const tvector c = t.get(x, y, z);
        tvector medians;
        bool outlier = false;
        for (int k = 0; k < 3; ++k) {
          std::vector<double> list;
          for (int dz = -1; dz <= 1; ++dz)
            for (int dy = -1; dy <= 1; ++dy)
              for (int dx = -1; dx <= 1; ++dx) list.push_back(t.get(x + dx, y + dy, z + dz)[k]);
          std::sort(list.begin(), list.end());
          const double iqr = std::abs(list[6] - list[18]);
          medians[k] = list[13];
          if (c[k] < list[13] - f * iqr || c[k] > list[13] + f * iqr) outlier = true;
        }
        out.set(x, y, z, outlier ? medians : c);
        count += outlier;
      }
  return out.all();
}

class Quiet : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStdout(); }
  void TearDown() override { printed = testing::internal::GetCapturedStdout(); }
  std::string printed;
};
using VectorFilters = Quiet;
using VectorFields = Quiet;

const uint8_t allkinds[] = {vectorfloat, vectorinteger, vectorrgb};
const tnatvector shapes[] = {{5, 4, 3}, {3, 3, 3}, {6, 5, 4}, {4, 4, 2}, {1, 5, 5}};

TEST_F(VectorFilters, ThreeSmoothingsMatchTheModelForEveryKindAndShapeOverTwoPasses) {
  for (const uint8_t kind : allkinds)
    for (const tnatvector& shape : shapes)
      for (const tvectorsmooth k : {tvectorsmooth::soft, tvectorsmooth::smooth, tvectorsmooth::hard}) {
        tfield t(kind, shape);
        fillrandom(t, 11, 200);
        const std::vector<tvector> once = modelsmooth(t, k);
        smoothvectors(t.f, k, 1, 1);
        ASSERT_EQ(t.all(), once) << int(kind) << " " << int(k) << " " << shape[0] << shape[1] << shape[2];
        const std::vector<tvector> twice = modelsmooth(t, k);
        smoothvectors(t.f, k, 1, 2);
        EXPECT_EQ(t.all(), twice) << int(kind) << " " << int(k);
      }
}

TEST_F(VectorFilters, SmoothIsBitIdenticalForOneTwoAndThirtyTwoThreads) {
  std::vector<std::vector<tvector>> results;
  for (const int64_t threads : {1, 2, 32}) {
    tfield t(vectorfloat, {9, 8, 12});
    std::mt19937 g(5);
    std::uniform_real_distribution<double> u(-1, 1);
    for (int64_t i = 1; i <= t.f.real.length; ++i) t.f.real.put(i, {u(g), u(g), u(g)});
    smoothvectors(t.f, tvectorsmooth::smooth, 3, threads);
    results.push_back(t.all());
  }
  EXPECT_EQ(0, std::memcmp(results[0].data(), results[1].data(), results[0].size() * sizeof(tvector)));
  EXPECT_EQ(0, std::memcmp(results[0].data(), results[2].data(), results[0].size() * sizeof(tvector)));
}

TEST_F(VectorFilters, OutliersMatchTheModelWithManyTiesForEveryKind) {
  for (const uint8_t kind : allkinds)
    for (const int span : {2, 40})
      for (const double factor : {0.0, 0.5, 2.0}) {
        tfield t(kind, {5, 4, 3});
        fillrandom(t, 3 + span, span);
        int64_t want = 0;
        const std::vector<tvector> model = modeloutliers(t, factor, want);
        EXPECT_EQ(removeoutliers(t.f, factor), want) << int(kind) << " " << span << " " << factor;
        EXPECT_EQ(t.all(), model);
      }
}

// What a macro cannot read back: the tensors, in both tensor kinds, of an integer field.
TEST_F(VectorFields, TensorsOfEachKindAreTheOuterProduct) {
  for (const uint8_t kind : {vectorfloat, vectorinteger}) {
    tfield t(vectorinteger, {2, 2, 3});
    t.set(2, 1, 3, {2, -3, 5});
    tlocalfield<ttensorfield> tensors;
    ttensorfield& out = *tensors;
    orientationtensors(t.f, out, kind, 2);
    tvector d{}, o{};
    eachstorage(out, [&, first = true](const auto& a) mutable {
      (first ? d : o) = readvector(a.get(2, 1, 3));
      first = false;
    });
    EXPECT_EQ(d, (tvector{4, 9, 25}));
    EXPECT_EQ(o, (tvector{-6, 10, -15}));
    EXPECT_EQ(fieldsize(out), (tnatvector{2, 2, 3}));
  }
}

}  // namespace
