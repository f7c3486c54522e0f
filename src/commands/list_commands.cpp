// Lists: a workspace of named lists of numbers, vectors or short texts, their elements,
// cursor, files and statistics, and the bridges between the current list and the file
// list, the directory list and tables.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "commands/families.h"
#include "commands/workspace_handlers.h"
#include "library/filelist.h"
#include "library/list.h"
#include "library/table.h"
#include "script/registry.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

constexpr auto& W = listworkspace;

tlist& current() { return currentlist(); }

// The name left of ":=", taken from the engine so that it stores nothing: the result
// lives in the workspace, under that name (DEFAULT without one).
utf16 takeassignment(tscript& s) {
  const utf16 name = gettarget(s);
  settarget(s, utf16());
  return name;
}

void use(tscript& s) {
  if (!checkparams(s, 1)) return;
  workspaceuse(W, param(s, 1));
  println("Use list: " + W.names.getchecked(W.index) + " (" + nattext(listlength(current())) + ")");
}

void value(tscript& s) {
  if (checkparams(s, 1)) current().value = param(s, 1);
}

void background(tscript& s) {
  if (checkparams(s, 1)) listsetbackground(current(), param(s, 1));
}

void iflist(tscript& s) { setresult(s, listlength(current()) > 0 ? "1" : "0"); }

void length(tscript& s) { setresult(s, nattext(listlength(current()))); }

void clear(tscript& s) {
  if (checkparams(s, 0)) fieldcreate(current(), listkind(current()));
}

// n elements of the list's value, in the kind for new lists; none gives an empty list.
void newlist(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  listnew(current(), W.defaultkind, textnat(optparam(s, 1)));
}

void load(tscript& s) {
  if (checkparams(s, 1)) listload(current(), param(s, 1));
}

void save(tscript& s) {
  if (checkparams(s, 1)) listsave(current(), param(s, 1));
}

// Up to 99 list names and the file name last; names beyond the 99th are passed over.
void savetable(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 2) return reportmin(s, 2);
  std::vector<const tlist*> lists;
  for (int64_t i = 1; i <= std::min<int64_t>(n - 1, 99); ++i) {
    const utf16 name = param(s, i);
    if (const tlist* l = workspaceentry(W, workspacefind(ready(W), name)))
      lists.push_back(l);
    else
      println("Unknown list (" + name + ") ignored!");
  }
  listsavetable(lists, param(s, n));
}

void copy(tscript& s) {
  const tlist& from = current();
  if (tlist* to = workspacetarget(W, takeassignment(s))) listcopy(from, *to);
}

void flip(tscript& s) {
  if (checkparams(s, 0)) listflip(current());
}

void push(tscript& s) {
  if (paramcount(s) < 1) return reportmin(s, 1);
  std::vector<utf16> texts;
  for (int64_t i = 1; i <= paramcount(s); ++i) texts.push_back(param(s, i));
  listadd(current(), texts);
}

void pop(tscript& s) {
  utf16 last;
  listpop(current(), last);
  setresult(s, last);
}

enum class tmove { first, next, before, last };

template <tmove move>
void cursor(tscript& s) {
  if (!checkparams(s, 0)) return;
  tlist& l = current();
  switch (move) {
    case tmove::first: listmovecursor(l, 1); break;
    case tmove::next: listmovecursor(l, l.cursor + 1); break;
    case tmove::before: listmovecursor(l, l.cursor - 1); break;
    case tmove::last: listmovecursor(l, listlength(l)); break;
  }
}

// No parameter: the element at the cursor; else the elements of the indices, by tabs.
void get(tscript& s) {
  const tlist& l = current();
  if (paramcount(s) == 0) return setresult(s, listget(l, l.cursor));
  utf16 out;
  for (int64_t i = 1; i <= paramcount(s); ++i) {
    if (i > 1) appendchar(out, '\t');
    append(out, listget(l, textnat(param(s, i))));
  }
  setresult(s, out);
}

template <bool largest>
void extreme(tscript& s) {
  if (checkparams(s, 0)) setresult(s, largest ? listmax(current()) : listmin(current()));
}

void smooth(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  listsmooth(current(), paramcount(s) == 0 ? 1 : textnat(param(s, 1)));
}

void outlierfactorcmd(tscript& s) {
  if (checkparams(s, 1)) outlierfactor = textreal(param(s, 1));
}

