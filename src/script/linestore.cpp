#include "script/linestore.h"

#include <algorithm>
#include <cstring>

#include "base/gzip.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

// Builds the line tables from content. With nulends (after an include) every NUL ends a
// line; on a first load NULs are passed over and LF, CR LF or a lone CR end a line.
void scanlines(tlinestore& store, bool nulends) {
  store.linestart.clear();
  store.linelength.clear();
  std::string& c = store.content;
  const int64_t size = static_cast<int64_t>(c.size());
  const utf16 label("  Analyze");
  int64_t start = 0, length = 0;
  bool pending = false;  // bytes seen since the last line end
  constexpr int64_t progressstep = 1 << 20;
  for (int64_t i = 0; i < size; ++i) {
    if (i % progressstep == 0 && size > progressstep) progress(label, static_cast<double>(i) / static_cast<double>(size));
    const char b = c[static_cast<size_t>(i)];
    bool lineend = false;
    if (b == '\0') {
      lineend = nulends;
      if (!lineend) {
        pending = true;
        continue;
      }
    } else if (b == '\n') {
      lineend = true;
    } else if (b == '\r') {
      if (i + 1 < size && c[static_cast<size_t>(i + 1)] == '\n') {
        c[static_cast<size_t>(i)] = '\0';  // a CR before LF only vanishes
        pending = true;
        continue;
      }
      lineend = true;
    }
    if (lineend) {
      c[static_cast<size_t>(i)] = '\0';
      store.linestart.push_back(start);
      store.linelength.push_back(length);
      start = i + 1;
      length = 0;
      pending = false;
    } else {
      ++length;
      pending = true;
    }
  }
  if (pending && start < size) {
    store.linestart.push_back(start);
    store.linelength.push_back(length);
  }
  store.count = static_cast<int64_t>(store.linestart.size());
  static int64_t revisions = 0;
  store.revision = ++revisions;
  if (size > progressstep) progressend();
}

bool readsource(const utf16& filename, std::string& bytes) {
  if (!readwholefile(filename, bytes, true)) return false;
  const bool gzipname = pos(".gz", lower(filename)) > 0;
  if (isgzip(bytes) || (bytes.size() >= 2 && gzipname) || (bytes.size() < 2 && gzipname && !bytes.empty())) {
    std::string plain;
    if (!gunzip(bytes, plain)) {
      checkio(filename, io_readerror);
      bytes.clear();
      return false;
    }
    bytes.swap(plain);
  }
  if (bytes.size() < 2) bytes.clear();
  return true;
}

}  // namespace

bool load(tlinestore& store, const utf16& filename) {
  dispose(store);
  store.sourcename = celfromutf16(filename);
  std::string bytes;
  if (!readsource(filename, bytes)) return false;
  store.content.swap(bytes);
  scanlines(store, false);
  store.content.push_back('\0');  // the last line is zero-terminated too
  return true;
}

void getline(const tlinestore& store, int64_t n, utf16& out) {
  if (n < 1 || n > store.count) return;
  out = utf16fromutf8(linepointer(store, n));
}

int64_t linepos(const tlinestore& store, int64_t n) {
  if (n < 1 || n > store.count) return 0;
  return store.linestart[static_cast<size_t>(n - 1)];
}

const char* linepointer(const tlinestore& store, int64_t n) {
  if (n < 1 || n > store.count) return "";
  return store.content.c_str() + store.linestart[static_cast<size_t>(n - 1)];
}

int64_t sourceline(const tlinestore& store, int64_t n) {
  if (store.sourcelines.empty()) return n;
  if (n < 1 || n > static_cast<int64_t>(store.sourcelines.size())) return 0;
  return store.sourcelines[static_cast<size_t>(n - 1)];
}

utf16 sourcefile(const tlinestore& store, int64_t n) {
  if (store.sourcefile.empty()) return store.sourcename;
  if (n < 1 || n > static_cast<int64_t>(store.sourcefile.size())) return utf16();
  const int64_t file = store.sourcefile[static_cast<size_t>(n - 1)];
  if (file < 1 || file > static_cast<int64_t>(store.sourcefiles.size())) return utf16();
  return store.sourcefiles[static_cast<size_t>(file - 1)];
}

bool insertfile(tlinestore& store, int64_t afterline, const utf16& filename) {
  tlinestore inserted;
  if (!load(inserted, filename) || inserted.count == 0) return false;
  const int64_t oldcount = store.count;
  if (store.sourcelines.empty()) {
    store.sourcefiles = {store.sourcename};
    for (int64_t i = 1; i <= oldcount; ++i) {
      store.sourcelines.push_back(i);
      store.sourcefile.push_back(1);
    }
  }
  store.sourcefiles.push_back(celfromutf16(filename));
  const auto fileindex = static_cast<int64_t>(store.sourcefiles.size());
  const int64_t split = std::clamp<int64_t>(afterline, 0, oldcount);

  // Rebuild the block line by line, so that every line ends in exactly one NUL, then
  // scan it with NUL as the line end.
  std::string content;
  auto appendlines = [&content](const tlinestore& from, int64_t first, int64_t last) {
    for (int64_t i = first; i <= last; ++i) {
      content += linepointer(from, i);
      content.push_back('\0');
    }
  };
  appendlines(store, 1, split);
  appendlines(inserted, 1, inserted.count);
  appendlines(store, split + 1, oldcount);
  store.content.swap(content);
  scanlines(store, true);
  store.content.push_back('\0');

  std::vector<int64_t> numbers(store.sourcelines.begin(), store.sourcelines.begin() + split);
  std::vector<int64_t> files(store.sourcefile.begin(), store.sourcefile.begin() + split);
  for (int64_t i = 1; i <= inserted.count; ++i) {
    numbers.push_back(i);
    files.push_back(fileindex);
  }
  numbers.insert(numbers.end(), store.sourcelines.begin() + split, store.sourcelines.end());
  files.insert(files.end(), store.sourcefile.begin() + split, store.sourcefile.end());
  store.sourcelines.swap(numbers);
  store.sourcefile.swap(files);
  return true;
}

void dispose(tlinestore& store) { store = tlinestore(); }
