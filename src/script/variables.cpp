#include "script/variables.h"

#include <algorithm>
#include <cstdint>

#include "script/echo.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

bool plainname(const utf16& name) {
  return std::none_of(name.lo.begin(), name.lo.end(), [](char c) { return c == ' ' || (c >= 'A' && c <= 'Z'); });
}

utf16 variablename(const utf16& name) { return plainname(name) ? name : lower(replacechar(name, ' ', '.')); }

// The name as the list holds it, made in `scratch` only when it differs.
const utf16& variablename(const utf16& name, utf16& scratch) {
  if (plainname(name)) return name;
  scratch = lower(replacechar(name, ' ', '.'));
  return scratch;
}

bool samename(const utf16& a, const utf16& b) {
  return a.lo.size() == b.lo.size() && a.lo == b.lo && a.hi == b.hi;
}

// Index of the first variable of `level` or above; the list is ordered by level.
size_t firstoflevel(const tscript& s, int64_t level) {
  const auto at = std::lower_bound(s.variables.begin(), s.variables.end(), level,
                                   [](const tvariable& v, int64_t l) { return v.level < l; });
  return static_cast<size_t>(at - s.variables.begin());
}

// Tab-separated elements of a value; an empty value has one (empty) element.
std::vector<utf16> elements(const utf16& value) {
  std::vector<utf16> out;
  utf16 rest = value;
  do {
    out.push_back(cutword(rest, "\t"));
  } while (!empty(rest));
  if (!empty(value) && charat(value, length(value)) == '\t') out.push_back(utf16());
  return out;
}

utf16 joinelements(const std::vector<utf16>& parts) {
  utf16 out;
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i) appendchar(out, '\t');
    append(out, parts[i]);
  }
  return out;
}

// "name[i]" as a target: the value merged into element i of the old value.
bool elementtarget(const tscript& s, utf16& name, utf16& value) {
  if (empty(name) || charat(name, length(name)) != ']') return false;
  const int64_t open = poschar('[', name);
  if (open == 0) return false;
  const int64_t index = textnat(copyrange(name, open + 1, length(name) - 1));
  name = copy(name, 1, open - 1);
  if (index <= 0) return true;
  const utf16 old = getvar(s, name);
  // So many elements do not fit a variable: the element is cut off, as too long a value is,
  // and the old value stays.
  constexpr int64_t mostelements = int64_t{1} << 24;
  if (index > mostelements) {
    value = old;
    return true;
  }
  std::vector<utf16> parts = empty(old) ? std::vector<utf16>() : elements(old);
  if (static_cast<int64_t>(parts.size()) < index) parts.resize(static_cast<size_t>(index));
  parts[static_cast<size_t>(index - 1)] = value;
  value = joinelements(parts);
  return true;
}

// A short list is walked, newest first; a longer one is looked up through the index, built
// at the first lookup that needs it. While in step (its count equals the list's) appends
// and drops keep it so one by one; an insertion in the middle (global) or a list that
// shrinks to a short one puts it out of step (count -1).
constexpr size_t walklimit = 48;

uint64_t namebit(const utf16& name) {
  const unsigned first = name.lo.empty() ? 0u : static_cast<unsigned char>(name.lo[0]);
  const uint64_t mixed = (name.lo.size() * 0x9E3779B97F4A7C15ull) ^ (first * 0xC2B2AE3D27D4EB4Full);
  return uint64_t{1} << (mixed >> 58);
}

void notename(tscript& s, const utf16& name) { s.variableindex.namemask |= namebit(name); }

bool instep(const tscript& s) { return s.variableindex.indexed == static_cast<int64_t>(s.variables.size()); }

const tvariableindex& indexed(const tscript& s) {
  tvariableindex& index = s.variableindex;
  if (!instep(s)) {
    index.chains.clear();
    for (size_t i = 0; i < s.variables.size(); ++i) index.chains[s.variables[i].name].push_back(static_cast<int64_t>(i));
    index.indexed = static_cast<int64_t>(s.variables.size());
  }
  return index;
}

