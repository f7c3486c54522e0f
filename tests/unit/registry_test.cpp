#include <gtest/gtest.h>

#include "script/registry.h"
#include "script/variables.h"

namespace {
void nothing(tscript&) {}
void other(tscript&) {}
}  // namespace

TEST(Registry, PluralRuleFindsTheOtherNumberOfAWord) {
  tscript s;
  for (const char* name : {"image.size", "mesh.vertex", "leaf", "datum", "box", "city", "analysis", "knife"})
    regproc(s, name, nothing);
  for (const char* word : {"image.sizes", "mesh.vertexs", "leaves", "data", "boxes", "cities", "analyses", "knives"})
    EXPECT_GE(lookup(s, word, tlookup::procedure), 0) << word;
  EXPECT_LT(lookup(s, "image.sizez", tlookup::procedure), 0);
}

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

TEST(Variables, ScopesDieWithTheirLevelAndGlobalsStaySorted) {
  tscript s;
  setvar(s, "outer", "1");
  s.level = 2;
  setvar(s, "inner", "2");
  setvar(s, "outer", "3");  // an existing name is written where it lives
  setglobal(s, "g", "4", 1);
  ASSERT_EQ(s.variables.size(), 3u);
  EXPECT_EQ(s.variables[1].level, 1);  // placed between the levels
  closelevel(s);
  EXPECT_EQ(utf16toutf8(getvar(s, "outer")), "3");
  EXPECT_EQ(hasvar(s, "inner"), -1);
  EXPECT_EQ(utf16toutf8(getvar(s, "g")), "4");
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
