// store and append blocks write their lines to files; output.store and output.append send
// print and the dumps to a file while their block runs.
#include <algorithm>
#include <cmath>
#include <string>

#include "script/echo.h"
#include "script/frame.h"
#include "script/registry.h"
#include "script/run.h"
#include "script/values.h"
#include "script/variables.h"
#include "shell/console.h"

namespace {

utf16 storespace, appendspace;  // the text at the start of every written line

// The entry of an open file by name, a new one at the next level, or -1 when none can be had.
int64_t outputentry(tscript& s, const utf16& name) {
  for (size_t i = 0; i < s.files.size(); ++i) {
    if (equal(s.files[i].name, name)) {
      println("Attention file is open! (" + utf16toutf8(name) + ")");
      return static_cast<int64_t>(i);
    }
  }
  if (s.files.size() >= 255) {
    println("To much open files! (" + utf16toutf8(name) + ")");
    return -1;
  }
  s.files.push_back({name, s.level + 1, tfile(), false, false});
  return static_cast<int64_t>(s.files.size()) - 1;
}

void outputblock(tscript& s, tframe& f, const char* word, bool appending, bool redirect) {
  splitparams(s, f.rest);
  if (s.halted) return;
  if (s.params.empty()) {
    reportmin(s, 1);
    return;
  }
  echoline(s, word);
  const utf16 name = s.params[0];
  const int64_t entry = outputentry(s, name);
  bool opened = false;
  if (entry >= 0) {
    toutputfile& out = s.files[static_cast<size_t>(entry)];
    opened = out.file.handle != nullptr || (appending ? appendfile(out.file, name) : writefile(out.file, name));
    out.redirect = redirect;
    out.appending = appending;
  }
  if (!opened) {
    if (entry >= 0 && s.files[static_cast<size_t>(entry)].file.handle == nullptr) s.files.erase(s.files.begin() + entry);
    runblock(s, utf16(word) + ".ignore", false);
    return;
  }
  if (redirect) runblock(s, word, true);
  else runstoreblock(s, word, entry);
}

void store(tscript& s, tframe& f) { outputblock(s, f, "store", false, false); }
void append(tscript& s, tframe& f) { outputblock(s, f, "append", true, false); }
void outputstore(tscript& s, tframe& f) { outputblock(s, f, "output.store", false, true); }
void outputappend(tscript& s, tframe& f) { outputblock(s, f, "output.append", true, true); }

void setspace(tscript& s, tframe& f, utf16& space) {
  splitparams(s, f.rest);
  if (!s.halted && checkparams(s, 1)) space = s.params[0];
}
void storespacecmd(tscript& s, tframe& f) { setspace(s, f, storespace); }
void appendspacecmd(tscript& s, tframe& f) { setspace(s, f, appendspace); }

void writeout(tscript& s, const tframe& f, const utf16& text) {
  toutputfile& out = s.files[static_cast<size_t>(f.storefile)];
  const utf16& space = out.appending ? appendspace : storespace;
  writetext(out.file, utf16toutf8(space + text) + "\n");
}

utf16 joined(const std::vector<utf16>& words, size_t from, const utf16& separator) {
  utf16 out;
  for (size_t i = from; i < words.size(); ++i) {
    if (i > from) append(out, separator);
    append(out, words[i]);
  }
  return out;
}

bool hasdigit(const utf16& v) {
  for (int64_t i = 1; i <= length(v); ++i)
    if (charat(v, i) >= '0' && charat(v, i) <= '9') return true;
  return false;
}

// A formatted line: labels before their parameters, numeric words as decimal counts.
utf16 formattedline(const tframe& f, const std::vector<utf16>& p, bool difference) {
  utf16 out;
  const size_t n = std::min(p.size(), f.memory.size());
  for (size_t i = 0; i < n; ++i) {
    if (i) append(out, f.separator);
    const utf16& entry = f.memory[i];
    if (!hasdigit(entry)) {
      if (!equalutf8(entry, "@")) append(out, entry);
      append(out, p[i]);
    } else if (difference) {
      append(out, realtext(textreal(entry) - textreal(p[i])));
    } else {
      // A numeric word gives the number of decimals for its parameter.
      append(out, roundedrealtext(textreal(p[i]), static_cast<int>(std::clamp<int64_t>(textnat(entry), 0, 30))));
    }
  }
  return out;
}

// @@T and @@R: a triple moved by the last memory entry, or turned about the axis of the one
// before it by its fourth component (in degrees), then moved.
utf16 transformedline(const tframe& f, const std::vector<utf16>& p, bool rotate) {
  if (f.memory.size() < 2) return utf16();
  const thyper a = texthyper(f.memory[f.memory.size() - 2]), b = texthyper(f.memory.back());
  if (a == thyper{0, 0, 0, 0} && b == thyper{0, 0, 0, 0}) return utf16();
  const size_t at = f.memory.size() - 1;
  auto component = [&](size_t k) { return at + k < p.size() ? textreal(p[at + k]) : 0.0; };
  tvector v{component(0), component(1), component(2)};
  if (rotate) {
    const double len = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    if (len > 0) {
      const tvector k{a[0] / len, a[1] / len, a[2] / len};
      const double angle = degreestoradians(a[3]), c = std::cos(angle), sn = std::sin(angle);
      const double dot = k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
      const tvector cross{k[1] * v[2] - k[2] * v[1], k[2] * v[0] - k[0] * v[2], k[0] * v[1] - k[1] * v[0]};
      for (size_t i = 0; i < 3; ++i) v[i] = v[i] * c + cross[i] * sn + k[i] * dot * (1 - c);
    }
  } else {
    for (size_t i = 0; i < 3; ++i) v[i] += a[i];
  }
  for (size_t i = 0; i < 3; ++i) v[i] += b[i];
  utf16 head = joined(std::vector<utf16>(p.begin(), p.begin() + static_cast<long>(std::min(at, p.size()))), 0, f.separator);
  const utf16 triple = realtext(v[0]) + f.separator + realtext(v[1]) + f.separator + realtext(v[2]);
  return empty(head) ? triple : head + f.separator + triple;
}

void templateline(tscript& s, tframe& f, utf16 line) {
  if (!empty(f.separator)) line = replace(line, utf16("@@") + f.separator, "@@$");
  if (length(line) == 2 || charat(line, 3) == ' ') return;
  const uint16_t command = charat(line, 3);
  if (command > 255) {
    reportunknown(s, line, "@ command");
    return;
  }
  splitparams(s, copy(line, 4, length(line)));
  const std::vector<utf16> p = s.params;
  const auto count = p.size();
  const uint16_t upper = command >= 'a' && command <= 'z' ? static_cast<uint16_t>(command - 32) : command;
  switch (upper) {
    case 'M': if (count >= 1) f.memory = p; return;
    case 'S': f.separator = count ? p[0] : utf16(); return;
    case 'J': f.joiner = count ? trimblanks(p[0]) : utf16(); return;
    case 'C': if (count >= 3 && equal(p[0], p[1])) writeout(s, f, joined(p, 2, f.separator)); return;
    case '!': if (count >= 2 && textnat(p[0]) < 1) writeout(s, f, joined(p, 1, f.separator)); return;
    case '?': if (count >= 2 && textnat(p[0]) > 0) writeout(s, f, joined(p, 1, f.separator)); return;
    case '*': writeout(s, f, formattedline(f, p, false)); return;
    case '-': writeout(s, f, formattedline(f, p, true)); return;
    case '+':
      for (const utf16& word : p) println(">>" + utf16toutf8(word) + "<<");
      writeout(s, f, formattedline(f, p, false));
      return;
    case 'T': writeout(s, f, transformedline(f, p, false)); return;
    case 'R': writeout(s, f, transformedline(f, p, true)); return;
    case 'I':
      if (count >= 1 && fileexists(p[0])) insertfile(s.store, s.line, p[0]);
      else if (count >= 1) println("  Include file (" + utf16toutf8(p[0]) + ") not found!");
      return;
    default:
      if (upper >= '0' && upper <= '9') {
        if (count >= 2 && equal(p[0], utf16char(upper))) writeout(s, f, joined(p, 1, f.separator));
        return;
      }
      reportunknown(s, line, "@ command");
  }
}

}  // namespace

void storeline(tscript& s, tframe& f, const utf16& raw) {
  const utf16 text = trimleft2(raw, ' ', '\t');
  if (charat(text, 1) != '@') {
    writeout(s, f, raw);
  } else if (charat(text, 2) != '@') {
    splitparams(s, copy(text, 2, length(text)));
    if (!s.halted) writeout(s, f, joined(s.params, 0, f.separator));
  } else {
    templateline(s, f, text);
  }
}

std::vector<tkeywordrow> outputkeywords() {
  return {{"store", store},           {"append", append},           {"output.store", outputstore},
          {"output.append", outputappend}, {"store.space", storespacecmd}, {"append.space", appendspacecmd}};
}
