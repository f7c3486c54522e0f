// A refused range ends the script, so no macro can look at the field afterwards: these
// tests run the command through the engine and then read the voxels.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "commands/commandtable.h"
#include "field/workspaces.h"
#include "script/linestore.h"
#include "script/run.h"
#include "shell/console.h"

namespace {

class LevelAdjust : public testing::Test {
 protected:
  void SetUp() override {
    interactive = false;
    releaseworkspaces();
    resetworkspaces();
  }
  void TearDown() override { releaseworkspaces(); }

  // Runs one line; returns what it printed between "Script runs..." with the echo of
  // debug.no and "Script ends.".
  std::string runline(const std::string& line) {
    path_ = testing::TempDir() + "leveladjust_test_" + testing::UnitTest::GetInstance()->current_test_info()->name() +
            ".macro";
    std::ofstream(path_) << "debug.no\n" << line << "\n";
    tscript s;
    registerallcommands(s);
    load(s.store, utf16(path_));
    testing::internal::CaptureStdout();
    runscript(s);
    std::string out = testing::internal::GetCapturedStdout();
    const std::string head = "Script runs...\n  debug.no|\n", tail = "Script ends.\n";
    EXPECT_EQ(out.rfind(head, 0), 0u) << out;
    EXPECT_TRUE(out.ends_with(tail)) << out;
    if (out.size() >= head.size() + tail.size()) out = out.substr(head.size(), out.size() - head.size() - tail.size());
    return out;
  }
  std::string refusal() const { return "Parameter error! Please use max. 2 parameters in line 2 (" + path_ + ").\n"; }

  std::string path_;
};

std::vector<int64_t> voxels(const tscalarfield& f) {
  std::vector<int64_t> v;
  for (int64_t x = 1; x <= fieldsize(f)[0]; ++x) v.push_back(getvalue(f, x, 1, 1));
  return v;
}

TEST_F(LevelAdjust, RefusedRangesReportAndLeaveTheVolume) {
  const std::vector<int64_t> before{10, 20, 30};
  for (const char* line : {"scalar.setadjust <10, 10>", "scalar.setadjust <200, 10> <5, 250>",
                           "scalar.setadjust <10, 20> <9, 9>", "scalar.setadjust <10, 20> <0, 255> <1, 2>"}) {
    tscalarfield& f = currentfield(scalarworkspace);
    fieldcreate(f, scalargray, {3, 1, 1});
    for (int64_t x = 1; x <= 3; ++x) setvalue(f, x, 1, 1, static_cast<double>(before[x - 1]));
    const std::string printed = runline(line);
    EXPECT_EQ(printed, refusal()) << line;
    EXPECT_EQ(voxels(currentfield(scalarworkspace)), before) << line;
  }
}

TEST_F(LevelAdjust, RefusedRangeLeavesTheColours) {
  timagefield& f = currentfield(imageworkspace);
  fieldcreate(f, imagergb, {2, 1, 1});
  setrgb(f, 1, 1, {10, 20, 30});
  setrgb(f, 2, 1, {40, 50, 60});
  const std::string printed = runline("image.setadjust <90, 80>");
  EXPECT_EQ(printed, refusal());
  EXPECT_EQ(getrgb(currentfield(imageworkspace), 1, 1), (trgb{10, 20, 30}));
  EXPECT_EQ(getrgb(currentfield(imageworkspace), 2, 1), (trgb{40, 50, 60}));
}

}  // namespace
