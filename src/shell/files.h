// Checked file operations: every file access of the program goes through here.
// Each routine reports failures in the program's words and returns false; nothing throws.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "script/utf16.h"

// The runtime-style I/O codes that the messages are keyed by.
enum : int {
  io_ok = 0,
  io_notfound = 2,
  io_nopath = 3,
  io_toomany = 4,
  io_denied = 5,
  io_readerror = 100,
  io_writeerror = 101,
  io_notopen = 103,
};

// A name as shown in messages: at most 60 characters, keeping the end of the path.
std::string shortname(const utf16& name);
// The path as the operating system gets it: UTF-8, with "dir/.." pairs collapsed.
std::string systempath(const utf16& name);

// Print the class line and the explanation for a non-zero code; true if it was an error.
bool checkio(const utf16& name, int code);
int iocodefromerrno(int err, const std::string& path);

struct tfile {
  FILE* handle = nullptr;
  utf16 name;
};

// Open forms. silent suppresses the success line (used where the caller reports itself).
bool readfile(tfile& f, const utf16& name, bool silent = false);
bool readfilesize(tfile& f, const utf16& name, int64_t recsize);
bool writefile(tfile& f, const utf16& name, bool silent = false);
bool appendfile(tfile& f, const utf16& name, bool silent = false);
bool closefile(tfile& f);

// Block transfer; a short read is reported as a read error unless partial is allowed.
bool readblock(tfile& f, void* data, size_t bytes, size_t* got = nullptr);
bool writeblock(tfile& f, const void* data, size_t bytes);
bool writetext(tfile& f, std::string_view utf8);

// Whole-file read, the form most readers use.
bool readwholefile(const utf16& name, std::string& out, bool silent = false);

bool deletefile(const utf16& name);
bool renamefile(const utf16& from, const utf16& to);
bool changedir(const utf16& name);
bool makedir(const utf16& name);
bool removedir(const utf16& name);
bool renamedir(const utf16& from, const utf16& to);

bool fileexists(const utf16& name);
bool direxists(const utf16& name);
int64_t filesize(const utf16& name);  // -1 for a missing file
