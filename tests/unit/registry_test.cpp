#include <gtest/gtest.h>

#include <string>

#include "script/registry.h"
#include "script/variables.h"

namespace {
void nothing(tscript&) {}
void other(tscript&) {}
}  // namespace

TEST(Registry, NewestWinsAndKindsAreKeptApart) {
  tscript s;
  regproc(s, "x", nothing);
  regfunc(s, "x", other);
  regscript(s, "x", 1, kind_procedure, 5);
  EXPECT_EQ(lookup(s, "x", tlookup::procedure), 2);
  EXPECT_EQ(lookup(s, "x", tlookup::function), 1);
  EXPECT_LT(lookup(s, "x", tlookup::varfunction), 0);
  EXPECT_EQ(s.members[2].usecount, 1);
}

TEST(Registry, DoubleMembersInOneScopeAreRefused) {
  tscript s;
  regproc(s, "Twice", nothing);
  regproc(s, "twice", other);
  ASSERT_EQ(s.members.size(), 1u);
  EXPECT_EQ(s.members[0].handler1, nothing);
  EXPECT_TRUE(regscript(s, "twice", 2, kind_procedure, 7));  // a deeper scope may shadow it
  EXPECT_FALSE(regscript(s, "twice", 2, kind_procedure, 9));
}

TEST(Variables, ElementTargetsMergeIntoTheOldValue) {
  tscript s;
  setvar(s, "a[3]", "x");
  EXPECT_EQ(utf16toutf8(getvar(s, "a")), "\t\tx");
  setvar(s, "a[1]", "y");
  EXPECT_EQ(utf16toutf8(getvar(s, "a")), "y\t\tx");
}

TEST(Variables, ParametersAreSplitByKind) {
  tscript s;
  setvar(s, "v", "value");
  splitparams(s, "v \"a b\" -1 <v, 2> 'it''s' #65 $ff %101 w[0] \"\"");
  const std::vector<std::string> expected = {"value", "a b", "-1", "value,2", "it's", "A", "255", "5", "1"};
  std::vector<std::string> got;
  for (const utf16& p : s.params) got.push_back(utf16toutf8(p));
  EXPECT_EQ(got, expected);
  const std::vector<uint8_t> kinds = {param_plain, param_quoted, param_literal, param_bracketed, param_quoted,
                                      param_quoted, param_bracketed, param_bracketed, param_element};
  EXPECT_EQ(s.paramkinds, kinds);
}

TEST(Registry, ShadowingEndsWithItsLevelAndPluralsStillFind) {
  tscript s;
  regproc(s, "image.size", nothing);
  regscript(s, "image.size", 2, kind_procedure, 5);
  regscript(s, "inner", 2, kind_procedure, 6);
  regproc(s, "late", other);  // a built-in behind script members moves when they go
  EXPECT_EQ(lookup(s, "image.sizes", tlookup::procedure), 1);
  dropmembers(s, 2);
  ASSERT_EQ(s.members.size(), 2u);
  EXPECT_EQ(lookup(s, "image.sizes", tlookup::procedure), 0);
  EXPECT_EQ(lookup(s, "late", tlookup::procedure), 1);
  EXPECT_FALSE(ismember(s, "inner"));
  EXPECT_TRUE(regscript(s, "inner", 2, kind_procedure, 8));  // no double: the old one is gone
}

TEST(Variables, KindsFollowTheMembersAndValuesFollowTheVariables) {
  tscript s;
  setvar(s, "v", "1");
  splitparams(s, "f v");
  EXPECT_EQ(s.paramkinds[0], param_plain);
  EXPECT_EQ(utf16toutf8(s.params[1]), "1");
  regfunc(s, "f", nothing);
  setvar(s, "v", "2");
  splitparams(s, "f v");
  EXPECT_EQ(s.paramkinds[0], param_function);
  EXPECT_EQ(utf16toutf8(s.params[1]), "2");
}

TEST(Variables, ShadowsEndWithTheirLevelGlobalsSlipInAndChainsReachOlderEntries) {
  for (const int others : {0, 100}) {  // a short list is walked, a long one indexed
    tscript s;
    for (int i = 0; i < others; ++i) setvar(s, utf16("o") + utf16(std::to_string(i)), "1");
    setvar(s, "a", "b");
    setvar(s, "b", "c");
    s.level = 1;
    setvar(s, "inner", "1");
    newlocal(s, "a", "b");  // chains on to the older a's value's name
    setglobal(s, "g", "2", 0);  // placed before the entries of level 1
    EXPECT_EQ(utf16toutf8(substituteword(s, "A")), "c");
    setvar(s, "a", "x");
    EXPECT_EQ(utf16toutf8(getvar(s, "a")), "x");
    EXPECT_EQ(utf16toutf8(getvar(s, "inner")), "1");
    closelevel(s);
    EXPECT_EQ(utf16toutf8(getvar(s, "a")), "b");
    EXPECT_EQ(utf16toutf8(getvar(s, "g")), "2");
    EXPECT_LT(hasvar(s, "inner"), 0);
    EXPECT_EQ(utf16toutf8(substituteword(s, "a")), "b");  // b is newer than a: no chain
  }
}
