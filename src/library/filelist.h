// The script's own file list and directory list, each with a cursor from 1. Entries are
// kept in a std::vector: the lists of the list workspace are not at hand in this library.
#pragma once
#include <cstdint>
#include <vector>

#include "library/pattern.h"

struct tfilelist {
  std::vector<tfileentry> entries;
  int64_t cursor = 1;        // the current entry; 0 or count + 1 when it stands outside
  bool directories = false;  // a directory list expands to directories
};

extern tfilelist scriptfiles;
extern tfilelist scriptdirs;

inline int64_t filelistcount(const tfilelist& l) { return static_cast<int64_t>(l.entries.size()); }
// The entry at the cursor plus offset, nullptr outside the list.
const tfileentry* filelistat(const tfilelist& l, int64_t offset = 0);
// The current entry and those behind it.
int64_t filelistrest(const tfilelist& l);
// The cursor to i, kept within 0..count + 1.
void filelistgo(tfilelist& l, int64_t i);

void filelistclear(tfilelist& l);
// The list made anew from the pattern, the cursor at the first entry. A directory that
// can't be read leaves the list as it was.
void filelistnew(tfilelist& l, const utf16& pattern, bool recursive = false);
// A name with wildcards stands for the first file it finds; any other name for itself.
utf16 firstmatch(const utf16& name);
// Appends what the pattern finds; a name already in the list (by lower-case comparison)
// isn't added twice.
void filelistadd(tfilelist& l, const utf16& pattern, bool recursive = false);
// Each line of the text file is a pattern to add, after emptying the list with reset;
// false (and the list as it was) when the file can't be read.
bool filelistfromfile(tfilelist& l, const utf16& textfile, bool reset);
// Removes the entries whose full name matches the pattern, or with weak whose file part
// matches the pattern's file part.
void filelistsub(tfilelist& l, const utf16& pattern, bool weak);

enum class tfileorder { name, number, size, date };
void filelistsort(tfilelist& l, tfileorder order);
void filelistflip(tfilelist& l);
void filelistreplace(tfilelist& l, const utf16& search, const utf16& by);
