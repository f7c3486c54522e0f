// The whole-file buffer under every text reader: one tfieldmemory byte block holding the
// file, inflated on the way when it is gzip data, and the matching whole-file write.
#pragma once
#include <cstdint>
#include <string_view>

#include "field/arrays.h"
#include "script/utf16.h"

// The text behind the last '.', empty without one; behind "gz" the part before it joins in
// ("nii.gz"). The stem is the name without the last suffix only: "a.nii.gz" gives "a.nii".
utf16 fileextension(const utf16& name);
utf16 filestem(const utf16& name);
// True when a name is written and read through gzip by its extension: "a.nii.gz" is, a
// plain "a.gz" (extension "gz") is not.
bool gzipextension(const utf16& name);

struct tfilebuffer {
  tbytelist bytes{};    // the file's bytes and one zero behind them
  int64_t size = 0;     // bytes of the file (or of its inflated content)
  bool packed = false;  // the file held gzip data
};

// Reads the file whole. gzip data (by its magic or by a ".gz" double extension) is
// inflated. An empty file logs "Empty file!", a failed allocation "Not enough memory!
// Create empty field."; both and an unreadable name leave an empty buffer and false.
bool bufferread(tfilebuffer& b, const utf16& name);
void bufferrelease(tfilebuffer& b);
inline std::string_view bufferview(const tfilebuffer& b) {
  return b.size > 0 ? std::string_view(reinterpret_cast<const char*>(b.bytes.data), static_cast<size_t>(b.size))
                    : std::string_view();
}

// Writes the bytes in one piece, deflated when pack is set; nothing for an empty buffer
// but "Empty file!".
bool bufferwrite(const utf16& name, std::string_view bytes, bool pack);
// The form of the readers: packed when the extension asks for it.
inline bool bufferwrite(const utf16& name, std::string_view bytes) { return bufferwrite(name, bytes, gzipextension(name)); }
