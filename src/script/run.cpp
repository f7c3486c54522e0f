#include "script/run.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include "script/frame.h"
#include "script/registry.h"
#include "script/variables.h"
#include "shell/console.h"

namespace {

// What follows the first word passes through the engine's long fields.
utf16 longfield(const utf16& text) {
  if (length(text) <= cellmax) return text;
  utf16field field;
  field.set(text);
  return field.get();
}

bool isassignment(const utf16& rest) {
  if (length(rest) <= 2) return false;
  const int64_t blank = poschar(' ', rest);
  return blank > 1 && charat(rest, blank - 1) == '=';
}

// The word begins with the ASCII text: the same test as pos(text, word) = 1, without making
// a text of the literal on every statement.
bool startsascii(const utf16& word, std::string_view text) {
  if (!word.lo.starts_with(text)) return false;
  return std::all_of(word.hi.begin(), word.hi.begin() + static_cast<long>(text.size()), [](char c) { return c == 0; });
}

void callstatement(tscript& s, const utf16& keyword, const utf16& rest) {
  splitparams(s, rest);
  if (s.halted) return;
  utf16 name = keyword;
  if (!s.withnames.empty()) {
    utf16 joined;
    for (const utf16& w : s.withnames) append(joined, w + ".");
    name = joined + keyword;
  }
  callproc(s, s.line, name);
}

// The dispatch of a statement in the order of the language: keywords of the loop, then
// var, local and global by prefix, then the assignment test, then the procedure call.
void classify(tstatement& st) {
  if (equalutf8(st.keyword, "halt")) st.flow = tflow::halt;
  else if (equalutf8(st.keyword, "break")) st.flow = tflow::brk;
  else if (equalutf8(st.keyword, "end") || equalutf8(st.keyword, "until")) st.flow = tflow::end;
  else if (empty(st.keyword)) st.flow = tflow::empty;
  else if (equalutf8(st.keyword, "begin")) st.flow = tflow::begin;
  st.action = findkeyword(st.keyword);
  if (st.action) st.form = tform::keyword;
  else if (startsascii(st.keyword, "var") || startsascii(st.keyword, "local") || startsascii(st.keyword, "global"))
    st.form = tform::variable;
  else if (isassignment(st.rest)) st.form = tform::assignment;
  else st.form = tform::call;
}

// The statement's own texts are copied where a handler may run before they are read again:
// a handler may splice lines into the store, and that renews the cache that holds them.
void dispatch(tscript& s, tframe& frame, tstatement& st) {
  switch (st.form) {
    case tform::keyword: st.action(s, frame); break;
    case tform::variable: varstatement(s, utf16(st.keyword), frame.rest); break;
    case tform::assignment: assignment(s, st); break;
    case tform::call: callstatement(s, utf16(st.keyword), frame.rest); break;
  }
}

// The one-line forms "then <statement>", "else <statement>" and "of <value> <statement>",
// cut once: the test itself is made at each visit.
std::unique_ptr<tonelineform> onelineform(const tstatement& whole) {
  const utf16& keyword = whole.keyword;
  auto form = std::make_unique<tonelineform>();
  utf16 statement = whole.rest;
  if (empty(statement)) return nullptr;
  if (equalutf8(keyword, "if.then") || equalutf8(keyword, "then") || equalutf8(keyword, "if.true")) {
    form->kind = toneline::then;
  } else if (equalutf8(keyword, "if.else") || equalutf8(keyword, "else") || equalutf8(keyword, "if.false")) {
    form->kind = toneline::otherwise;
  } else if (equalutf8(keyword, "of") && poschar(' ', statement) > 0) {
    form->kind = toneline::of;
    form->casevalue = cutword(statement, " ");
    statement = trimblanks(statement);
  } else {
    return nullptr;
  }
  form->inner.keyword = lower(cutword(statement, " "));
  form->inner.rest = trimblanks(statement);
  classify(form->inner);
  // A failed test still lets a bare halt or break through.
  if (equalutf8(whole.rest, "halt")) form->passed.keyword = "halt";
  else if (equalutf8(whole.rest, "break")) form->passed.keyword = "break";
  classify(form->passed);
  return form;
}

}  // namespace

