#include "field/arrays.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace {

// Deterministic values with many repeats, in the range of the element type.
template <class T>
std::vector<T> sample(int64_t n, uint64_t seed) {
  std::vector<T> v;
  uint64_t s = seed * 6364136223846793005ULL + 1442695040888963407ULL;
  for (int64_t i = 0; i < n; ++i) {
    s = s * 6364136223846793005ULL + 1442695040888963407ULL;
    const auto r = static_cast<int64_t>((s >> 33) % 23);
    if constexpr (std::is_floating_point_v<T>)
      v.push_back(static_cast<T>(r) * 0.75 - 5.0);
    else if constexpr (std::is_signed_v<T>)
      v.push_back(static_cast<T>(r * 1000003 - 9000000));
    else
      v.push_back(static_cast<T>(r * 11));
  }
  return v;
}

template <class L>
void load(L& list, const std::vector<typename L::elementtype>& values) {
  list.create(static_cast<int64_t>(values.size()));
  for (size_t i = 0; i < values.size(); ++i) list.put(static_cast<int64_t>(i + 1), values[i]);
}

template <class L>
std::vector<typename L::elementtype> contents(const L& list) {
  std::vector<typename L::elementtype> out;
  for (int64_t i = 1; i <= list.length; ++i) out.push_back(list.get(i));
  return out;
}

const int64_t lengths[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 17, 100};

template <class L>
class ArrayNumberList : public testing::Test {};
using tnumbertypes = testing::Types<treallist, tintlist, twordlist, tbytelist>;
TYPED_TEST_SUITE(ArrayNumberList, tnumbertypes);

}  // namespace

TYPED_TEST(ArrayNumberList, SummariesAgreeWithBruteForce) {
  using T = typename TypeParam::elementtype;
  for (const int64_t n : lengths) {
    const auto v = sample<T>(n, static_cast<uint64_t>(n));
    TypeParam list{};
    load(list, v);
    SCOPED_TRACE(n);
    if (n == 0) {
      EXPECT_EQ(list.min(), TypeParam::greatest());
      EXPECT_EQ(list.max(), TypeParam::smallest());
      EXPECT_EQ(list.maxindex(), 0);
      EXPECT_EQ(list.sum(), 0);
      EXPECT_EQ(list.mean(), 0.0);
      EXPECT_EQ(list.sd(), 0.0);
    } else {
      EXPECT_EQ(list.min(), *std::min_element(v.begin(), v.end()));
      EXPECT_EQ(list.max(), *std::max_element(v.begin(), v.end()));
      EXPECT_EQ(list.maxindex(), std::max_element(v.begin(), v.end()) - v.begin() + 1);
      double sum = 0;
      for (const T x : v) sum += static_cast<double>(x);
      EXPECT_DOUBLE_EQ(static_cast<double>(list.sum()), sum);
      const double mean = sum / static_cast<double>(n);
      EXPECT_DOUBLE_EQ(list.mean(), mean);
      double squares = 0;
      for (const T x : v) squares += (static_cast<double>(x) - mean) * (static_cast<double>(x) - mean);
      if (n < 2)
        EXPECT_EQ(list.sd(), 0.0);
      else
        EXPECT_NEAR(list.sd(), std::sqrt(squares / static_cast<double>(n - 1)), 1e-9 * (1 + std::abs(mean)));
    }
    list.release();
  }
}

TYPED_TEST(ArrayNumberList, SortAndSortIndex) {
  using T = typename TypeParam::elementtype;
  for (const int64_t n : lengths) {
    const auto v = sample<T>(n, static_cast<uint64_t>(n) + 7);
    auto expected = v;
    std::sort(expected.begin(), expected.end());
    TypeParam list{};
    load(list, v);
    SCOPED_TRACE(n);

    tintlist index{};
    list.sortindex(index);
    ASSERT_EQ(index.length, n);
    std::vector<int64_t> seen;
    for (int64_t k = 1; k <= n; ++k) {
      seen.push_back(index.get(k));
      EXPECT_EQ(list.get(index.get(k)), expected[static_cast<size_t>(k - 1)]);
    }
    std::sort(seen.begin(), seen.end());
    for (int64_t k = 1; k <= n; ++k) EXPECT_EQ(seen[static_cast<size_t>(k - 1)], k);
    EXPECT_EQ(contents(list), v);  // the list itself stays

    list.sort();
    EXPECT_TRUE(list.sorted);
    EXPECT_EQ(contents(list), expected);
    if (n > 0) {
      list.put(1, list.get(1));
      EXPECT_FALSE(list.sorted);  // any write clears the flag
    }
    index.release();
    list.release();
  }
}

