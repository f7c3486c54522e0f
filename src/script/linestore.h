// The script store: the whole macro file in one block, with tables of line offsets.
// Lines are numbered from 1; include splices files in while each line keeps its own
// file and line number for messages.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "script/utf16.h"

struct tlinestore {
  std::string content;  // NUL over each line end, so each line is a zero-terminated string
  std::vector<int64_t> linestart;
  std::vector<int64_t> linelength;
  int64_t count = 0;
  utf16 sourcename;
  std::vector<int64_t> sourcelines;  // empty until the first include
  std::vector<int64_t> sourcefile;   // index into sourcefiles, from 1
  std::vector<utf16> sourcefiles;    // entry 1 is the main file
  int64_t revision = 0;  // new at each load or splice, for caches of the lines; 0 = none yet
};

// Reads a plain or gzip file (decided by its first two bytes, or ".gz" in the name).
bool load(tlinestore& store, const utf16& filename);
inline int64_t linecount(const tlinestore& store) { return store.count; }
void getline(const tlinestore& store, int64_t n, utf16& out);  // out unchanged outside 1..count
int64_t linepos(const tlinestore& store, int64_t n);
const char* linepointer(const tlinestore& store, int64_t n);
int64_t sourceline(const tlinestore& store, int64_t n);
utf16 sourcefile(const tlinestore& store, int64_t n);
// Splices the named file in behind line afterline; false if it can't be read or is empty.
bool insertfile(tlinestore& store, int64_t afterline, const utf16& filename);
void dispose(tlinestore& store);
