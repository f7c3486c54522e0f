// Wildcard expansion of file and directory names: the one way a name with "*" becomes a
// list of files, used by the load commands and by the script's own lists.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "script/utf16.h"

struct tfileentry {
  utf16 name;         // the directory part as given, then the entry's own name
  int64_t size = 0;   // bytes; 0 for a directory
  double date = 0;    // modification time, seconds since the epoch
};

// A scan stops beyond this many directory entries: deep trees and symbolic-link loops end.
constexpr int64_t scanlimit = 99999;

// Sort expanded patterns by name (io.sorting).
extern bool expandsorted;

// "*" stands for any run of characters, also an empty one; all else compares exactly.
bool maskmatch(std::string_view mask, std::string_view name);

// The checked listing of a directory: the names of its entries without "." and "..", in
// byte order.
// A directory that can't be opened reports by the file layer and gives false; without
// follow a directory that is a symbolic link isn't opened.
bool readdirectory(const utf16& dir, std::vector<std::string>& names, bool follow = true);

// The entry's record when it exists as a file (directories false) or as a directory
// (directories true); symbolic links are followed.
bool statentry(const utf16& name, bool directories, tfileentry& out);

// Appends the files (or directories) of the pattern to out. A name without "*" gives that
// one entry if it exists. With recursive, every directory found is followed by the
// directories below it that match the same mask, depth first. False (reported) when the
// directory of the pattern can't be read.
bool expandpattern(const utf16& pattern, bool directories, std::vector<tfileentry>& out, bool recursive = false);

// Ascending by name with the language's text order (which io.align sets).
void sortbyname(std::vector<tfileentry>& entries);
