// The line cloud's operations on small clouds with answers worked out by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "geometry/cloudbuild.h"
#include "geometry/lineops.h"

namespace {

tcloud cloudof(std::initializer_list<std::initializer_list<tcloudpoint>> lines) {
  tcloud c;
  fieldcreate(c);
  int64_t tag = 0;
  for (const auto& l : lines) {
    for (const tcloudpoint& p : l) addpoint(c, p);
    closeline(c, ++tag);
  }
  closeobject(c, "lines");
  return c;
}

std::vector<double> tvalues(const tcloud& c) {
  std::vector<double> t;
  for (int64_t i = 1; i <= c.points.length; ++i) t.push_back(c.points.get(i)[3]);
  return t;
}

TEST(LineOps, BuildingCountsLinesAndObjects) {
  tcloud c = cloudof({{{0, 0, 0, 0}}, {{0, 0, 0, 0}, {1, 0, 0, 0}}, {{0, 0, 0, 0}, {3, 4, 0, 0}, {3, 4, 12, 0}}});
  EXPECT_EQ(linecount(c), 3);
  EXPECT_EQ(c.objectstarts.length, 1);
  EXPECT_EQ(linerange(c, 3).first, 4);
  EXPECT_EQ(linerange(c, 3).last, 6);
  EXPECT_DOUBLE_EQ(linelength(c, 3), 17);
  fieldrelease(c);
}

TEST(LineOps, LinesAddedAtOnceAsPointByPoint) {
  // an open line takes the first line's points; a line of no points adds nothing; the long
  // line runs over the boundaries of the point blocks
  tcloud a, b;
  fieldcreate(a);
  fieldcreate(b);
  const tcloudpoint p{1, 2, 3, 0}, q{5, 6, 7, 0};
  addpoint(a, p);
  addpoint(b, p);
  tpointblocks blocks;
  for (const tcloudpoint& x : {q, p}) {
    addpoint(a, x);
    blocks.add({x[0], x[1], x[2]});
  }
  closeline(a, 7);
  constexpr int64_t longline = 200000;
  for (int64_t i = 0; i < longline; ++i) {
    const double x = static_cast<double>(i);
    addpoint(a, {x, -x, x / 3, 0});
    blocks.add({x, -x, x / 3});
  }
  closeline(a, 9);
  const tlineentry lines[] = {{2, 7}, {0, 8}, {longline, 9}};
  blocks.moveto(b, lines);
  EXPECT_EQ(blocks.count(), 0);
  ASSERT_EQ(b.points.length, a.points.length);
  int64_t differ = 0;
  for (int64_t i = 1; i <= a.points.length; ++i) differ += b.points.get(i) != a.points.get(i);
  EXPECT_EQ(differ, 0);
  ASSERT_EQ(linecount(b), linecount(a));
  for (int64_t l = 1; l <= linecount(a); ++l) {
    EXPECT_EQ(linerange(b, l).first, linerange(a, l).first);
    EXPECT_EQ(b.linetags.get(l), a.linetags.get(l));
  }
  EXPECT_EQ(b.objectstarts.length, 1);
  EXPECT_FALSE(b.lineopen);
  fieldrelease(a);
  fieldrelease(b);
}

TEST(LineOps, TimeFromGeometryAndStatistics) {
  tcloud c = cloudof({{{5, 5, 5, 9}}, {{0, 0, 0, 1}, {3, 4, 0, 2}, {3, 4, 12, 6}}});
  linelengths(c);  // a single point gets 0
  EXPECT_EQ(tvalues(c), (std::vector<double>{0, 0, 5, 17}));
  linenumber(c);
  EXPECT_EQ(tvalues(c), (std::vector<double>{1, 1, 2, 3}));
  linestatistic(c, tstatistic::mean);  // a one-point line keeps its t
  EXPECT_EQ(tvalues(c), (std::vector<double>{1, 2, 2, 2}));
  lineerasetmax(c, 1.5);
  EXPECT_EQ(linecount(c), 1);
  EXPECT_EQ(c.points.length, 1);
  fieldrelease(c);
}

TEST(LineOps, DuplicatesEitherWayAndErasingKeepsNames) {
  tcloud c = cloudof({{{0, 0, 0, 0}, {1, 0, 0, 0}, {2, 0, 0, 0}},
                      {{2, 0, 0, 0}, {1, 0, 0, 0}, {0, 0, 0, 0}},
                      {{0, 0, 0, 0}, {1, 0, 0, 0}, {2, 0, 0, 1}}});
  lineeraseduplicates(c);  // the reversed copy goes, the one differing in t stays
  EXPECT_EQ(linecount(c), 2);
  EXPECT_EQ(c.linetags.get(2), 3);
  EXPECT_EQ(utf16toutf8(c.objectnames.get(1)), "lines");
  lineeraseduplicatesnear(c, 1.5);
  EXPECT_EQ(linecount(c), 1);
  fieldrelease(c);
}

TEST(LineOps, CentreDiscreteAndVectors) {
  tcloud c = cloudof({{{1.2, 2.3, 4.7, 4.5}}, {{0, 0, 0, 7}, {3, 4, 0, 8}}});
  linediscrete(c, 1, true);  // ties to even
  EXPECT_EQ(c.points.get(1), (tcloudpoint{1, 2, 5, 4}));
  linevectorop(c, tvectorop::normscale, 10);
  EXPECT_NEAR(c.points.get(3)[0], 6, 1e-12);
  EXPECT_NEAR(c.points.get(3)[1], 8, 1e-12);
  EXPECT_EQ(c.points.get(3)[3], 8);
  linecenter(c);
  const tcloudpoint once = c.points.get(1);
  linecenter(c);
  EXPECT_NEAR(c.points.get(1)[0], once[0], 1e-12);
  double sum = 0;
  for (int64_t i = 1; i <= 3; ++i) sum += c.points.get(i)[1];
  EXPECT_NEAR(sum, 0, 1e-12);
  fieldrelease(c);
}

using tlines = std::vector<std::vector<tcloudpoint>>;

// Lines of 1 to 6 points on a coarse grid (so that near and equal points occur), t random,
// in two objects; line k gets tag k.
tlines randomlines(std::mt19937& rng, int n) {
  std::uniform_int_distribution<int> count(1, 6), grid(0, 3);
  std::uniform_real_distribution<double> t(-2, 2);
  tlines out(static_cast<size_t>(n));
  for (auto& l : out)
    for (int i = count(rng); i > 0; --i) l.push_back({double(grid(rng)), double(grid(rng)), double(grid(rng)), t(rng)});
  out[1].push_back(out[1].front());  // a closed line
  return out;
}

tcloud cloudfrom(const tlines& lines) {
  tcloud c;
  fieldcreate(c);
  for (size_t k = 0; k < lines.size(); ++k) {
    for (const tcloudpoint& p : lines[k]) addpoint(c, p);
    closeline(c, static_cast<int64_t>(k + 1));
    if (k + 1 == lines.size() / 2) closeobject(c, "first");
  }
  closeobject(c, "second");
  return c;
}

tlines linesof(const tcloud& c) {
  tlines out;
  for (int64_t l = 1; l <= linecount(c); ++l) {
    out.emplace_back();
    for (int64_t i = linerange(c, l).first; i <= linerange(c, l).last; ++i) out.back().push_back(c.points.get(i));
  }
  return out;
}

// Same lines, point by point, to rounding.
void expectlines(const tlines& got, const tlines& want) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t l = 0; l < got.size(); ++l) {
    ASSERT_EQ(got[l].size(), want[l].size()) << "line " << l + 1;
    for (size_t i = 0; i < got[l].size(); ++i)
      for (int k = 0; k < 4; ++k) EXPECT_NEAR(got[l][i][k], want[l][i][k], 1e-12) << "line " << l + 1 << " point " << i + 1;
  }
}

