// The statement words that the loop handles itself: they can't be redefined by a script.
#include <cstdlib>
#include <string>
#include <unordered_map>

#include "script/echo.h"
#include "script/frame.h"
#include "script/registry.h"
#include "script/run.h"
#include "script/values.h"
#include "script/variables.h"
#include "shell/console.h"

namespace {

void inlineplace(tscript& s) {
  println("In line " + std::to_string(sourceline(s.store, s.line)) + " (" + utf16toutf8(sourcefile(s.store, s.line)) + ").");
}

void ignoreblock(tscript& s, tframe&) { runblock(s, "ignore", false); }

void processblock(tscript& s, tframe&) {
  echotext(s, "process", utf16());
  runblock(s, "process", true);
}

using tkeywordtable = std::unordered_map<std::string, tkeywordaction>;

const tkeywordtable& keywordtable() {
  static const tkeywordtable table = [] {
    tkeywordtable t = {{"ignore", ignoreblock}, {"process", processblock}};
    for (auto rows : {conditionkeywords(), loopkeywords(), definitionkeywords(), outputkeywords(), searchkeywords()})
      for (const tkeywordrow& row : rows) t.emplace(row.word, row.action);
    return t;
  }();
  return table;
}

}  // namespace

tkeywordaction findkeyword(const utf16& keyword) {
  // Keywords are plain ASCII; a word with other characters (even character 0) is none.
  if (keyword.hi.find_first_not_of('\0') != std::string::npos) return nullptr;
  const tkeywordtable& table = keywordtable();
  const auto hit = table.find(keyword.lo);
  return hit == table.end() ? nullptr : hit->second;
}

bool opensblock(const utf16& keyword) {
  static const char* const openers[] = {"ignore", "process", "with", "procedure", "function", "module", "if.then",
                                        "then", "if.true", "if.else", "else", "if.false", "of", "for", "repeat",
                                        "while", "parallel", "output.store", "output.append", "store", "append"};
  for (const char* word : openers)
    if (equalutf8(keyword, word)) return true;
  return false;
}

void halt(tscript& s) {
  inlineplace(s);
  println("Script & program halt. Terminate everything.");
  const int code = s.params.empty() ? 0 : static_cast<int>(textnat(s.params[0]));
  flushconsole();
  std::_Exit(code);
}

void breakscript(tscript& s) {
  inlineplace(s);
  println("Script break. Terminate everything.");
  s.halted = true;
}
