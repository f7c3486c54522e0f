// The file and directory operations of the script: copy (with gzip on the way), move,
// join, delete by pattern, repair of names, and the directory operations. Each reports
// through the checked file layer and touches nothing but what it names.
#pragma once
#include <cstdint>
#include <vector>

#include "script/utf16.h"

// The integer of io.file.copy.method; the copy takes one path whatever it holds.
extern int64_t filecopymethod;

// With convert, a ".gz" ending on one side only inflates or deflates the bytes. A copy
// of a file onto itself does nothing. The source is only ever read.
bool copyfile(const utf16& from, const utf16& to, bool convert = true);
// A rename on one file system, else a copy and the deletion of the source after it.
// An existing target is replaced, as a rename replaces it.
bool movefile(const utf16& from, const utf16& to);
// The files of the patterns, one after the other, into target; nothing is written when
// one of them can't be read. The target itself is no source.
bool joinfiles(const std::vector<utf16>& patterns, const utf16& target);
// The files of the pattern; directories stay. The count deleted.
int64_t deletefiles(const utf16& pattern);
// Each file of the pattern renamed to its repaired name where that differs.
void repairfiles(const utf16& pattern);
// name inside dir: "dir/" + its file part.
utf16 intodir(const utf16& dir, const utf16& name);

// Makes the directory and its missing parents; true when it exists afterwards.
bool makedirs(const utf16& name);
// Removes an empty directory; a non-empty one prints "  Directory not empty!" and stays.
bool deleteemptydir(const utf16& name);
// Deletes what the directory holds, then the directory. A symbolic link is removed as a
// link and never followed; a name that is itself a link is no directory to delete.
bool harddeletedir(const utf16& name);
// Copies the tree; links to directories are not followed.
bool copydir(const utf16& from, const utf16& to);

int64_t fileage(const utf16& name);   // seconds since the last change, -1 when missing
utf16 fileattributes(const utf16& name);  // "drwxr-xr-x" form, empty when missing
utf16 workingdir();
