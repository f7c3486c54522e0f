#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "library/table.h"
#include "script/variables.h"

#include "testfiles.h"

namespace {

std::string tempfile(const std::string& name, const std::string& bytes) { return writetestfile("table_", name, bytes); }
std::string content(const std::string& path) { return readtestfile(path); }

struct loaded {
  ttable t{};
  loaded(const std::string& name, const std::string& bytes, char separator = '\t', bool join = false, bool comments = false) {
    t.separator = separator;
    t.join = join;
    tableload(t, utf16(tempfile(name, bytes)), comments);
  }
  ~loaded() { fieldrelease(t); }
};

}  // namespace

TEST(Table, CellsRowsAndTheLongestRow) {
  loaded l("cells", "a\tb\r\nc\td\te\r\n\r\nf\t\r\n");
  EXPECT_EQ(tablewidth(l.t), 3);
  EXPECT_EQ(tableheight(l.t), 4);
  EXPECT_EQ(tablecell(l.t, 3, 2), "e");
  EXPECT_EQ(tablecell(l.t, 3, 1), "");  // a short row
  EXPECT_EQ(tablecell(l.t, 1, 3), "");  // an empty line is a row of one empty cell
  EXPECT_EQ(l.t.rowcells.get(4), 2);    // a separator at the end makes an empty cell
  EXPECT_EQ(tablecell(l.t, 0, 1), "");
  EXPECT_EQ(tablecell(l.t, 1, 9), "");
}

TEST(Table, JoinedSeparatorsAndComments) {
  loaded plain("blanks", "1  2   3\n", ' ');
  EXPECT_EQ(tablewidth(plain.t), 6);
  loaded joined("joined", "1  2   3\n  4\n", ' ', true);
  EXPECT_EQ(tablewidth(joined.t), 3);
  EXPECT_EQ(tablecell(joined.t, 3, 1), "3");
  EXPECT_EQ(tablecell(joined.t, 1, 2), "");  // a leading run is one separator behind an empty cell
  EXPECT_EQ(tablecell(joined.t, 2, 2), "4");
  loaded comments("comments", "#x\t1\n1\t2\n #kept\n", '\t', false, true);
  EXPECT_EQ(tableheight(comments.t), 2);
  EXPECT_EQ(tablecell(comments.t, 1, 2), " #kept");
  loaded missing("empty", "");
  EXPECT_EQ(tableheight(missing.t), 0);
}

TEST(Table, HeaderHidesRowsAndColumnsFromReaders) {
  loaded l("header", "x;y;z\nr1;1;2\nr2;3;oops\nr3;5;6,5\n", ';');
  l.t.headerrows = 1;
  l.t.headercolumns = 1;
  EXPECT_EQ(tablewidth(l.t), 2);
  EXPECT_EQ(tableheight(l.t), 3);
  EXPECT_EQ(tablecell(l.t, 1, 1), "1");
  double mean = 0, sd = 0;
  tablestatistic(l.t, true, 2, mean, sd);  // 2, 6.5: the text is passed over
  EXPECT_DOUBLE_EQ(mean, 4.25);
  EXPECT_DOUBLE_EQ(sd, 2.25);
  tablestatistic(l.t, false, 2, mean, sd);  // row r2: 3 alone
  EXPECT_DOUBLE_EQ(mean, 3);
  EXPECT_DOUBLE_EQ(sd, 0);
  tablestatistic(l.t, true, 9, mean, sd);
  EXPECT_DOUBLE_EQ(mean, 0);

  const std::string whole = ::testing::TempDir() + "table_whole.txt";
  const std::string turned = ::testing::TempDir() + "table_turned.txt";
  const std::string data = ::testing::TempDir() + "table_data.txt";
  ASSERT_TRUE(tablesave(l.t, utf16(whole), tsaveform::whole));
  ASSERT_TRUE(tablesave(l.t, utf16(turned), tsaveform::transposed));
  ASSERT_TRUE(tablesave(l.t, utf16(data), tsaveform::data));
  EXPECT_EQ(content(whole), "x\ty\tz\nr1\t1\t2\nr2\t3\toops\nr3\t5\t6,5\n");
  EXPECT_EQ(content(turned), "x\tr1\tr2\tr3\ny\t1\t3\t5\nz\t2\toops\t6,5\n");
  EXPECT_EQ(content(data), "r1\t1\t2\nr2\t3\toops\nr3\t5\t6,5\n");
}

TEST(Table, RowsAndColumnsBecomeVariables) {
  tscript s;
  loaded l("vars", "\"first name\";1;2\nb;3\n;9\nb;4;\"5,5\"\n", ';');
  tabletovariables(s, l.t, false, false);
  EXPECT_TRUE(equalutf8(getvar(s, "first_name"), "1"));
  EXPECT_TRUE(equalutf8(getvar(s, "b"), "4"));  // the last of two equal labels stands
  tabletovariables(s, l.t, false, true);
  EXPECT_EQ(utf16toutf8(getvar(s, "first_name")), "1\t2");
  EXPECT_EQ(utf16toutf8(getvar(s, "b")), "4\t5.5");  // quotes dropped, decimal comma made a point
  loaded c("columns", "p\tq\n1,5\t2\n");
  tabletovariables(s, c.t, true, false);
  EXPECT_TRUE(equalutf8(getvar(s, "p"), "1.5"));
  EXPECT_TRUE(equalutf8(getvar(s, "q"), "2"));
}
