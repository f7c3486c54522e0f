// for, for.random, for.part, parallel, while, repeat, minimize and maximize: each calls the
// run of its body again and again, with the loop's data as fresh variables of the body.
#include <cmath>
#include <string>

#include "field/arrays.h"
#include "field/owned.h"
#include "script/echo.h"
#include "script/frame.h"
#include "script/registry.h"
#include "script/run.h"
#include "script/values.h"
#include "script/variables.h"

namespace {

// Counts are clamped to the magnitude both signs share, so that |n| always exists.
constexpr int64_t largestcount = INT64_MAX;
int64_t truncated(const utf16& p) {
  const int64_t v = roundnat(std::trunc(textreal(p)));
  return v < -largestcount ? -largestcount : v;
}

// a - b, held at the largest count where the true difference lies beyond it.
int64_t saturateddifference(int64_t a, int64_t b) {
  int64_t d;
  if (__builtin_sub_overflow(a, b, &d)) return a > b ? largestcount : -largestcount;
  return d < -largestcount ? -largestcount : d;
}

// q * p of two counts not below 0, held at the largest count.
int64_t saturatedproduct(int64_t q, int64_t p) {
  int64_t r;
  return __builtin_mul_overflow(q, p, &r) ? largestcount : r;
}

// A loop on the last line has no body, and its passes read no line: the loop could not end.
bool bodyless(const tscript& s, int64_t start) { return start >= linecount(s.store); }

// A value of one pass: a text, or a number that is printed only if the body reads it.
struct tpassvalue {
  enum : uint8_t { text, nat, real } kind;
  utf16 words;
  int64_t natvalue = 0;
  double realvalue = 0;
  tpassvalue(const utf16& t) : kind(text), words(t) {}
  tpassvalue(int64_t n) : kind(nat), natvalue(n) {}
  tpassvalue(double r) : kind(real), realvalue(r) {}
};

// The variables of one pass.
struct tpass {
  tpassvalue length, rest, count, relative;
};

void newlocal(tscript& s, const utf16& name, const tpassvalue& v) {
  switch (v.kind) {
    case tpassvalue::text: newlocal(s, name, v.words); break;
    case tpassvalue::nat: newlocalnat(s, name, v.natvalue); break;
    case tpassvalue::real: newlocalreal(s, name, v.realvalue); break;
  }
}

// Held as texts of the engine, made once: a pass sets its variables without converting names.
struct tloopnames {
  utf16 stack;
  utf16 length;
  utf16 rest;  // empty: the loop has no rest variable
  utf16 count;
  utf16 relative;
};

const tloopnames fornames{"for", "for.length", "for.rest", "for.count", "for.relative"};
const tloopnames partnames{"for", "for.length", "", "for.count", "for.relativ"};
const tloopnames parallelnames{"parallel", "parallel.length", "", "parallel.count", "parallel.relativ"};

// Runs the body once with the pass's variables; returns the line of the body's end.
int64_t runpass(tscript& s, int64_t start, const tloopnames& names, const tpass& pass) {
  s.line = start;
  newlocal(s, names.length, pass.length);
  if (!empty(names.rest)) newlocal(s, names.rest, pass.rest);
  newlocal(s, names.count, pass.count);
  newlocal(s, names.relative, pass.relative);
  return runblock(s, names.stack, true);
}

void passover(tscript& s, const std::string& stack) { runblock(s, utf16(stack + ".ignore"), false); }

// The three counting forms share their passes; `visit` gets the pass number (from 1) and
// the pass variables and returns false to skip a pass.
template <class Visit>
void countingloop(tscript& s, const tloopnames& names, const utf16& echoword, Visit visit) {
  const int64_t start = s.line;
  int64_t end = start;
  bool ran = false;
  auto pass = [&](const tpass& p) {
    if (s.halted) return false;
    end = runpass(s, start, names, p);
    ran = true;
    return !s.halted;
  };
  if (paramcount(s) == 1) {
    const int64_t n = truncated(s.params[0]);
    echotext(s, echoword, nattext(n));
    if (n == 0) {
      passover(s, utf16toutf8(names.stack));
      return;
    }
    const int64_t len = n < 0 ? -n : n;
    for (int64_t k = 1; k <= len; ++k) {
      const int64_t i = n < 0 ? -k : k;
      if (!visit(k, i)) continue;
      if (!pass({len, saturateddifference(len, i), i, static_cast<double>(i) / static_cast<double>(n)})) break;
    }
  } else if (paramcount(s) == 2) {
    const int64_t a = truncated(s.params[0]), b = truncated(s.params[1]);
    echotext(s, echoword, nattext(a) + ".." + nattext(b));
    // A span wider than the largest count is held there.
    const int64_t span = a <= b ? saturateddifference(b, a) : saturateddifference(a, b);
    const int64_t len = saturateddifference(span, -1), step = a <= b ? 1 : -1;
    for (int64_t i = a, k = 1;; i += step, ++k) {
      const double relative = 1.0 / static_cast<double>(len) + std::fabs(static_cast<double>(i) - static_cast<double>(a));
      if (visit(k, i) && !pass({len, saturateddifference(len, i), i, relative})) break;
      if (i == b) break;
    }
  } else if (paramcount(s) == 3) {
    const double a = textreal(s.params[0]), b = textreal(s.params[2]);
    double step = std::fabs(textreal(s.params[1]));
    echotext(s, echoword, realtext(a) + "..(" + realtext(textreal(s.params[1])) + ").." + realtext(b));
    if (b < a) step = -step;
    const utf16 len = nattext(roundnat(std::trunc((std::fabs(b - a) + 1) / std::fabs(step))));
    int64_t k = 1;
    for (double v = a;; v += step, ++k) {
      if (step >= 0 ? v > b + std::fabs(step) * 1e-9 : v < b - std::fabs(step) * 1e-9) break;
      if (step == 0 && k > 1 && bodyless(s, start)) break;
      if (visit(k, roundnat(v)) && !pass({len, utf16(), v, utf16()})) break;
    }
  } else {
    reportmin(s, 1);
    return;
  }
  if (ran) s.line = end;
  else passover(s, utf16toutf8(names.stack));
}

void forloop(tscript& s, tframe& f) {
  splitparams(s, f.rest);
  if (s.halted) return;
  countingloop(s, fornames, "for", [](int64_t, int64_t) { return true; });
}

void parallelloop(tscript& s, tframe& f) {
  if (s.parallelpart == 0 && s.paralleltotal == 0) {
    forloop(s, f);
    return;
  }
  splitparams(s, f.rest);
  if (s.halted) return;
  if (s.parallelpart < 0 || s.paralleltotal < 0 || s.paralleltotal < s.parallelpart) {
    reporterror(s, utf16("Wrong parallel initialization (<" + std::to_string(s.parallelpart) + ", " +
                         std::to_string(s.paralleltotal) + ">)!"));
    return;
  }
  const int64_t part = s.parallelpart, total = s.paralleltotal;
  countingloop(s, parallelnames, "parallel", [=](int64_t, int64_t i) { return total == 0 || i % total == part; });
}

void forpartloop(tscript& s, tframe& f) {
  splitparams(s, f.rest);
  if (s.halted) return;
  if (paramcount(s) != 3) {
    reportcount(s, 3);
    return;
  }
  const int64_t n = truncated(s.params[0]), p = truncated(s.params[1]), m = truncated(s.params[2]);
  if (n < 1 || p < 1 || m < 1) return;  // the block's lines are then read as plain lines
  // A part number far beyond m gives bounds beyond the 64-bit range: they are held at the
  // largest count.
  const int64_t q = n / m;
  const int64_t first = p == 1 ? 1 : saturateddifference(saturatedproduct(q, p - 1), -1);
  const int64_t last = p == 1 ? q : (p == m ? n : saturatedproduct(q, p));
  echotext(s, "for.part", nattext(first) + ".." + nattext(last));
  s.params = {nattext(first), nattext(last)};
  countingloop(s, partnames, "for.part", [](int64_t, int64_t) { return true; });
}

// The running values of for.random in ascending order: first, first + step, ... for count
// values. Counts are held at the largest count, which no list can hold.
struct trandomvalues {
  double first = 0, step = 1;
  int64_t count = 0;
};
trandomvalues randomvalues(const tscript& s) {
  if (paramcount(s) == 1) return {1, 1, std::llabs(truncated(s.params[0]))};
  if (paramcount(s) == 2) {
    const int64_t a = truncated(s.params[0]), b = truncated(s.params[1]);
    const int64_t span = a <= b ? saturateddifference(b, a) : saturateddifference(a, b);
    return {static_cast<double>(std::min(a, b)), 1, saturateddifference(span, -1)};
  }
  double a = textreal(s.params[0]), b = textreal(s.params[2]);
  const double step = std::fabs(textreal(s.params[1]));
  if (a > b) std::swap(a, b);
  const double steps = std::floor((b - a) / step + 1e-9);
  if (!(step > 0) || !(steps >= 0)) return {a, step, 0};  // no step, or a value that is no number
  return {a, step, steps < 9e18 ? static_cast<int64_t>(steps) + 1 : largestcount};
}

void forrandomloop(tscript& s, tframe& f) {
  splitparams(s, f.rest);
  if (s.halted) return;
  const int64_t form = paramcount(s);
  if (form < 1 || form > 3) {
    reportmin(s, 1);
    return;
  }
  // The whole list is asked for at once: a count beyond the memory ends in the allocator's
  // message and an empty list, before a single value is written.
  const trandomvalues r = randomvalues(s);
  tlocalarray<treallist> values;
  if (r.count > 0) values->create(r.count);
  const int64_t n = values->length;
  for (int64_t i = 1; i <= n; ++i)
    values->put(i, form == 3 ? r.first + static_cast<double>(i - 1) * r.step : r.first + static_cast<double>(i - 1));
  echotext(s, "for.random", nattext(n));
  values->shuffle();
  const int64_t start = s.line;
  const double a = form == 2 ? std::min(textreal(s.params[0]), textreal(s.params[1])) : 0;
  int64_t end = start;
  for (int64_t i = 1; i <= n && !s.halted; ++i) {
    const double v = values->get(i);
    const double relative = form == 1 ? static_cast<double>(i) / static_cast<double>(n)
                                      : 1.0 / static_cast<double>(n) + (static_cast<double>(i) - a);
    end = runpass(s, start, fornames, {n, n - i, form == 3 ? tpassvalue(v) : tpassvalue(roundnat(v)), relative});
  }
  if (n > 0) s.line = end;
  else passover(s, "for");
}

bool allconditionstrue(const tscript& s) {
  for (const utf16& p : s.params)
    if (textreal(p) < 1) return false;
  return true;
}

void whileloop(tscript& s, tframe& f) {
  echotext(s, "while", utf16());
  const int64_t start = s.line;
  splitparams(s, f.rest);
  if (s.halted) return;
  if (s.params.empty()) {
    reportmin(s, 1);
    return;
  }
  f.loopcondition = allconditionstrue(s) && !bodyless(s, start);
  while (f.loopcondition && !s.halted) {
    s.line = start;
    newlocal(s, "condition", "1");
    runblock(s, "while", true);
    if (s.halted) return;
    splitparams(s, f.rest);
    f.loopcondition = allconditionstrue(s);
  }
  s.line = start;
  newlocal(s, "condition", "0");
  runblock(s, "while.ignore", false);
}

void repeatloop(tscript& s, tframe& f) {
  echotext(s, "repeat", utf16());
  const int64_t start = s.line;
  do {
    s.line = start;
    newlocal(s, "condition", "1");
    runblock(s, "repeat", true);
    if (s.halted) return;
    splitparams(s, s.result.get());
    if (s.params.empty()) {
      reportmin(s, 1);
      return;
    }
    f.loopcondition = allconditionstrue(s) || bodyless(s, start);
  } while (!f.loopcondition && !s.halted);
  s.line = start;
  newlocal(s, "condition", "0");
  runblock(s, "repeat.ignore", false);
}

}  // namespace

std::vector<tkeywordrow> loopkeywords() {
  return {{"for", forloop},           {"parallel", parallelloop}, {"for.part", forpartloop},
          {"for.random", forrandomloop}, {"while", whileloop},    {"repeat", repeatloop}};
}
