// What the image and raster file tests share: a scratch directory, files as byte strings,
// the console lines of a piece of work, and fields made to order.
#pragma once
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "field/imagefield.h"
#include "field/memory.h"

namespace imagetest {

inline std::string scratchdir() {
  static std::string dir = [] {
    char pattern[] = "/tmp/voxmill-image-test-XXXXXX";
    const char* made = mkdtemp(pattern);
    return std::string(made ? made : "/tmp");
  }();
  return dir;
}
inline std::string path(const std::string& name) { return scratchdir() + "/" + name; }

inline void writebytes(const std::string& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}
inline std::string readbytes(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// Console lines of the work; progress lines (ended by a carriage return) are left out.
template <class Work>
std::vector<std::string> printed(Work work) {
  testing::internal::CaptureStdout();
  work();
  std::vector<std::string> lines;
  std::stringstream text(testing::internal::GetCapturedStdout());
  std::string line;
  while (std::getline(text, line)) {
    const size_t cr = line.rfind('\r');
    if (cr != std::string::npos) line = line.substr(cr + 1);
    size_t end = line.find_last_not_of(' ');
    if (end == std::string::npos && !line.empty()) continue;
    lines.push_back(line);
  }
  return lines;
}

// A field of the kind and size; freed by its owner (fieldrelease) or by Field below.
struct Field {
  timagefield f{};
  Field(uint8_t kind, int64_t w = 0, int64_t h = 0) { fieldcreate(f, kind, {w, h, 1}); }
  ~Field() { fieldrelease(f); }
  timagefield* operator->() { return &f; }
  operator timagefield&() { return f; }
};

inline std::string le16(uint32_t v) { return std::string{static_cast<char>(v & 255), static_cast<char>(v >> 8 & 255)}; }
inline std::string le32(uint32_t v) { return le16(v & 0xFFFF) + le16(v >> 16); }
inline uint32_t getle16(const std::string& s, size_t at) {
  return static_cast<uint8_t>(s[at]) | static_cast<uint8_t>(s[at + 1]) << 8;
}
inline uint32_t getle32(const std::string& s, size_t at) { return getle16(s, at) | getle16(s, at + 2) << 16; }
inline uint32_t getbe32(const std::string& s, size_t at) {
  return static_cast<uint32_t>(static_cast<uint8_t>(s[at]) << 24 | static_cast<uint8_t>(s[at + 1]) << 16 |
                               static_cast<uint8_t>(s[at + 2]) << 8 | static_cast<uint8_t>(s[at + 3]));
}

}  // namespace imagetest