// The newest entry of the list, just appended, enters the index.
void indexnewest(tscript& s) {
  notename(s, s.variables.back().name);
  if (s.variableindex.indexed != static_cast<int64_t>(s.variables.size()) - 1) return;
  s.variableindex.chains[s.variables.back().name].push_back(static_cast<int64_t>(s.variables.size()) - 1);
  ++s.variableindex.indexed;
}

void addvariable(tscript& s, tvariable v) {
  s.variables.push_back(std::move(v));
  indexnewest(s);
}

// The newest entry of name below position `below`, or -1.
int64_t findvariable(const tscript& s, const utf16& name, int64_t below = INT64_MAX) {
  if ((s.variableindex.namemask & namebit(name)) == 0) return -1;
  const int64_t count = static_cast<int64_t>(s.variables.size());
  if (s.variables.size() <= walklimit) {
    for (int64_t i = std::min(below, count) - 1; i >= 0; --i)
      if (samename(s.variables[static_cast<size_t>(i)].name, name)) return i;
    return -1;
  }
  const tvariableindex& index = indexed(s);
  const auto chain = index.chains.find(name);
  if (chain == index.chains.end()) return -1;
  const std::vector<int64_t>& at = chain->second;
  if (below >= count) return at.empty() ? -1 : at.back();
  const auto past = std::lower_bound(at.begin(), at.end(), below);
  return past == at.begin() ? -1 : *(past - 1);
}

}  // namespace

void setvarquiet(tscript& s, const utf16& name, const utf16& value) {
  utf16 scratch;
  storevariable(s, variablename(name, scratch), value);
}

void storevariable(tscript& s, const utf16& key, const utf16& value) {
  const int64_t at = findvariable(s, key);
  if (at >= 0) {
    tvariable& v = s.variables[static_cast<size_t>(at)];
    assigncel(v.value, value);
    v.pending.kind = tpendingnumber::none;
    return;
  }
  addvariable(s, {celfromutf16(key), celfromutf16(value), s.level, {}});
}

namespace {
// The name and value an assignment stores, after an element target is merged; false (with
// the error) when the name belongs to a syntax member.
bool assignable(tscript& s, utf16& key, utf16& text) {
  elementtarget(s, key, text);
  key = variablename(key);
  if (!ismember(s, key)) return true;
  reporterror(s, utf16("overloaded identifier: ") + key);
  return false;
}
}  // namespace

void setvar(tscript& s, const utf16& name, const utf16& value) {
  utf16 key = name, text = value;
  if (assignable(s, key, text)) setvarquiet(s, key, text);
}

void setglobal(tscript& s, const utf16& name, const utf16& value, int64_t level) {
  utf16 key = name, text = value;
  if (!assignable(s, key, text)) return;
  const int64_t at = findvariable(s, key);
  if (at >= 0) {
    tvariable& v = s.variables[static_cast<size_t>(at)];
    v.value = celfromutf16(text);
    v.pending.kind = tpendingnumber::none;
    return;
  }
  // Keep the list sorted by level: the new entry goes behind the last one of its level.
  const size_t place = firstoflevel(s, level + 1);
  s.variables.insert(s.variables.begin() + static_cast<long>(place), {celfromutf16(key), celfromutf16(text), level, {}});
  notename(s, s.variables[place].name);
  s.variableindex.indexed = -1;
}

namespace {
// A new entry at level + 1; the names of the loops are plain and short, and are copied as
// they stand.
tvariable& newentry(tscript& s, const utf16& name, bool plain = false) {
  tvariable& v = s.variables.emplace_back();
  if (plain || (plainname(name) && length(name) <= cellmax)) {
    v.name = name;
  } else {
    v.name = variablename(name);
    if (length(v.name) > cellmax) v.name = copy(v.name, 1, cellmax);
  }
  v.level = s.level + 1;
  indexnewest(s);
  return v;
}

void newlocalpending(tscript& s, const utf16& name, const tpendingnumber& pending) {
  newentry(s, name, true).pending = pending;
}

// A number waiting to be printed in the number format in force now.
tpendingnumber pendingnumber() {
  tpendingnumber p;
  p.scientific = numbersettings.scientific;
  p.decimal = numbersettings.decimal;
  p.digit = numbersettings.digit;
  return p;
}
}  // namespace

