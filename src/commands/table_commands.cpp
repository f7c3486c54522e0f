// Tables: a workspace of text tables from delimited files, their cells, statistics, and
// rows or columns made script variables.
#include "commands/families.h"
#include "commands/workspace_handlers.h"
#include "library/table.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

constexpr auto& W = tableworkspace;

ttable& current() { return currentfield(W); }

void use(tscript& s) {
  if (!checkparams(s, 1)) return;
  workspaceuse(W, param(s, 1));
  const ttable& t = current();
  println("Use table: " + W.names.getchecked(W.index) + " (" + nattext(tablewidth(t)) + "x" + nattext(tableheight(t)) + ")");
}

void iftable(tscript& s) { setresult(s, tablerows(current()) > 0 ? "1" : "0"); }

template <bool columns>
void extent(tscript& s) {
  setresult(s, nattext(columns ? tablewidth(current()) : tableheight(current())));
}

// The first byte of a text as a separator; an empty text keeps the old one.
void setseparator(ttable& t, const utf16& text) {
  const std::string bytes = utf16toutf8(text);
  if (!bytes.empty()) t.separator = bytes[0];
}

void setmethod(tscript& s) {
  if (checkparams(s, 1)) setseparator(current(), param(s, 1));
}

void setjoin(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  current().join = paramcount(s) == 0 || textbool(param(s, 1));
}

template <bool comments>
void load(tscript& s) {
  if (paramcount(s) < 1) return reportmin(s, 1);
  if (paramcount(s) > 2) return reportmax(s, 2);
  ttable& t = current();
  if (paramcount(s) == 2) setseparator(t, param(s, 2));
  tableload(t, param(s, 1), comments);
}

void header(tscript& s) {
  if (!checkparams(s, 1)) return;
  const tnatvector v = textnatvector(param(s, 1));
  current().headerrows = std::max<int64_t>(0, v[0]);
  current().headercolumns = std::max<int64_t>(0, v[1]);
}

void get(tscript& s) {
  if (checkparams(s, 2)) setresult(s, utf16fromutf8(tablecell(current(), textnat(param(s, 1)), textnat(param(s, 2)))));
}

template <bool columns, bool arrays>
void tovariables(tscript& s) {
  if (checkparams(s, 0)) tabletovariables(s, current(), columns, arrays);
}

// A column by its number, or a row by <0, y>.
void getstat(tscript& s) {
  if (!checkparams(s, 1)) return;
  const tnatvector v = textnatvector(param(s, 1));
  double mean = 0, sd = 0;
  tablestatistic(current(), v[0] >= 1, v[0] >= 1 ? v[0] : v[1], mean, sd);
  setresult(s, realtext(mean) + "\t" + realtext(sd));
}

template <tsaveform form>
void save(tscript& s) {
  if (checkparams(s, 1)) tablesave(current(), param(s, 1), form);
}

using enum tcommandkind;
const tcommand rows[] = {
    {"table.use", procedure, use, nullptr, "table.use \"results\" // use the table of that name, a new one if needed"},
    {"table.swap", procedure, swapcmd<W>, nullptr, "table.swap \"a\" \"b\" // swap the names of two tables"},
    {"table.name", procedure, namecmd<W>, nullptr, "table.name \"results\" // rename the current table"},
    {"table.dump", procedure, dumpcmd<W>, nullptr, "table.dump // dump the table workspace"},
    {"table.iftable", function, iftable, nullptr, "a := table.iftable // 1 when the table has cells"},
    {"table.lengthx", variablefunction, extent<true>, nullptr, "a := table.lengthx // number of columns"},
    {"table.sizex", variablefunction, extent<true>, nullptr, "a := table.sizex // same as table.lengthx"},
    {"table.lengthy", variablefunction, extent<false>, nullptr, "a := table.lengthy // number of rows"},
    {"table.sizey", variablefunction, extent<false>, nullptr, "a := table.sizey // same as table.lengthy"},
    {"table.clear", procedure, clearcmd<W>, nullptr, "table.clear // empty the table"},
    {"table.clean", procedure, clearcmd<W>, nullptr, "table.clean // same as table.clear"},
    {"table.setmethod", procedure, setmethod, nullptr, "table.setmethod \",\" // the separator of cells (default tab)"},
    {"table.setjoin", procedure, setjoin, nullptr, "table.setjoin // a run of separators counts as one"},
    {"table.load", procedure, load<false>, nullptr, "table.load \"data.csv\" \",\" // read a table, with an optional separator"},
    {"table.load.comment", procedure, load<true>, nullptr, "table.load.comment \"data.txt\" // read a table, lines with # at the start skipped"},
    {"table.header", procedure, header, nullptr, "table.header <1, 0> // rows and columns of the header"},
    {"table.get", function, get, nullptr, "a := table.get 2 3 // the cell of column 2, row 3"},
    {"table.rows.to.constant", procedure, tovariables<false, false>, nullptr, "table.rows.to.constant // each row: name and value"},
    {"table.rows.to.array", procedure, tovariables<false, true>, nullptr, "table.rows.to.array // each row: name and array of the other cells"},
    {"table.columns.to.constant", procedure, tovariables<true, false>, nullptr, "table.columns.to.constant // each column: name and value"},
    {"table.columns.to.array", procedure, tovariables<true, true>, nullptr, "table.columns.to.array // each column: name and array of the other cells"},
    {"table.getstat", function, getstat, nullptr, "a := table.getstat 2 // mean and SD of column 2; <0, 2> for row 2"},
    {"table.save", procedure, save<tsaveform::whole>, nullptr, "table.save \"out.txt\" // write the table with tabs"},
    {"table.save.transposed", procedure, save<tsaveform::transposed>, nullptr, "table.save.transposed \"out.txt\" // rows and columns swapped"},
    {"table.save.data", procedure, save<tsaveform::data>, nullptr, "table.save.data \"out.txt\" // without the header rows"},
};

}  // namespace

tcommandfamily tablecommands() { return {"", rows}; }