void outlier(tscript& s) {
  if (!checkparams(s, 0)) return;
  const tlist& l = current();
  if (tlist* to = workspacetarget(W, takeassignment(s))) listoutliers(l, l, *to);
}

void outlierbaseline(tscript& s) {
  if (!checkparams(s, 1)) return;
  const utf16 name = takeassignment(s);
  const tlist& l = current();
  const tlist* baseline = workspaceoperand(s, W, param(s, 1));
  if (!baseline) return;
  if (tlist* to = workspacetarget(W, name)) listoutliers(l, *baseline, *to);
}

// --- bridges: names and cells come as texts --------------------------------------------

// A text that is one number, blanks around it allowed and a decimal comma read as a point; the
// point form on success.
bool numbertext(const utf16& text, utf16& out) {
  std::string t = utf16toutf8(trimblanks(text));
  std::replace(t.begin(), t.end(), ',', '.');
  char* end = nullptr;
  const double v = std::strtod(t.c_str(), &end);
  if (t.empty() || end != t.c_str() + t.size() || !std::isfinite(v)) return false;
  out = utf16fromutf8(t);
  return true;
}

// The list made anew in its kind, with the texts that its kind can hold: a chars list takes
// every text (cut to seven characters), the number kinds the numbers, the vector kinds also
// vectors in angle brackets. Other texts are passed over rather than read as 0.
void settexts(tlist& l, const std::vector<utf16>& texts) {
  const uint8_t kind = listkind(l);
  fieldcreate(l, kind);
  std::vector<utf16> kept;
  for (const utf16& text : texts) {
    utf16 value;
    const utf16 trimmed = trimblanks(text);
    const bool bracketed = charat(trimmed, 1) == '<' && charat(trimmed, length(trimmed)) == '>';
    if (kind == list_chars)
      kept.push_back(text);
    else if (numbertext(text, value))
      kept.push_back(value);
    else if (kind != list_nat && kind != list_real && bracketed)
      kept.push_back(trimmed);
  }
  listadd(l, kept);
}

// The current list gets the full names of the file (or directory) list, in its order.
template <tfilelist& L>
void filestolist(tscript& s) {
  if (!checkparams(s, 0)) return;
  std::vector<utf16> names;
  for (const tfileentry& e : L.entries) names.push_back(e.name);
  settexts(current(), names);
}

// The file (or directory) list made anew: each element of the current list is a name or
// pattern, as the lines of io.files.fromfile are; the cursor goes to the first entry.
template <tfilelist& L>
void listtofiles(tscript& s) {
  if (!checkparams(s, 0)) return;
  const tlist& l = current();
  filelistclear(L);
  for (int64_t i = 1; i <= listlength(l); ++i) {
    const utf16 name = trimblanks(listget(l, i));
    if (!empty(name)) filelistadd(L, name);
  }
  filelistgo(L, 1);
}

// Row (or column) index of the current table: all its cells, or those from first to last
// of the range <first, last>, cut to the table.
template <bool column>
void tabletolist(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 2) return reportmax(s, 2);
  const ttable& t = currentfield(tableworkspace);
  const int64_t index = textnat(param(s, 1));
  const int64_t lines = column ? tablewidth(t) : tableheight(t);
  int64_t first = 1, last = column ? tableheight(t) : tablewidth(t);
  if (n == 2) {
    const tnatvector range = textnatvector(param(s, 2));
    first = std::max<int64_t>(first, range[0]);
    last = std::min(last, range[1]);
  }
  std::vector<utf16> cells;
  for (int64_t k = first; index >= 1 && index <= lines && k <= last; ++k)
    cells.push_back(utf16fromutf8(column ? tablecell(t, index, k) : tablecell(t, k, index)));
  settexts(current(), cells);
}