void newlocal(tscript& s, const utf16& name, const utf16& value) {
  tvariable& v = newentry(s, name);
  assigncel(v.value, value);
}

void newlocalnat(tscript& s, const utf16& name, int64_t value) {
  tpendingnumber p = pendingnumber();
  p.kind = tpendingnumber::nat;
  p.natvalue = value;
  newlocalpending(s, name, p);
}

void newlocalreal(tscript& s, const utf16& name, double value) {
  tpendingnumber p = pendingnumber();
  p.kind = tpendingnumber::real;
  p.realvalue = value;
  newlocalpending(s, name, p);
}

const utf16& variablevalue(const tvariable& v) {
  tpendingnumber& p = v.pending;
  if (p.kind == tpendingnumber::none) return v.value;
  const tnumberformat now = savenumberformat();
  restorenumberformat({p.scientific, p.decimal, p.digit});
  v.value = celfromutf16(p.kind == tpendingnumber::nat ? nattext(p.natvalue) : realtext(p.realvalue));
  restorenumberformat(now);
  p.kind = tpendingnumber::none;
  return v.value;
}

utf16 getvar(const tscript& s, const utf16& name) {
  utf16 scratch;
  const int64_t at = findvariable(s, variablename(name, scratch));
  return at >= 0 ? variablevalue(s.variables[static_cast<size_t>(at)]) : utf16();
}

int64_t hasvar(const tscript& s, const utf16& name) {
  utf16 scratch;
  return findvariable(s, variablename(name, scratch));
}

void forgetvariables(tscript& s, int64_t level) {
  std::erase_if(s.variables, [level](const tvariable& v) { return v.level >= level; });
  s.variableindex.namemask = 0;
  for (const tvariable& v : s.variables) notename(s, v.name);
  s.variableindex.indexed = -1;
}

namespace {
// The entries from the first of the level on go, as the level ends.
void dropvariables(tscript& s, int64_t level) {
  const size_t keep = firstoflevel(s, level);
  if (keep >= s.variables.size()) return;
  if (instep(s) && keep > walklimit) {
    auto& chains = s.variableindex.chains;
    // The dropped entries are the newest of their names: each ends its chain. Empty chains
    // stay for the next pass of a loop, up to a bound for scripts that make ever new names.
    for (size_t i = s.variables.size(); i-- > keep;) chains.find(s.variables[i].name)->second.pop_back();
    if (chains.size() > 2 * keep + 256) std::erase_if(chains, [](const auto& chain) { return chain.second.empty(); });
    s.variableindex.indexed = static_cast<int64_t>(keep);
  } else if (instep(s)) {
    s.variableindex.chains.clear();
    s.variableindex.indexed = -1;
  }
  s.variables.resize(keep);
}
}  // namespace

void closelevel(tscript& s) {
  const int64_t l = s.level;
  if (l <= 0) return;  // level 0 holds the built-ins and the start variables
  dropmembers(s, l);
  s.modulestart.clear();
  s.modulelevel.clear();
  dropvariables(s, l);
  for (size_t i = 0; i < s.withnames.size();) {
    if (s.withlevels[i] >= l) {
      s.withnames.erase(s.withnames.begin() + static_cast<long>(i));
      s.withlevels.erase(s.withlevels.begin() + static_cast<long>(i));
    } else {
      ++i;
    }
  }
  while (!s.files.empty() && s.files.back().level >= l) {
    closefile(s.files.back().file);
    s.files.pop_back();
  }
  --s.level;
  if (static_cast<int64_t>(s.blocknames.size()) > s.level) s.blocknames.resize(static_cast<size_t>(s.level));
}

utf16 macrosubstitute(const tscript& s, const utf16& text) {
  if (empty(text) || poschar('@', text) == 0) return text;
  utf16 out = text;
  for (auto i = s.variables.rbegin(); i != s.variables.rend(); ++i) {
    if (empty(i->name)) continue;
    out = replace(out, utf16("@") + i->name, variablevalue(*i));
    out = replace(out, utf16("@") + upper(i->name), upper(variablevalue(*i)));
    if (poschar('@', out) == 0) break;
  }
  return out;
}

