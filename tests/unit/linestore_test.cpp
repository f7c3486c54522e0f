#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "base/gzip.h"
#include "script/linestore.h"

namespace {

std::string tempfile(const std::string& name, const std::string& bytes) {
  const std::string path = ::testing::TempDir() + name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

std::vector<std::string> lines(const tlinestore& store) {
  std::vector<std::string> out;
  for (int64_t n = 1; n <= linecount(store); ++n) {
    utf16 text;
    getline(store, n, text);
    out.push_back(utf16toutf8(text));
  }
  return out;
}

}  // namespace

TEST(LineStore, OutOfRangeLinesLeaveTheTextAlone) {
  tlinestore store;
  ASSERT_TRUE(load(store, utf16(tempfile("two.macro", "a\nb\n"))));
  utf16 text("kept");
  getline(store, 0, text);
  getline(store, 3, text);
  EXPECT_EQ(utf16toutf8(text), "kept");
  EXPECT_EQ(linepos(store, 9), 0);
  EXPECT_EQ(sourceline(store, 2), 2);
}

TEST(LineStore, IncludesKeepTheirOwnFilesAndLineNumbers) {
  const std::string inner = tempfile("inner.inc", "i1\ni2\n");
  const std::string middle = tempfile("middle.inc", "m1\nm2\n");
  const std::string main = tempfile("main.macro", "a\r\nb\r\nc\r\n");
  tlinestore store;
  ASSERT_TRUE(load(store, utf16(main)));
  ASSERT_TRUE(insertfile(store, 2, utf16(middle)));  // behind "b"
  ASSERT_TRUE(insertfile(store, 3, utf16(inner)));   // behind "m1"
  EXPECT_EQ(lines(store), (std::vector<std::string>{"a", "b", "m1", "i1", "i2", "m2", "c"}));
  const std::vector<int64_t> numbers = {1, 2, 1, 1, 2, 2, 3};
  const std::vector<std::string> files = {main, main, middle, inner, inner, middle, main};
  for (int64_t n = 1; n <= 7; ++n) {
    EXPECT_EQ(sourceline(store, n), numbers[static_cast<size_t>(n - 1)]) << "line " << n;
    EXPECT_EQ(utf16toutf8(sourcefile(store, n)), files[static_cast<size_t>(n - 1)]) << "line " << n;
  }
  EXPECT_EQ(sourceline(store, 8), 0);
  EXPECT_TRUE(empty(sourcefile(store, 8)));
  EXPECT_FALSE(insertfile(store, 1, utf16(tempfile("empty.inc", ""))));
  EXPECT_EQ(linecount(store), 7);
}