double distance(const tcloudpoint& a, const tcloudpoint& b, int dims) {
  double s = 0;
  for (int k = 0; k < dims; ++k) s += (a[k] - b[k]) * (a[k] - b[k]);
  return std::sqrt(s);
}

TEST(LineOps, DistanceCopyAndDuplicatesAgainstModels) {
  std::mt19937 rng(17);
  const tlines lines = randomlines(rng, 40);
  tcloud c = cloudfrom(lines);
  // distance: ends in x, y, z towards their neighbour, inner points in x, y, z, t to the one
  // before; closed lines (first = last with t) keep their t
  tlines want = lines;
  for (auto& l : want) {
    const auto& o = lines[static_cast<size_t>(&l - &want[0])];
    const size_t n = l.size();
    if (n == 1) l[0][3] = 0;
    if (n < 2 || o.front() == o.back()) continue;
    for (size_t i = 1; i + 1 < n; ++i) l[i][3] = distance(o[i], o[i - 1], 4);
    l[0][3] = distance(o[0], o[1], 3);
    l[n - 1][3] = distance(o[n - 1], o[n - 2], 3);
  }
  linedistance(c);
  expectlines(linesof(c), want);

  // copyscale: every point scaled, lines, tags, objects, names and frame as they were
  c.framescale = {2, 3, 4};
  tcloud copy;
  linecopy(c, copy, {2, -1, 0.5}, 3);
  tlines scaled = want;
  for (auto& l : scaled)
    for (auto& p : l) p = {p[0] * 2, -p[1], p[2] * 0.5, p[3] * 3};
  expectlines(linesof(copy), scaled);
  for (int64_t l = 1; l <= linecount(c); ++l) EXPECT_EQ(copy.linetags.get(l), l);
  ASSERT_EQ(copy.objectstarts.length, 2);
  EXPECT_EQ(copy.objectstarts.get(2), c.objectstarts.get(2));
  EXPECT_EQ(utf16toutf8(copy.objectnames.get(2)), "second");
  EXPECT_EQ(copy.framescale, c.framescale);
  fieldrelease(copy);

  // erase.duplicates.begin: a line stays when its start is farther than d from every start
  // kept before it
  tlines kept;
  for (const auto& l : want)
    if (std::none_of(kept.begin(), kept.end(), [&](const auto& k) { return distance(k[0], l[0], 3) <= 1; })) kept.push_back(l);
  lineeraseduplicatesbegin(c, 1);
  expectlines(linesof(c), kept);
  EXPECT_LT(kept.size(), want.size());
  EXPECT_EQ(utf16toutf8(c.objectnames.get(c.objectstarts.length)), "second");
  fieldrelease(c);
}

