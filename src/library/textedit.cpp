#include "library/textedit.h"

#include <string_view>

#include "base/filebuffer.h"
#include "base/linefile.h"
#include "library/filenames.h"
#include "shell/files.h"

namespace {

bool has(std::string_view line, const std::string& mark) { return line.find(mark) != std::string_view::npos; }

// Reads source, lets produce build the target's text from each line, then writes it.
template <class Produce>
bool rewrite(const utf16& source, const utf16& target, bool append, Produce produce) {
  tlinefile f;
  if (!linefileread(f, source)) return false;
  std::string out;
  for (int64_t i = 1; i <= linefilecount(f); ++i) produce(linefileview(f, i), out);
  linefilerelease(f);
  tfile t;
  if (!(append ? appendfile(t, target) : writefile(t, target))) return false;
  const bool written = writetext(t, out);
  return closefile(t) && written;
}

void emit(std::string& out, std::string_view line) {
  out += line;
  out += '\n';
}

}  // namespace

bool textfilter(const utf16& source, const utf16& target, const utf16& markword, tlinetest test, bool append) {
  const std::string mark = utf16toutf8(markword);
  bool seen = false;  // the first line with mark has passed
  return rewrite(source, target, append, [&](std::string_view line, std::string& out) {
    const size_t at = line.find(mark);
    const bool hit = at != std::string_view::npos;
    seen = seen || hit;
    switch (test) {
      case tlinetest::keepfrom: if (seen) emit(out, line); break;
      case tlinetest::keepbefore: if (!seen) emit(out, line); break;
      case tlinetest::withmark: if (hit) emit(out, line); break;
      case tlinetest::withoutmark: if (!hit) emit(out, line); break;
      case tlinetest::cutthrough: emit(out, hit ? line.substr(at + mark.size()) : line); break;
      case tlinetest::cutfrom: emit(out, hit ? line.substr(0, at) : line); break;
      case tlinetest::split:
        for (size_t from = 0;;) {
          const size_t to = mark.empty() ? std::string_view::npos : line.find(mark, from);
          emit(out, line.substr(from, to == std::string_view::npos ? std::string_view::npos : to - from));
          if (to == std::string_view::npos) break;
          from = to + mark.size();
        }
        break;
    }
  });
}

bool textreplace(const utf16& source, const utf16& target, const utf16& searchword, const utf16& byword) {
  const std::string search = utf16toutf8(searchword), by = utf16toutf8(byword);
  return rewrite(source, target, false, [&](std::string_view line, std::string& out) {
    size_t from = 0;
    for (size_t at; !search.empty() && (at = line.find(search, from)) != std::string_view::npos; from = at + search.size()) {
      out += line.substr(from, at - from);
      out += by;
    }
    emit(out, line.substr(from));
  });
}

std::vector<int64_t> textcount(const utf16& file, const std::vector<utf16>& words) {
  tlinefile f;
  if (!linefileread(f, file)) return {};
  std::vector<int64_t> counts;
  for (const utf16& w : words) {
    const std::string mark = utf16toutf8(w);
    int64_t n = 0;
    for (int64_t i = 1; i <= linefilecount(f); ++i) n += has(linefileview(f, i), mark) ? 1 : 0;
    counts.push_back(n);
  }
  linefilerelease(f);
  return counts;
}

std::vector<std::string> textfind(const utf16& file, const utf16& word, int64_t limit) {
  tlinefile f;
  std::vector<std::string> found;
  if (!linefileread(f, file)) return found;
  const std::string mark = utf16toutf8(word);
  for (int64_t i = 1; i <= linefilecount(f) && (limit < 1 || static_cast<int64_t>(found.size()) < limit); ++i)
    if (has(linefileview(f, i), mark)) found.emplace_back(linefileview(f, i));
  linefilerelease(f);
  return found;
}

int64_t textsplitfiles(const utf16& source, const utf16& target, const utf16& markword, tmarkline where) {
  tlinefile f;
  if (!linefileread(f, source)) return 0;
  const std::string mark = utf16toutf8(markword);
  utf16 extension = fileextension(target);
  const utf16 stem = copy(target, 1, length(target) - (empty(extension) ? 0 : length(extension) + 1));
  if (empty(extension)) extension = fileextension(source);
  int64_t written = 0;
  std::string piece;
  bool lines = false;
  auto flush = [&]() {
    if (!lines) return;
    std::string number = std::to_string(written + 1);
    if (number.size() < 3) number.insert(0, 3 - number.size(), '0');
    const utf16 name = stem + "_" + utf16(number) + (empty(extension) ? utf16() : "." + extension);
    tfile t;
    if (writefile(t, name)) {
      writetext(t, piece);
      closefile(t);
      ++written;
    }
    piece.clear();
    lines = false;
  };
  auto add = [&](std::string_view line) {
    emit(piece, line);
    lines = true;
  };
  for (int64_t i = 1; i <= linefilecount(f); ++i) {
    const std::string_view line = linefileview(f, i);
    if (!has(line, mark)) {
      add(line);
      continue;
    }
    if (where == tmarkline::previous) add(line);
    flush();
    if (where == tmarkline::next) add(line);
  }
  flush();
  linefilerelease(f);
  return written;
}
