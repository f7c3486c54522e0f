#include "library/table.h"

#include <cmath>
#include <cstdlib>
#include <set>
#include <string>

#include "script/values.h"
#include "script/variables.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {
constexpr tworkspacewords tablewords{"table", "table", "  Table (", "  Table empty!", "table"};

void releasecells(ttable& t) {
  t.rowcells.release();
  t.rowfirst.release();
  t.celllength.release();
  t.cellstart.release();
  linefilerelease(t.file);
  t.columns = 0;
}

// Cuts one line into cells. With join, the separators behind a separator are passed over.
void cutline(ttable& t, int64_t line) {
  const int64_t start = t.file.starts.get(line), n = t.file.lengths.get(line);
  uint8_t* c = t.file.buffer.bytes.data + start;
  t.rowfirst.add(t.cellstart.length + 1);
  int64_t cell = 0, count = 0;
  const auto separator = static_cast<uint8_t>(t.separator);
  for (int64_t i = 0; i <= n; ++i) {
    if (i < n && c[i] != separator) continue;
    t.cellstart.add(start + cell);
    t.celllength.add(i - cell);
    ++count;
    c[i] = 0;
    while (t.join && i + 1 < n && c[i + 1] == separator) c[++i] = 0;
    cell = i + 1;
  }
  t.rowcells.add(count);
  t.columns = std::max(t.columns, count);
}

// A number of a cell, blanks around it and a decimal comma allowed; false for other text.
bool cellnumber(std::string_view cell, double& out) {
  std::string text(cell);
  for (char& ch : text)
    if (ch == ',') ch = '.';
  const char* begin = text.c_str();
  char* end = nullptr;
  out = std::strtod(begin, &end);
  if (end == begin) return false;
  while (*end == ' ' || *end == '\t') ++end;
  return *end == 0 && std::isfinite(out);
}

// The text of a cell as a name or value: cut at its first tab, quotes dropped, a decimal
// comma made a point; names get "_" for blanks.
std::string cleancell(std::string_view cell, bool name) {
  std::string out(cell.substr(0, cell.find('\t')));
  std::erase(out, '"');
  for (size_t i = 0; i < out.size(); ++i) {
    if (name && out[i] == ' ') out[i] = '_';
    if (!name && out[i] == ',' && i > 0 && i + 1 < out.size() && std::isdigit(static_cast<unsigned char>(out[i - 1])) &&
        std::isdigit(static_cast<unsigned char>(out[i + 1])))
      out[i] = '.';
  }
  return out;
}

// The cell at x, y of the whole table, header included.
std::string_view rawcell(const ttable& t, int64_t x, int64_t y) {
  if (y < 1 || y > tablerows(t) || x < 1 || x > t.rowcells.get(y)) return {};
  const int64_t i = t.rowfirst.get(y) + x - 1;
  return std::string_view(reinterpret_cast<const char*>(t.file.buffer.bytes.data) + t.cellstart.get(i),
                          static_cast<size_t>(t.celllength.get(i)));
}

}  // namespace

tworkspacelist<ttable> tableworkspace(&tablewords);

void fieldcreate(ttable& t, uint8_t) { releasecells(t); }

void fieldrelease(ttable& t) { releasecells(t); }

utf16 fielddescription(const ttable& t) { return nattext(tablewidth(t)) + "x" + nattext(tableheight(t)); }

bool tableload(ttable& t, const utf16& name, bool comments) {
  releasecells(t);
  if (!linefileread(t.file, name)) {
    releasecells(t);
    return false;
  }
  for (tintlist* l : {&t.cellstart, &t.celllength, &t.rowfirst, &t.rowcells}) l->createdynamic();
  for (int64_t line = 1; line <= linefilecount(t.file); ++line) {
    if (comments && linefileview(t.file, line).starts_with('#')) continue;
    cutline(t, line);
  }
  return true;
}

int64_t tablewidth(const ttable& t) { return std::max<int64_t>(0, t.columns - t.headercolumns); }
int64_t tableheight(const ttable& t) { return std::max<int64_t>(0, tablerows(t) - t.headerrows); }

std::string_view tablecell(const ttable& t, int64_t x, int64_t y) {
  if (x < 1 || y < 1 || x > tablewidth(t) || y > tableheight(t)) return {};
  return rawcell(t, x + t.headercolumns, y + t.headerrows);
}

bool tablesave(const ttable& t, const utf16& name, tsaveform form) {
  std::string out;
  const bool transposed = form == tsaveform::transposed;
  const int64_t first = form == tsaveform::data ? t.headerrows + 1 : 1;
  const int64_t lines = transposed ? t.columns : tablerows(t);
  for (int64_t a = first; a <= lines; ++a) {
    const int64_t cells = transposed ? tablerows(t) : t.rowcells.get(a);
    for (int64_t b = 1; b <= cells; ++b) {
      if (b > 1) out += '\t';
      out += transposed ? rawcell(t, a, b) : rawcell(t, b, a);
    }
    out += '\n';
  }
  tfile f;
  if (!writefile(f, name)) return false;
  const bool written = writetext(f, out);
  return closefile(f) && written;
}

void tablestatistic(const ttable& t, bool column, int64_t index, double& mean, double& sd) {
  double sum = 0, squares = 0, v = 0;
  int64_t n = 0;
  const int64_t count = column ? tableheight(t) : tablewidth(t);
  for (int64_t k = 1; k <= count; ++k) {
    if (!cellnumber(column ? tablecell(t, index, k) : tablecell(t, k, index), v)) continue;
    sum += v;
    squares += v * v;
    ++n;
  }
  mean = n > 0 ? sum / static_cast<double>(n) : 0;
  sd = n > 0 ? std::sqrt(std::abs(squares / static_cast<double>(n) - mean * mean)) : 0;
}

void tabletovariables(tscript& s, const ttable& t, bool columns, bool arrays) {
  const int64_t entries = columns ? tablewidth(t) : tableheight(t);
  const int64_t cells = columns ? tableheight(t) : tablewidth(t);
  auto cell = [&](int64_t entry, int64_t k) { return columns ? tablecell(t, entry, k) : tablecell(t, k, entry); };
  std::set<std::string> seen;
  for (int64_t e = 1; e <= entries && !s.halted; ++e) {
    const std::string name = cleancell(cell(e, 1), true);
    if (name.empty()) continue;
    std::string value = cleancell(cell(e, 2), false);
    for (int64_t k = 3; arrays && k <= cells; ++k) value.append(1, '\t').append(cleancell(cell(e, k), false));
    if (!seen.insert(utf16toutf8(lower(utf16(name)))).second) {
      const int64_t at = e + (columns ? t.headercolumns : t.headerrows);
      println(std::string("Warning! Double table ") + (columns ? "column" : "row") + " label (" + name + ") at line " +
              std::to_string(at) + " in table" + utf16toutf8(t.file.name) + ".");
    }
    setvar(s, utf16(name), celfromutf16(utf16(value)));
  }
}