utf16 preparedline(const tscript& s, int64_t n) {
  utf16 text;
  getline(s.store, n, text);
  if (n == 1 && charat(text, 1) == '!') return utf16();
  text = trimblanks(text);
  if (pos("//", text) == 1 || charat(text, 1) == '#' || charat(text, 1) == '%') return utf16();
  const int64_t comment = pos(" //", text);
  if (comment > 0) text = trimblanks(copy(text, 1, comment - 1));
  return text;
}

namespace {

constexpr int64_t maxlevel = 1000;

// Where the outermost run began on the machine stack, and how much of it the nesting may use:
// frames differ in size between builds, so the depth alone is no safe bound. The budget is
// read as the outermost run begins, not at every block, which a loop enters at every pass.
uintptr_t stackbase = 0;
size_t stackroom = 0;

size_t stackbudget() {
  rlimit limit{};
  const size_t fallback = 8u << 20;
  size_t size = getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY ? limit.rlim_cur : fallback;
  if (size == 0 || size > (256u << 20)) size = fallback;
  return size / 2;
}

bool nestedtoodeep(const tscript& s) {
  const char here = 0;
  const uintptr_t now = reinterpret_cast<uintptr_t>(&here);
  const bool deepstack = stackbase != 0 && stackbase > now && stackbase - now > stackroom;
  return s.level > maxlevel || deepstack;
}

// The line cut into its first word (lower case) and the rest, with what the loop makes of
// them. A loop reads the same lines again and again, so this is kept per line as long as the
// store is unchanged.
void prepare(const tscript& s, int64_t line, tpreparedline& p) {
  utf16 rest = preparedline(s, line);
  p.statement = !empty(rest);
  p.whole.keyword = lower(cutword(rest, " "));
  p.whole.rest = longfield(trimblanks(rest));
  classify(p.whole);
  p.oneline = onelineform(p.whole);
  p.ready = true;
}

tpreparedline& readstatement(tscript& s, int64_t line, std::unique_ptr<tpreparedline>& scratch) {
  tstatementcache& cache = s.cache;
  const bool cacheable = s.store.revision != 0;
  if (cacheable && cache.storerevision != s.store.revision) {
    cache.storerevision = s.store.revision;
    cache.lines.clear();
    cache.lines.resize(static_cast<size_t>(linecount(s.store)) + 1);
  }
  if (!cacheable || line >= static_cast<int64_t>(cache.lines.size())) {
    scratch = std::make_unique<tpreparedline>();
    prepare(s, line, *scratch);
    return *scratch;
  }
  tpreparedline& p = cache.lines[static_cast<size_t>(line)];
  if (!p.ready) prepare(s, line, p);
  return p;
}

// The statement that runs: the line's own, or for a one-line branch form the one behind the
// test, or what remains when the test fails.
tstatement& chosen(const tframe& frame, tpreparedline& p) {
  if (!p.oneline) return p.whole;
  tonelineform& form = *p.oneline;
  bool runs = false;
  switch (form.kind) {
    case toneline::then: runs = frame.condition; break;
    case toneline::otherwise: runs = !frame.condition; break;
    case toneline::of: runs = equal(form.casevalue, frame.casevalue); break;
    case toneline::none: return p.whole;
  }
  return runs ? form.inner : form.passed;
}

int64_t runframe(tscript& s, int64_t line, bool execute, int64_t storefile) {
  tframe frame;
  frame.execute = execute;
  frame.storefile = storefile;
  ++s.level;
  // Each level holds a frame on the machine's stack: endless recursion must stop as an error.
  if (!s.halted && nestedtoodeep(s)) reporterror(s, "Too many nested blocks!");
  std::unique_ptr<tpreparedline> scratch;  // for a line that the cache doesn't hold
  for (;;) {
    // The count is read each time: an include makes the store grow under the loop.
    if (s.linebudget == 0) s.halted = true;
    if (line >= linecount(s.store) || s.halted) return line;
    if (s.linebudget > 0) --s.linebudget;
    s.line = ++line;
    // The entry is read again at each line: a statement that splices lines into the store
    // renews the cache.
    tpreparedline& p = readstatement(s, line, scratch);
    if (!p.statement && storefile < 0) continue;
    s.target.clear();
    s.result.clear();
    tstatement& st = storefile < 0 ? chosen(frame, p) : p.whole;
    s.keyword.set(st.keyword);
    if (st.flow == tflow::halt) {
      splitparams(s, st.rest);
      halt(s);
      continue;
    }
    if (st.flow == tflow::brk) {
      splitparams(s, st.rest);
      breakscript(s);
      continue;
    }
    if (st.flow == tflow::end) {
      const utf16 word = untilfirst(st.rest, " ");
      s.result.set(hasvar(s, word) >= 0 ? getvar(s, word) : word);
      closelevel(s);
      return line;
    }
    frame.rest = st.rest;
    if (storefile >= 0) {
      // A store block writes its own lines; a nested store or append opens its own file,
      // other nested blocks are passed over unwritten.
      const utf16 keyword = st.keyword;
      if (equalutf8(keyword, "store") || equalutf8(keyword, "append")) {
        findkeyword(keyword)(s, frame);
      } else if (opensblock(keyword) || isblockmember(s, keyword)) {
        s.line = runblock(s, keyword + ".ignore", false);
      } else {
        utf16 raw;
        getline(s.store, line, raw);
        storeline(s, frame, raw);
        s.line = line;
      }
    } else if (st.flow == tflow::empty || st.flow == tflow::begin) {
      continue;
    } else if (!execute) {
      if (opensblock(st.keyword) || isblockmember(s, st.keyword)) s.line = runblock(s, st.keyword + ".ignore", false);
    } else {
      dispatch(s, frame, st);
    }
    line = s.line;
  }
}

}  // namespace

