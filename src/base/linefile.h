// tlinefile: a text file held whole, with tables of line offsets and lengths. Every
// line-oriented reader uses it; it lives only inside one reader call.
#pragma once
#include <cstdint>
#include <string_view>

#include "base/filebuffer.h"

struct tlinefile {
  tfilebuffer buffer{};  // line ends are zeroed, so each line is a zero-terminated text
  utf16 name;
  tintlist starts{};   // byte offset of each line in the buffer, from 0
  tintlist lengths{};  // bytes of each line, its end not counted
  int64_t current = 0;
};

// Reads and indexes the file. limit > 0 stops after that many lines; a label shows the
// pass as the first half of the caller's progress bar, otherwise it shows "  Analyze".
bool linefileread(tlinefile& f, const utf16& name, int64_t limit = 0, const utf16& label = utf16());
// Indexes a buffer that is already filled (used by readers that read it themselves).
void linefileindex(tlinefile& f, int64_t limit = 0, const utf16& label = utf16());
void linefilerelease(tlinefile& f);

inline int64_t linefilecount(const tlinefile& f) { return f.starts.length; }
// Line n from 1; empty outside.
std::string_view linefileview(const tlinefile& f, int64_t n);
utf16 linefiletext(const tlinefile& f, int64_t n);
