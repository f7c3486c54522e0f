// The operand stack: the stack command with its small language, and the stack as a whole.
#include <span>

#include "commands/families.h"
#include "library/list.h"
#include "library/stack.h"
#include "script/registry.h"
#include "script/values.h"
#include "script/variables.h"

namespace {

// A word that the engine's split drops: a quote or an opening bracket with nothing inside.
bool droppedbysplit(const utf16& word) {
  const uint16_t first = charat(word, 1), second = charat(word, 2);
  const bool quote = first == '"' || first == '\'';
  const uint16_t close = first == '(' ? ')' : first == '<' ? '>' : first == '[' ? ']' : first == '{' ? '}' : 0;
  if (!quote && close == 0) return false;
  return length(word) == 1 || (length(word) == 2 && second == (quote ? first : close));
}

// Walks the words of the raw split. Operators are told by the word as written, since
// substitution would turn "%" into a binary number and "x" into a variable's value;
// anything else is pushed as the value that the raw split gives it.
void runwords(tscript& s) {
  splitrawparams(s);
  utf16 text = s.paramtext;
  int64_t k = 0;
  while (!s.halted) {
    text = trimblanks(text);
    if (empty(text)) break;
    const utf16 raw = cutrawparam(text, " ");
    if (droppedbysplit(raw)) continue;
    utf16 value;
    if (++k > static_cast<int64_t>(s.rawparams.size()) || !rawparam(s, value, k)) break;
    stackword(raw, value);
  }
}

void stackproc(tscript& s) { runwords(s); }

void stackfunc(tscript& s) {
  runwords(s);
  setresult(s, stackdepth() > 0 ? hypertext(stackpeek()) : utf16());
}

void depth(tscript& s) { setresult(s, nattext(stackdepth())); }

void clear(tscript& s) {
  if (checkparams(s, 0)) stackclear();
}

void flip(tscript& s) {
  if (checkparams(s, 0)) stackflip();
}

// The current list gets the stack's values, bottom first, in the list's own kind.
void tolist(tscript& s) {
  if (!checkparams(s, 0)) return;
  tlist& l = currentlist();
  fieldcreate(l, listkind(l));
  const tquadlist& st = operandstack();
  listaddhypers(l, std::span<const thyper>(st.items(), static_cast<size_t>(st.length)));
}

// The stack gets the current list's elements, the first at the bottom.
void fromlist(tscript& s) {
  if (!checkparams(s, 0)) return;
  stackclear();
  for (const thyper& h : listhypers(currentlist())) stackpush(h);
}

using enum tcommandkind;
const tcommand rows[] = {
    {"stack", procedureandfunction, stackproc, stackfunc, "a := stack 1 2 + 3 * // numbers are pushed, words act: + - * / ² ³ ^ | % ° o x d sd var mean sum min max neg inv log sin cos tan arcsin arccos arctan mod /mod dup rot swap over drop, : as dup, § joins (1 2 § is <1, 2>); as function the top"},
    {"stack.length", variablefunction, depth, nullptr, "a := stack.length // number of values on the stack"},
    {"stack.size", variablefunction, depth, nullptr, "a := stack.size // same as stack.length"},
    {"stack.clean", procedure, clear, nullptr, "stack.clean // empty the stack"},
    {"stack.clear", procedure, clear, nullptr, "stack.clear // same as stack.clean"},
    {"stack.flip", procedure, flip, nullptr, "stack.flip // reverse the stack"},
    {"stack.to.list", procedure, tolist, nullptr, "stack.to.list // the current list gets the stack, bottom first"},
    {"list.to.stack", procedure, fromlist, nullptr, "list.to.stack // the stack gets the current list, first element at the bottom"},
};

}  // namespace

tcommandfamily stackcommands() { return {"", rows}; }