int64_t run(tscript& s, int64_t line, bool execute) { return runframe(s, line, execute, -1); }

int64_t runstoreblock(tscript& s, const utf16& stackname, int64_t file) {
  const int64_t from = s.line;
  s.blocknames.resize(static_cast<size_t>(std::max<int64_t>(s.level, 0)));
  s.blocknames.push_back(stackname);
  const int64_t end = runframe(s, from, false, file);
  s.line = end;
  return end;
}

int64_t runblock(tscript& s, const utf16& stackname, bool execute) {
  const int64_t from = s.line;
  s.blocknames.resize(static_cast<size_t>(std::max<int64_t>(s.level, 0)));
  s.blocknames.push_back(stackname);
  const int64_t end = run(s, from, execute);
  s.line = end;
  return end;
}

void runscript(tscript& s, bool needmembers) {
  if (linecount(s.store) == 0 || (needmembers && s.members.empty())) return;
  // A sub-script of run nests inside the outer run and shares its stack budget.
  const char here = 0;
  const bool outermost = stackbase == 0;
  if (outermost) {
    stackbase = reinterpret_cast<uintptr_t>(&here);
    stackroom = stackbudget();
  }
  s.level = 0;
  s.blocknames.clear();
  s.prefix.clear();
  dropmembers(s, 1);
  forgetvariables(s, 1);
  s.modulestart.clear();
  s.modulelevel.clear();
  s.withnames.clear();
  s.withlevels.clear();
  for (toutputfile& f : s.files) closefile(f.file);
  s.files.clear();
  s.params.clear();
  s.paramkinds.clear();
  s.redo.clear();
  s.undo.clear();
  s.running = false;
  s.halted = false;
  s.line = 0;
  s.lasterror.clear();

  println("Script runs...");
  s.running = true;
  for (const char* name : {"true", "false", "condition", "for.length", "for.rest", "for.count", "for.relative"})
    setvarquiet(s, name, equalutf8(utf16(name), "true") ? "1" : "0");
  run(s, 0, true);
  closelevel(s);
  s.running = false;
  println("Script ends.");
  s.params.clear();
  s.paramkinds.clear();
  s.rawparams.clear();
  s.rawparamkinds.clear();
  if (outermost) stackbase = 0;
}