TYPED_TEST(ArrayNumberList, QuantilesTakeTheLowerMiddle) {
  using T = typename TypeParam::elementtype;
  for (const int64_t n : lengths) {
    const auto v = sample<T>(n, static_cast<uint64_t>(n) + 21);
    auto s = v;
    std::sort(s.begin(), s.end());
    // 1-based positions in the sorted list; position 0 reads the default.
    const auto at = [&](int64_t k) { return k >= 1 && k <= n ? s[static_cast<size_t>(k - 1)] : T{}; };
    T q1{}, q2{}, q3{};
    if (n % 2 == 1) {
      q1 = at(n / 4 + 1), q2 = at(n / 2 + 1), q3 = at(n / 4 * 3 + 1);
    } else if (n > 0) {
      q1 = at(n / 4), q2 = at(n / 2), q3 = at(n / 4 * 3);
    }
    TypeParam list{};
    load(list, v);
    SCOPED_TRACE(n);
    EXPECT_EQ(list.quantile25(), q1);
    EXPECT_EQ(list.median(), q2);
    EXPECT_EQ(list.quantile75(), q3);
    const tvector all = list.quartiles();
    EXPECT_EQ(all[0], static_cast<double>(q1));
    EXPECT_EQ(all[1], static_cast<double>(q2));
    EXPECT_EQ(all[2], static_cast<double>(q3));
    list.release();
  }
}

TYPED_TEST(ArrayNumberList, FindOnSortedAndUnsortedLists) {
  using T = typename TypeParam::elementtype;
  for (const int64_t n : lengths) {
    auto v = sample<T>(n, static_cast<uint64_t>(n) + 3);
    TypeParam list{};
    load(list, v);
    SCOPED_TRACE(n);
    for (int pass = 0; pass < 2; ++pass) {
      if (pass == 1) {
        list.sort();
        std::sort(v.begin(), v.end());
      }
      for (int64_t r = 0; r < 23; ++r) {
        const T probe = sample<T>(1, static_cast<uint64_t>(r) + 1000)[0];
        const auto equalat = std::find(v.begin(), v.end(), probe);
        EXPECT_EQ(list.find(probe), equalat == v.end() ? 0 : equalat - v.begin() + 1);
        const auto notbelow = std::find_if(v.begin(), v.end(), [&](T x) { return x >= probe; });
        EXPECT_EQ(list.findnotbelow(probe), notbelow == v.end() ? 0 : notbelow - v.begin() + 1);
      }
    }
    list.release();
  }
}

TYPED_TEST(ArrayNumberList, SmoothUsesTheSmoothedLeftNeighbour) {
  using T = typename TypeParam::elementtype;
  for (const int64_t n : lengths) {
    const auto v = sample<T>(n, static_cast<uint64_t>(n) + 11);
    std::vector<double> w(v.begin(), v.end());
    for (size_t i = 1; i + 1 < w.size(); ++i) {
      const double x = (w[i] + (w[i - 1] + w[i + 1]) / 2) / 2;
      w[i] = std::is_integral_v<T> ? std::nearbyint(x) : x;
    }
    TypeParam list{};
    load(list, v);
    list.smooth121();
    SCOPED_TRACE(n);
    for (int64_t i = 1; i <= n; ++i) EXPECT_EQ(static_cast<double>(list.get(i)), w[static_cast<size_t>(i - 1)]);
    list.release();
  }
}

