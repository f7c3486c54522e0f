// Line editing of text files: each operation reads the source whole, writes the target
// line by line with a line feed, and keeps nothing between commands. Matching is a plain,
// case-sensitive substring test on the UTF-8 bytes.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "script/utf16.h"

enum class tlinetest {
  keepfrom,      // lines from the first one with mark on
  keepbefore,    // lines before the first one with mark
  withmark,      // lines that contain mark
  withoutmark,   // lines that don't
  cutthrough,    // each line without the text up to and including mark
  cutfrom,       // each line without the text from mark on
  split,         // each line cut at mark into several lines
};

// Writes (or with append, adds to) target from source by the test; nothing happens when
// the source can't be read.
bool textfilter(const utf16& source, const utf16& target, const utf16& mark, tlinetest test, bool append = false);
// Every line with all matches of search replaced.
bool textreplace(const utf16& source, const utf16& target, const utf16& search, const utf16& by);

// For each word the number of lines that contain it; empty when the file can't be read.
std::vector<int64_t> textcount(const utf16& file, const std::vector<utf16>& words);
// The lines that contain word, at most limit of them (0: all).
std::vector<std::string> textfind(const utf16& file, const utf16& word, int64_t limit);

// Where the mark line of a split goes: to no piece, to the piece it ends, to the one it starts.
enum class tmarkline { none, previous, next };
// The source cut into stem_001.ext, stem_002.ext ... at the lines with mark; a piece
// without lines is no file. The count of files written.
int64_t textsplitfiles(const utf16& source, const utf16& target, const utf16& mark, tmarkline where);
