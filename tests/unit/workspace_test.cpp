#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "field/workspaces.h"
#include "script/registry.h"
#include "script/run.h"
#include "script/variables.h"
#include "shell/console.h"

namespace {

// Console lines written by one piece of work.
template <class Work>
std::vector<std::string> printed(Work work) {
  testing::internal::CaptureStdout();
  work();
  std::vector<std::string> lines;
  std::string text = testing::internal::GetCapturedStdout(), line;
  for (const char c : text) {
    if (c != '\n') {
      line += c;
    } else {
      lines.push_back(line);
      line.clear();
    }
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

// Each test starts from the state of a program start.
class Workspaces : public testing::Test {
 protected:
  void SetUp() override {
    interactive = false;
    releaseworkspaces();
    baseline_ = fieldmemoryheld();
    resetworkspaces();
  }
  void TearDown() override { releaseworkspaces(); }
  int64_t baseline_ = 0;
};

TEST_F(Workspaces, ReleaseGivesBackAllMemoryAndEmptyListsDumpTheirEmptyLine) {
  workspaceuse(scalarworkspace, "big");
  fieldcreate(*scalarworkspace.current, scalargray, {10, 10, 10});
  workspaceuse(lineworkspace, "lines");
  EXPECT_GE(fieldmemoryheld(), baseline_ + 1000);
  releaseworkspaces();
  EXPECT_EQ(fieldmemoryheld(), baseline_);
  EXPECT_EQ(imageworkspace.current, nullptr);
  EXPECT_EQ(printed([] { workspacedump(lineworkspace); }),
            (std::vector<std::string>{"***** dump.cloud *****", "  Cloudlist empty!", "***** dump.cloud end *****"}));
  createworkspaces();
}

// The target rule, alike for every kind with that kind's word.
template <class F>
void targetrule(tworkspacelist<F>& w, const std::string& word) {
  SCOPED_TRACE(word);
  tscript s;
  workspaceuse(w, "img");
  F* current = w.current;
  // An empty name is DEFAULT; the plain rule may hit the current field.
  EXPECT_EQ(workspacetarget(w, ""), workspaceentry(w, 1));
  EXPECT_EQ(workspacetarget(w, "Img"), current);
  F* fresh = workspacetarget(w, "new");
  EXPECT_EQ(workspacefind(w, "NEW"), workspacecount(w));
  EXPECT_EQ(fresh, workspaceentry(w, workspacecount(w)));
  EXPECT_EQ(w.current, current);  // a target is not selected
  EXPECT_EQ(workspacetargetstrict(s, w, "new"), fresh);
  EXPECT_FALSE(s.halted);
  std::vector<std::string> lines = printed([&] { EXPECT_EQ(workspacetargetstrict(s, w, "img"), nullptr); });
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(
      lines[0].rfind("Syntax error (Same illegal assigment (" + word + "[IMG] := function " + word + "[IMG])!)", 0), 0u)
      << lines[0];
  EXPECT_TRUE(s.halted);
  s.halted = false;
  EXPECT_EQ(workspaceoperand(s, w, "new"), fresh);
  EXPECT_EQ(workspaceoperand(s, w, ""), workspaceentry(w, 1));
  const int64_t count = workspacecount(w);
  lines = printed([&] { EXPECT_EQ(workspaceoperand(s, w, "gone"), nullptr); });
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind("Error (Empty " + word + "[GONE])", 0), 0u) << lines[0];
  EXPECT_EQ(workspacecount(w), count);  // an operand is never created
  EXPECT_TRUE(s.halted);
}

TEST_F(Workspaces, TargetRuleOfEveryKind) {
  targetrule(imageworkspace, "imagefield");
  targetrule(scalarworkspace, "scalarfield");
  targetrule(vectorworkspace, "vectorfield");
  targetrule(tensorworkspace, "tensorfield");
  targetrule(meshworkspace, "mesh");
  targetrule(lineworkspace, "line");
}

TEST_F(Workspaces, AnEmptyTargetTakesThePlaceOfItsSourceAFilledOneIsKept) {
  tscalarfield source{}, target{};
  fieldcreate(source, scalargray, {2, 2, 2});
  setoffset(source.space, {1, 2, 3});
  fieldcreate(target, scalarmono);
  EXPECT_TRUE(prepareresult(scalarworkspace, target, source, {4, 3, 2}));
  EXPECT_EQ(target.kind, scalarmono);
  EXPECT_EQ(fieldsize(target), (tnatvector{4, 3, 2}));
  EXPECT_EQ(target.space.negoffset, (tvector{-1, -2, -3}));
  setoffset(target.space, {0, 0, 0});
  EXPECT_EQ(printed([&] {
              EXPECT_FALSE(prepareresult(scalarworkspace, target, source, {9, 9, 9}));
            }),
            std::vector<std::string>{"Attention, target scalar field seems not to be empty!"});
  EXPECT_EQ(fieldsize(target), (tnatvector{4, 3, 2}));
  EXPECT_EQ(target.space.offset, (tvector{0, 0, 0}));
  fieldrelease(source);
  fieldrelease(target);
}

}  // namespace
