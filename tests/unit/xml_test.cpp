#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "library/xml.h"

#include "testfiles.h"

namespace {

std::string tempfile(const std::string& name, const std::string& bytes) { return writetestfile("xml_", name, bytes); }
std::string content(const std::string& path) { return readtestfile(path); }

const std::string sample =
    "<?xml version=\"1.0\"?>\n"
    "<root>\n"
    "  <a uid=\"9\" id=\"x\" note=\"1 > 0\">text</a>\n"
    "  <list>\n"
    "    <item id=\"1\" value=\"one\"/>\n"
    "    <item id=\"2\"><sub>deep</sub></item>\n"
    "  </list>\n"
    "</root>\n";

// The document's result of one edit, or "<unchanged>" when the file was not written.
std::string edited(const std::string& name, const std::string& path, const std::string& text, txmledit edit) {
  const std::string file = tempfile(name, sample);
  const int64_t n = xmledit(utf16(file), utf16(path), utf16(text), edit);
  const std::string after = content(file);
  return n == 0 ? (after == sample ? "<unchanged>" : "<changed without a count>") : after;
}

}  // namespace

TEST(Xml, PathsValuesAndIds) {
  txmldocument d;
  ASSERT_TRUE(xmlread(d, utf16(tempfile("read.xml", sample))));
  std::vector<std::string> paths;
  for (const txmlelement& e : d.elements) paths.push_back(e.path);
  EXPECT_EQ(paths, (std::vector<std::string>{"root", "root/a", "root/list", "root/list/item", "root/list/item", "root/list/item/sub"}));
  EXPECT_EQ(xmlvalue(d, "root/a", ""), "text");
  EXPECT_EQ(d.elements[1].id, "x");  // "uid" is another attribute
  EXPECT_EQ(xmlvalue(d, "root/list/item", ""), "one");
  EXPECT_EQ(xmlvalue(d, "root/list/item", "2"), "");
  EXPECT_EQ(xmlvalue(d, "root/list/item/sub", ""), "deep");
  EXPECT_EQ(xmlvalue(d, "root/none", ""), "");
  EXPECT_EQ(xmlpath("\\root\\list"), "root/list");
  const std::vector<std::string> listing = xmllisting(d);
  EXPECT_EQ(listing[1], "root/a = text");
  EXPECT_EQ(listing[2], "root/list");
}

TEST(Xml, EditsRewriteOnlyTheMatchedElements) {
  EXPECT_EQ(edited("del.xml", "root/list/item", "", txmledit::remove),
            "<?xml version=\"1.0\"?>\n<root>\n  <a uid=\"9\" id=\"x\" note=\"1 > 0\">text</a>\n  <list>\n  </list>\n</root>\n");
  EXPECT_EQ(edited("rep.xml", "root/a", "new", txmledit::replace),
            "<?xml version=\"1.0\"?>\n<root>\n  <a uid=\"9\" id=\"x\" note=\"1 > 0\">new</a>\n  <list>\n"
            "    <item id=\"1\" value=\"one\"/>\n    <item id=\"2\"><sub>deep</sub></item>\n  </list>\n</root>\n");
  EXPECT_EQ(edited("repv.xml", "root/list/item", "v", txmledit::replace),
            "<?xml version=\"1.0\"?>\n<root>\n  <a uid=\"9\" id=\"x\" note=\"1 > 0\">text</a>\n  <list>\n"
            "    <item id=\"1\" value=\"v\"/>\n    <item id=\"2\">v</item>\n  </list>\n</root>\n");
  EXPECT_EQ(edited("ins.xml", "root/list", "<item/>", txmledit::insertend),
            "<?xml version=\"1.0\"?>\n<root>\n  <a uid=\"9\" id=\"x\" note=\"1 > 0\">text</a>\n  <list>\n"
            "    <item id=\"1\" value=\"one\"/>\n    <item id=\"2\"><sub>deep</sub></item>\n<item/>\n  </list>\n</root>\n");
  EXPECT_EQ(edited("insb.xml", "root", "<first/>", txmledit::insertbegin),
            "<?xml version=\"1.0\"?>\n<root>\n<first/>\n  <a uid=\"9\" id=\"x\" note=\"1 > 0\">text</a>\n  <list>\n"
            "    <item id=\"1\" value=\"one\"/>\n    <item id=\"2\"><sub>deep</sub></item>\n  </list>\n</root>\n");
  EXPECT_EQ(edited("none.xml", "root/nothing", "x", txmledit::remove), "<unchanged>");
  // A single tag takes no children; the second item does, on a line of its own.
  EXPECT_EQ(edited("single.xml", "root/list/item", "x", txmledit::insertbegin),
            "<?xml version=\"1.0\"?>\n<root>\n  <a uid=\"9\" id=\"x\" note=\"1 > 0\">text</a>\n  <list>\n"
            "    <item id=\"1\" value=\"one\"/>\n    <item id=\"2\">\nx\n<sub>deep</sub></item>\n  </list>\n</root>\n");
}
