#include "formats/meshtext.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "script/values.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

bool separator(char c) { return c == ' ' || c == '\t' || c == ',' || c == ';' || c == '<' || c == '>' || c == '\r' || c == '\n' || c == '{' || c == '}'; }

}  // namespace

int readnumbers(std::string_view text, double* out, int n) {
  int found = 0;
  size_t i = 0;
  while (found < n && i < text.size()) {
    while (i < text.size() && separator(text[i])) ++i;
    if (i >= text.size()) break;
    size_t end = i;
    while (end < text.size() && !separator(text[end])) ++end;
    const char* first = text.data() + i;
    if (*first == '+') ++first;
    double v = 0;
    const auto r = std::from_chars(first, text.data() + end, v);
    out[found++] = r.ec == std::errc() && std::isfinite(v) ? v : 0;
    i = end;
  }
  return found;
}

int64_t meshindex(double v) { return truncnat(std::clamp(v, -1e15, 1e15)); }

int64_t readcount(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && separator(text[i])) ++i;
  int64_t v = -1;
  const auto r = std::from_chars(text.data() + i, text.data() + text.size(), v);
  return r.ec == std::errc() && v >= 0 ? v : -1;
}

void appendreal(std::string& out, double x, int64_t digits) {
  if (digits <= 0) {
    out += plainrealtext(x);
    return;
  }
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*f", static_cast<int>(std::min<int64_t>(digits - 1, 30)), x);
  std::string_view t(buffer);
  if (t.find('.') != std::string_view::npos) {
    while (t.back() == '0') t.remove_suffix(1);
    if (t.back() == '.') t.remove_suffix(1);
  }
  if (t == "-0") t = "0";
  out += t;
}

void appendvector(std::string& out, const tvector& v, const char* separator, int64_t digits) {
  for (int c = 0; c < 3; ++c) {
    if (c) out += separator;
    appendreal(out, v[c], digits);
  }
}

bool writtenface(const tmesh& m, const tface& f) {
  if (!f.visible) return false;
  for (int k = 0; k < 4; ++k) {
    const int64_t i = f.corners[k];
    if (k == 3 && i == 0) continue;
    if (i < 1 || i > m.points.length) return false;
  }
  return true;
}

std::vector<int64_t> usedpoints(const tmesh& m, int64_t& count) {
  std::vector<int64_t> number(m.points.length + 1, 0);
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    for (int64_t c : f.corners)
      if (c) number[c] = 1;
  }
  count = 0;
  for (int64_t i = 1; i <= m.points.length; ++i)
    if (number[i]) number[i] = ++count;
  return number;
}

bool hasnormals(const tmesh& m) {
  if (m.normals.length < m.points.length) return false;
  for (int64_t i = 1; i <= m.normals.length; ++i) {
    const tvector n = m.normals.get(i);
    if (n[0] != 0 || n[1] != 0 || n[2] != 0) return true;
  }
  return false;
}

bool hascolors(const tmesh& m) { return m.colors.length > 0 && m.colors.length >= m.points.length; }

std::string melhead(const std::string& name) {
  char stamp[64];
  const std::time_t now = std::time(nullptr);
  std::strftime(stamp, sizeof stamp, "%Y/%m/%d %H:%M:%S", std::localtime(&now));
  return "// Maya MEL\n// Name: " + name + "\n// Last modified: " + stamp + "\n";
}

bool meshwritefile(const utf16& name, std::string_view bytes) {
  // The temporary name is the file's own with ".part": a failed write never leaves a
  // half file under the name, and a failure to open is reported under the name.
  const std::string target = systempath(name), temporary = target + ".part";
  FILE* f = std::fopen(temporary.c_str(), "wb");
  if (!f) {
    checkio(name, iocodefromerrno(errno, target));
    return false;
  }
  println("Write file (" + shortname(name) + ").");
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  const bool closed = std::fclose(f) == 0;
  if (!written || !closed || std::rename(temporary.c_str(), target.c_str()) != 0) {
    std::remove(temporary.c_str());
    checkio(name, io_writeerror);
    return false;
  }
  return true;
}

void meshreadsummary(tmesh& m, int64_t objects, int64_t uvs, int64_t normals, int64_t colors, bool withcolors) {
  println("  Objects : " + nattext(objects == 0 && m.faces.length > 0 ? 1 : objects));
  println("  Points  : " + nattext(m.points.length));
  println("  UVs : " + nattext(uvs));
  println("  Normals : " + nattext(normals));
  if (withcolors) println("  Colors : " + nattext(colors));
  println("  Faces   : " + nattext(m.faces.length));
  while (m.normals.length < m.points.length) m.normals.add({0, 0, 0});
}