using enum tcommandkind;
const tcommand rows[] = {
    {"list.nat", procedure, defaultkindcmd<W, list_nat>, nullptr, "list.nat // lists made from now on hold integers"},
    {"list.real", procedure, defaultkindcmd<W, list_real>, nullptr, "list.real // lists made from now on hold reals (default)"},
    {"list.complex", procedure, defaultkindcmd<W, list_complex>, nullptr, "list.complex // lists made from now on hold <x, y>"},
    {"list.vector", procedure, defaultkindcmd<W, list_vector>, nullptr, "list.vector // lists made from now on hold <x, y, z>"},
    {"list.hyper", procedure, defaultkindcmd<W, list_hyper>, nullptr, "list.hyper // lists made from now on hold <x, y, z, w>"},
    {"list.chars", procedure, defaultkindcmd<W, list_chars>, nullptr, "list.chars // lists made from now on hold texts of 7 characters"},
    {"list.value", procedure, value, nullptr, "list.value 0 // the value of the elements that list.new makes"},
    {"list.background", procedure, background, nullptr, "list.background -1 // the value read outside the list"},
    {"list.use", procedure, use, nullptr, "list.use \"heights\" // use the list of that name, a new one if needed"},
    {"list.swap", procedure, swapcmd<W>, nullptr, "list.swap \"a\" \"b\" // swap the names of two lists"},
    {"list.name", procedure, namecmd<W>, nullptr, "list.name \"heights\" // rename the current list"},
    {"list.dump", procedure, dumpcmd<W>, nullptr, "list.dump // dump the list workspace"},
    {"list.iflist", function, iflist, nullptr, "a := list.iflist // 1 when the list has elements"},
    {"list.length", variablefunction, length, nullptr, "a := list.length // number of elements"},
    {"list.size", variablefunction, length, nullptr, "a := list.size // same as list.length"},
    {"list.clear", procedure, clear, nullptr, "list.clear // empty the list"},
    {"list.clean", procedure, clear, nullptr, "list.clean // same as list.clear"},
    {"list.new", procedure, newlist, nullptr, "list.new 10 // new list of 10 elements of the list value"},
    {"list.load", procedure, load, nullptr, "list.load \"values.txt\" // read one value a line"},
    {"list.save", procedure, save, nullptr, "list.save \"values.txt\" // write one value a line"},
    {"list.save.table", procedure, savetable, nullptr, "list.save.table \"a\" \"b\" \"table.txt\" // lists side by side as columns, the file last"},
    {"list.copy", function, copy, nullptr, "new := list.copy // copy of the list under a new name"},
    {"list.flip", procedure, flip, nullptr, "list.flip // reverse the order"},
    {"list.push", procedure, push, nullptr, "list.push 1 2 3 // append the values"},
    {"list.pop", function, pop, nullptr, "a := list.pop // remove the last element and return it"},
    {"list.first", procedure, cursor<tmove::first>, nullptr, "list.first // cursor to the first element"},
    {"list.next", procedure, cursor<tmove::next>, nullptr, "list.next // cursor to the next element"},
    {"list.before", procedure, cursor<tmove::before>, nullptr, "list.before // cursor to the element before"},
    {"list.last", procedure, cursor<tmove::last>, nullptr, "list.last // cursor to the last element"},
    {"list.get", function, get, nullptr, "a := list.get 2 4 // elements 2 and 4 with a tab; no parameter: at the cursor"},
    {"list.min", function, extreme<false>, nullptr, "a := list.min // smallest element"},
    {"list.max", function, extreme<true>, nullptr, "a := list.max // largest element"},
    {"list.smooth", procedure, smooth, nullptr, "list.smooth 2 // passes of 1-2-1 smoothing"},
    {"list.outlier.factor", procedure, outlierfactorcmd, nullptr, "list.outlier.factor 1.5 // outliers lie beyond median +/- factor * |q75 - q25|"},
    {"list.outlier", function, outlier, nullptr, "new := list.outlier // list of 1 for each outlier, 0 else"},
    {"list.outlier.baseline", function, outlierbaseline, nullptr, "new := list.outlier.baseline \"base\" // the same against the band of another list"},
    {"io.files.to.list", procedure, filestolist<scriptfiles>, nullptr, "io.files.to.list // the current list gets the names of the file list that its kind holds"},
    {"list.to.io.files", procedure, listtofiles<scriptfiles>, nullptr, "list.to.io.files // the file list gets the files named by the current list"},
    {"io.dirs.to.list", procedure, filestolist<scriptdirs>, nullptr, "io.dirs.to.list // the current list gets the names of the directory list that its kind holds"},
    {"list.to.io.dirs", procedure, listtofiles<scriptdirs>, nullptr, "list.to.io.dirs // the directory list gets the directories named by the current list"},
    {"table.row.to.list", procedure, tabletolist<false>, nullptr, "table.row.to.list 2 <1, 5> // the current list gets the cells of row 2 (from 1 to 5) that its kind holds"},
    {"table.column.to.list", procedure, tabletolist<true>, nullptr, "table.column.to.list 3 // the current list gets the cells of column 3 that its kind holds"},
};

}  // namespace

tcommandfamily listcommands() { return {"", rows}; }
