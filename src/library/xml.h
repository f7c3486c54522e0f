// A line-based view of XML files: elements are found by their path ("a/b/c"), one tag a
// line being the supported form. Edits rewrite the file; nothing stays in memory.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "script/utf16.h"

struct txmlelement {
  std::string path;
  int64_t openline = 0;     // line of the opening tag, from 1
  int64_t tagstart = 0;     // byte of its '<'
  int64_t opencolumn = 0;   // byte behind its '>'
  int64_t closeline = 0;    // line of the closing tag; the opening line for a single tag
  int64_t closecolumn = 0;  // byte of the closing tag's '<'; behind a single tag
  int64_t closeend = 0;     // byte behind the closing tag
  bool single = false;
  std::string value;        // the text inside, else the value attribute
  std::string id;
  int64_t valuestart = -1;  // the value attribute's text in the opening line
  int64_t valuelength = 0;
};

struct txmldocument {
  std::vector<std::string> lines;
  std::vector<txmlelement> elements;  // in the order of their opening tags
  bool packed = false;
};

// A path parameter: "\" made "/", a leading "/" dropped.
std::string xmlpath(const utf16& path);
bool xmlread(txmldocument& d, const utf16& name);
// "path = value" for each element (the path alone without a value).
std::vector<std::string> xmllisting(const txmldocument& d);
// The value of the first element of the path, with a matching id attribute when id isn't
// empty; empty when there is none.
std::string xmlvalue(const txmldocument& d, const std::string& path, const std::string& id);

enum class txmledit { insertbegin, insertend, replace, remove };
// Applies the edit to every element of the path and writes the file when any matched.
// The text may name a file whose lines are taken. The count of elements edited.
int64_t xmledit(const utf16& file, const utf16& path, const utf16& text, txmledit edit);