TEST(LineOps, MeanOfNearDuplicatesGoesToTheLaterPoints) {
  // clusters far apart and narrower than d, mixed through the flat point list: the first
  // point of a cluster stays, the others all become the mean of the others
  std::mt19937 rng(5);
  std::uniform_real_distribution<double> jitter(-0.2, 0.2);
  std::uniform_int_distribution<int> which(0, 4);
  std::vector<int> cluster;
  tlines lines(6);
  for (int i = 0; i < 60; ++i) {
    cluster.push_back(which(rng));
    const double centre = 10.0 * cluster.back();
    lines[static_cast<size_t>(i % 6)].push_back({centre + jitter(rng), jitter(rng), jitter(rng), jitter(rng)});
  }
  tcloud c = cloudfrom(lines);
  std::vector<tcloudpoint> before;
  for (int64_t i = 1; i <= c.points.length; ++i) before.push_back(c.points.get(i));
  std::vector<int> order;  // cluster of each point in the flat list
  for (size_t l = 0; l < 6; ++l)
    for (size_t i = l; i < 60; i += 6) order.push_back(cluster[i]);
  linemeanduplicatesnear(c, 1);
  for (int k = 0; k <= 4; ++k) {
    std::vector<size_t> members;
    for (size_t i = 0; i < order.size(); ++i)
      if (order[i] == k) members.push_back(i);
    if (members.size() < 2) continue;
    tcloudpoint mean{0, 0, 0, 0};
    for (size_t m = 1; m < members.size(); ++m)
      for (int a = 0; a < 4; ++a) mean[a] += before[members[m]][a] / static_cast<double>(members.size() - 1);
    EXPECT_EQ(c.points.get(static_cast<int64_t>(members[0]) + 1), before[members[0]]);
    for (size_t m = 1; m < members.size(); ++m)
      for (int a = 0; a < 4; ++a) EXPECT_NEAR(c.points.get(static_cast<int64_t>(members[m]) + 1)[a], mean[a], 1e-12);
  }
  fieldrelease(c);
}

}  // namespace
