#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "base/gzip.h"
#include "library/blob.h"

namespace {

std::string tempfile(const std::string& name, const std::string& bytes) {
  const std::string path = ::testing::TempDir() + "blob_" + name;
  std::filesystem::remove(path + ".fail");
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

std::string content(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

const std::string sample("abcXYZabcabc\0\1end", 17);

}  // namespace

TEST(Blob, TextBytesKeepZeroAndEncodeUtf8) {
  utf16 t("a");
  appendchar(t, 0);
  append(t, utf16("µ"));
  EXPECT_EQ(textbytes(t), std::string("a\0\xC2\xB5", 4));
  EXPECT_EQ(textbytes(utf16()), "");
}

TEST(Blob, SearchCountsAndPositions) {
  EXPECT_EQ(blobsearch(sample, "abc", 0), 0);
  EXPECT_EQ(blobsearch(sample, "abc", 1), 6);
  EXPECT_EQ(blobsearch(sample, "abc", 17), -1);
  EXPECT_EQ(blobsearch(sample, "", 0), -1);
  const utf16 name(tempfile("search.bin", sample));
  EXPECT_EQ(blobcount(name, "abc"), 3);
  EXPECT_EQ(blobcount(utf16(tempfile("aaaa.bin", "aaaa")), "aa"), 2);  // occurrences do not overlap
  EXPECT_EQ(blobcount(utf16(tempfile("none", "")), "a"), -1);
  std::vector<int64_t> at;
  ASSERT_TRUE(blobpositions(name, "abc", 7, at));
  EXPECT_EQ(at, (std::vector<int64_t>{9}));
  ASSERT_TRUE(blobpositions(name, "abc", 1000, at));
  EXPECT_TRUE(at.empty());
  std::string bytes;
  ASSERT_TRUE(blobget(name, 12, 2, bytes));
  EXPECT_EQ(bytes, std::string("\0\1", 2));
  ASSERT_TRUE(blobget(name, 3, -10, bytes));  // clipped at the start
  EXPECT_EQ(bytes, "abc");
  ASSERT_TRUE(blobget(name, 15, 10, bytes));
  EXPECT_EQ(bytes, "nd");
}

TEST(Blob, ReplaceWritesOnlyEqualLengthsAndOnlyOnAMatch) {
  const std::string equal = tempfile("equal.bin", sample);
  EXPECT_EQ(blobreplace(utf16(equal), "abc", "ABC"), tpatch::written);
  EXPECT_EQ(content(equal), std::string("ABCXYZABCABC\0\1end", 17));
  EXPECT_FALSE(std::filesystem::exists(equal + ".fail"));

  const std::string shorter = tempfile("shorter.bin", sample);
  EXPECT_EQ(blobreplace(utf16(shorter), "XYZ", "1"), tpatch::failed);
  EXPECT_EQ(content(shorter), sample);
  EXPECT_EQ(content(shorter + ".fail"), std::string("abc1YZabcabc\0\1end", 17));

  const std::string longer = tempfile("longer.bin", sample);
  EXPECT_EQ(blobreplace(utf16(longer), "end", "finish"), tpatch::failed);
  EXPECT_EQ(content(longer), sample);
  EXPECT_EQ(content(longer + ".fail"), std::string("abcXYZabcabc\0\1fin", 17));

  const std::string nomatch = tempfile("nomatch.bin", sample);
  EXPECT_EQ(blobreplace(utf16(nomatch), "QQ", "R"), tpatch::none);
  EXPECT_EQ(content(nomatch), sample);
  EXPECT_FALSE(std::filesystem::exists(nomatch + ".fail"));
}

TEST(Blob, APackedFileStaysPacked) {
  std::string packed;
  ASSERT_TRUE(gzipcompress("one two one", packed));
  const std::string name = tempfile("packed.dat", packed);
  EXPECT_EQ(blobreplace(utf16(name), "one", "ONE"), tpatch::written);
  std::string plain;
  ASSERT_TRUE(gunzip(content(name), plain));
  EXPECT_EQ(plain, "ONE two ONE");
}
