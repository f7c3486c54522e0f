#include "library/list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "script/values.h"

namespace {

// A list of the kind holding the texts; released by the fixture's owner.
struct tlistholder {
  tlist l{};
  explicit tlistholder(uint8_t kind, const std::vector<std::string>& texts = {}) {
    fieldcreate(l, kind);
    add(texts);
  }
  ~tlistholder() { fieldrelease(l); }
  void add(const std::vector<std::string>& texts) {
    std::vector<utf16> t(texts.begin(), texts.end());
    listadd(l, t);
  }
  std::vector<std::string> contents() const {
    std::vector<std::string> out;
    for (int64_t i = 1; i <= listlength(l); ++i) out.push_back(utf16toutf8(listget(l, i)));
    return out;
  }
};

using texts = std::vector<std::string>;

TEST(ListKinds, ElementsAreReadInTheKindOfTheList) {
  tlistholder nat(list_nat, {"1.6", "2.5", "-3", "<4, 5>"});
  EXPECT_EQ(nat.contents(), (texts{"2", "2", "-3", "4"}));
  tlistholder real(list_real, {"1.5", "2*3", "50%", "abc"});
  EXPECT_EQ(real.contents(), (texts{"1.5", "6", "0.5", "0"}));
  tlistholder complex(list_complex, {"<1, 2, 3>", "5"});
  EXPECT_EQ(complex.contents(), (texts{"<1, 2>", "5"}));
  tlistholder vector(list_vector, {"<1, 2, 3, 4>", "<0, 0, 7>"});
  EXPECT_EQ(vector.contents(), (texts{"<1, 2, 3>", "<0, 0, 7>"}));
  tlistholder hyper(list_hyper, {"<1, 2, 3, 4>"});
  EXPECT_EQ(hyper.contents(), (texts{"<1, 2, 3, 4>"}));
  tlistholder chars(list_chars, {"hello world", "äöü", ""});
  EXPECT_EQ(chars.contents(), (texts{"hello w", "äöü", ""}));
  EXPECT_EQ(utf16toutf8(fielddescription(chars.l)), "chars(3)");
}

TEST(ListKinds, BackgroundIsReadOutsideAndKeptThroughANewKind) {
  tlistholder h(list_real, {"1", "2"});
  EXPECT_EQ(utf16toutf8(listget(h.l, 3)), "0");
  listsetbackground(h.l, "-1.5");
  EXPECT_EQ(utf16toutf8(listget(h.l, 0)), "-1.5");
  EXPECT_EQ(utf16toutf8(listget(h.l, 3)), "-1.5");
  fieldcreate(h.l, list_nat);  // -1.5 as a nat is -2 (ties to even)
  EXPECT_EQ(utf16toutf8(listget(h.l, 1)), "-2");
  fieldcreate(h.l, list_chars);
  listsetbackground(h.l, "nothing at all");
  EXPECT_EQ(utf16toutf8(listget(h.l, 1)), "nothing");
}

TEST(ListSmoothing, OnePassSeesTheSmoothedLeftNeighbour) {
  tlistholder real(list_real, {"0", "0", "8", "0", "0"});
  listsmooth(real.l, 1);
  EXPECT_EQ(real.contents(), (texts{"0", "2", "4.5", "1.125", "0"}));
  listsmooth(real.l, 1);
  EXPECT_EQ(real.contents(), (texts{"0", "2.125", "3.0625", "1.328125", "0"}));
  tlistholder twice(list_real, {"0", "0", "8", "0", "0"});
  listsmooth(twice.l, 2);
  EXPECT_EQ(twice.contents(), real.contents());

  tlistholder nat(list_nat, {"0", "0", "8", "0", "0"});
  listsmooth(nat.l, 1);  // 4.5 rounds to the even 4
  EXPECT_EQ(nat.contents(), (texts{"0", "2", "4", "1", "0"}));

  tlistholder vector(list_vector, {"0", "<0, 4>", "<8, 0>", "0"});
  listsmooth(vector.l, 1);
  EXPECT_EQ(vector.contents(), (texts{"0", "<2, 2>", "<4.5, 0.5>", "0"}));

  tlistholder two(list_real, {"1", "9"});
  listsmooth(two.l, 3);
  EXPECT_EQ(two.contents(), (texts{"1", "9"}));
  tlistholder chars(list_chars, {"a", "b", "c"});
  listsmooth(chars.l, 1);
  EXPECT_EQ(chars.contents(), (texts{"a", "b", "c"}));
}

TEST(ListOutliers, BandAroundTheMedianByTheQuartiles) {
  // Sorted: -3 1 2 3 4 5 6 7 100; q25 = 2, median = 4, q75 = 6; band 4 +/- 1.5 * 4.
  tlistholder h(list_real, {"1", "2", "3", "4", "5", "6", "7", "100", "-3"});
  tlistholder flags(list_real);
  outlierfactor = 1.5;
  listoutliers(h.l, h.l, flags.l);
  EXPECT_EQ(listkind(flags.l), list_nat);
  EXPECT_EQ(flags.contents(), (texts{"0", "0", "0", "0", "0", "0", "0", "1", "1"}));
  outlierfactor = 0.5;  // band 2..6
  listoutliers(h.l, h.l, flags.l);
  EXPECT_EQ(flags.contents(), (texts{"1", "0", "0", "0", "0", "0", "1", "1", "1"}));
  outlierfactor = 1.5;

  // The edges of the band are inside: -2 1 2 3 4 5 6 7 10 gives -2..10.
  tlistholder edges(list_nat, {"10", "1", "2", "3", "4", "5", "6", "7", "-2"});
  listoutliers(edges.l, edges.l, edges.l);
  EXPECT_EQ(edges.contents(), texts(9, "0"));

  // An even count takes the lower middle: 1..8 gives q25 = 2, median 4, q75 = 6.
  tlistholder even(list_real, {"1", "2", "3", "4", "5", "6", "7", "10.5"});
  listoutliers(even.l, even.l, flags.l);
  EXPECT_EQ(flags.contents(), (texts{"0", "0", "0", "0", "0", "0", "0", "1"}));
}

TEST(ListOutliers, BaselineAndComponents) {
  // Baseline 10..50: q25 = 20, median = 30, q75 = 40, band 0..60.
  tlistholder base(list_nat, {"50", "10", "40", "20", "30"});
  tlistholder h(list_real, {"5", "-1", "61", "60", "0"});
  tlistholder flags(list_real);
  outlierfactor = 1.5;
  listoutliers(h.l, base.l, flags.l);
  EXPECT_EQ(flags.contents(), (texts{"0", "1", "1", "0", "0"}));
  // Each component has its band: the y components are all 0 but one.
  tlistholder v(list_complex, {"<1, 0>", "<2, 0>", "<3, 0>", "<4, 0>", "<5, 50>"});
  listoutliers(v.l, v.l, flags.l);
  EXPECT_EQ(flags.contents(), (texts{"0", "0", "0", "0", "1"}));
  tlistholder empty(list_real);
  listoutliers(empty.l, base.l, flags.l);
  EXPECT_EQ(listlength(flags.l), 0);
}

}  // namespace
