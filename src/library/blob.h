// Byte search and patch of whole files. Offsets count bytes from 0, as a file offset
// does; a text becomes its UTF-8 bytes, with character 0 as the byte 0.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "script/utf16.h"

std::string textbytes(const utf16& text);
// The next offset of needle in hay at or behind from; -1 when there is none.
int64_t blobsearch(std::string_view hay, std::string_view needle, int64_t from);

// Occurrences, each searched behind the last; -1 when the file can't be read.
int64_t blobcount(const utf16& file, const utf16& text);
// Their offsets from start on; false when the file can't be read.
bool blobpositions(const utf16& file, const utf16& text, int64_t start, std::vector<int64_t>& out);
// count bytes from offset; a negative count takes the bytes before offset. False when
// the file can't be read.
bool blobget(const utf16& file, int64_t offset, int64_t count, std::string& out);

enum class tpatch { none, written, failed };
// Overwrites each occurrence in place. Texts of unequal length patch only as far as the
// shorter one reaches and leave the file alone: file + ".fail" gets the patched bytes.
// Without a match nothing is written.
tpatch blobreplace(const utf16& file, const utf16& search, const utf16& by);
