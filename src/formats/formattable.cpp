#include "formats/formattable.h"

#include <cstring>

bool oneof(const utf16& ext, std::initializer_list<const char*> words) {
  for (const char* w : words)
    if (equalutf8(ext, w)) return true;
  return false;
}

bool formatextension(const char* extensions, const utf16& ext) {
  const std::string e = utf16toutf8(ext);
  if (e.empty()) return false;
  for (const char* at = extensions; *at;) {
    const char* end = std::strchr(at, ' ');
    const size_t n = end ? static_cast<size_t>(end - at) : std::strlen(at);
    if (n == e.size() && e.compare(0, n, at, n) == 0) return true;
    if (!end) break;
    at = end + 1;
  }
  return false;
}
