#include "formats/volumeload.h"

#include <charconv>
#include <cmath>

#include "formats/niftiheader.h"
#include "shell/console.h"
#include "shell/files.h"

bool volumefail(tscalarfield& f, uint8_t kind, const utf16& text) {
  println(text);
  fieldcreate(f, kind);
  return false;
}

trawvolume volumerequest(const tscalarfield& f, int code, const tnatvector& size) {
  trawvolume r{};
  r.code = code;
  r.size = size;
  r.filteradd = f.filteradd;
  r.filtermul = f.filtermul;
  return r;
}

utf16 wrongfilesize(const tnatvector& s) {
  return "  Wrong file size (" + nattext(s[0]) + "x" + nattext(s[1]) + "x" + nattext(s[2]) + ")! Create empty field.";
}

bool volumeblock(tscalarfield& f, uint8_t kind, const utf16& data, int64_t start, const trawvolume& r,
                 int64_t exactbytes) {
  if (!fileexists(data)) return volumefail(f, kind, "  Couldn't read File (" + data + ")! Create empty field.");
  const __int128 voxels = static_cast<__int128>(r.size[0]) * r.size[1] * r.size[2];
  const __int128 need = voxels * voxelbytes(r.code);
  const int64_t have = filesize(data) - start;
  if (exactbytes > 0 && have != voxels * exactbytes) return volumefail(f, kind, wrongfilesize(r.size));
  if (exactbytes <= 0 && have < need) {
    println("  Wrong file size! Header: " + nattext(start) + " +Dim: " + nattext(static_cast<int64_t>(voxels)) +
            " *Bytes: " + nattext(voxelbytes(r.code)));
    println("  Calculated type (bytes):" + realtext(static_cast<double>(have) / static_cast<double>(voxels)));
    fieldcreate(f, kind, r.size);
    return false;
  }
  tvoxelsource src{};
  bool ok = sourceopen(src, data) && sourceseek(src, start);
  if (ok) ok = rawread(f, kind, src, r) && !fieldempty(f);
  else volumefail(f, kind, "  Couldn't read File (" + data + ")! Create empty field.");
  sourceclose(src);
  return ok;
}

trows diagonalrows(const tvector& s) { return {tvector{s[0], 0, 0}, tvector{0, s[1], 0}, tvector{0, 0, s[2]}}; }

void volumeplace(tscalarfield& f, const tvector& offset, const trows& matrix, const utf16& name) {
  if (fieldempty(f)) return;
  setmatrix(f.space, matrix);
  setoffset(f.space, offset);
  for (const utf16& line : transformationlines(f.space, false)) println(line);
  f.title = name;
}

std::string lowertext(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

namespace {
// A number starts at a digit, or at a sign or a point that a digit (or a point and a digit) follows.
bool numberstart(std::string_view t, size_t i) {
  const auto digit = [&](size_t k) { return k < t.size() && t[k] >= '0' && t[k] <= '9'; };
  if (digit(i)) return true;
  if (t[i] == '.') return digit(i + 1);
  if (t[i] == '-' || t[i] == '+') return digit(i + 1) || (i + 1 < t.size() && t[i + 1] == '.' && digit(i + 2));
  return false;
}
}  // namespace

std::vector<double> textnumbers(std::string_view t) {
  std::vector<double> out;
  for (size_t i = 0; i < t.size();) {
    if (!numberstart(t, i)) {
      ++i;
      continue;
    }
    const size_t from = i + (t[i] == '+' ? 1 : 0);
    double v = 0;
    const auto [end, ec] = std::from_chars(t.data() + from, t.data() + t.size(), v);
    if (ec == std::errc() || ec == std::errc::result_out_of_range) {
      out.push_back(ec == std::errc() ? v : 0);
      i = static_cast<size_t>(end - t.data());
    } else {
      ++i;
    }
  }
  return out;
}

double firstnumber(std::string_view text) {
  const std::vector<double> v = textnumbers(text);
  return v.empty() ? 0 : v[0];
}

std::string_view behindequal(std::string_view line) {
  const size_t at = line.find('=');
  return at == std::string_view::npos ? std::string_view() : line.substr(at + 1);
}

int64_t headersize(double v) {
  if (!(v > 0)) return 0;
  return static_cast<int64_t>(std::nearbyint(std::min(v, 1099511627776.0)));
}
