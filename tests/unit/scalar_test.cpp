#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "field/memory.h"
#include "field/scalarfield.h"

namespace {

std::string text(const utf16& t) { return utf16toutf8(t); }


// A field that releases itself, so that a failing test leaks nothing into the next.
struct tfield {
  tscalarfield f{};
  tfield(uint8_t kind, tnatvector size) { fieldcreate(f, kind, size); }
  ~tfield() { fieldrelease(f); }
};

TEST(ScalarField, VoxelAccessByKindClampsRoundsAndIgnoresOutside) {
  tfield mono(scalarmono, {10, 10, 10});
  setvalue(mono.f, 3, 4, 5, 5);
  EXPECT_EQ(getvalue(mono.f, 3, 4, 5), 1);
  setvalue(mono.f, 3, 4, 5, 0);
  EXPECT_EQ(getvalue(mono.f, 3, 4, 5), 0);
  setvalue(mono.f, 10, 10, 10, 0.001);
  EXPECT_EQ(getvalue(mono.f, 10, 10, 10), 1);
  EXPECT_EQ(getvalue(mono.f, 9, 10, 10), 0) << "a neighbouring bit stays";

  tfield gray(scalargray, {3, 3, 3});
  const std::pair<double, int64_t> grays[] = {{300, 255}, {-5, 0}, {2.5, 2}, {3.5, 4}, {254.6, 255}};
  for (const auto& [in, out] : grays) {
    setvalue(gray.f, 2, 2, 2, in);
    EXPECT_EQ(getvalue(gray.f, 2, 2, 2), out) << in;
  }
  tfield full(scalarfullgray, {3, 3, 3});
  setvalue(full.f, 1, 1, 1, 70000);
  EXPECT_EQ(getvalue(full.f, 1, 1, 1), 65535);
  setvalue(full.f, 1, 1, 1, 1000.5);
  EXPECT_EQ(getvalue(full.f, 1, 1, 1), 1000);

  setbackground(full.f, 77);
  EXPECT_EQ(getvalue(full.f, 0, 1, 1), 77);
  EXPECT_EQ(getvalue(full.f, 1, 1, 4), 77);
  setvalue(full.f, 4, 1, 1, 5);  // outside: nothing happens
  EXPECT_EQ(getvalue(full.f, 1, 2, 1), 0);
  setbackground(mono.f, 3);
  EXPECT_EQ(getbackground(mono.f), 1);
  setdrawvalue(gray.f, 999);
  EXPECT_EQ(getdrawvalue(gray.f), 255);
}

TEST(ScalarField, PlainMeansEveryVoxelLikeTheFirst) {
  tfield empty(scalargray, {0, 0, 0});
  EXPECT_TRUE(isplain(empty.f));
  // 3 * 3 * 3 = 27 bits: three whole bytes and three bits of a fourth.
  tfield mono(scalarmono, {3, 3, 3});
  EXPECT_TRUE(isplain(mono.f));
  mono.f.mono.fill(true);
  EXPECT_TRUE(isplain(mono.f)) << "bits past the last voxel don't count";
  setvalue(mono.f, 3, 3, 3, 0);
  EXPECT_FALSE(isplain(mono.f)) << "the last voxel lies in the partial byte";
  tfield full(scalarfullgray, {4, 2, 2});
  full.f.full.fill(9);
  EXPECT_TRUE(isplain(full.f));
  setvalue(full.f, 4, 2, 2, 8);
  EXPECT_FALSE(isplain(full.f));
}

TEST(ScalarField, SetEndianSwapsWordsAndLeavesBytes) {
  tfield full(scalarfullgray, {2, 1, 1});
  setvalue(full.f, 1, 1, 1, 0xABCD);
  setvalue(full.f, 2, 1, 1, 0x0100);
  setendian(full.f);
  EXPECT_EQ(getvalue(full.f, 1, 1, 1), 0xCDAB);
  EXPECT_EQ(getvalue(full.f, 2, 1, 1), 0x0001);
  setendian(full.f);
  EXPECT_EQ(getvalue(full.f, 1, 1, 1), 0xABCD);
  tfield gray(scalargray, {1, 1, 1});
  setvalue(gray.f, 1, 1, 1, 0x12);
  setendian(gray.f);
  EXPECT_EQ(getvalue(gray.f, 1, 1, 1), 0x12);
}

// The star rule, the gray and mono bounds and the dumps are in the scalar field macro.
TEST(ScalarField, LabelsReachTheTopOfFullgrayAndAStarBelowNothingIsEmpty) {
  tfield full(scalarfullgray, {1, 1, 1});
  setlabel(full.f, -1, "x");
  EXPECT_EQ(labelcount(full.f), 0);
  setlabel(full.f, 65535, "top");
  EXPECT_EQ(labelcount(full.f), 65536);
  EXPECT_EQ(text(getlabel(full.f, 65535)), "top");
  tfield gray(scalargray, {1, 1, 1});
  setlabel(gray.f, 0, "*");
  EXPECT_EQ(text(getlabel(gray.f, 0)), "") << "a star with nothing below reads empty";
}

TEST(ScalarField, RemapAppliesTheTableToEveryVoxel) {
  tfield gray(scalargray, {2, 1, 1});
  setvalue(gray.f, 1, 1, 1, 3);
  setvalue(gray.f, 2, 1, 1, 200);
  std::vector<int64_t> table(256);
  for (int i = 0; i < 256; ++i) table[i] = 300 - i;
  remap(gray.f, table.data(), 256);
  EXPECT_EQ(getvalue(gray.f, 1, 1, 1), 255) << "297 clamps";
  EXPECT_EQ(getvalue(gray.f, 2, 1, 1), 100);
}

}  // namespace
