#include "base/filebuffer.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "base/gzip.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

// Single reads stay below the 32-bit limit of the file layer.
constexpr int64_t plainstep = 8388608;

int64_t lastdot(const utf16& name) {
  const int64_t dot = lastpos(".", name);
  const int64_t slash = std::max(lastpos("/", name), lastpos("\\", name));
  return dot > slash ? dot : 0;
}

// The block of size bytes and a zero behind; false (and the buffer empty) when it failed.
bool allocatebuffer(tfilebuffer& b, int64_t size) {
  b.bytes.create(size + 1);
  if (b.bytes.length != size + 1) {
    println("Not enough memory! Create empty field.");
    bufferrelease(b);
    return false;
  }
  b.size = size;
  b.bytes.put(size + 1, 0);
  return true;
}

bool emptyfile(tfilebuffer& b) {
  println("Empty file!");
  bufferrelease(b);
  return false;
}

bool readpacked(tfilebuffer& b, tfile& f, const utf16& name, std::string head) {
  char chunk[1 << 16];
  size_t got = 0;
  while (readblock(f, chunk, sizeof chunk, &got) || got > 0) head.append(chunk, got);
  closefile(f);
  std::string plain;
  if (!gunzip(head, plain)) {
    checkio(name, io_readerror);
    return false;
  }
  if (plain.empty()) return emptyfile(b);
  if (!allocatebuffer(b, static_cast<int64_t>(plain.size()))) return false;
  std::memcpy(b.bytes.data, plain.data(), plain.size());
  b.packed = true;
  return true;
}

bool readplain(tfilebuffer& b, tfile& f, const utf16& name, const std::string& head) {
  const int64_t size = filesize(name);
  if (size <= 0) {
    closefile(f);
    return emptyfile(b);
  }
  if (!allocatebuffer(b, size)) {
    closefile(f);
    return false;
  }
  std::memcpy(b.bytes.data, head.data(), head.size());
  int64_t done = static_cast<int64_t>(head.size());
  while (done < size) {
    const int64_t step = std::min(plainstep, size - done);
    size_t got = 0;
    if (!readblock(f, b.bytes.data + done, static_cast<size_t>(step), &got)) {
      if (got == 0) break;  // the file shrank while it was read: keep what came
    }
    done += static_cast<int64_t>(got);
  }
  closefile(f);
  b.size = done;
  b.bytes.put(done + 1, 0);
  return done > 0 || emptyfile(b);
}

}  // namespace

utf16 fileextension(const utf16& name) {
  const int64_t dot = lastdot(name);
  if (dot == 0) return utf16();
  const utf16 last = copy(name, dot + 1, length(name) - dot);
  if (!equal(lower(last), "gz")) return last;
  const utf16 before = copy(name, 1, dot - 1);
  const int64_t inner = lastdot(before);
  return inner == 0 ? last : copy(name, inner + 1, length(name) - inner);
}

utf16 filestem(const utf16& name) {
  const int64_t dot = lastdot(name);
  return dot == 0 ? name : copy(name, 1, dot - 1);
}

bool gzipextension(const utf16& name) { return pos(".gz", lower(fileextension(name))) > 0; }

bool bufferread(tfilebuffer& b, const utf16& name) {
  bufferrelease(b);
  tfile f;
  if (!readfile(f, name, true)) return false;
  char magic[2];
  size_t got = 0;
  readblock(f, magic, 2, &got);
  const std::string head(magic, got);
  if (isgzip(head) || gzipextension(name)) return readpacked(b, f, name, head);
  return readplain(b, f, name, head);
}

void bufferrelease(tfilebuffer& b) {
  b.bytes.release();
  b.size = 0;
  b.packed = false;
}

bool bufferwrite(const utf16& name, std::string_view bytes, bool pack) {
  if (bytes.empty()) {
    println("Empty file!");
    return false;
  }
  std::string packed;
  if (pack) {
    if (!gzipcompress(bytes, packed)) {
      checkio(name, io_writeerror);
      return false;
    }
    bytes = packed;
  }
  tfile f;
  if (!writefile(f, name)) return false;
  const bool written = writeblock(f, bytes.data(), bytes.size());
  return closefile(f) && written;
}
