#include "library/list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "library/stack.h"
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

TEST(ListKinds, NewFillsWithTheValueAndCopyKeepsKindAndElements) {
  tlistholder h(list_real);
  h.l.value = "<1, 2>";
  listnew(h.l, list_complex, 3);
  EXPECT_EQ(h.contents(), (texts{"<1, 2>", "<1, 2>", "<1, 2>"}));
  listnew(h.l, list_nat, -4);
  EXPECT_EQ(listlength(h.l), 0);
  tlistholder v(list_vector, {"<1, 2, 3>", "4"});
  listsetbackground(v.l, "9");
  tlistholder c(list_real);
  listcopy(v.l, c.l);
  EXPECT_EQ(listkind(c.l), list_vector);
  EXPECT_EQ(c.contents(), (texts{"<1, 2, 3>", "4"}));
  EXPECT_EQ(utf16toutf8(listget(c.l, 5)), "9");
}

TEST(ListKinds, PopFlipAndTheStackForm) {
  tlistholder h(list_real, {"1", "2", "3"});
  utf16 last;
  ASSERT_TRUE(listpop(h.l, last));
  EXPECT_EQ(utf16toutf8(last), "3");
  listflip(h.l);
  EXPECT_EQ(h.contents(), (texts{"2", "1"}));
  ASSERT_TRUE(listpop(h.l, last));
  ASSERT_TRUE(listpop(h.l, last));
  EXPECT_FALSE(listpop(h.l, last));

  tlistholder hyper(list_hyper, {"<1, 2, 3, 4>"});
  tlistholder nat(list_nat);
  tlistholder chars(list_chars);
  const std::vector<thyper> values = listhypers(hyper.l);
  listaddhypers(nat.l, values);
  listaddhypers(chars.l, values);
  EXPECT_EQ(nat.contents(), (texts{"1"}));
  EXPECT_EQ(chars.contents(), (texts{"<1, 2, "}));
}

TEST(ListCursor, MovesStayWithinOneBeforeAndOneBehind) {
  tlistholder h(list_nat, {"10", "20", "30"});
  listsetbackground(h.l, "-1");
  auto at = [&] { return utf16toutf8(listget(h.l, h.l.cursor)); };
  EXPECT_EQ(at(), "10");
  listmovecursor(h.l, h.l.cursor - 1);
  EXPECT_EQ(h.l.cursor, 0);
  EXPECT_EQ(at(), "-1");
  listmovecursor(h.l, h.l.cursor - 1);
  EXPECT_EQ(h.l.cursor, 0);
  listmovecursor(h.l, h.l.cursor + 1);
  EXPECT_EQ(at(), "10");
  listmovecursor(h.l, listlength(h.l));
  EXPECT_EQ(at(), "30");
  listmovecursor(h.l, h.l.cursor + 1);
  listmovecursor(h.l, h.l.cursor + 1);
  EXPECT_EQ(h.l.cursor, 4);
  EXPECT_EQ(at(), "-1");
}

