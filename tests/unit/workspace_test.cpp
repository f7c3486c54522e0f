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

std::string text(const utf16& t) { return utf16toutf8(t); }

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

TEST_F(Workspaces, StartWithOneEmptyDefaultEntryEachAndDumpIt) {
  EXPECT_EQ(imageworkspace.objects.length, 1);
  EXPECT_EQ(imageworkspace.index, 1);
  EXPECT_EQ(imageworkspace.current, workspaceentry(imageworkspace, 1));
  EXPECT_EQ(imageworkspace.current->kind, imagefullgray);
  EXPECT_EQ(scalarworkspace.current->kind, scalarfullgray);
  EXPECT_EQ(vectorworkspace.current->kind, vectorfloat);
  EXPECT_EQ(tensorworkspace.current->kind, vectorfloat);
  const std::vector<std::string> expected = {
      "***** dump.image *****",
      "  Image (1) in use: DEFAULT",
      "  (1):fullgray(0x0):DEFAULT",
      "***** dump.image end *****",
      "***** dump.scalar *****",
      "  Scalar (1) in use: DEFAULT",
      "  (1):fullgray(0x0x0):DEFAULT",
      "***** dump.scalar end *****",
      "***** dump.vector *****",
      "  Vector field (1) in use: DEFAULT",
      "  (1):float(0x0x0):DEFAULT",
      "***** dump.vector end *****",
      "***** dump.tensor *****",
      "  Tensor field (1) in use: DEFAULT",
      "  (1):float(0x0x0):DEFAULT",
      "***** dump.tensor end *****",
      "***** dump.mesh *****",
      "  Mesh (1) in use: DEFAULT",
      "  (1):mesh(points:0;faces:0;normales:0):DEFAULT",
      "***** dump.mesh end *****",
      "***** dump.cloud *****",
      "  cloud (1) in use: DEFAULT",
      "  (1):cloud(points:0;lines:0;objects:0):DEFAULT",
      "***** dump.cloud end *****",
  };
  EXPECT_EQ(printed(dumpworkspaces), expected);
}

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

TEST_F(Workspaces, UseSelectsByCaseInsensitiveNameOrCreatesWithTheDefaultKind) {
  imageworkspace.defaultkind = imagegray;
  EXPECT_EQ(printed([] { workspaceuse(imageworkspace, "a"); }), std::vector<std::string>{"Use image: A (0x0)"});
  timagefield* a = imageworkspace.current;
  EXPECT_EQ(a->kind, imagegray);
  fieldcreate(*a, imagergb, {3, 4});
  workspaceuse(imageworkspace, "DEFAULT");
  EXPECT_EQ(imageworkspace.index, 1);
  EXPECT_EQ(printed([] { workspaceuse(imageworkspace, "A"); }), std::vector<std::string>{"Use image: A (3x4)"});
  EXPECT_EQ(imageworkspace.current, a);
  EXPECT_EQ(imageworkspace.index, 2);
  EXPECT_EQ(imageworkspace.objects.length, 2);
  // The high byte plane is no letter: only ASCII letters change case.
  utf16 wide = "b";
  wide.hi[0] = 1;
  EXPECT_EQ(text(workspacekey(wide)), text(utf16fromutf8("\xc5\x82")));  // U+0142 from U+0162
  // Volumes show three sizes; meshes and lines are selected silently.
  EXPECT_EQ(printed([] { workspaceuse(tensorworkspace, "t"); }), std::vector<std::string>{"Use tensor: T (0x0x0)"});
  EXPECT_TRUE(printed([] { workspaceuse(meshworkspace, "m"); }).empty());
  EXPECT_EQ(meshworkspace.index, 2);
}

TEST_F(Workspaces, SwapMovesNamesAndLeavesObjectsAndCurrentInPlace) {
  workspaceuse(scalarworkspace, "a");
  tscalarfield* a = scalarworkspace.current;
  workspaceuse(scalarworkspace, "b");
  tscalarfield* b = scalarworkspace.current;
  workspaceswap(scalarworkspace, "a", "B");
  EXPECT_EQ(scalarworkspace.current, b);
  EXPECT_EQ(text(scalarworkspace.names.get(scalarworkspace.index)), "A");
  workspaceuse(scalarworkspace, "b");
  EXPECT_EQ(scalarworkspace.current, a);
  // A missing name changes nothing and prints as an empty name.
  EXPECT_EQ(printed([] { workspaceswap(scalarworkspace, "a", "nothing"); }),
            std::vector<std::string>{"  Not swapped (A) <-> ()!"});
  EXPECT_EQ(printed([] { workspaceswap(scalarworkspace, "x", "y"); }),
            std::vector<std::string>{"  Not swapped () <-> ()!"});
  EXPECT_EQ(workspacefind(scalarworkspace, "a"), 3);
}