namespace {
bool haslarge(const utf16& text) {
  return std::any_of(text.lo.begin(), text.lo.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}
}  // namespace

utf16 substituteword(const tscript& s, const utf16& word) {
  // Each value found is looked up again as a name among the older entries.
  const utf16* out = &word;
  utf16 lowered;
  const utf16* key = haslarge(word) ? &(lowered = lower(word)) : &word;
  for (int64_t at = findvariable(s, *key); at >= 0; at = findvariable(s, *key, at)) {
    out = &variablevalue(s.variables[static_cast<size_t>(at)]);
    key = haslarge(*out) ? &(lowered = lower(*out)) : out;
  }
  return *out;
}

namespace {

// Members of a bracketed text, each substituted, joined again by the same separators.
utf16 substitutemembers(const tscript& s, const utf16& text) {
  utf16 out, rest = text;
  for (;;) {
    const int64_t comma = poschar(',', rest), semicolon = poschar(';', rest);
    int64_t cut = comma == 0 ? semicolon : (semicolon == 0 ? comma : std::min(comma, semicolon));
    const utf16 member = trimblanks(cut == 0 ? rest : copy(rest, 1, cut - 1));
    append(out, empty(member) ? member : substituteword(s, member));
    if (cut == 0) break;
    appendchar(out, charat(rest, cut));
    rest = copy(rest, cut + 1, length(rest));
  }
  return out;
}

utf16 elementvalue(const tscript& s, const utf16& word) {
  const int64_t open = poschar('[', word), close = poschar(']', word);
  const utf16 name = copy(word, 1, open - 1);
  const int64_t index = textnat(substituteword(s, trimblanks(copyrange(word, open + 1, close - 1))));
  if (index < 0) return word;
  const utf16 value = getvar(s, name);
  const std::vector<utf16> parts = elements(value);
  if (index == 0) return nattext(static_cast<int64_t>(parts.size()));
  return index <= static_cast<int64_t>(parts.size()) ? parts[static_cast<size_t>(index - 1)] : utf16();
}

// A number given as "$hex" or "%binary": characters that are no digit are passed over.
utf16 basednumber(const utf16& digits, int base) {
  double value = 0;
  for (int64_t i = 1; i <= length(digits); ++i) {
    const uint16_t c = charat(digits, i);
    int d = -1;
    if (c >= '0' && c <= '9') d = c - '0';
    else if (c >= 'a' && c <= 'f') d = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F') d = c - 'A' + 10;
    if (d >= 0 && d < base) value = value * base + d;
  }
  return realtext(value);
}

utf16 unquote(const utf16& word, uint16_t quote) {
  utf16 inner = copy(word, 2, length(word));
  if (!empty(inner) && charat(inner, length(inner)) == quote) inner = copy(inner, 1, length(inner) - 1);
  const utf16 q = utf16char(quote);
  return replace(inner, q + q, q);
}

uint16_t closer(uint16_t open) {
  switch (open) {
    case '(': return ')';
    case '<': return '>';
    case '[': return ']';
    default: return '}';
  }
}

// The statement text cut into words with kinds; raw = < and > protect nothing.
void cutwords(const tscript& s, utf16 text, bool raw, std::vector<utf16>& words, std::vector<uint8_t>& kinds) {
  words.clear();
  kinds.clear();
  for (;;) {
    text = trimblanks(text);
    if (empty(text)) break;
    utf16 word = raw ? cutrawparam(text, " ") : cutparam(text, " ");
    const uint16_t first = charat(word, 1);
    uint8_t kind = param_plain;
    if (first == '"' || first == '\'') {
      word = unquote(word, first);
      if (empty(word)) continue;
      kind = param_quoted;
    } else if (first == '#') {
      word = utf16char(static_cast<uint16_t>(textnat(copy(word, 2, length(word)))));
      kind = param_quoted;
    } else if (first == '$' || first == '%') {
      word = basednumber(copy(word, 2, length(word)), first == '$' ? 16 : 2);
      kind = param_bracketed;
    } else if (first == '(' || first == '<' || first == '[' || first == '{') {
      word = copy(word, 2, length(word));
      if (!empty(word) && charat(word, length(word)) == closer(first)) word = copy(word, 1, length(word) - 1);
      if (empty(word)) continue;
      kind = param_bracketed;
    } else if (first == '-' || (first >= '0' && first <= '9')) {
      kind = param_literal;
    } else if (charat(word, length(word)) == ']') {
      kind = param_element;
    } else if (words.empty() && isregistered(s, lower(word), tlookup::function)) {
      kind = param_function;
    } else if (isregistered(s, lower(word), tlookup::varfunction)) {
      kind = param_varfunction;
    }
    words.push_back(celfromutf16(word));
    kinds.push_back(kind);
  }
}

// The cut depends on the text and the members; the number settings change what "#", "$" and
// "%" words give, so texts with those are cut each time.
void cachedcutwords(tscript& s, const utf16& text, bool raw, std::vector<utf16>& words, std::vector<uint8_t>& kinds) {
  if (empty(text)) {
    // A statement without parameters, such as a call of a procedure, has nothing to cut.
    words.clear();
    kinds.clear();
    return;
  }
  tstatementcache& cache = s.cache;
  const bool cacheable = text.lo.find_first_of("#$%") == std::string::npos;
  if (!cacheable) {
    cutwords(s, text, raw, words, kinds);
    return;
  }
  if (cache.memberrevision != s.memberindex.revision) {
    cache.memberrevision = s.memberindex.revision;
    cache.cuts[0].clear();
    cache.cuts[1].clear();
  }
  auto& cuts = cache.cuts[raw ? 1 : 0];
  const auto hit = cuts.find(text);
  if (hit != cuts.end()) {
    words = hit->second.words;
    kinds = hit->second.kinds;
    return;
  }
  cutwords(s, text, raw, words, kinds);
  if (cuts.size() >= 4096) cuts.clear();  // a bound for scripts that make ever new texts
  cuts.emplace(text, tcutwords{words, kinds});
}

void substitutewords(tscript& s, std::vector<utf16>& words, const std::vector<uint8_t>& kinds) {
  for (size_t i = 0; i < words.size() && !s.halted; ++i) {
    utf16& w = words[i];
    if (empty(w)) continue;
    switch (kinds[i]) {
      case param_plain: case param_function: w = substituteword(s, w); break;
      case param_bracketed: w = celfromutf16(substitutemembers(s, w)); break;
      case param_element: w = elementvalue(s, w); break;
      case param_varfunction: {
        utf16 value;
        callvarfunc(s, lower(w), value);
        w = celfromutf16(value);
        break;
      }
      default: break;
    }
  }
}

// One split of the statement text into words with kinds, each word then substituted.
void split(tscript& s, const utf16& text, bool raw, std::vector<utf16>& words, std::vector<uint8_t>& kinds) {
  cachedcutwords(s, text, raw, words, kinds);
  substitutewords(s, words, kinds);
}

}  // namespace

bool cutparams(const tscript& s, const utf16& text, std::vector<utf16>& words, std::vector<uint8_t>& kinds) {
  if (text.lo.find_first_of("#$%") != std::string::npos) return false;
  cutwords(s, text, false, words, kinds);
  return true;
}

void setparams(tscript& s, const utf16& text, const std::vector<utf16>& words, const std::vector<uint8_t>& kinds) {
  s.paramtext = text;
  s.rawparamsready = false;
  s.params = words;
  s.paramkinds = kinds;
  substitutewords(s, s.params, s.paramkinds);
}

void splitparams(tscript& s, const utf16& rest) {
  s.paramtext = macrosubstitute(s, rest);
  s.rawparamsready = false;
  split(s, s.paramtext, false, s.params, s.paramkinds);
}

void splitrawparams(tscript& s) {
  if (s.rawparamsready) return;
  s.rawparamsready = true;
  split(s, s.paramtext, true, s.rawparams, s.rawparamkinds);
}

utf16 joinparams(const tscript& s, const utf16& separator) {
  utf16 out;
  for (size_t i = 0; i < s.params.size(); ++i) {
    if (i) append(out, separator);
    append(out, s.params[i]);
  }
  return out;
}
