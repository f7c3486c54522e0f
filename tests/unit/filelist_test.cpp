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

TEST(FileList, DoublesCursorAndOrders) {
  const std::string root = tree("list", {{"A.txt", 5}, {"a.txt", 1}, {"n10.dat", 3}, {"n9.dat", 9}});
  tfilelist l;
  filelistnew(l, utf16(root + "/*"));
  EXPECT_EQ(filelistcount(l), 3);  // a.txt doubles A.txt by lower-case comparison
  filelistadd(l, utf16(root + "/*.dat"));
  EXPECT_EQ(filelistcount(l), 3);
  EXPECT_EQ(filelistrest(l), 3);
  filelistgo(l, 99);
  EXPECT_EQ(l.cursor, 4);
  EXPECT_EQ(filelistat(l), nullptr);
  EXPECT_EQ(filelistrest(l), 0);
  filelistgo(l, -5);
  EXPECT_EQ(l.cursor, 0);
  EXPECT_EQ(filelistrest(l), 3);
  filelistsort(l, tfileorder::number);
  EXPECT_EQ(names(l.entries, root), (tnames{"A.txt", "n9.dat", "n10.dat"}));
  filelistsort(l, tfileorder::size);
  EXPECT_EQ(names(l.entries, root), (tnames{"n10.dat", "A.txt", "n9.dat"}));
  filelistflip(l);
  EXPECT_EQ(names(l.entries, root), (tnames{"n9.dat", "A.txt", "n10.dat"}));
  filelistsub(l, utf16("n*"), true);
  EXPECT_EQ(names(l.entries, root), (tnames{"A.txt"}));
}

TEST(FileNames, PartsNumbersAndShellForms) {
  EXPECT_TRUE(equalutf8(namedir("a/b/c.nii.gz"), "a/b/"));
  EXPECT_TRUE(equalutf8(namefile("a/b/c.nii.gz"), "c.nii.gz"));
  EXPECT_TRUE(equalutf8(nameshortfile("a/b/c.nii.gz"), "c.nii"));
  EXPECT_TRUE(equalutf8(namestem("a/b/c.nii.gz"), "a/b/c.nii"));
  EXPECT_TRUE(equalutf8(nameshortdir("a/b/c.nii.gz"), "b"));
  EXPECT_TRUE(equalutf8(namelastsuffix("a.b/c"), ""));
  EXPECT_DOUBLE_EQ(namenumber("scan_2_slice12.png"), 12);
  EXPECT_DOUBLE_EQ(namenumber("dir7/step0.25.txt"), 0.25);
  EXPECT_DOUBLE_EQ(namenumber("none.txt"), 0);
  EXPECT_TRUE(equalutf8(bashname("a\\ b(1)!?'\"x"), "a\\\\\\ b\\(1\\)\\!\\?\\'\\\"x"));
  EXPECT_TRUE(equalutf8(repairedname("my dir/a (1)!.txt"), "my dir/a__1__.txt"));
}

TEST(FileOps, CopyPacksAndUnpacksAndNeverHarmsTheSource) {
  const std::string root = tree("copy", {{"a.txt", 100}});
  const utf16 a(root + "/a.txt"), packed(root + "/a.txt.gz"), back(root + "/b.txt");
  ASSERT_TRUE(copyfile(a, packed));
  EXPECT_LT(fs::file_size(root + "/a.txt.gz"), 100u);
  ASSERT_TRUE(copyfile(packed, back));
  EXPECT_EQ(fs::file_size(root + "/b.txt"), 100u);
  EXPECT_TRUE(copyfile(a, a));  // onto itself: nothing happens
  EXPECT_EQ(fs::file_size(root + "/a.txt"), 100u);
  EXPECT_FALSE(copyfile(a, utf16(root + "/nodir/x.txt")));  // unwritable target
  EXPECT_EQ(fs::file_size(root + "/a.txt"), 100u);
  // A source named .gz that holds no gzip data: no target, the source intact.
  ASSERT_TRUE(copyfile(a, utf16(root + "/fake.gz"), false));
  EXPECT_FALSE(copyfile(utf16(root + "/fake.gz"), utf16(root + "/f.txt")));
  EXPECT_FALSE(fs::exists(root + "/f.txt"));
  EXPECT_EQ(fs::file_size(root + "/fake.gz"), 100u);
}

TEST(FileOps, MoveReplacesTheTargetAndTouchesNothingElse) {
  const std::string root = tree("move", {{"from.txt", 3}, {"to.txt", 7}, {"other.txt", 5}});
  ASSERT_TRUE(movefile(utf16(root + "/from.txt"), utf16(root + "/to.txt")));
  EXPECT_FALSE(fs::exists(root + "/from.txt"));
  EXPECT_EQ(fs::file_size(root + "/to.txt"), 3u);
  EXPECT_EQ(fs::file_size(root + "/other.txt"), 5u);
  EXPECT_EQ(std::distance(fs::directory_iterator(root), fs::directory_iterator()), 2);
  EXPECT_FALSE(movefile(utf16(root + "/from.txt"), utf16(root + "/x.txt")));
  EXPECT_FALSE(fs::exists(root + "/x.txt"));
}

TEST(FileOps, HardDeleteRemovesLinksAsLinks) {
  const std::string root = tree("hard", {{"outside/keep.txt", 4}, {"doomed/sub/f", 1}});
  fs::create_directory_symlink(root + "/outside", root + "/doomed/dirlink");
  fs::create_symlink(root + "/outside/keep.txt", root + "/doomed/filelink");
  fs::create_directory_symlink(root + "/doomed", root + "/doomed/sub/loop");
  fs::create_directory_symlink(root + "/outside", root + "/toplink");
  EXPECT_FALSE(harddeletedir(utf16(root + "/toplink")));
  EXPECT_FALSE(harddeletedir(utf16(root + "/toplink/")));
  EXPECT_TRUE(fs::exists(root + "/outside/keep.txt"));
  EXPECT_TRUE(harddeletedir(utf16(root + "/doomed")));
  EXPECT_FALSE(fs::exists(fs::symlink_status(root + "/doomed")));
  EXPECT_EQ(fs::file_size(root + "/outside/keep.txt"), 4u);
  EXPECT_FALSE(deleteemptydir(utf16(root + "/outside")));
  EXPECT_TRUE(fs::exists(root + "/outside/keep.txt"));
  EXPECT_TRUE(makedirs(utf16(root + "/m/n/o/")));
  EXPECT_TRUE(fs::is_directory(root + "/m/n/o"));
  EXPECT_TRUE(deleteemptydir(utf16(root + "/m/n/o")));
}
