// Text tables read from delimited files: a tlinefile whose buffer is cut into cells, kept
// in a workspace of their own. A header of rows and columns hides the first rows and
// columns from every reading command; save writes them, save.data leaves the rows out.
#pragma once
#include <cstdint>
#include <string_view>

#include "field/workspace.h"
#include "base/linefile.h"
#include "script/tscript.h"

struct ttable {
  tlinefile file{};        // separators and line ends zeroed: each cell is a zero-terminated text
  tintlist cellstart{};    // every cell, row by row: offset in the buffer
  tintlist celllength{};   // and bytes
  tintlist rowfirst{};     // per row: the index of its first cell, from 1
  tintlist rowcells{};     // per row: its count of cells
  int64_t columns = 0;     // the longest row
  char separator = '\t';
  bool join = false;       // a run of separators counts as one
  int64_t headerrows = 0, headercolumns = 0;
};

// The workspace entry's life: empty cells, the settings stay.
void fieldcreate(ttable& t, uint8_t kind = 0);
void fieldrelease(ttable& t);
utf16 fielddescription(const ttable& t);
extern tworkspacelist<ttable> tableworkspace;

// Reads the file into cells; comments skips lines that begin with "#". An unreadable or
// empty file leaves an empty table.
bool tableload(ttable& t, const utf16& name, bool comments);

inline int64_t tablerows(const ttable& t) { return t.rowfirst.length; }
// The visible part: behind the header rows and columns.
int64_t tablewidth(const ttable& t);
int64_t tableheight(const ttable& t);
// The cell at x, y of the visible part, from 1; empty outside.
std::string_view tablecell(const ttable& t, int64_t x, int64_t y);

enum class tsaveform { whole, transposed, data };
bool tablesave(const ttable& t, const utf16& name, tsaveform form);

// Mean and deviation of the numeric cells of column (or row) index; non-numbers are
// passed over.
void tablestatistic(const ttable& t, bool column, int64_t index, double& mean, double& sd);

// Every row (or column) a script variable: the first cell the name, the second the value
// (arrays take all further cells, joined with tabs). Doubles warn, the last one stands.
void tabletovariables(tscript& s, const ttable& t, bool columns, bool arrays);
