#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "base/filebuffer.h"
#include "base/gzip.h"
#include "base/linefile.h"

#include "testfiles.h"

namespace {

std::string tempfile(const std::string& name, const std::string& bytes) { return writetestfile("linefile_", name, bytes); }
std::string content(const std::string& path) { return readtestfile(path); }

std::vector<std::string> lines(const std::string& name, const std::string& bytes, int64_t limit = 0) {
  tlinefile f;
  std::vector<std::string> out;
  if (!linefileread(f, utf16(tempfile(name, bytes)), limit)) return {"<unread>"};
  for (int64_t i = 1; i <= linefilecount(f); ++i) out.emplace_back(linefileview(f, i));
  linefilerelease(f);
  return out;
}

using tlines = std::vector<std::string>;

}  // namespace

TEST(LineFile, LfCrLfAndLoneCrGiveTheSameLines) {
  const tlines expected{"a", "", "b", "c"};
  EXPECT_EQ(lines("lf", "a\n\nb\nc"), expected);
  EXPECT_EQ(lines("crlf", "a\r\n\r\nb\r\nc\r\n"), expected);
  EXPECT_EQ(lines("cr", "a\r\rb\rc\r"), expected);
  EXPECT_EQ(lines("mixed", "a\r\n\rb\nc"), expected);
}

TEST(LineFile, ZeroBytesAreTakenOutWithoutEndingALine) {
  tlinefile f;
  ASSERT_TRUE(linefileread(f, utf16(tempfile("zero", std::string("ab\0cd\n\0\nx", 9)))));
  ASSERT_EQ(linefilecount(f), 3);
  EXPECT_EQ(linefileview(f, 1), "abcd");
  EXPECT_EQ(linefileview(f, 2), "");
  EXPECT_EQ(linefileview(f, 3), "x");
  EXPECT_EQ(linefileview(f, 4), "");
  linefilerelease(f);
}

TEST(LineFile, TinyFilesAndLimits) {
  EXPECT_EQ(lines("one", "x"), tlines{});
  EXPECT_EQ(lines("empty", ""), tlines{"<unread>"});
  EXPECT_EQ(lines("missing_dir/none", "x"), tlines{"<unread>"});
  EXPECT_EQ(lines("limit", "1\n2\n3\n4", 2), (tlines{"1", "2"}));
  EXPECT_EQ(lines("utf8", "Grüße\r\nµ\r\n"), (tlines{"Grüße", "µ"}));
}

TEST(LineFile, GzipByMagicOrByDoubleExtensionOnly) {
  std::string packed;
  ASSERT_TRUE(gzipcompress("one\ntwo\n", packed));
  EXPECT_EQ(lines("packed.png", packed), (tlines{"one", "two"}));
  EXPECT_EQ(lines("plain.b.gz", "one\ntwo\n"), tlines{"<unread>"});  // the gz path fails on plain text
  EXPECT_EQ(lines("plain.gz", "one\ntwo\n"), (tlines{"one", "two"}));  // "gz" alone is no double extension
  tfilebuffer b;
  ASSERT_TRUE(bufferread(b, utf16(tempfile("flag.txt", packed))));
  EXPECT_TRUE(b.packed);
  EXPECT_EQ(bufferview(b), "one\ntwo\n");
  bufferrelease(b);
}

TEST(FileBuffer, ExtensionStemAndPackedWrites) {
  EXPECT_TRUE(equalutf8(fileextension("a/b.nii.gz"), "nii.gz"));
  EXPECT_TRUE(equalutf8(fileextension("a.GZ"), "GZ"));
  EXPECT_TRUE(equalutf8(fileextension("x.tar.gz"), "tar.gz"));
  EXPECT_TRUE(equalutf8(fileextension("dir.d/file"), ""));
  EXPECT_TRUE(equalutf8(fileextension("dir.d/file.gz"), "gz"));
  EXPECT_TRUE(equalutf8(filestem("a/b.nii.gz"), "a/b.nii"));
  EXPECT_TRUE(equalutf8(filestem("dir.d/file"), "dir.d/file"));
  EXPECT_TRUE(gzipextension("a.nii.gz"));
  EXPECT_FALSE(gzipextension("a.gz"));

  const std::string packedname = ::testing::TempDir() + "linefile_write.txt.gz";
  const std::string plainname = ::testing::TempDir() + "linefile_write.gz";
  ASSERT_TRUE(bufferwrite(utf16(packedname), "data"));
  ASSERT_TRUE(bufferwrite(utf16(plainname), "data"));
  EXPECT_TRUE(isgzip(content(packedname)));
  EXPECT_EQ(content(plainname), "data");
  EXPECT_FALSE(bufferwrite(utf16(plainname), ""));  // "Empty file!": nothing is written
  EXPECT_EQ(content(plainname), "data");
}
