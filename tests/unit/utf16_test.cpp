#include <gtest/gtest.h>

#include "script/utf16.h"

TEST(Utf16, RoundTripsCharactersOfTheFirstPlane) {
  const std::string text = "µ°π λ ASCII";
  EXPECT_EQ(utf16toutf8(utf16fromutf8(text)), text);
  const utf16 mu = utf16fromutf8("µ");
  ASSERT_EQ(length(mu), 1);
  EXPECT_EQ(charat(mu, 1), 0xB5);
  EXPECT_EQ(charfromutf8("π"), 0x3C0);
}

TEST(Utf16, BadSequencesBecomeCharacterZeroAndAreLeftOutOnOutput) {
  // stray continuation byte, a four-byte character, a lone 0xFF, and a truncated two-byte lead
  const utf16 v = utf16fromutf8("a\x80" "b\xF0\x9F\x98\x80" "c\xFF" "d\xC3");
  EXPECT_EQ(length(v), 8);
  EXPECT_EQ(charat(v, 2), 0);
  EXPECT_EQ(charat(v, 4), 0);
  EXPECT_EQ(utf16toutf8(v), "abcd");
}

TEST(Utf16, PositionsOutsideReadAsZero) {
  const utf16 v("abc");
  EXPECT_EQ(charat(v, 0), 0);
  EXPECT_EQ(charat(v, 4), 0);
  EXPECT_EQ(utf16toutf8(copy(v, 2, 100)), "bc");
  EXPECT_EQ(utf16toutf8(copy(v, -1, 3)), "a");
  EXPECT_TRUE(empty(copy(v, 4, 1)));
}

TEST(Utf16, SearchingAndReplacing) {
  EXPECT_EQ(pos("", "abc"), 0);
  EXPECT_EQ(pos("abcd", "abc"), 0);
  EXPECT_EQ(pos("b", "abcb"), 2);
  EXPECT_EQ(lastpos("b", "abcb"), 4);
  EXPECT_EQ(utf16toutf8(replace("aba", "a", "aa")), "aabaa");
  EXPECT_EQ(utf16toutf8(replace("aba", "", "x")), "aba");
  // a character whose low byte matches must not count as found
  EXPECT_EQ(pos(utf16char('A'), utf16char(0x141)), 0);
}

TEST(Utf16, CaseChangesTouchOnlyAsciiLetters) {
  EXPECT_EQ(utf16toutf8(lower("ÄBc")), "Äbc");
  EXPECT_EQ(utf16toutf8(upper("äbC")), "äBC");
}

TEST(Utf16, ComparisonModes) {
  EXPECT_TRUE(less("b", "aa"));  // shorter first by default
  EXPECT_FALSE(less("ab", "ab"));
  EXPECT_TRUE(lessequal("ab", "ab"));
  stringcomparealigned = true;
  EXPECT_FALSE(less("b", "aa"));
  EXPECT_FALSE(less("ab", "abc"));  // the equal prefix counts as not less
  stringcomparealigned = false;
}

TEST(Utf16, CutParamRespectsQuotesAndBrackets) {
  utf16 v("a \"b c\" <1, 2> (x y) [p q] {r s} 'it''s' d");
  std::vector<std::string> words;
  while (!empty(v)) words.push_back(utf16toutf8(cutparam(v, " ")));
  const std::vector<std::string> expected = {"a", "\"b c\"", "<1, 2>", "(x y)", "[p q]", "{r s}", "'it''s'", "d"};
  EXPECT_EQ(words, expected);
  utf16 raw("<1, 2> x");
  EXPECT_EQ(utf16toutf8(cutrawparam(raw, " ")), "<1,");
}

TEST(Utf16, CutWordWithoutSeparatorTakesAll) {
  utf16 v("abc");
  EXPECT_EQ(utf16toutf8(cutword(v, " ")), "abc");
  EXPECT_TRUE(empty(v));
  utf16 w("a b c");
  EXPECT_EQ(utf16toutf8(cutword(w, " ")), "a");
  EXPECT_EQ(utf16toutf8(w), "b c");
}

TEST(Utf16, CellsAndLongFieldsCutAsTheLanguageDoes) {
  std::string text;
  for (int i = 1; i <= 300; ++i) text.push_back(static_cast<char>('a' + i % 26));
  EXPECT_EQ(length(celfromutf16(text)), 254);
  utf16field f;
  f.set(utf16(text.substr(0, 254)));
  EXPECT_EQ(utf16toutf8(f.get()), text.substr(0, 254));
  f.set(utf16(text.substr(0, 255)));
  EXPECT_EQ(utf16toutf8(f.get()), text.substr(0, 254));
  f.set(utf16(text));  // 300 characters: the 255th is lost
  EXPECT_EQ(length(f.get()), 299);
  EXPECT_EQ(utf16toutf8(f.get()), text.substr(0, 254) + text.substr(255));
  std::string longer(600, 'x');
  f.set(utf16(longer));
  EXPECT_EQ(length(f.get()), 508);
}
