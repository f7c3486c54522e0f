#include "formats/voxelsource.h"

#include <zlib.h>
#ifdef VOXMILL_LIBDEFLATE
#include <libdeflate.h>
#endif

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "base/gzip.h"
#include "field/owned.h"
#include "shell/console.h"

namespace {

constexpr int64_t readstep = 8388608;  // single reads stay below the file layer's 32-bit limit

// The whole compressed file in guarded memory.
bool readpacked(tvoxelsource& s, tbytelist& packed) {
  packed.create(std::max<int64_t>(s.size, 1));
  if (packed.length < s.size) return false;
  int64_t done = 0;
  while (done < s.size) {
    size_t got = 0;
    readblock(s.file, packed.data + done, static_cast<size_t>(std::min(readstep, s.size - done)), &got);
    if (got == 0) break;
    done += static_cast<int64_t>(got);
  }
  closefile(s.file);
  packed.length = done;  // what could be read; a shrunken file is a truncated stream
  return true;
}

// The size that the trailer of the last member gives (modulo 2^32).
int64_t trailersize(const tbytelist& packed) {
  if (packed.length < 4) return 0;
  const uint8_t* t = packed.data + packed.length - 4;
  return t[0] | t[1] << 8 | t[2] << 16 | static_cast<int64_t>(t[3]) << 24;
}

enum class tfastinflate { done, corrupt, declined };

// A single-member stream whose trailer tells its size is inflated in one call by
// libdeflate, about twice as fast as zlib; anything else is left to zlib.
tfastinflate fastinflate(tvoxelsource& s, const tbytelist& packed) {
#ifdef VOXMILL_LIBDEFLATE
  const int64_t size = trailersize(packed);
  if (size < 1) return tfastinflate::declined;
  s.memory.create(size);
  if (s.memory.length != size) return tfastinflate::declined;
  libdeflate_decompressor* d = libdeflate_alloc_decompressor();
  if (!d) return tfastinflate::declined;
  size_t in = 0, out = 0;
  const libdeflate_result r = libdeflate_gzip_decompress_ex(d, packed.data, static_cast<size_t>(packed.length),
                                                            s.memory.data, static_cast<size_t>(size), &in, &out);
  libdeflate_free_decompressor(d);
  if (r == LIBDEFLATE_SUCCESS && static_cast<int64_t>(in) == packed.length && static_cast<int64_t>(out) == size) {
    s.size = size;
    s.packed = true;
    return tfastinflate::done;
  }
  s.memory.release();
  return r == LIBDEFLATE_BAD_DATA ? tfastinflate::corrupt : tfastinflate::declined;
#else
  return tfastinflate::declined;
#endif
}

// All members of a gzip file inflated into s.memory. The size stored in the last member's
// trailer is the first guess of the room needed; the room doubles when it runs out.
bool inflatewhole(tvoxelsource& s) {
  tlocalarray<tbytelist> whole;
  tbytelist& packed = *whole;
  if (!readpacked(s, packed)) return false;
  const tfastinflate fast = fastinflate(s, packed);
  if (fast != tfastinflate::declined) return fast == tfastinflate::done;
  const int64_t n = packed.length;
  const int64_t room = std::max<int64_t>(1 << 16, trailersize(packed));
  s.memory.create(room);
  z_stream z{};
  bool ok = s.memory.length == room && inflateInit2(&z, 16 + MAX_WBITS) == Z_OK;
  int64_t fed = 0, out = 0;
  int status = Z_OK;
  while (ok) {
    if (z.avail_in == 0 && fed < n) {
      const int64_t step = std::min<int64_t>(n - fed, std::numeric_limits<uInt>::max());
      z.next_in = packed.data + fed;
      z.avail_in = static_cast<uInt>(step);
      fed += step;
    }
    if (out == s.memory.length) {
      s.memory.resize(s.memory.length * 2);
      if (s.memory.length <= out) {
        ok = false;
        break;
      }
    }
    const int64_t space = std::min<int64_t>(s.memory.length - out, std::numeric_limits<uInt>::max());
    z.next_out = s.memory.data + out;
    z.avail_out = static_cast<uInt>(space);
    status = inflate(&z, Z_NO_FLUSH);
    out += space - z.avail_out;
    if (status == Z_STREAM_END) {
      // Another member may follow; anything else behind the stream is padding.
      const int64_t rest = static_cast<int64_t>(z.avail_in) + (n - fed);
      if (rest < 2 || !isgzip(std::string_view(reinterpret_cast<const char*>(z.next_in), std::min<int64_t>(rest, z.avail_in))) ||
          inflateReset(&z) != Z_OK)
        break;
      continue;
    }
    if (status == Z_BUF_ERROR && z.avail_out == 0) continue;
    if (status != Z_OK || (z.avail_in == 0 && fed >= n && z.avail_out > 0)) ok = false;
  }
  inflateEnd(&z);
  if (!ok || status != Z_STREAM_END) {
    s.memory.release();
    return false;
  }
  s.size = out;
  s.packed = true;
  return true;
}

}  // namespace

