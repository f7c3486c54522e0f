#include "script/registry.h"

#include <algorithm>
#include <array>
#include <string>

#include "script/echo.h"
#include "script/repair.h"
#include "script/run.h"
#include "script/variables.h"
#include "shell/console.h"

namespace {

utf16 membername(const utf16& name) {
  utf16 lowered = lower(name);
  if (poschar(' ', lowered) > 0) {
    println("Attention, wrong char ( ) inside command (" + utf16toutf8(lowered) + ")!");
    lowered = replacechar(lowered, ' ', '.');
  }
  return lowered;
}

bool nibblefits(uint8_t kind, tlookup what) {
  switch (what) {
    case tlookup::procedure: return lownibble(kind) == kind_block || lownibble(kind) == kind_procedure;
    case tlookup::function: return lownibble(kind) == kind_function;
    case tlookup::varfunction: return lownibble(kind) == kind_varfunction;
  }
  return false;
}

int64_t findexact(const tscript& s, const utf16& name, tlookup what) {
  const auto chain = s.memberindex.chains.find(name);
  if (chain == s.memberindex.chains.end()) return -1;
  for (auto i = chain->second.rbegin(); i != chain->second.rend(); ++i)
    if (nibblefits(s.members[static_cast<size_t>(*i)].kind, what)) return *i;
  return -1;
}

// The other grammatical number of a word, candidate after candidate.
std::vector<utf16> pluralcandidates(const utf16& word) {
  const int64_t n = length(word);
  if (n == 0) return {};
  const uint16_t last = charat(word, n);
  auto head = [&](int64_t k) { return copy(word, 1, k); };
  switch (last) {
    case 'a': return {word + "e", head(n - 1) + "um"};
    case 'e': return {head(n - 2) + "ves", head(n - 1)};
    case 'f': return {head(n - 1) + "ves"};
    case 'i': return {head(n - 1) + "us"};
    case 'm': return {head(n - 2) + "a"};
    case 'o': return {word + "s", word + "es"};
    case 's':
      return {head(n - 2) + "es", head(n - 2) + "i", head(n - 3) + "fe", head(n - 3) + "f", head(n - 1) + "os", head(n - 2) + "oes",
              head(n - 2) + "is", head(n - 2) + "y", head(n - 3) + "y", head(n - 1), head(n - 2)};
    case 'y': return {word + "s", head(n - 1) + "ies"};
    default:
      if (last > 255) return {};
      return {word + "s", word + "es"};
  }
}

int64_t find(const tscript& s, const utf16& name, tlookup what) {
  const int64_t exact = findexact(s, name, what);
  if (exact >= 0) return exact;
  for (const utf16& candidate : pluralcandidates(name)) {
    const int64_t hit = findexact(s, candidate, what);
    if (hit >= 0) return hit;
  }
  return -1;
}

// False, with the message, when the name is registered in the same scope with the same nibble.
bool isdouble(const tscript& s, const utf16& full, int64_t level, uint8_t kind) {
  const auto chain = s.memberindex.chains.find(full);
  if (chain == s.memberindex.chains.end()) return false;
  for (const int64_t i : chain->second) {
    const tmember& m = s.members[static_cast<size_t>(i)];
    if (m.level == level && lownibble(m.kind) == lownibble(kind)) {
      println("Attention double syntax member in this scope! (" + utf16toutf8(full) + ")");
      return true;
    }
  }
  return false;
}

bool addmember(tscript& s, const utf16& name, uint8_t kind, thandler h1, thandler h2, int64_t level = 0, int64_t bodyline = 0) {
  const utf16 full = celfromutf16(concat(s.prefix.get(), membername(name)));
  if (isdouble(s, full, level, kind)) return false;
  tmember m;
  m.name = full;
  m.kind = kind;
  m.handler1 = h1;
  m.handler2 = h2;
  m.level = level;
  m.bodyline = bodyline;
  s.memberindex.chains[full].push_back(static_cast<int64_t>(s.members.size()));
  s.memberindex.highestlevel = std::max(s.memberindex.highestlevel, level);
  ++s.memberindex.revision;
  s.members.push_back(std::move(m));
  return true;
}

// What a call needs of a member, copied: a handler may register members and so move the list.
struct tcallee {
  utf16 name;
  uint8_t kind;
  thandler handler1, handler2;
  int64_t bodyline;
};

tcallee callee(const tmember& m) { return {m.name, m.kind, m.handler1, m.handler2, m.bodyline}; }

void report(tscript& s, const utf16& text) {
  println(text);
  s.lasterror.set(text);
  s.halted = true;
}

std::string countwords(int64_t n) { return n == 1 ? "one parameter" : std::to_string(n) + " parameters"; }

}  // namespace

