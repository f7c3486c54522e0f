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

// The passes, nat rounding and vectors are in the lists macro; here the lists a pass leaves.
TEST(ListSmoothing, ShortAndTextListsStay) {
  tlistholder two(list_real, {"1", "9"});
  listsmooth(two.l, 3);
  EXPECT_EQ(two.contents(), (texts{"1", "9"}));
  tlistholder chars(list_chars, {"a", "b", "c"});
  listsmooth(chars.l, 1);
  EXPECT_EQ(chars.contents(), (texts{"a", "b", "c"}));
}

// The band, its edges, the factor and the baseline are in the lists macro.
TEST(ListOutliers, EvenCountsComponentsAndEmptyLists) {
  // An even count takes the lower middle: 1..8 gives q25 = 2, median 4, q75 = 6.
  tlistholder even(list_real, {"1", "2", "3", "4", "5", "6", "7", "10.5"});
  tlistholder flags(list_real);
  outlierfactor = 1.5;
  listoutliers(even.l, even.l, flags.l);
  EXPECT_EQ(listkind(flags.l), list_nat);
  EXPECT_EQ(flags.contents(), (texts{"0", "0", "0", "0", "0", "0", "0", "1"}));
  // Each component has its band: the y components are all 0 but one.
  tlistholder v(list_complex, {"<1, 0>", "<2, 0>", "<3, 0>", "<4, 0>", "<5, 50>"});
  listoutliers(v.l, v.l, flags.l);
  EXPECT_EQ(flags.contents(), (texts{"0", "0", "0", "0", "1"}));
  tlistholder empty(list_real);
  listoutliers(empty.l, v.l, flags.l);
  EXPECT_EQ(listlength(flags.l), 0);
}

}  // namespace
