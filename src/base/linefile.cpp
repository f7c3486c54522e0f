#include "base/linefile.h"

#include "shell/console.h"

namespace {
constexpr int64_t progressstep = 1 << 20;
}

bool linefileread(tlinefile& f, const utf16& name, int64_t limit, const utf16& label) {
  linefilerelease(f);
  f.name = name;
  if (!bufferread(f.buffer, name)) return false;
  linefileindex(f, limit, label);
  return true;
}

// One pass: LF ends a line, with a CR before it; a lone CR ends one too. Zero bytes are
// taken out of the buffer, so lines stay contiguous texts. A last line without an end
// counts when it holds a character; a file of one byte has no lines.
void linefileindex(tlinefile& f, int64_t limit, const utf16& label) {
  f.starts.createdynamic();
  f.lengths.createdynamic();
  f.current = 0;
  const int64_t size = f.buffer.size;
  if (size < 2) return;
  uint8_t* c = f.buffer.bytes.data;
  const bool own = empty(label);
  const utf16 shown = own ? utf16("  Analyze") : label;
  int64_t start = 0, w = 0;
  auto endline = [&]() {
    f.starts.add(start);
    f.lengths.add(w - start);
    c[w++] = 0;
    start = w;
    return limit > 0 && f.starts.length >= limit;
  };
  for (int64_t r = 0; r < size; ++r) {
    if (r % progressstep == 0 && size > progressstep)
      progress(shown, (own ? 1.0 : 0.5) * static_cast<double>(r) / static_cast<double>(size));
    const uint8_t b = c[r];
    if (b == 0) continue;
    if (b == '\r' && r + 1 < size && c[r + 1] == '\n') continue;
    if (b == '\n' || b == '\r') {
      if (endline()) break;
      continue;
    }
    c[w++] = b;
  }
  if (w > start && !(limit > 0 && f.starts.length >= limit)) endline();
  // Bytes behind a limit stay unindexed; the buffer ends where the lines do.
  f.buffer.size = w < size ? w : size;
  c[f.buffer.size] = 0;
  if (size > progressstep && own) progressend();
}

void linefilerelease(tlinefile& f) {
  f.lengths.release();
  f.starts.release();
  bufferrelease(f.buffer);
  f.current = 0;
}

std::string_view linefileview(const tlinefile& f, int64_t n) {
  if (n < 1 || n > f.starts.length) return {};
  return std::string_view(reinterpret_cast<const char*>(f.buffer.bytes.data) + f.starts.get(n),
                          static_cast<size_t>(f.lengths.get(n)));
}

utf16 linefiletext(const tlinefile& f, int64_t n) { return utf16fromutf8(linefileview(f, n)); }