void regproc0(tscript& s, const utf16& name, thandler h) { addmember(s, name, kind_k0, h, nullptr); }
void regproc(tscript& s, const utf16& name, thandler h) { addmember(s, name, kind_k1, h, nullptr); }
void regfunc(tscript& s, const utf16& name, thandler h) { addmember(s, name, kind_k2, h, nullptr); }
void regboth(tscript& s, const utf16& name, thandler hproc, thandler hfunc) {
  addmember(s, name, kind_k1, hproc, nullptr);
  addmember(s, name, kind_k2, hfunc, nullptr);
}
void regvarfunc(tscript& s, const utf16& name, thandler h) { addmember(s, name, kind_k4, h, nullptr); }
void regblock(tscript& s, const utf16& name, thandler enter, thandler leave) {
  addmember(s, name, 0x11, enter, leave);
}

bool regscript(tscript& s, const utf16& name, int64_t level, uint8_t kind, int64_t bodyline, const utf16& text1,
               const utf16& text2, const utf16& text3) {
  if (!addmember(s, name, kind, nullptr, nullptr, level, bodyline)) return false;
  s.members.back().text1 = text1;
  s.members.back().text2 = text2;
  s.members.back().text3 = text3;
  return true;
}

bool ismember(const tscript& s, const utf16& fullname) { return s.memberindex.chains.contains(fullname); }

void dropmembers(tscript& s, int64_t level) {
  tmemberindex& index = s.memberindex;
  if (index.highestlevel < level) return;
  const auto first = std::find_if(s.members.begin(), s.members.end(), [level](const tmember& m) { return m.level >= level; });
  const auto from = static_cast<int64_t>(first - s.members.begin());
  // Positions from `from` on move or go: take them out of their chains (they are the chains'
  // tails), drop the members, then enter the survivors behind the first dropped one again.
  for (auto m = first; m != s.members.end(); ++m) {
    const auto chain = index.chains.find(m->name);
    if (chain == index.chains.end()) continue;
    while (!chain->second.empty() && chain->second.back() >= from) chain->second.pop_back();
    if (chain->second.empty()) index.chains.erase(chain);
  }
  std::erase_if(s.members, [level](const tmember& m) { return m.level >= level; });
  ++index.revision;
  for (auto i = static_cast<size_t>(from); i < s.members.size(); ++i)
    index.chains[s.members[i].name].push_back(static_cast<int64_t>(i));
  index.highestlevel = std::max<int64_t>(level - 1, 0);
}

void setprefix(tscript& s, const utf16& text) { s.prefix.set(text); }
void clearprefix(tscript& s) { s.prefix.clear(); }

int64_t lookup(tscript& s, const utf16& name, tlookup what) {
  const int64_t hit = find(s, name, what);
  if (hit >= 0) ++s.members[static_cast<size_t>(hit)].usecount;
  return hit;
}

bool isregistered(const tscript& s, const utf16& name, tlookup what) { return find(s, name, what) >= 0; }

bool isblockmember(tscript& s, const utf16& name) {
  const int64_t hit = find(s, name, tlookup::procedure);
  return hit >= 0 && lownibble(s.members[static_cast<size_t>(hit)].kind) == kind_block;
}

void callproc(tscript& s, int64_t line, const utf16& name) {
  utf16 shown = name;
  int64_t hit = lookup(s, shown, tlookup::procedure);
  // An unknown word may be mended by the user; a mended word that is unknown asks again.
  while (hit < 0 && repair(s, shown)) hit = lookup(s, shown, tlookup::procedure);
  if (hit >= 0) {
    s.undo.push_back(shown);
    if (s.undo.size() > 100) s.undo.pop_front();
  }
  if (hit < 0) {
    if (!s.halted) reportunknown(s, shown, "procedure");
    return;
  }
  const tcallee m = callee(s.members[static_cast<size_t>(hit)]);
  if (lownibble(m.kind) == kind_block) {
    if (!m.handler1 || !m.handler2 || m.bodyline != 0) {
      reportunknown(s, shown, "block");
      return;
    }
    echoline(s, m.name);
    m.handler1(s);
    s.line = run(s, line, true);
    m.handler2(s);
    return;
  }
  if (lownibble(m.kind) != kind_procedure) {
    reportunknown(s, shown, "procedure");
    return;
  }
  if (m.bodyline == 0 && m.handler1) {
    echoline(s, m.name);
    m.handler1(s);
  } else if (m.bodyline != 0 && !m.handler1) {
    echoline(s, m.name);
    newlocal(s, "parameter", joinparams(s, "\t"));
    const int64_t back = s.line;
    run(s, m.bodyline, true);
    s.line = back;
  } else {
    reportunknown(s, shown, "procedure");
  }
}

