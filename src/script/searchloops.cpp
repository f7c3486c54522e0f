// minimize and maximize: vary script variables until the body's result turns true, then pull
// each one back as far as the result stays true. The body runs once more afterwards, as the
// loop reads on at its first line.
#include <cmath>
#include <string>
#include <vector>

#include "script/echo.h"
#include "script/frame.h"
#include "script/registry.h"
#include "script/run.h"
#include "script/values.h"
#include "script/variables.h"

namespace {

// What tells the two searches apart: their words, the start value, and the direction of a step.
struct tsearch {
  const char* word;
  const char* status;  // the error text when the body sets no result
  bool upward;         // minimize searches up from `from`, maximize down from `to`
};

const tsearch minimizing{"minimize", "Please define the status of the minimization via the variable 'result'!", true};
const tsearch maximizing{"maximize", "Please define the status of the maximization via the variable 'result'!", false};

struct tsearchstate {
  const tsearch& kind;
  std::vector<utf16> names;
  std::vector<double> values;
  double from, to, step;
  int64_t start;
};

// One step forwards (away from the start value) or back, by the fixed step or by a factor ten.
double stepped(const tsearchstate& st, double v, bool forward) {
  const bool up = st.kind.upward == forward;
  if (st.step == 0) return up ? v * 10 : v * 0.1;
  return up ? v + st.step : v - st.step;
}

// The fine step of the last phase: a tenth of the value as it stands.
double finestepped(const tsearchstate& st, double v, bool forward) {
  const bool up = st.kind.upward == forward;
  return up ? v + v * 0.1 : v - v * 0.1;
}

bool beyond(const tsearchstate& st, double v) { return st.kind.upward ? v > st.to : v < st.from; }
bool pastlimit(const tsearchstate& st, double v) { return st.kind.upward ? v < st.from : v > st.to; }

// Sets the variables, runs the body, and reads its result; false on a missing result.
bool trial(tscript& s, tsearchstate& st, bool& ok) {
  for (size_t i = 0; i < st.names.size(); ++i) setvar(s, st.names[i], realtext(st.values[i]));
  s.line = st.start;
  runblock(s, st.kind.word, true);
  s.line = st.start;
  const utf16 result = getvar(s, "result");
  s.result.set(result);
  if (empty(result)) {
    reporterror(s, st.kind.status);
    ok = false;
    return false;
  }
  return textbool(result);
}

template <class Step>
void refine(tscript& s, tsearchstate& st, Step step, bool& ok) {
  for (bool changed = true; changed && ok && !s.halted;) {
    changed = false;
    for (size_t i = 0; i < st.values.size() && ok && !s.halted; ++i) {
      const double candidate = step(st.values[i], false);
      if (pastlimit(st, candidate) || candidate == st.values[i]) continue;
      st.values[i] = candidate;
      if (trial(s, st, ok)) changed = true;
      else st.values[i] = step(candidate, true);
    }
  }
}

void search(tscript& s, tframe& f, const tsearch& kind) {
  splitparams(s, f.rest);
  if (s.halted) return;
  if (paramcount(s) < 4) {
    reportmin(s, 4);
    return;
  }
  double from = textreal(s.params[0]), to = textreal(s.params[2]);
  const double rawstep = textreal(s.params[1]);
  if (to < from) std::swap(from, to);
  if (!(to - from > 0)) return;
  setvar(s, "result", utf16());
  tsearchstate st{kind, {s.params.begin() + 3, s.params.end()}, {}, from, to, std::fabs(rawstep), s.line};
  st.values.assign(st.names.size(), kind.upward ? from : to);
  echotext(s, kind.word, realtext(from) + "..(" + realtext(rawstep) + ").." + realtext(to));
  const tnumberformat saved = savenumberformat();
  if (st.step == 0) numbersettings.scientific = true;  // so that the values keep their digits

  bool ok = true;
  for (;;) {
    for (size_t i = 0; i < st.values.size(); ++i) setvar(s, st.names[i], realtext(st.values[i]));
    const double before = st.values[0];
    for (double& v : st.values) v = stepped(st, v, true);
    s.line = st.start;
    runblock(s, kind.word, true);
    s.line = st.start;
    const utf16 result = getvar(s, "result");
    s.result.set(result);
    if (empty(result)) {
      reporterror(s, kind.status);
      ok = false;
      break;
    }
    // A value of 0 stepped by a factor never moves: the search could not end.
    if (beyond(st, st.values[0]) || textbool(result) || s.halted || st.values[0] == before) break;
  }
  if (ok && (kind.upward ? st.values[0] > from : st.values[0] < to))
    for (double& v : st.values) v = stepped(st, v, false);
  if (ok) refine(s, st, [&](double v, bool back) { return stepped(st, v, back); }, ok);
  if (ok && st.step == 0) refine(s, st, [&](double v, bool back) { return finestepped(st, v, back); }, ok);
  // The body is read once more behind this line, with the values found.
  if (ok) for (size_t i = 0; i < st.values.size(); ++i) setvar(s, st.names[i], realtext(st.values[i]));
  restorenumberformat(saved);
  s.line = st.start;
}

void minimize(tscript& s, tframe& f) { search(s, f, minimizing); }
void maximize(tscript& s, tframe& f) { search(s, f, maximizing); }

}  // namespace

std::vector<tkeywordrow> searchkeywords() { return {{"minimize", minimize}, {"maximize", maximize}}; }