TEST_F(Workspaces, RenameAllowsDoublesAndLookupsFindTheFirst) {
  workspaceuse(vectorworkspace, "one");
  workspaceuse(vectorworkspace, "two");
  workspacerename(vectorworkspace, "One");
  EXPECT_EQ(text(vectorworkspace.names.get(3)), "ONE");
  EXPECT_EQ(workspacefind(vectorworkspace, "one"), 2);
  EXPECT_EQ(workspacefind(vectorworkspace, "two"), 0);
  workspaceuse(vectorworkspace, "one");
  EXPECT_EQ(vectorworkspace.index, 2);
}

TEST_F(Workspaces, ResetRestoresDefaultKindsAndOneDefaultEntry) {
  scalarworkspace.defaultkind = scalarmono;
  workspaceuse(scalarworkspace, "m");
  EXPECT_EQ(scalarworkspace.current->kind, scalarmono);
  workspaceuse(imageworkspace, "x");
  resetworkspaces();
  EXPECT_EQ(scalarworkspace.defaultkind, scalarfullgray);
  EXPECT_EQ(scalarworkspace.objects.length, 1);
  EXPECT_EQ(scalarworkspace.current->kind, scalarfullgray);
  EXPECT_EQ(text(imageworkspace.names.get(1)), "DEFAULT");
  EXPECT_EQ(imageworkspace.index, 1);
}

TEST_F(Workspaces, DumpNamesKindsWithoutAWordUnknownAndNilEntries) {
  imageworkspace.defaultkind = imagezrgb;
  workspaceuse(imageworkspace, "z");
  fieldcreate(*imageworkspace.current, imagezrgb, {10, 10});
  EXPECT_EQ(imageworkspace.current->words.sizex, 20);  // supersampled in memory
  EXPECT_EQ(fieldsize(*imageworkspace.current), (tnatvector{10, 10, 1}));
  std::vector<std::string> lines;
  lines = printed([] { fieldcreate(*workspaceentry(imageworkspace, 1), 77); });
  EXPECT_EQ(lines, std::vector<std::string>{"Unknown imagefield!"});
  imageworkspace.objects.add(nullptr);
  imageworkspace.names.add("LOST");
  EXPECT_EQ(printed([] { workspacedump(imageworkspace); }),
            (std::vector<std::string>{"***** dump.image *****", "  Image (2) in use: Z", "  (1):unknown:DEFAULT",
                                      "  (2):unknown:Z", "  (3):nil:LOST", "***** dump.image end *****"}));
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
  EXPECT_EQ(workspacefind(w, "NEW"), w.objects.length);
  EXPECT_EQ(fresh, workspaceentry(w, w.objects.length));
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
  const int64_t count = w.objects.length;
  lines = printed([&] { EXPECT_EQ(workspaceoperand(s, w, "gone"), nullptr); });
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind("Error (Empty " + word + "[GONE])", 0), 0u) << lines[0];
  EXPECT_EQ(w.objects.length, count);  // an operand is never created
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

TEST_F(Workspaces, AVolumeLargerThanTheMachineLeavesAnEmptyFieldOfItsKind) {
  tscalarfield& f = currentfield(scalarworkspace);
  const int64_t held = fieldmemoryheld();
  std::vector<std::string> lines = printed([&] { fieldcreate(f, scalargray, {200000, 200000, 200000}); });
  EXPECT_EQ(lines, std::vector<std::string>{"  Wrong static allocation (Out of memory?)! Create empty field."});
  EXPECT_EQ(f.kind, scalargray);
  EXPECT_TRUE(fieldempty(f));
  EXPECT_EQ(fieldmemoryheld(), held);
  timagefield& image = currentfield(imageworkspace);
  lines = printed([&] { fieldcreate(image, imagergba, {3000000000, 3000000000}); });
  EXPECT_FALSE(lines.empty());
  EXPECT_EQ(fieldsize(image), (tnatvector{0, 0, 1}));
}