void callfunc(tscript& s, const utf16& name) {
  const int64_t hit = lookup(s, name, tlookup::function);
  if (hit < 0) {
    reportunknown(s, s.target.get() + " := " + name, "function");
    return;
  }
  const tcallee m = callee(s.members[static_cast<size_t>(hit)]);
  if (m.bodyline == 0 && m.handler1) {
    echofunction(s, m.name);
    m.handler1(s);
    return;
  }
  echofunction(s, m.name);
  const utf16 target = s.target.get();
  setvar(s, "result", utf16());
  newlocal(s, "parameter", joinparams(s, "\t"));
  const int64_t back = s.line;
  run(s, m.bodyline, true);
  s.line = back;
  s.target.set(target);
  setresult(s, getvar(s, "result"));
}

bool callvarfunc(tscript& s, const utf16& name, utf16& out) {
  const int64_t hit = lookup(s, name, tlookup::varfunction);
  if (hit < 0 || s.members[static_cast<size_t>(hit)].bodyline != 0 || !s.members[static_cast<size_t>(hit)].handler1) {
    reportunknown(s, name, "variable \xCE\xBB function");
    return false;
  }
  s.result.clear();
  s.members[static_cast<size_t>(hit)].handler1(s);
  out = s.result.get();
  return true;
}

int64_t paramcount(const tscript& s) { return static_cast<int64_t>(s.params.size()); }

namespace {
// Parameter i of a split, or the error that names the count the handler wanted.
bool takeparam(tscript& s, const std::vector<utf16>& list, utf16& out, int64_t i) {
  if (i < 1 || i > static_cast<int64_t>(list.size())) {
    out = utf16();
    reportparameter(s, utf16("Parameter error! Please at least " + std::to_string(i) + " parameters") + lineplace(s) + ".");
    return false;
  }
  out = list[static_cast<size_t>(i - 1)];
  return true;
}
}  // namespace

bool param(tscript& s, utf16& out, int64_t i) { return takeparam(s, s.params, out, i); }

utf16 param(tscript& s, int64_t i) {
  utf16 out;
  param(s, out, i);
  return out;
}

utf16 optparam(const tscript& s, int64_t i) {
  if (i < 1 || i > paramcount(s)) return utf16();
  return s.params[static_cast<size_t>(i - 1)];
}

bool rawparam(tscript& s, utf16& out, int64_t i) {
  splitrawparams(s);
  return takeparam(s, s.rawparams, out, i);
}

bool checkparams(tscript& s, int64_t n) {
  if (!s.running || paramcount(s) == n) return true;
  reportcount(s, n);
  return false;
}

void reportcount(tscript& s, int64_t n) {
  if (n == 0) {
    reportparameter(s, "Parameter error! No parameter needed.");
    return;
  }
  reportparameter(s, utf16("Parameter error! Please use " + countwords(n)) + lineplace(s) + ".");
}

void reportmin(tscript& s, int64_t n) {
  reportparameter(s, utf16("Parameter error! Please use min. " + countwords(n)) + lineplace(s) + ".");
}

void reportmax(tscript& s, int64_t n) {
  reportparameter(s, utf16("Parameter error! Please use max. " + countwords(n)) + lineplace(s) + ".");
}

void setresult(tscript& s, const utf16& text) { s.result.set(text); }
utf16 getresult(const tscript& s) { return s.result.get(); }
utf16 gettarget(const tscript& s) { return s.target.get(); }
void settarget(tscript& s, const utf16& text) { s.target.set(text); }

utf16 lineplace(const tscript& s) {
  return utf16(" in line " + std::to_string(sourceline(s.store, s.line)) + " (") + sourcefile(s.store, s.line) + ")";
}

void reporterror(tscript& s, const utf16& text) { report(s, utf16("Error (") + text + ")" + lineplace(s) + "!"); }
void reportsyntax(tscript& s, const utf16& text) { report(s, utf16("Syntax error (") + text + ")" + lineplace(s) + "!"); }
void reportunknown(tscript& s, const utf16& text, const char* what) {
  report(s, utf16("Syntax error (") + text + ")" + lineplace(s) + "! Unknown " + what + "!");
}
void reportparameter(tscript& s, const utf16& text) { report(s, text); }
