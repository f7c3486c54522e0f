// The toolkit of the raster codecs: whole-file reading (inflated only for a ".gz" double
// extension: image readers never look for gzip by content), a byte reader, a write sink
// that deflates for a ".gz" name, progress lines and the common ends of a reader.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "base/filebuffer.h"
#include "field/imagefield.h"
#include "shell/files.h"

// The whole file; false (with the file layer's message) when it cannot be read.
bool imagefileread(const utf16& name, tfilebuffer& b);

// A whole-file buffer that is released when the reader returns, whichever way it leaves.
struct tscopedbuffer {
  tfilebuffer buffer;
  tscopedbuffer() = default;
  tscopedbuffer(const tscopedbuffer&) = delete;
  tscopedbuffer& operator=(const tscopedbuffer&) = delete;
  ~tscopedbuffer() { bufferrelease(buffer); }
};

// Bytes of a file in memory with a read position; reads past the end give false.
struct tbytereader {
  const uint8_t* data = nullptr;
  int64_t size = 0;
  int64_t at = 0;

  int64_t left() const { return size - at; }
  bool take(int64_t n, const uint8_t*& p) {
    if (n < 0 || n > left()) return false;
    p = data + at;
    at += n;
    return true;
  }
  bool skip(int64_t n) {
    const uint8_t* p;
    return take(n, p);
  }
  bool u8(uint32_t& v) {
    const uint8_t* p;
    if (!take(1, p)) return false;
    v = p[0];
    return true;
  }
  bool le16(uint32_t& v) {
    const uint8_t* p;
    if (!take(2, p)) return false;
    v = p[0] | uint32_t{p[1]} << 8;
    return true;
  }
  bool le32(uint32_t& v) {
    const uint8_t* p;
    if (!take(4, p)) return false;
    v = p[0] | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
    return true;
  }
};
inline tbytereader bytereader(const tfilebuffer& b) { return {b.bytes.data, b.size, 0}; }

// The output of a writer: a checked file, deflated on the way when pack is set.
struct timagesink {
  tfile file;
  bool packed = false;
  bool failed = false;
  void* stream = nullptr;  // the deflate state of a packed file
  std::string pending;     // rows gathered into larger writes
};
bool sinkopen(timagesink& s, const utf16& name);
bool sinkwrite(timagesink& s, const void* data, size_t bytes);
inline bool sinkwrite(timagesink& s, std::string_view bytes) { return sinkwrite(s, bytes.data(), bytes.size()); }
bool sinkclose(timagesink& s);

// Little- and big-endian numbers appended to a byte string.
void putle16(std::string& out, uint32_t v);
void putle32(std::string& out, uint32_t v);
void putbe32(std::string& out, uint32_t v);

// The progress line of a reader or writer: label + "<w>x<h>)"; rows are counted.
struct timageprogress {
  utf16 text;
  int64_t rows = 0;
  bool shown = false;
};
timageprogress progressbegin(const char* label, int64_t w, int64_t h);
void progressrow(timageprogress& p, int64_t y);
void progressdone(timageprogress& p);

// The image as rows of blue, green, red bytes, the last row first, each row `rowbytes` long
// (padding stays zero): the pixel layout that BMP and TGA share.
std::string bottomupbgr(const timagefield& f, int64_t rowbytes);

// A reader's end on bad data: the line, then the field empty and nameless (false).
bool readfailed(timagefield& f, const utf16& message);
// A reader's end on success: the field is named after the file (true).
bool readdone(timagefield& f, const utf16& name);
// Sizes the field for a reader in its own kind; false (field emptied) when the memory
// could not be had, which the allocator has reported.
bool readsize(timagefield& f, int64_t w, int64_t h);
// "Wrong file size (<n>).": the data end before the header's size is filled.
bool truncated(timagefield& f, int64_t size);

// The name with the writer's extension behind it unless it ends so already.
utf16 writername(const utf16& name, const utf16& extension);