TEST(ArrayIntList, FrequencySortPutsTheMostFrequentLast) {
  for (const int64_t n : lengths) {
    const auto v = sample<int64_t>(n, static_cast<uint64_t>(n) + 40);
    std::map<int64_t, int64_t> counts;
    for (const int64_t x : v) ++counts[x];
    tintlist list{};
    load(list, v);
    list.frequencysort();
    const auto got = contents(list);
    SCOPED_TRACE(n);
    ASSERT_EQ(static_cast<int64_t>(got.size()), n);
    // Runs of equal values, each value in one run of its full count, counts ascending.
    int64_t lastcount = 0;
    std::map<int64_t, int64_t> runs;
    for (size_t i = 0; i < got.size();) {
      size_t j = i;
      while (j < got.size() && got[j] == got[i]) ++j;
      const auto run = static_cast<int64_t>(j - i);
      EXPECT_EQ(runs.count(got[i]), 0u);
      runs[got[i]] = run;
      EXPECT_EQ(run, counts[got[i]]);
      EXPECT_GE(run, lastcount);
      lastcount = run;
      i = j;
    }
    EXPECT_EQ(runs, counts);
    list.release();
  }
}

TEST(ArrayNumberListEdges, NaNDoesNotBreakTheSort) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  treallist list{};
  load(list, {3, nan, 1, 2, nan, 0});
  list.sort();
  EXPECT_EQ(list.length, 6);
  int nans = 0;
  for (int64_t i = 1; i <= 6; ++i) nans += std::isnan(list.get(i)) ? 1 : 0;
  EXPECT_EQ(nans, 2);
  EXPECT_EQ(list.find(nan), 0);
  EXPECT_EQ(list.min(), 0.0);
  list.release();
}

TEST(ArrayLists, TuplesSortByTheChosenComponent) {
  tvectorlist list{};
  list.createdynamic();
  list.add({1, 9, 5});
  list.add({2, 7, 6});
  list.add({3, 8, 4});
  list.sort(2);
  EXPECT_TRUE(list.issortedby(2));
  EXPECT_FALSE(list.issortedby(1));
  EXPECT_EQ(list.get(1), (tvector{2, 7, 6}));
  EXPECT_EQ(list.get(3), (tvector{1, 9, 5}));
  list.sort(3);
  EXPECT_EQ(list.get(1)[2], 4);
  list.put(1, {0, 0, 0});
  EXPECT_FALSE(list.issortedby(3));
  list.sort(4);  // no such component: nothing
  EXPECT_EQ(list.get(1), (tvector{0, 0, 0}));
  list.release();

  tcountlist pairs{};
  pairs.createdynamic();
  pairs.add({5, 2});
  pairs.add({1, 3});
  pairs.sort();
  EXPECT_EQ(pairs.get(1)[0], 1);
  EXPECT_EQ(pairs.find({5, 2}), 2);
  pairs.release();
}

TEST(ArrayBits, AllSetLooksOnlyAtUsedBits) {
  for (const int64_t n : {1, 7, 8, 9, 16, 21}) {
    tbitlist bits{};
    bits.create(n);
    EXPECT_FALSE(bits.allset());
    for (int64_t i = 1; i <= n; ++i) bits.put(i, true);
    EXPECT_TRUE(bits.allset()) << n;
    bits.put(n, false);
    EXPECT_FALSE(bits.allset()) << n;
    bits.fill(true);
    EXPECT_TRUE(bits.allset()) << n;
    bits.release();
  }
}

TEST(ArrayBits, VolumeIsBoundsTested) {
  tbitvolume v{};
  v.create(3, 4, 5);
  EXPECT_EQ(v.count, 60);
  v.defaultvalue = true;
  EXPECT_TRUE(v.getchecked(0, 1, 1));
  v.putchecked(0, 1, 1, true);
  v.putchecked(4, 1, 1, true);
  v.putchecked(1, 1, 6, true);
  for (int64_t i = 1; i <= 60; ++i) EXPECT_FALSE(v.get(i)) << i;
  v.putchecked(3, 4, 5, true);
  EXPECT_TRUE(v.get(60));
  EXPECT_TRUE(v.getchecked(3, 4, 5));
  v.release();
}

