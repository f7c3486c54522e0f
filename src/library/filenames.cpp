#include "library/filenames.h"

#include <cstdlib>
#include <string>

#include "base/filebuffer.h"

namespace {
int64_t lastslash(const utf16& name) { return lastpos("/", name); }

bool isdigit16(uint16_t c) { return c >= '0' && c <= '9'; }
}  // namespace

utf16 namedir(const utf16& name) { return copy(name, 1, lastslash(name)); }

utf16 namefile(const utf16& name) {
  const int64_t slash = lastslash(name);
  return copy(name, slash + 1, length(name) - slash);
}

utf16 nameshortfile(const utf16& name) { return filestem(namefile(name)); }

utf16 namestem(const utf16& name) { return filestem(name); }

utf16 nameshortdir(const utf16& name) {
  const utf16 dir = trimright(namedir(name), '/');
  return namefile(dir);
}

utf16 namelastsuffix(const utf16& name) {
  const utf16 file = namefile(name);
  const int64_t dot = lastpos(".", file);
  return dot == 0 ? utf16() : copy(file, dot + 1, length(file) - dot);
}

utf16 bashname(const utf16& name) {
  utf16 out = replace(name, "\\", "\\\\");
  for (const char* c : {" ", "(", ")", "?", "!", "'", "\""}) out = replace(out, c, utf16("\\") + c);
  return out;
}

utf16 repairedname(const utf16& name) {
  utf16 file = namefile(name);
  for (const uint16_t c : {' ', '(', ')', '?', '!', '\'', '"', '\\'}) file = replacechar(file, c, '_');
  return namedir(name) + file;
}

double namenumber(const utf16& name) {
  const utf16 file = nameshortfile(name);
  int64_t end = length(file);
  while (end >= 1 && !isdigit16(charat(file, end))) --end;
  if (end < 1) return 0;
  int64_t start = end;
  while (start > 1 && (isdigit16(charat(file, start - 1)) ||
                       (charat(file, start - 1) == '.' && start > 2 && isdigit16(charat(file, start - 2)))))
    --start;
  return std::strtod(utf16toutf8(copyrange(file, start, end)).c_str(), nullptr);
}
