// The statements that write variables: var, local, global and "target op parameters".
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>

#include "script/echo.h"
#include "script/registry.h"
#include "script/values.h"
#include "script/variables.h"

namespace {

using toperator = utf16 (*)(tscript&);

thyper hyperparam(const tscript& s, size_t i) { return texthyper(s.params[i]); }

template <class Combine>
utf16 componentwise(tscript& s, Combine combine) {
  if (s.params.empty()) return utf16();
  thyper acc = hyperparam(s, 0);
  for (size_t i = 1; i < s.params.size(); ++i) {
    const thyper p = hyperparam(s, i);
    for (size_t k = 0; k < 4; ++k) acc[k] = combine(acc[k], p[k]);
  }
  return hypertext(acc);
}

utf16 opreverse(tscript& s) {
  utf16 out;
  for (auto i = s.params.rbegin(); i != s.params.rend(); ++i) append(out, *i);
  return out;
}

utf16 opblank(tscript& s) { return joinparams(s, " "); }
// Sums and differences of a few plain whole numbers, the common case, in integer arithmetic:
// with at most eight numbers of at most 15 digits no partial result leaves the range where
// doubles are exact, so the result is the same. False for any other parameters.
template <int sign>
bool wholenumbers(const tscript& s, utf16& out) {
  if (s.params.empty() || s.params.size() > 8) return false;
  int64_t acc = 0;
  for (size_t i = 0; i < s.params.size(); ++i) {
    int64_t n;
    if (!shortinteger(s.params[i], n)) return false;
    acc = i == 0 ? n : acc + sign * n;
  }
  out = realtext(static_cast<double>(acc));
  return true;
}

// += (sign 1) and -= (sign -1).
template <int sign>
utf16 opsum(tscript& s) {
  utf16 out;
  if (wholenumbers<sign>(s, out)) return out;
  if constexpr (sign > 0) return componentwise(s, std::plus<double>());
  return componentwise(s, std::minus<double>());
}
utf16 opmul(tscript& s) { return componentwise(s, std::multiplies<double>()); }
utf16 opdiv(tscript& s) {
  return componentwise(s, [](double a, double b) { return b == 0 ? 0.0 : a / b; });
}

utf16 opdot(tscript& s) {
  if (s.params.empty()) return utf16();
  thyper acc = hyperparam(s, 0);
  for (size_t i = 1; i < s.params.size(); ++i) {
    const thyper p = hyperparam(s, i);
    acc = {acc[0] * p[0] + acc[1] * p[1] + acc[2] * p[2] + acc[3] * p[3], 0, 0, 0};
  }
  return hypertext(acc);
}

utf16 opcross(tscript& s) {
  if (s.params.empty()) return utf16();
  tvector acc = textvector(s.params[0]);
  for (size_t i = 1; i < s.params.size(); ++i) {
    const tvector p = textvector(s.params[i]);
    acc = {acc[1] * p[2] - acc[2] * p[1], acc[2] * p[0] - acc[0] * p[2], acc[0] * p[1] - acc[1] * p[0]};
  }
  return vectortext(acc);
}

utf16 opnumberform(tscript& s) {
  if (s.params.empty()) return utf16();
  if (s.params.size() == 1) {
    thyper h = hyperparam(s, 0);
    for (double& c : h) c = static_cast<double>(roundnat(c));
    return hypertext(h);
  }
  const int64_t n = textnat(s.params[0]);
  utf16 out;
  for (size_t i = 1; i < s.params.size(); ++i) {
    if (i > 1) appendchar(out, ' ');
    if (n >= 0) {
      append(out, roundedrealtext(textreal(s.params[i]), static_cast<int>(std::min<int64_t>(n, 30))));
    } else {
      utf16 piece = s.params[i];
      while (length(piece) < -n && length(piece) < cellmax) piece = utf16("0") + piece;
      append(out, piece);
    }
  }
  return out;
}

utf16 opnormalise(tscript& s) {
  if (s.params.empty()) {
    reportmin(s, 1);
    return utf16();
  }
  utf16 out;
  for (size_t i = 0; i < s.params.size(); ++i) {
    thyper h = hyperparam(s, i);
    const double largest = *std::max_element(h.begin(), h.end());
    for (double& c : h) c = largest == 0 ? 0 : c / largest;
    if (i) appendchar(out, ' ');
    append(out, hypertext(h));
  }
  return out;
}

// $= and d=: only the last parameter counts, each piece overwriting the one before.
template <bool keep>
utf16 opchars(tscript& s) {
  if (s.params.empty()) return utf16();
  const int64_t n = textnat(s.params[0]);
  const utf16& text = s.params.back();
  const int64_t len = length(text);
  if (keep) return n >= 1 ? copy(text, 1, n) : copy(text, len + n + 1, -n);
  return n >= 1 ? copy(text, n + 1, len) : copy(text, 1, len + n);
}

utf16 opseparate(tscript& s) {
  if (s.params.empty()) return utf16();
  utf16 out;
  for (size_t i = 1; i < s.params.size(); ++i) {
    if (i > 1) appendchar(out, ' ');
    append(out, untilfirst(s.params[i], s.params[0]));
  }
  return out;
}

utf16 opremove(tscript& s) {
  const utf16 old = getvar(s, s.target.get());
  if (s.params.empty()) {
    reportmin(s, 1);
    return old;
  }
  utf16 out = old;
  for (const utf16& p : s.params) out = replace(out, p, utf16());
  return out;
}

struct toperatorrow {
  const char* op;
  toperator apply;
};

constexpr toperatorrow operators[] = {
    {"~=", opreverse}, {"|=", opblank},     {"+=", opsum<1>},      {"-=", opsum<-1>},     {"*=", opmul},
    {"/=", opdiv},     {"o=", opdot},       {"x=", opcross},       {"#=", opnumberform},  {"%=", opnormalise},
    {"$=", opchars<true>}, {"d=", opchars<false>}, {"s=", opseparate}, {"!=", opremove},
};

void store(tscript& s) {
  const utf16 target = s.target.get();
  if (!empty(target) && !s.halted) setvar(s, target, s.result.get());
}

bool hasat(const utf16& text) { return poschar('@', text) > 0; }

// What of "target op rest" holds while the line and the members stay as they are. A text
// with "@" changes with the variables, an element target reads the old value, and a ":="
// before a function calls it: those take the general way.
void compile(tscript& s, const tstatement& st, tcompiledassignment& c) {
  c = tcompiledassignment();
  c.memberrevision = s.memberindex.revision;
  utf16 rest = st.rest;
  c.op = cutword(rest, " ");
  c.target = st.keyword;
  if (hasat(c.target) || hasat(rest) || charat(c.target, length(c.target)) == ']') return;
  if (equalutf8(c.op, ":=")) {
    rest = trimblanks(rest);
    const utf16 word = cutword(rest, " ");
    if (isregistered(s, lower(word), tlookup::function)) return;
    rest = empty(rest) ? word : word + " " + rest;
    c.plainassign = true;
  } else {
    for (const toperatorrow& row : operators)
      if (equalutf8(c.op, row.op)) c.apply = row.apply;
  }
  c.paramtext = rest;
  c.targetismember = ismember(s, c.target);
  c.simple = cutparams(s, rest, c.words, c.kinds);
}

// The store of the general way, with the member test made once, while the target is the
// first word as the handlers left it.
void storecompiled(tscript& s, const tcompiledassignment& c) {
  if (s.halted || !s.target.second.lo.empty() || !equal(s.target.first, c.target)) {
    store(s);
    return;
  }
  if (empty(c.target)) return;
  if (c.targetismember) {
    reporterror(s, utf16("overloaded identifier: ") + c.target);
    return;
  }
  storevariable(s, c.target, s.result.second.lo.empty() ? s.result.first : s.result.get());
}

}  // namespace

