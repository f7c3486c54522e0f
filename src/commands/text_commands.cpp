// Text files edited line by line, binary files searched and patched byte by byte, and the
// path view of XML files. Every text.* command is also there as txt.*.
#include <deque>
#include <string>
#include <vector>

#include "commands/families.h"
#include "library/blob.h"
#include "library/output.h"
#include "library/textedit.h"
#include "library/xml.h"
#include "script/registry.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

template <class T>
utf16 tabjoined(const std::vector<T>& items) {
  std::string out;
  for (size_t i = 0; i < items.size(); ++i) {
    if (i > 0) out += '\t';
    if constexpr (std::is_same_v<T, std::string>)
      out += items[i];
    else
      out += std::to_string(items[i]);
  }
  return utf16fromutf8(out);
}

// --- text --------------------------------------------------------------------------

template <tlinetest test, bool append = false>
void linefilter(tscript& s) {
  if (checkparams(s, 3)) textfilter(param(s, 1), param(s, 2), param(s, 3), test, append);
}

void replacecmd(tscript& s) {
  if (checkparams(s, 4)) textreplace(param(s, 1), param(s, 2), param(s, 3), param(s, 4));
}

void countcmd(tscript& s) {
  if (paramcount(s) < 2) return reportmin(s, 2);
  std::vector<utf16> words;
  for (int64_t i = 2; i <= paramcount(s); ++i) words.push_back(param(s, i));
  setresult(s, tabjoined(textcount(param(s, 1), words)));
}

// The first line with the word (limit 1), or all of them joined with tabs (limit 0).
template <int64_t limit>
void findcmd(tscript& s) {
  if (checkparams(s, 2)) setresult(s, tabjoined(textfind(param(s, 1), param(s, 2), limit)));
}

template <tmarkline where>
void splitfile(tscript& s) {
  if (checkparams(s, 3)) textsplitfiles(param(s, 1), param(s, 2), param(s, 3), where);
}

// --- blob --------------------------------------------------------------------------

void blobcountcmd(tscript& s) {
  if (!checkparams(s, 2)) return;
  const int64_t n = blobcount(param(s, 1), param(s, 2));
  setresult(s, n < 0 ? utf16() : nattext(n));
}

void blobpos(tscript& s) {
  if (paramcount(s) < 2) return reportmin(s, 2);
  if (paramcount(s) > 3) return reportmax(s, 3);
  std::vector<int64_t> at;
  blobpositions(param(s, 1), param(s, 2), paramcount(s) == 3 ? textnat(param(s, 3)) : 0, at);
  setresult(s, tabjoined(at));
}

void blobgetcmd(tscript& s) {
  if (!checkparams(s, 3)) return;
  std::string bytes;
  blobget(param(s, 1), textnat(param(s, 2)), textnat(param(s, 3)), bytes);
  setresult(s, utf16fromutf8(bytes));
}

void blobreplacecmd(tscript& s) {
  if (checkparams(s, 3)) blobreplace(param(s, 1), param(s, 2), param(s, 3));
}

// --- xml ---------------------------------------------------------------------------

void xmlshow(tscript& s) {
  if (!checkparams(s, 1)) return;
  txmldocument d;
  if (!xmlread(d, param(s, 1))) return;
  for (const std::string& line : xmllisting(d)) scriptwriteln(s, line);
}

template <txmledit edit>
void xmleditcmd(tscript& s) {
  const int64_t count = edit == txmledit::remove ? 2 : 3;
  if (checkparams(s, count)) xmledit(param(s, 1), param(s, 2), count == 3 ? param(s, 3) : utf16(), edit);
}

// The value of the path, or with three parameters of the item whose id matches.
template <bool byid>
void gettag(tscript& s) {
  if (!checkparams(s, byid ? 3 : 2)) return;
  println("  Read XML-file");
  txmldocument d;
  const bool read = xmlread(d, param(s, 1));
  setresult(s, read ? utf16fromutf8(xmlvalue(d, xmlpath(param(s, 2)), byid ? utf16toutf8(param(s, 3)) : "")) : utf16());
}

using enum tcommandkind;
using T = tlinetest;

