#include "script/repair.h"

#include "script/frame.h"
#include "script/registry.h"
#include "script/run.h"
#include "script/variables.h"
#include "shell/console.h"

namespace {

// The line of the same number from the file as it is on disk now.
utf16 reloadedline(const tscript& s) {
  tlinestore fresh;
  utf16 text;
  if (load(fresh, sourcefile(s.store, s.line))) getline(fresh, sourceline(s.store, s.line), text);
  return text;
}

utf16 asscriptline(const utf16& answer) {
  utf16 text = trimblanks(answer);
  if (pos("//", text) == 1 || charat(text, 1) == '#' || charat(text, 1) == '%') return utf16();
  const int64_t comment = pos(" //", text);
  return comment > 0 ? trimblanks(copy(text, 1, comment - 1)) : text;
}

}  // namespace

bool repair(tscript& s, utf16& name) {
  if (!s.debug || !interactive || !s.repairallowed || !s.running) return false;
  println(utf16("Syntax error (") + name + ")" + lineplace(s) + "!");
  utf16 line;
  getline(s.store, s.line, line);
  println(line);
  println("Would you like to change the whole command line?");
  println("  leave blank \u2013 reload command (with the same line numbering!)");
  println("  ... \u2013 new comannd (without parameters)");
  println("  nop \u2013 for ignore it");
  println("  stop, break, halt \u2013 for a stop with ascending enforcement");
  print(">> ");
  utf16 answer;
  if (!readconsoleline(answer)) return false;
  if (empty(trimblanks(answer))) answer = reloadedline(s);
  utf16 rest = asscriptline(answer);
  const utf16 word = lower(cutword(rest, " "));
  if (empty(word)) return false;
  splitparams(s, trimblanks(rest));
  // halt and break are statements of the loop, not procedures: they act at once.
  if (equalutf8(word, "halt")) halt(s);
  if (equalutf8(word, "break")) {
    breakscript(s);
    return false;
  }
  utf16 joined;
  for (const utf16& w : s.withnames) append(joined, w + ".");
  name = joined + word;
  s.keyword.set(name);
  return true;
}
