// The line cloud's operations on small clouds with answers worked out by hand.
#include <gtest/gtest.h>

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

}  // namespace
