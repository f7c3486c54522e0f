// The bytes of a volume file in order: a plain file read block by block, or gzip data
// inflated whole into guarded memory (which also tells its size).
#pragma once
#include <cstdint>

#include "field/arrays.h"
#include "shell/files.h"

struct tvoxelsource {
  tfile file{};
  utf16 name;
  tbytelist memory{};  // inflated bytes of a packed file
  bool packed = false;
  int64_t size = 0;      // bytes of the file, or of its content when packed
  int64_t position = 0;  // the next byte to read
};

// Opens a file; gzip data (by its first two bytes) is inflated. silent leaves out the
// success line. A corrupt gzip stream or a failed allocation gives false.
bool sourceopen(tvoxelsource& s, const utf16& name, bool silent = false);
void sourceclose(tvoxelsource& s);
// A source of n bytes in memory for a decoder to fill (s.memory.data), read from its start.
// False when the memory could not be had.
bool sourcememory(tvoxelsource& s, const utf16& name, int64_t n);
// The next n bytes: a pointer into the inflated memory, or into buffer after a read.
// nullptr when fewer than n bytes are left.
const uint8_t* sourcetake(tvoxelsource& s, int64_t n, tbytelist& buffer);
// The next n bytes of a plain file read into out, with progress under label; false when
// the file ended first.
bool sourceread(tvoxelsource& s, uint8_t* out, int64_t n, const utf16& label);
// Moves to a byte position; a plain file moves back by opening again.
bool sourceseek(tvoxelsource& s, int64_t position);
// Up to n bytes from the start of a file, inflated when it is gzip data, without the
// success line: how many came, -1 when the file could not be opened (reported).
int64_t sourcehead(const utf16& name, void* out, int64_t n);