bool sourceopen(tvoxelsource& s, const utf16& name, bool silent) {
  sourceclose(s);
  s.name = name;
  if (!readfile(s.file, name, silent)) return false;
  s.size = std::max<int64_t>(filesize(name), 0);
  char magic[2];
  size_t got = 0;
  readblock(s.file, magic, 2, &got);
  if (isgzip(std::string_view(magic, got))) {
    closefile(s.file);
    return readfile(s.file, name, true) && inflatewhole(s);
  }
  s.position = static_cast<int64_t>(got);
  return sourceseek(s, 0);
}

void sourceclose(tvoxelsource& s) {
  if (s.file.handle) closefile(s.file);
  s.memory.release();
  s.packed = false;
  s.size = s.position = 0;
}

bool sourcememory(tvoxelsource& s, const utf16& name, int64_t n) {
  sourceclose(s);
  s.name = name;
  s.memory.create(n);
  if (s.memory.length != n) return false;
  s.packed = true;
  s.size = n;
  return true;
}

const uint8_t* sourcetake(tvoxelsource& s, int64_t n, tbytelist& buffer) {
  if (n < 0 || s.position > s.size - n) return nullptr;
  if (s.packed) {
    const uint8_t* p = s.memory.data + s.position;
    s.position += n;
    return p;
  }
  if (buffer.length < n) {
    buffer.create(n);
    if (buffer.length < n) return nullptr;
  }
  for (int64_t done = 0; done < n;) {
    size_t got = 0;
    readblock(s.file, buffer.data + done, static_cast<size_t>(std::min(readstep, n - done)), &got);
    if (got == 0) return nullptr;
    done += static_cast<int64_t>(got);
    s.position += static_cast<int64_t>(got);
  }
  return buffer.data;
}

bool sourceread(tvoxelsource& s, uint8_t* out, int64_t n, const utf16& label) {
  for (int64_t done = 0; done < n;) {
    size_t got = 0;
    readblock(s.file, out + done, static_cast<size_t>(std::min(readstep, n - done)), &got);
    if (got == 0) return false;
    done += static_cast<int64_t>(got);
    s.position += static_cast<int64_t>(got);
    progress(label, static_cast<double>(done) / static_cast<double>(n));
  }
  return true;
}

bool sourceseek(tvoxelsource& s, int64_t position) {
  if (position < 0 || position > s.size) return false;
  if (s.packed) {
    s.position = position;
    return true;
  }
  if (position < s.position) {
    closefile(s.file);
    s.position = 0;
    if (!readfile(s.file, s.name, true)) return false;
  }
  // Forward by reading: the file layer has no seek, and what is passed over is small
  // beside what is read.
  tlocalarray<tbytelist> skip;
  bool ok = true;
  while (ok && s.position < position) ok = sourcetake(s, std::min(readstep, position - s.position), *skip) != nullptr;
  return ok;
}

int64_t sourcehead(const utf16& name, void* out, int64_t n) {
  tfile f;
  if (!readfile(f, name, true)) return -1;
  std::string bytes(static_cast<size_t>(n), '\0');
  size_t got = 0;
  readblock(f, bytes.data(), bytes.size(), &got);
  if (got >= 2 && isgzip(std::string_view(bytes.data(), got))) {
    // Only the beginning is inflated.
    z_stream z{};
    std::string packed(bytes, 0, got);
    char chunk[4096];
    size_t more = 0;
    bool ok = inflateInit2(&z, 16 + MAX_WBITS) == Z_OK;
    z.next_out = reinterpret_cast<Bytef*>(out);
    z.avail_out = static_cast<uInt>(n);
    while (ok && z.avail_out > 0) {
      if (z.avail_in == 0) {
        if (packed.empty()) {
          readblock(f, chunk, sizeof chunk, &more);
          if (more == 0) break;
          packed.assign(chunk, more);
        }
        z.next_in = reinterpret_cast<Bytef*>(packed.data());
        z.avail_in = static_cast<uInt>(packed.size());
      }
      const int status = inflate(&z, Z_NO_FLUSH);
      if (z.avail_in == 0) packed.clear();
      if (status != Z_OK) break;
    }
    inflateEnd(&z);
    closefile(f);
    return ok ? n - z.avail_out : 0;
  }
  closefile(f);
  std::memcpy(out, bytes.data(), got);
  return static_cast<int64_t>(got);
}