// The text.* rows; each is registered a second time under txt.*.
constexpr tcommand textrows[] = {
    {"text.replace", procedure, replacecmd, nullptr, "text.replace \"a.txt\" \"b.txt\" \"old\" \"new\" // every match replaced in every line"},
    {"text.delete.before", procedure, linefilter<T::keepfrom>, nullptr, "text.delete.before \"a.txt\" \"b.txt\" \"mark\" // drop the lines before the first with mark"},
    {"text.delete.line", procedure, linefilter<T::withoutmark>, nullptr, "text.delete.line \"a.txt\" \"b.txt\" \"mark\" // drop the lines with mark"},
    {"text.delete.other", procedure, linefilter<T::withmark>, nullptr, "text.delete.other \"a.txt\" \"b.txt\" \"mark\" // keep only the lines with mark"},
    {"text.delete.after", procedure, linefilter<T::keepbefore>, nullptr, "text.delete.after \"a.txt\" \"b.txt\" \"mark\" // drop the lines from the first with mark on"},
    {"text.ignore.before", procedure, linefilter<T::cutthrough>, nullptr, "text.ignore.before \"a.txt\" \"b.txt\" \"mark\" // cut each line up to and with mark"},
    {"text.ignore.after", procedure, linefilter<T::cutfrom>, nullptr, "text.ignore.after \"a.txt\" \"b.txt\" \"mark\" // cut each line from mark on"},
    {"text.filter", procedure, linefilter<T::withmark>, nullptr, "text.filter \"a.txt\" \"b.txt\" \"mark\" // write the lines with mark"},
    {"text.filter.not", procedure, linefilter<T::withoutmark>, nullptr, "text.filter.not \"a.txt\" \"b.txt\" \"mark\" // write the lines without mark"},
    {"text.count", function, countcmd, nullptr, "a := text.count \"a.txt\" \"x\" \"y\" // lines with each word, joined with tabs"},
    {"text.find", function, findcmd<1>, nullptr, "a := text.find \"a.txt\" \"word\" // the first line with the word"},
    {"text.find.all", function, findcmd<0>, nullptr, "a := text.find.all \"a.txt\" \"word\" // all lines with the word, joined with tabs"},
    {"text.split", procedure, linefilter<T::split>, nullptr, "text.split \"a.txt\" \"b.txt\" \";\" // each line cut into lines at the separator"},
    {"text.split.file", procedure, splitfile<tmarkline::none>, nullptr, "text.split.file \"a.txt\" \"part.txt\" \"mark\" // part_001.txt ... cut at the mark lines"},
    {"text.split.file.before", procedure, splitfile<tmarkline::previous>, nullptr, "text.split.file.before \"a.txt\" \"part.txt\" \"mark\" // the mark line ends a file"},
    {"text.split.file.after", procedure, splitfile<tmarkline::next>, nullptr, "text.split.file.after \"a.txt\" \"part.txt\" \"mark\" // the mark line starts a file"},
    {"text.collect", procedure, linefilter<T::withmark>, nullptr, "text.collect \"a.txt\" \"b.txt\" \"mark\" // the lines with mark into the target"},
    {"text.collect.append", procedure, linefilter<T::withmark, true>, nullptr, "text.collect.append \"a.txt\" \"b.txt\" \"mark\" // the same, added to the target"},
};

constexpr tcommand otherrows[] = {
    {"blob.count", function, blobcountcmd, nullptr, "a := blob.count \"a.bin\" \"abc\" // occurrences of the bytes"},
    {"blob.pos", function, blobpos, nullptr, "a := blob.pos \"a.bin\" \"abc\" 0 // their offsets from a start, joined with tabs"},
    {"blob.get", function, blobgetcmd, nullptr, "a := blob.get \"a.bin\" 16 4 // bytes from an offset; a negative count reads those before it"},
    {"blob.replace", procedure, blobreplacecmd, nullptr, "blob.replace \"a.bin\" \"abc\" \"xyz\" // overwrite each occurrence in place"},
    {"xml.show", procedure, xmlshow, nullptr, "xml.show \"a.xml\" // all paths with their values"},
    {"dump.xml", procedure, xmlshow, nullptr, "dump.xml \"a.xml\" // same as xml.show"},
    {"xml.insert.begin", procedure, xmleditcmd<txmledit::insertbegin>, nullptr, "xml.insert.begin \"a.xml\" \"root/list\" \"<item/>\" // insert as first child"},
    {"xml.insert.end", procedure, xmleditcmd<txmledit::insertend>, nullptr, "xml.insert.end \"a.xml\" \"root/list\" \"<item/>\" // insert as last child"},
    {"xml.replace", procedure, xmleditcmd<txmledit::replace>, nullptr, "xml.replace \"a.xml\" \"root/name\" \"new\" // replace the value of the element"},
    {"xml.delete", procedure, xmleditcmd<txmledit::remove>, nullptr, "xml.delete \"a.xml\" \"root/name\" // remove the element"},
    {"xml.gettag", function, gettag<false>, nullptr, "a := xml.gettag \"a.xml\" \"root/name\" // the value of the element"},
    {"xml.gettag.id", function, gettag<true>, nullptr, "a := xml.gettag.id \"a.xml\" \"root/list/item\" 3 // the value of the item with id 3"},
};

// The text rows, the txt.* twins (without a line in the example macro) and the rest.
const std::vector<tcommand>& allrows() {
  static std::deque<std::string> twinnames;
  static const std::vector<tcommand> rows = [] {
    std::vector<tcommand> all(std::begin(textrows), std::end(textrows));
    for (const tcommand& c : textrows) {
      twinnames.push_back("txt" + std::string(c.name).substr(4));
      all.push_back({twinnames.back().c_str(), c.kind, c.handler, c.function, ""});
    }
    all.insert(all.end(), std::begin(otherrows), std::end(otherrows));
    return all;
  }();
  return rows;
}

}  // namespace

tcommandfamily textcommands() { return {"", allrows()}; }
