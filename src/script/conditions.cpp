// The if family, case, and the block words then, else, of and ofnot.
#include <cmath>
#include <functional>

#include "script/echo.h"
#include "script/frame.h"
#include "script/registry.h"
#include "script/run.h"
#include "script/values.h"
#include "script/variables.h"
#include "shell/files.h"

namespace {

using tparams = std::vector<utf16>;

bool istrue(const utf16& p) { return textreal(p) >= 1; }

double norm(const utf16& p) {
  const thyper h = texthyper(p);
  return std::sqrt(h[0] * h[0] + h[1] * h[1] + h[2] * h[2] + h[3] * h[3]);
}

bool contains(const utf16& hay, const utf16& needle) { return pos(needle, hay) > 0; }

template <class Test>
bool all(const tparams& p, size_t from, Test test) {
  for (size_t i = from; i < p.size(); ++i)
    if (!test(p[i])) return false;
  return true;
}

template <class Test>
bool any(const tparams& p, size_t from, Test test) {
  for (size_t i = from; i < p.size(); ++i)
    if (test(p[i])) return true;
  return false;
}

template <class Test>
bool pairs(const tparams& p, Test test) {
  for (size_t i = 0; i + 1 < p.size(); ++i)
    if (!test(p[i], p[i + 1])) return false;
  return true;
}

bool hyperequal(const utf16& a, const utf16& b) { return texthyper(a) == texthyper(b); }

// One row of the if family: the least parameter count and the test.
struct tcondition {
  const char* word;
  size_t least;
  bool (*test)(const tparams& p);
};

const tcondition conditions[] = {
    {"if", 1, [](const tparams& p) { return all(p, 0, istrue); }},
    {"ifall", 1, [](const tparams& p) { return all(p, 0, istrue); }},
    {"ifand", 1, [](const tparams& p) { return all(p, 0, istrue); }},
    {"ifnot", 1, [](const tparams& p) { return !all(p, 0, istrue); }},
    {"ifnotall", 1, [](const tparams& p) { return !all(p, 0, istrue); }},
    {"ifnand", 1, [](const tparams& p) { return !all(p, 0, istrue); }},
    {"ifone", 1, [](const tparams& p) { return any(p, 0, istrue); }},
    {"ifor", 1, [](const tparams& p) { return any(p, 0, istrue); }},
    {"ifnotone", 1, [](const tparams& p) { return !any(p, 0, istrue); }},
    {"ifnor", 1, [](const tparams& p) { return !any(p, 0, istrue); }},
    {"ifzero", 1, [](const tparams& p) { return all(p, 0, [](const utf16& x) { return norm(x) == 0; }); }},
    {"ifnotzero", 1, [](const tparams& p) { return all(p, 0, [](const utf16& x) { return norm(x) != 0; }); }},
    {"ifsmaller", 2, [](const tparams& p) { return pairs(p, [](const utf16& a, const utf16& b) { return norm(a) < norm(b); }); }},
    {"ifbigger", 2, [](const tparams& p) { return pairs(p, [](const utf16& a, const utf16& b) { return norm(a) > norm(b); }); }},
    {"ifequal", 2, [](const tparams& p) { return pairs(p, hyperequal); }},
    {"ifabsequal", 2, [](const tparams& p) { return pairs(p, [](const utf16& a, const utf16& b) { return norm(a) == norm(b); }); }},
    {"ifempty", 0, [](const tparams& p) { return all(p, 0, [](const utf16& x) { return empty(x); }); }},
    {"ifnotempty", 0, [](const tparams& p) { return any(p, 0, [](const utf16& x) { return !empty(x); }); }},
    {"ifsame", 0, [](const tparams& p) { return pairs(p, [](const utf16& a, const utf16& b) { return equal(a, b); }); }},
    {"ifnotsame", 0, [](const tparams& p) { return !pairs(p, [](const utf16& a, const utf16& b) { return equal(a, b); }); }},
    {"ifcontain", 2, [](const tparams& p) { return all(p, 1, [&](const utf16& x) { return contains(p[0], x); }); }},
    {"ifallcontain", 2, [](const tparams& p) { return all(p, 1, [&](const utf16& x) { return contains(p[0], x); }); }},
    {"ifnotcontain", 2, [](const tparams& p) { return !all(p, 1, [&](const utf16& x) { return contains(p[0], x); }); }},
    {"ifnotallcontain", 2, [](const tparams& p) { return !all(p, 1, [&](const utf16& x) { return contains(p[0], x); }); }},
    {"ifonecontain", 2, [](const tparams& p) { return any(p, 1, [&](const utf16& x) { return contains(p[0], x); }); }},
    {"ifnotonecontain", 2, [](const tparams& p) { return !any(p, 1, [&](const utf16& x) { return contains(p[0], x); }); }},
    {"ifpart", 2, [](const tparams& p) { return all(p, 1, [&](const utf16& x) { return contains(x, p[0]); }); }},
    {"ifallpart", 2, [](const tparams& p) { return all(p, 1, [&](const utf16& x) { return contains(x, p[0]); }); }},
    {"ifnotpart", 2, [](const tparams& p) { return !all(p, 1, [&](const utf16& x) { return contains(x, p[0]); }); }},
    {"ifnotallpart", 2, [](const tparams& p) { return !all(p, 1, [&](const utf16& x) { return contains(x, p[0]); }); }},
    {"ifonepart", 2, [](const tparams& p) { return any(p, 1, [&](const utf16& x) { return contains(x, p[0]); }); }},
    {"ifnotonepart", 2, [](const tparams& p) { return !any(p, 1, [&](const utf16& x) { return contains(x, p[0]); }); }},
    {"ifexists", 1, [](const tparams& p) { return all(p, 0, [](const utf16& x) { return fileexists(x) || direxists(x); }); }},
    {"ifnotexists", 1, [](const tparams& p) { return !any(p, 0, [](const utf16& x) { return fileexists(x) || direxists(x); }); }},
};

const tcondition* findcondition(const utf16& word) {
  for (const tcondition& c : conditions)
    if (equalutf8(word, c.word)) return &c;
  return nullptr;
}

void ifstatement(tscript& s, tframe& frame) {
  const tcondition* c = findcondition(s.keyword.get());
  splitparams(s, frame.rest);
  if (s.halted) return;
  echoline(s, s.keyword.get());
  if (s.params.size() < c->least || (c->least == 1 && s.params.empty())) {
    reportmin(s, std::max<int64_t>(1, static_cast<int64_t>(c->least)));
    return;
  }
  frame.condition = c->test(s.params);
}

// The filesize forms only ever clear the condition.
struct tfilesizetest {
  const char* word;
  int64_t count;
  bool (*holds)(int64_t size, int64_t wanted);
};

const tfilesizetest filesizetests[] = {
    {"ifzero.filesize", 1, [](int64_t size, int64_t) { return size == 0; }},
    {"ifsmaller.filesize", 2, [](int64_t size, int64_t wanted) { return size < wanted; }},
    {"ifequal.filesize", 2, [](int64_t size, int64_t wanted) { return size == wanted; }},
    {"iffilesize", 2, [](int64_t size, int64_t wanted) { return size == wanted; }},
    {"ifbigger.filesize", 2, [](int64_t size, int64_t wanted) { return size > wanted; }},
};

void filesizestatement(tscript& s, tframe& frame) {
  const utf16 word = s.keyword.get();
  splitparams(s, frame.rest);
  if (s.halted) return;
  echoline(s, word);
  for (const tfilesizetest& t : filesizetests) {
    if (!equalutf8(word, t.word)) continue;
    if (paramcount(s) != t.count) {
      reportcount(s, t.count);
      return;
    }
    // A missing file has no size: its test fails.
    const int64_t size = filesize(s.params[0]);
    const int64_t wanted = t.count == 2 ? textnat(s.params[1]) : 0;
    if (size < 0 || !t.holds(size, wanted)) frame.condition = false;
    return;
  }
}

void casestatement(tscript& s, tframe& frame) {
  splitparams(s, frame.rest);
  if (s.halted) return;
  echoline(s, "case");
  if (!checkparams(s, 1)) return;
  frame.casevalue = s.params[0];
}

void conditionalblock(tscript& s, const utf16& word, const utf16& stackname, bool runs) {
  if (runs) {
    echoline(s, word);
    runblock(s, stackname, true);
  } else {
    runblock(s, stackname + ".ignore", false);
  }
}

void thenblock(tscript& s, tframe& f) { conditionalblock(s, s.keyword.get(), "if.then", f.condition); }
void elseblock(tscript& s, tframe& f) { conditionalblock(s, s.keyword.get(), "if.else", !f.condition); }

bool matchescase(tscript& s, const tframe& f) {
  for (const utf16& p : s.params)
    if (equal(p, f.casevalue)) return true;
  return false;
}

void ofblock(tscript& s, tframe& f) {
  splitparams(s, f.rest);
  if (s.halted) return;
  conditionalblock(s, "of", "of", matchescase(s, f));
}

void ofnotblock(tscript& s, tframe& f) {
  splitparams(s, f.rest);
  if (s.halted) return;
  conditionalblock(s, "ofnot", "ofnot", !matchescase(s, f));
}

}  // namespace

std::vector<tkeywordrow> conditionkeywords() {
  std::vector<tkeywordrow> rows;
  for (const tcondition& c : conditions) rows.push_back({c.word, ifstatement});
  for (const tfilesizetest& t : filesizetests) rows.push_back({t.word, filesizestatement});
  for (const char* w : {"if.then", "then", "if.true"}) rows.push_back({w, thenblock});
  for (const char* w : {"if.else", "else", "if.false"}) rows.push_back({w, elseblock});
  rows.push_back({"case", casestatement});
  rows.push_back({"of", ofblock});
  rows.push_back({"ofnot", ofnotblock});
  return rows;
}