TEST(ListStatistics, ExtremesByKind) {
  tlistholder real(list_real, {"3", "-1.5", "2"});
  EXPECT_EQ(utf16toutf8(listmin(real.l)), "-1.5");
  EXPECT_EQ(utf16toutf8(listmax(real.l)), "3");
  tlistholder vector(list_vector, {"<1, 5>", "<3, -2>", "<2, 0, 1>"});
  EXPECT_EQ(utf16toutf8(listmin(vector.l)), "<1, -2>");
  EXPECT_EQ(utf16toutf8(listmax(vector.l)), "<3, 5, 1>");
  // Texts in the language's order, where a shorter text is the smaller one.
  tlistholder chars(list_chars, {"pear", "apple", "fig"});
  EXPECT_EQ(utf16toutf8(listmin(chars.l)), "fig");
  EXPECT_EQ(utf16toutf8(listmax(chars.l)), "apple");
  tlistholder none(list_nat);
  EXPECT_EQ(utf16toutf8(listmin(none.l)), "9223372036854775807");
  EXPECT_EQ(utf16toutf8(listmax(none.l)), "-9223372036854775808");
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

// Runs words as the stack command does, a number being its own raw word.
std::string stack(const std::vector<std::string>& words) {
  for (const std::string& w : words) stackword(w, w);
  return utf16toutf8(hypertext(stackpeek()));
}

std::vector<std::string> stackcontents() {
  std::vector<std::string> out;
  for (int64_t i = 1; i <= stackdepth(); ++i) out.push_back(utf16toutf8(hypertext(operandstack().get(i))));
  return out;
}

struct StackWords : ::testing::Test {
  void SetUp() override { stackclear(); }
  void TearDown() override {
    stackclear();
    numbersettings.degree = false;
  }
};

TEST_F(StackWords, ArithmeticComponentByComponent) {
  EXPECT_EQ(stack({"1", "2", "+"}), "3");
  EXPECT_EQ(stackdepth(), 1);
  EXPECT_EQ(stack({"7", "2", "-"}), "5");
  EXPECT_EQ(stack({"3", "4", "*"}), "12");
  EXPECT_EQ(stack({"7", "2", "/"}), "3.5");
  EXPECT_EQ(stack({"7", "0", "/"}), "0");
  EXPECT_EQ(stack({"<1,2,3>", "<10,20,30>", "+"}), "<11, 22, 33>");
  EXPECT_EQ(stack({"<4,6>", "<2,0>", "/"}), "2");
  EXPECT_EQ(stack({"3", "²"}), "9");
  EXPECT_EQ(stack({"2", "³"}), "8");
  EXPECT_EQ(stack({"2", "10", "^"}), "1024");
  EXPECT_EQ(stack({"<2,3>", "2", "^"}), "<4, 9>");
  EXPECT_EQ(stack({"<3,4>", "|"}), "5");
  EXPECT_EQ(stack({"50", "%"}), "0.5");
  EXPECT_EQ(stack({"180", "°"}), "3.1415926535897931");  // pi, printed with 16 decimals
  EXPECT_EQ(stack({"5", "neg"}), "-5");
  EXPECT_EQ(stack({"<2,4>", "inv"}), "<0.5, 0.25>");
  EXPECT_EQ(stack({"0", "inv"}), "0");
}

TEST_F(StackWords, ProductsAndDeterminant) {
  EXPECT_EQ(stack({"<1,2,3>", "<4,5,6>", "o"}), "32");
  EXPECT_EQ(stack({"<1,0,0,0>", "<0,1,0,0>", "<0,0,1,0>", "x"}), "<0, 0, 0, 1>");
  // cross(a, b, c) has det(a, b, c, e_j) as component j.
  EXPECT_EQ(stack({"<1,2,3,4>", "<0,1,0,2>", "<3,0,1,0>", "x"}), "<0, 16, 0, -8>");
  EXPECT_EQ(stack({"<2,0,0,0>", "<0,3,0,0>", "<0,0,4,0>", "<0,0,0,5>", "d"}), "120");
  EXPECT_EQ(stack({"<0,3,0,0>", "<2,0,0,0>", "<0,0,4,0>", "<0,0,0,5>", "d"}), "-120");
  EXPECT_EQ(stack({"<1,2,3,4>", "<5,6,7,8>", "<2,6,4,8>", "<3,1,1,2>", "d"}), "72");
}

TEST_F(StackWords, WholeStackStatisticsReplaceTheStack) {
  const std::vector<std::string> v = {"2", "4", "4", "4", "5", "5", "7", "9"};
  auto over = [&](const char* word) {
    stackclear();
    std::vector<std::string> words = v;
    words.push_back(word);
    const std::string r = stack(words);
    EXPECT_EQ(stackdepth(), 1) << word;
    return r;
  };
  EXPECT_EQ(over("mean"), "5");
  EXPECT_EQ(over("sum"), "40");
  EXPECT_EQ(over("min"), "2");
  EXPECT_EQ(over("max"), "9");
  EXPECT_NEAR(textreal(over("sd")), 2.138089935299395, 1e-12);
  EXPECT_NEAR(textreal(over("var")), 32.0 / 7, 1e-12);
  stackclear();
  EXPECT_EQ(stack({"<1,10>", "<3,30>", "mean"}), "<2, 20>");
  stackclear();
  stackword("sum", "sum");
  EXPECT_EQ(stackdepth(), 0);
}

TEST_F(StackWords, FunctionsAndAngles) {
  EXPECT_EQ(stack({"1", "log"}), "0");
  EXPECT_EQ(stack({"0", "log"}), "0");
  EXPECT_EQ(stack({"0", "cos"}), "1");  // a number stays a number
  EXPECT_EQ(stack({"1.5707963267948966", "sin"}), "1");
  numbersettings.degree = true;
  EXPECT_EQ(stack({"90", "sin"}), "1");
  EXPECT_EQ(stack({"1", "arcsin"}), "90");
  EXPECT_EQ(stack({"0", "arccos"}), "90");
  EXPECT_EQ(stack({"1", "arctan"}), "45");
  EXPECT_NEAR(textreal(stack({"45", "tan"})), 1, 1e-12);
  numbersettings.degree = false;
  EXPECT_NEAR(textreal(stack({"1", "arctan"})), std::atan(1.0), 1e-15);
  EXPECT_EQ(stack({"7", "3", "mod"}), "1");
  EXPECT_EQ(stack({"-7", "3", "mod"}), "-1");
  EXPECT_EQ(stack({"7", "0", "mod"}), "0");
  stackclear();
  stack({"17", "5", "/mod"});
  EXPECT_EQ(stackcontents(), (texts{"2", "3"}));
}

TEST_F(StackWords, ManipulationsAndJoin) {
  stack({"1", "2", "3", "rot"});
  EXPECT_EQ(stackcontents(), (texts{"2", "3", "1"}));
  stackclear();
  stack({"1", "2", "swap"});
  EXPECT_EQ(stackcontents(), (texts{"2", "1"}));
  stackclear();
  stack({"1", "2", "over"});
  EXPECT_EQ(stackcontents(), (texts{"1", "2", "1"}));
  stackclear();
  stack({"1", "2", "drop"});
  EXPECT_EQ(stackcontents(), (texts{"1"}));
  stackclear();
  stack({"5", "dup", ":"});
  EXPECT_EQ(stackcontents(), (texts{"5", "5", "5"}));
  stackclear();
  EXPECT_EQ(stack({"1", "2", "3", "§", "§"}), "<1, 2, 3>");
  EXPECT_EQ(stackdepth(), 1);
  stackflip();
  stackclear();
  stack({"1", "2", "3"});
  stackflip();
  EXPECT_EQ(stackcontents(), (texts{"3", "2", "1"}));
}

TEST_F(StackWords, MissingOperandsAreZeroAndOtherWordsArePushed) {
  EXPECT_EQ(stack({"+"}), "0");
  EXPECT_EQ(stackdepth(), 1);
  stackclear();
  EXPECT_EQ(stack({"5", "-"}), "-5");
  stackclear();
  EXPECT_EQ(stack({"abc"}), "0");
  EXPECT_EQ(stack({"<1,2,3,4,5>"}), "<1, 2, 3, 4>");
  stackclear();
  EXPECT_EQ(stack({"<1,0,0,0>", "<0,1,0,0>", "<0,0,1,0>", "X"}), "<0, 0, 0, 1>");
  stackclear();
  stackword("x", "7");  // the word as written decides, not what it stands for
  EXPECT_EQ(stackdepth(), 1);
  stackword("y", "7");
  EXPECT_EQ(stackcontents(), (texts{"0", "7"}));
}

}  // namespace