// A command that makes a field from the current one (strict), and one that combines a
// named operand into its target: the shapes that the field families use.
void testcopy(tscript& s) {
  timagefield* target = resulttarget<imageworkspace>(s, true);
  if (target) prepareresult(imageworkspace, *target, *imageworkspace.current, fieldsize(*imageworkspace.current));
}

void testsub(tscript& s) {
  timagefield* target = resulttarget<imageworkspace>(s, false);
  const timagefield* source = target ? workspaceoperand(s, imageworkspace, optparam(s, 1)) : nullptr;
  if (source) prepareresult(imageworkspace, *target, *source, fieldsize(*source));
}

// One macro file per test: ctest runs the tests of this file side by side.
std::string macropath() {
  return testing::TempDir() + "workspace_test_" + testing::UnitTest::GetInstance()->current_test_info()->name() + ".macro";
}

// Runs macro lines through the engine with all commands and the two above; the lines
// that follow "Script runs..." and the echo of debug.no.
std::vector<std::string> runmacro(tscript& s, const std::string& lines) {
  const std::string path = macropath();
  std::ofstream(path) << "debug.no\n" << lines;
  registerallcommands(s);
  regfunc(s, "test.copy", testcopy);
  regfunc(s, "test.sub", testsub);
  regproc(s, "test.sub", testsub);
  load(s.store, utf16(path));
  std::vector<std::string> out = printed([&] { runscript(s); });
  EXPECT_GE(out.size(), 2u);
  if (out.size() >= 2) out.erase(out.begin(), out.begin() + 2);
  return out;
}

// The place of an error: " in line <n> (<file>)!".
std::string inline9() { return " in line 9 (" + macropath() + ")!"; }

TEST_F(Workspaces, AssignmentNamesAWorkspaceEntryAndStoresNoVariable) {
  tscript s;
  const std::vector<std::string> lines = runmacro(s,
                                                  "image.use src\n"
                                                  "image.new 3 4\n"
                                                  "image.offset <1, 2, 3>\n"
                                                  "copy := test.copy\n"
                                                  "copy := test.copy\n"
                                                  "test.sub src\n"
                                                  "image.dump\n"
                                                  "src := test.copy\n"
                                                  "image.dump\n");
  const std::vector<std::string> expected = {
      "Use image: SRC (0x0)",
      "Attention, target image field seems not to be empty!",
      "***** dump.image *****",
      "  Image (2) in use: SRC",
      "  (1):fullgray(3x4):DEFAULT",
      "  (2):fullgray(3x4):SRC",
      "  (3):fullgray(3x4):COPY",
      "***** dump.image end *****",
      "Syntax error (Same illegal assigment (imagefield[SRC] := function imagefield[SRC])!)" + inline9(),
      "Script ends.",
  };
  EXPECT_EQ(lines, expected);
  EXPECT_EQ(hasvar(s, "copy"), -1);
  EXPECT_EQ(hasvar(s, "src"), -1);
  EXPECT_EQ(workspaceentry(imageworkspace, 3)->space.offset, (tvector{1, 2, 3}));
  EXPECT_EQ(workspaceentry(imageworkspace, 1)->space.offset, (tvector{1, 2, 3}));
}

TEST_F(Workspaces, AnUnknownOperandEndsTheCommandAndTheScript) {
  tscript s;
  const std::vector<std::string> lines = runmacro(s,
                                                  "image.use a\n"
                                                  "image.new 2 2\n"
                                                  "image.use b\n"
                                                  "image.new 3 3\n"
                                                  "x := test.sub A\n"
                                                  "y := test.sub b\n"
                                                  "image.dump\n"
                                                  "z := test.sub nothing\n"
                                                  "image.dump\n");
  const std::vector<std::string> expected = {
      "Use image: A (0x0)",
      "Use image: B (0x0)",
      "***** dump.image *****",
      "  Image (3) in use: B",
      "  (1):fullgray(0x0):DEFAULT",
      "  (2):fullgray(2x2):A",
      "  (3):fullgray(3x3):B",
      "  (4):fullgray(2x2):X",
      "  (5):fullgray(3x3):Y",
      "***** dump.image end *****",
      "Error (Empty imagefield[NOTHING])" + inline9(),
      "Script ends.",
  };
  EXPECT_EQ(lines, expected);
  // The target came first and stays, empty.
  EXPECT_EQ(workspacefind(imageworkspace, "z"), 6);
  EXPECT_TRUE(fieldempty(*workspaceentry(imageworkspace, 6)));
}

}  // namespace
