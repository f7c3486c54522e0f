// gzip: recognised by its first two bytes, inflated whole (all members of a file).
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

inline bool isgzip(std::string_view bytes) {
  return bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0x1F && static_cast<unsigned char>(bytes[1]) == 0x8B;
}

// False for corrupt or truncated data; out then holds nothing.
bool gunzip(std::string_view in, std::string& out);
// Level 1..9; false only when zlib fails.
bool gzipcompress(std::string_view in, std::string& out, int level = 6);

// A zlib stream (RFC 1950) inflated into room bytes at out: how many bytes it gave, or -1
// when the stream is corrupt, ends early or holds more than room.
int64_t zlibinflate(const uint8_t* in, int64_t n, uint8_t* out, int64_t room);
