#include "library/output.h"

#include <string>

#include "shell/console.h"

namespace {
toutputfile* redirection(tscript& s) {
  for (auto i = s.files.rbegin(); i != s.files.rend(); ++i)
    if (i->redirect) return &*i;
  return nullptr;
}
}  // namespace

void scriptwrite(tscript& s, std::string_view utf8) {
  if (toutputfile* out = redirection(s)) {
    writetext(out->file, utf8);
    std::fflush(out->file.handle);
    return;
  }
  print(utf8);
}

void scriptwriteln(tscript& s, std::string_view utf8) {
  std::string line(utf8);
  line.push_back('\n');
  scriptwrite(s, line);
}