TEST(ArrayBits, LineWalksInFixedPoint) {
  tbitvolume v{};
  v.create(12, 12, 12);
  v.line({4, 4, 4}, {4, 4, 4}, true);  // zero length: one point
  int64_t set = 0;
  for (int64_t i = 1; i <= v.count; ++i) set += v.get(i) ? 1 : 0;
  EXPECT_EQ(set, 1);
  EXPECT_TRUE(v.get(4, 4, 4));
  v.fill(false);

  // Steps of 65535 / 65536 per voxel: the walk starts exactly and falls short of the end.
  v.line({1, 2, 3}, {11, 2, 3}, true);
  for (int64_t x = 1; x <= 12; ++x) EXPECT_EQ(v.getchecked(x, 2, 3), x <= 10) << x;
  v.fill(false);
  v.line({11, 2, 3}, {1, 2, 3}, true);  // backwards the shift floors towards the start
  for (int64_t x = 1; x <= 12; ++x) EXPECT_EQ(v.getchecked(x, 2, 3), x >= 1 && x <= 11) << x;
  v.line({-5, -5, -5}, {0, 0, 0}, true);  // outside: nothing, no fault
  v.release();
}

TEST(ArrayPlanes, ResizeRewrapsTheLinearOrder) {
  tintplane p{};
  p.create(10, 10);
  for (int64_t i = 1; i <= 100; ++i) p.put(i, i);
  p.resize(20, 5);
  EXPECT_EQ(p.sizex, 20);
  EXPECT_EQ(p.sizey, 5);
  EXPECT_TRUE(p.sorted);
  for (int64_t y = 1; y <= 5; ++y)
    for (int64_t x = 1; x <= 20; ++x) EXPECT_EQ(p.get(x, y), x + (y - 1) * 20);
  p.resize(3, 0);
  EXPECT_EQ(p.sizex, 0);
  EXPECT_EQ(p.sizey, 0);
  p.release();
}

TEST(ArrayPlanes, Drawing) {
  tbyteplane p{};
  p.create(6, 4);
  p.value = 200;
  p.hline(5, 2, 1);
  p.vline(6, 4, 2);
  p.drawpoint(1, 4);
  p.drawpoint(7, 4);  // outside: ignored
  for (int64_t x = 1; x <= 6; ++x) EXPECT_EQ(p.get(x, 1), x >= 2 && x <= 5 ? 200 : 0);
  for (int64_t y = 1; y <= 4; ++y) EXPECT_EQ(p.get(6, y), y >= 2 ? 200 : 0);
  EXPECT_EQ(p.get(1, 4), 200);
  p.hline(5, 8, 3);  // past the right edge it runs on into the next row, never past the block
  EXPECT_EQ(p.get(1, 4), 200);
  EXPECT_EQ(p.get(2, 4), 200);
  p.hline(1, 30, 4);
  p.value = 100;
  p.blendvline(3, 1, 2);  // (old * 3 + value) >> 2
  EXPECT_EQ(p.get(3, 1), (200 * 3 + 100) >> 2);
  EXPECT_EQ(p.get(3, 2), 100 >> 2);
  p.release();
}

TEST(ArrayNames, FindScansOrUsesTheOrder) {
  tnamelist names{};
  names.createdynamic();
  for (const char* n : {"DEFAULT", "b", "A", "a", "B", "a"}) names.add(n);
  for (int pass = 0; pass < 2; ++pass) {
    if (pass == 1) names.sortorder();
    EXPECT_EQ(names.find("a"), 4);
    EXPECT_EQ(names.find("B"), 5);
    EXPECT_EQ(names.find("DEFAULT"), 1);
    EXPECT_EQ(names.find("c"), 0);
  }
  namecompareignorecase = true;
  names.sortorder();
  EXPECT_EQ(names.find("a"), 4);
  EXPECT_EQ(names.find("A"), 3);
  EXPECT_EQ(names.find("b"), 2);
  namecompareignorecase = false;
  names.put(2, "zz");  // a write makes the order stale: back to the scan
  EXPECT_EQ(names.find("zz"), 2);

  names.sort();
  for (int64_t i = 2; i <= names.length; ++i) EXPECT_FALSE(nameless(names.get(i), names.get(i - 1)));
  EXPECT_TRUE(equal(names.get(names.length), "DEFAULT"));  // shorter texts come first
  names.release();
}
