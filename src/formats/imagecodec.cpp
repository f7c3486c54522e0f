#include "formats/imagecodec.h"

#include <vector>

#include <zlib.h>

#include <cstring>

#include "base/gzip.h"
#include "shell/console.h"

namespace {

// Single reads stay below the 32-bit limit of the file layer.
constexpr int64_t readstep = 8388608;
// Above this many pixels a progress line is closed with its own line; smaller ones are
// overwritten by whatever is printed next.
constexpr int64_t longwork = 1 << 20;

utf16 lowerextension(const utf16& name) { return lower(fileextension(name)); }

}  // namespace

bool imagefileread(const utf16& name, tfilebuffer& b) {
  bufferrelease(b);
  tfile f;
  if (!readfile(f, name, true)) return false;
  const int64_t size = filesize(name);
  if (size <= 0) {
    closefile(f);
    println("Empty file!");
    return false;
  }
  b.bytes.create(size + 1);
  if (b.bytes.length != size + 1) {
    closefile(f);
    bufferrelease(b);
    return false;
  }
  int64_t done = 0;
  while (done < size) {
    size_t got = 0;
    const bool whole = readblock(f, b.bytes.data + done, static_cast<size_t>(std::min(readstep, size - done)), &got);
    done += static_cast<int64_t>(got);
    if (!whole && got == 0) break;
  }
  closefile(f);
  b.size = done;
  if (!gzipextension(name)) return done > 0;
  std::string plain;
  if (!gunzip(std::string_view(reinterpret_cast<const char*>(b.bytes.data), static_cast<size_t>(done)), plain)) {
    bufferrelease(b);
    checkio(name, io_readerror);
    return false;
  }
  bufferrelease(b);
  if (plain.empty()) {
    println("Empty file!");
    return false;
  }
  b.bytes.create(static_cast<int64_t>(plain.size()) + 1);
  if (b.bytes.length != static_cast<int64_t>(plain.size()) + 1) {
    bufferrelease(b);
    return false;
  }
  std::memcpy(b.bytes.data, plain.data(), plain.size());
  b.size = static_cast<int64_t>(plain.size());
  b.packed = true;
  return true;
}

bool sinkopen(timagesink& s, const utf16& name) {
  s.failed = false;
  s.packed = gzipextension(name);
  if (!writefile(s.file, name, true)) {
    s.failed = true;
    return false;
  }
  if (s.packed) {
    auto* z = new z_stream{};
    if (deflateInit2(z, 6, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
      delete z;
      closefile(s.file);
      checkio(name, io_writeerror);
      s.failed = true;
      return false;
    }
    s.stream = z;
  }
  return true;
}

namespace {
bool deflatesome(timagesink& s, const void* data, size_t bytes, int flush) {
  auto* z = static_cast<z_stream*>(s.stream);
  z->next_in = reinterpret_cast<Bytef*>(const_cast<void*>(data));
  z->avail_in = static_cast<uInt>(bytes);
  unsigned char out[1 << 16];
  int status;
  do {
    z->next_out = out;
    z->avail_out = sizeof out;
    status = deflate(z, flush);
    if (status == Z_STREAM_ERROR) return false;
    if (!writeblock(s.file, out, sizeof out - z->avail_out)) return false;
  } while (z->avail_out == 0 || (flush == Z_FINISH && status != Z_STREAM_END));
  return true;
}
}  // namespace

namespace {
constexpr size_t sinkblock = 1 << 20;

bool sinkflush(timagesink& s) {
  if (s.pending.empty() || s.failed) return !s.failed;
  const bool ok = s.packed ? deflatesome(s, s.pending.data(), s.pending.size(), Z_NO_FLUSH)
                           : writeblock(s.file, s.pending.data(), s.pending.size());
  s.pending.clear();
  if (!ok) s.failed = true;
  return ok;
}
}  // namespace

bool sinkwrite(timagesink& s, const void* data, size_t bytes) {
  if (s.failed || !s.file.handle) return false;
  s.pending.append(static_cast<const char*>(data), bytes);
  return s.pending.size() < sinkblock || sinkflush(s);
}

bool sinkclose(timagesink& s) {
  bool ok = s.file.handle && sinkflush(s);
  if (s.stream) {
    auto* z = static_cast<z_stream*>(s.stream);
    if (ok && s.file.handle) ok = deflatesome(s, "", 0, Z_FINISH);
    deflateEnd(z);
    delete z;
    s.stream = nullptr;
  }
  if (s.file.handle) ok = closefile(s.file) && ok;
  return ok;
}

void putle16(std::string& out, uint32_t v) {
  out.push_back(static_cast<char>(v & 255));
  out.push_back(static_cast<char>(v >> 8 & 255));
}
void putle32(std::string& out, uint32_t v) {
  putle16(out, v & 0xFFFF);
  putle16(out, v >> 16);
}
void putbe32(std::string& out, uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<char>(v >> shift & 255));
}

timageprogress progressbegin(const char* label, int64_t w, int64_t h) {
  timageprogress p{utf16(label) + nattext(w) + "x" + nattext(h) + ")", h, false};
  p.shown = fieldcount(w, h) >= longwork;
  progress(p.text, 0);
  return p;
}

void progressrow(timageprogress& p, int64_t y) {
  if (p.rows > 0 && (y & 63) == 0) progress(p.text, static_cast<double>(y) / static_cast<double>(p.rows));
}

void progressdone(timageprogress& p) {
  if (p.shown) progressend();
}

bool readfailed(timagefield& f, const utf16& message) {
  if (!empty(message)) println(message);
  fieldcreate(f, f.kind);
  f.name = utf16();
  return false;
}

bool readdone(timagefield& f, const utf16& name) {
  f.name = name;
  return true;
}

bool readsize(timagefield& f, int64_t w, int64_t h) {
  fieldcreate(f, f.kind, {w, h, 1});
  if (fieldcount(w, h) < 1 || !imagecomplete(f)) {
    f.name = utf16();
    return false;
  }
  return true;
}

bool truncated(timagefield& f, int64_t size) {
  return readfailed(f, "Wrong file size (" + nattext(size) + ").");
}

utf16 writername(const utf16& name, const utf16& extension) {
  const utf16 ext = lowerextension(name);
  if (equal(ext, copy(extension, 2, length(extension) - 1)) || equalutf8(ext, "pnm") || equalutf8(ext, "pnm.gz")) return name;
  return name + extension;
}

std::string bottomupbgr(const timagefield& f, int64_t rowbytes) {
  const int64_t w = imagesizex(f), h = imagesizey(f);
  std::string data(static_cast<size_t>(rowbytes * h), '\0');
  std::vector<uint8_t> row(static_cast<size_t>(3 * w));
  timageprogress p = progressbegin("  RGB with (", w, h);
  imageemitrows(f, 3, row.data(), [&](int64_t y, const uint8_t* c) {
    progressrow(p, y);
    char* out = data.data() + (h - y) * rowbytes;
    for (int64_t x = 0; x < w; ++x)
      out[3 * x] = static_cast<char>(c[3 * x + 2]), out[3 * x + 1] = static_cast<char>(c[3 * x + 1]),
      out[3 * x + 2] = static_cast<char>(c[3 * x]);
    return true;
  });
  progressdone(p);
  return data;
}