void varstatement(tscript& s, const utf16& keyword, const utf16& rest) {
  splitparams(s, rest);
  if (s.halted) return;
  if (pos("var", keyword) == 1) {
    utf16 names;
    for (const utf16& p : s.params) {
      setvar(s, p, utf16());
      if (!empty(names)) appendchar(names, '|');
      append(names, p);
    }
    s.target.set(names);
    echoassign(s, names, "(instance " + std::to_string(s.level) + ") :=", utf16());
    return;
  }
  if (s.params.empty()) return;
  utf16 value;
  for (size_t i = 1; i < s.params.size(); ++i) append(value, s.params[i]);
  s.target.set(s.params[0]);
  if (pos("local", keyword) == 1) {
    echoassign(s, s.params[0], "(instance " + std::to_string(s.level) + ") :=", value);
    setvar(s, s.params[0], value);
  } else {
    echoassign(s, s.params[0], "(global) :=", value);
    setglobal(s, s.params[0], value, 1);
  }
}

void assignment(tscript& s, const utf16& firstword, const utf16& restline) {
  utf16 rest = restline;
  s.target.set(macrosubstitute(s, firstword));
  s.result.clear();
  const utf16 op = cutword(rest, " ");
  s.keyword.set(op);
  if (equalutf8(op, ":=")) {
    rest = trimblanks(rest);
    utf16 word = cutword(rest, " ");
    const utf16 name = lower(word);
    if (isregistered(s, name, tlookup::function)) {
      splitparams(s, rest);
      if (!s.halted) callfunc(s, name);
      store(s);
      return;
    }
    if (!s.withnames.empty()) {
      utf16 joined;
      for (const utf16& w : s.withnames) append(joined, w + ".");
      if (isregistered(s, joined + name, tlookup::function)) {
        splitparams(s, rest);
        if (!s.halted) callfunc(s, joined + name);
        store(s);
        return;
      }
    }
    rest = empty(rest) ? word : word + " " + rest;
    s.keyword.set(":=");
    splitparams(s, rest);
    if (s.halted) return;
    s.result.set(joinparams(s, utf16()));
    echoassign(s, s.target.get(), ":=", s.result.get());
    store(s);
    return;
  }
  splitparams(s, rest);
  if (s.halted) return;
  utf16 value;
  for (const toperatorrow& row : operators) {
    if (equalutf8(op, row.op)) {
      value = row.apply(s);
      break;
    }
  }
  s.result.set(value);
  echoassign(s, s.target.get(), op, value);
  store(s);
}

void assignment(tscript& s, tstatement& st) {
  if (!st.assign) st.assign = std::make_shared<tcompiledassignment>();
  if (st.assign->memberrevision != s.memberindex.revision) compile(s, st, *st.assign);
  // Held for the statement: a handler may renew the line cache that holds the statement.
  const std::shared_ptr<const tcompiledassignment> held = st.assign;
  const tcompiledassignment& c = *held;
  if (!c.simple || (c.plainassign && !s.withnames.empty())) {
    assignment(s, utf16(st.keyword), utf16(st.rest));
    return;
  }
  s.target.set(c.target);
  s.result.clear();
  s.keyword.set(c.op);
  setparams(s, c.paramtext, c.words, c.kinds);
  if (s.halted) return;
  if (c.plainassign) {
    s.result.set(joinparams(s, utf16()));
    if (s.debug) echoassign(s, s.target.get(), c.op, s.result.get());
  } else {
    const utf16 value = c.apply ? c.apply(s) : utf16();
    s.result.set(value);
    if (s.debug) echoassign(s, s.target.get(), c.op, value);
  }
  storecompiled(s, c);
}
