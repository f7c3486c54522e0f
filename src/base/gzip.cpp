#include "base/gzip.h"

#include <zlib.h>
#ifdef VOXMILL_LIBDEFLATE
#include <libdeflate.h>
#endif

#include <algorithm>
#include <limits>

bool gunzip(std::string_view in, std::string& out) {
  out.clear();
  z_stream z{};
  if (inflateInit2(&z, 16 + MAX_WBITS) != Z_OK) return false;
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data()));
  z.avail_in = static_cast<uInt>(std::min<size_t>(in.size(), std::numeric_limits<uInt>::max()));
  size_t fed = z.avail_in;
  char buffer[1 << 16];
  int status = Z_OK;
  for (;;) {
    z.next_out = reinterpret_cast<Bytef*>(buffer);
    z.avail_out = sizeof buffer;
    status = inflate(&z, Z_NO_FLUSH);
    out.append(buffer, sizeof buffer - z.avail_out);
    if (z.avail_in == 0 && fed < in.size()) {
      const size_t more = std::min<size_t>(in.size() - fed, std::numeric_limits<uInt>::max());
      z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data() + fed));
      z.avail_in = static_cast<uInt>(more);
      fed += more;
    }
    if (status == Z_STREAM_END) {
      // A further member may follow (concatenated gzip files); trailing zero padding ends it.
      if (z.avail_in < 2 || !isgzip(std::string_view(reinterpret_cast<char*>(z.next_in), z.avail_in))) break;
      if (inflateReset(&z) != Z_OK) break;
      continue;
    }
    if (status != Z_OK && !(status == Z_BUF_ERROR && z.avail_out == 0)) break;
  }
  inflateEnd(&z);
  if (status != Z_STREAM_END) {
    out.clear();
    return false;
  }
  return true;
}

bool gzipcompress(std::string_view in, std::string& out, int level) {
  out.clear();
  z_stream z{};
  if (deflateInit2(&z, level, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) return false;
  out.resize(deflateBound(&z, static_cast<uLong>(in.size())) + 64);
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data()));
  z.avail_in = static_cast<uInt>(in.size());
  z.next_out = reinterpret_cast<Bytef*>(out.data());
  z.avail_out = static_cast<uInt>(out.size());
  const int status = deflate(&z, Z_FINISH);
  out.resize(z.total_out);
  deflateEnd(&z);
  return status == Z_STREAM_END;
}

int64_t zlibinflate(const uint8_t* in, int64_t n, uint8_t* out, int64_t room) {
#ifdef VOXMILL_LIBDEFLATE
  // One call straight into the target, about twice as fast as zlib's stream.
  if (libdeflate_decompressor* d = libdeflate_alloc_decompressor()) {
    size_t used = 0, made = 0;
    const libdeflate_result r = libdeflate_zlib_decompress_ex(d, in, static_cast<size_t>(n), out,
                                                              static_cast<size_t>(room), &used, &made);
    libdeflate_free_decompressor(d);
    return r == LIBDEFLATE_SUCCESS ? static_cast<int64_t>(made) : -1;
  }
#endif
  z_stream z{};
  if (inflateInit(&z) != Z_OK) return -1;
  int64_t fed = 0, made = 0;
  int status = Z_OK;
  while (status == Z_OK) {
    if (z.avail_in == 0 && fed < n) {
      const int64_t step = std::min<int64_t>(n - fed, std::numeric_limits<uInt>::max());
      z.next_in = const_cast<Bytef*>(in + fed);
      z.avail_in = static_cast<uInt>(step);
      fed += step;
    }
    const int64_t space = std::min<int64_t>(room - made, std::numeric_limits<uInt>::max());
    z.next_out = out + made;
    z.avail_out = static_cast<uInt>(space);
    status = inflate(&z, Z_NO_FLUSH);
    made += space - z.avail_out;
    if (status == Z_BUF_ERROR && (made == room || fed >= n)) break;
    if (status == Z_BUF_ERROR) status = Z_OK;
  }
  inflateEnd(&z);
  return status == Z_STREAM_END ? made : -1;
}
