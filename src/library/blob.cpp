#include "library/blob.h"

#include <algorithm>
#include <cstring>

#include "base/filebuffer.h"

std::string textbytes(const utf16& text) {
  std::string out;
  int64_t start = 1;
  for (int64_t i = 1; i <= length(text) + 1; ++i) {
    if (i <= length(text) && charat(text, i) != 0) continue;
    out += utf16toutf8(copyrange(text, start, i - 1));
    if (i <= length(text)) out.push_back('\0');
    start = i + 1;
  }
  return out;
}

int64_t blobsearch(std::string_view hay, std::string_view needle, int64_t from) {
  if (needle.empty() || from < 0 || from >= static_cast<int64_t>(hay.size())) return -1;
  const size_t at = hay.find(needle, static_cast<size_t>(from));
  return at == std::string_view::npos ? -1 : static_cast<int64_t>(at);
}

namespace {

// Calls found(offset) for each occurrence from start; the next search starts behind it.
template <class Found>
void eachmatch(std::string_view hay, std::string_view needle, int64_t start, Found found) {
  for (int64_t at = blobsearch(hay, needle, start); at >= 0; at = blobsearch(hay, needle, at + static_cast<int64_t>(needle.size())))
    found(at);
}

}  // namespace

int64_t blobcount(const utf16& file, const utf16& text) {
  std::vector<int64_t> at;
  return blobpositions(file, text, 0, at) ? static_cast<int64_t>(at.size()) : -1;
}

bool blobpositions(const utf16& file, const utf16& text, int64_t start, std::vector<int64_t>& out) {
  tfilebuffer b;
  out.clear();
  if (!bufferread(b, file)) return false;
  eachmatch(bufferview(b), textbytes(text), start, [&](int64_t at) { out.push_back(at); });
  bufferrelease(b);
  return true;
}

bool blobget(const utf16& file, int64_t offset, int64_t count, std::string& out) {
  tfilebuffer b;
  out.clear();
  if (!bufferread(b, file)) return false;
  const int64_t size = b.size;
  const int64_t from = std::clamp<int64_t>(count < 0 ? offset + count : offset, 0, size);
  const int64_t to = std::clamp<int64_t>(count < 0 ? offset : offset + count, 0, size);
  if (to > from) out.assign(bufferview(b).substr(static_cast<size_t>(from), static_cast<size_t>(to - from)));
  bufferrelease(b);
  return true;
}

tpatch blobreplace(const utf16& file, const utf16& search, const utf16& by) {
  tfilebuffer b;
  if (!bufferread(b, file)) return tpatch::none;
  const std::string needle = textbytes(search), patch = textbytes(by);
  const size_t n = std::min(needle.size(), patch.size());
  bool any = false;
  eachmatch(bufferview(b), needle, 0, [&](int64_t at) {
    std::memcpy(b.bytes.data + at, patch.data(), n);
    any = true;
  });
  tpatch result = tpatch::none;
  if (any && needle.size() == patch.size())
    result = bufferwrite(file, bufferview(b), b.packed) ? tpatch::written : tpatch::failed;
  if (any && result != tpatch::written) {
    bufferwrite(file + ".fail", bufferview(b), false);
    result = tpatch::failed;
  }
  bufferrelease(b);
  return result;
}
