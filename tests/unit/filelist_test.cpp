#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "library/filelist.h"
#include "library/filenames.h"
#include "library/fileops.h"
#include "library/pattern.h"

namespace {

namespace fs = std::filesystem;

// A fresh directory of the test's own, with files of the given sizes.
std::string tree(const std::string& name, const std::vector<std::pair<std::string, size_t>>& files) {
  const std::string root = ::testing::TempDir() + "filelist_" + name;
  fs::remove_all(root);
  fs::create_directories(root);
  for (const auto& [file, size] : files) {
    fs::create_directories(fs::path(root + "/" + file).parent_path());
    std::ofstream(root + "/" + file, std::ios::binary) << std::string(size, 'x');
  }
  return root;
}

std::vector<std::string> names(const std::vector<tfileentry>& entries, const std::string& root) {
  std::vector<std::string> out;
  for (const tfileentry& e : entries) out.push_back(utf16toutf8(e.name).substr(root.size() + 1));
  return out;
}

using tnames = std::vector<std::string>;

}  // namespace

TEST(Pattern, MaskMatching) {
  EXPECT_TRUE(maskmatch("*", ""));
  EXPECT_TRUE(maskmatch("*.png", "a.png"));
  EXPECT_FALSE(maskmatch("*.png", "a.png.gz"));
  EXPECT_TRUE(maskmatch("a*b*c", "aXbYbZc"));
  EXPECT_FALSE(maskmatch("a*b*c", "aXbYc_"));
  EXPECT_TRUE(maskmatch("img*", "img"));
  EXPECT_FALSE(maskmatch("img?", "img1"));  // only "*" is a wildcard
  EXPECT_TRUE(maskmatch("**x", "abx"));
  EXPECT_TRUE(maskmatch("Ä*", "Äpfel"));
}

TEST(Pattern, ExpansionSortsSkipsDirectoriesAndRecursesDepthFirst) {
  const std::string root = tree("expand", {{"b.txt", 1}, {"a10.txt", 1}, {"a2.txt", 1}, {"s/x/y/f", 1}, {"s/w/f", 1}, {"t/f", 1}});
  std::vector<tfileentry> found;
  ASSERT_TRUE(expandpattern(utf16(root + "/*"), false, found));
  EXPECT_EQ(names(found, root), (tnames{"b.txt", "a2.txt", "a10.txt"}));  // shorter names first
  found.clear();
  ASSERT_TRUE(expandpattern(utf16(root + "/*"), true, found, true));
  EXPECT_EQ(names(found, root), (tnames{"s", "s/w", "s/x", "s/x/y", "t"}));
  found.clear();
  EXPECT_TRUE(expandpattern(utf16(root + "/b.txt"), false, found));
  EXPECT_TRUE(expandpattern(utf16(root + "/nothere.txt"), false, found));
  EXPECT_EQ(found.size(), 1u);
  EXPECT_FALSE(expandpattern(utf16(root + "/nodir/*"), false, found));
  EXPECT_EQ(found.size(), 1u);
}
