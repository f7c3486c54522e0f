// AmiraMesh lattices of scalars: a text head up to the "@1" line, then the voxels, plain,
// byte run-length encoded (hxbyterle) or zlib-packed (hxzip).
#include <algorithm>
#include <cstdint>
#include <string>

#include "base/filebuffer.h"
#include "base/gzip.h"
#include "field/owned.h"
#include "formats/volumeformats.h"
#include "formats/volumeload.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

enum class tpacking { none, byterle, zip, unknown };

struct tamirahead {
  tnatvector size{0, 0, 0};
  tvector offset{0, 0, 0}, scale{1, 1, 1};
  int code = 0;
  tpacking packing = tpacking::none;
  bool bigendian = false;
  int64_t start = 0;  // the first data byte
  std::vector<std::string> lines;
};

int typecode(std::string_view lattice) {
  const size_t brace = lattice.find('{');
  if (brace == std::string_view::npos) return 0;
  std::string_view rest = lattice.substr(brace + 1);
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(" \t}"));
  constexpr std::pair<const char*, int> types[] = {{"sbyte", -8}, {"byte", 8},   {"ushort", 16}, {"short", -16},
                                                   {"uint", 32},  {"int", -32},  {"ulong", 64},  {"long", -64}};
  for (const auto& [w, code] : types)
    if (word == w) return code;
  return 0;
}

tpacking packingof(std::string_view lattice) {
  if (lattice.find("hxbyterle") != std::string_view::npos) return tpacking::byterle;
  if (lattice.find("hxbyte") != std::string_view::npos) return tpacking::none;
  if (lattice.find("hxzip") != std::string_view::npos) return tpacking::zip;
  if (lattice.find("hxrlez") != std::string_view::npos || lattice.find("@1(") != std::string_view::npos)
    return tpacking::unknown;
  return tpacking::none;
}

void takeline(tamirahead& h, const std::string& line) {
  const auto has = [&](const char* key) { return line.find(key) != std::string::npos; };
  const std::vector<double> v = textnumbers(line);
  if (h.lines.size() == 1) h.bigendian = has("binary") && !has("little-endian");
  if (has("define lattice")) {
    for (size_t a = 0; a < 3 && a < v.size(); ++a) h.size[a] = headersize(v[a]);
  } else if (has("pixelspacing")) {
    if (v.size() >= 2 && v[0] * v[1] > 0) h.scale[0] = v[0], h.scale[1] = v[1];
  } else if (has("slicethickness")) {
    if (!v.empty() && v[0] > 0) h.scale[2] = v[0];
  } else if (has("boundingbox")) {
    for (size_t a = 0; a < 3 && 2 * a + 1 < v.size(); ++a) {
      const double extent = v[2 * a + 1] - v[2 * a];
      if (extent == 0) continue;
      h.offset[a] = v[2 * a];
      if (h.size[a] > 0) h.scale[a] = extent / static_cast<double>(h.size[a]);
    }
  } else if (has("lattice {")) {
    h.code = typecode(line);
    h.packing = packingof(line);
  }
}

// The head line by line up to the line that begins with "@1"; the data follows its end.
bool readhead(tamirahead& h, const utf16& name) {
  tfile file;
  if (!readfile(file, name, true)) return false;
  std::string text, line;
  char chunk[4096];
  size_t got = 0;
  int64_t at = 0;
  bool ended = false;
  while (!ended && (readblock(file, chunk, sizeof chunk, &got) || got > 0)) {
    for (size_t i = 0; i < got && !ended; ++i, ++at) {
      if (chunk[i] != '\n') {
        if (line.size() < 65536) line += chunk[i];
        continue;
      }
      if (!line.empty() && line.back() == '\r') line.pop_back();
      h.lines.push_back(line);
      const std::string low = lowertext(line);
      ended = low.rfind("@1", 0) == 0;
      if (!ended) takeline(h, low);
      line.clear();
      h.start = at + 1;
    }
  }
  closefile(file);
  if (!ended) h.start = std::max<int64_t>(filesize(name), 0);
  return true;
}

int64_t saturated(__int128 v) { return static_cast<int64_t>(std::min<__int128>(v, INT64_MAX)); }

// The byte runs of the block decoded into out (nullptr: only counted); the run that passes
// room is cut there. How many bytes the runs give.
int64_t byterle(const uint8_t* in, int64_t n, uint8_t* out, int64_t room) {
  int64_t items = 0;
  for (int64_t i = 0; i < n;) {
    const uint8_t c = in[i++];
    if (c == 0) continue;
    const bool run = c < 128;
    const int64_t count = run ? c : c - 128;
    for (int64_t k = 0; k < count && i + (run ? 0 : k) < n; ++k, ++items)
      if (out && items < room) out[items] = in[run ? i : i + k];
    i += run ? 1 : count;
  }
  return items;
}

bool filtered(const trawvolume& r) { return r.filtermul < 0 || r.filtermul > 1 || r.filteradd != 0; }

// A zlib block inflated straight into a field that keeps the voxels as they are, else into
// memory and through the raw conversion.
bool inflateblock(tscalarfield& f, uint8_t kind, const uint8_t* packed, int64_t n, int64_t bytes, const trawvolume& r) {
  const bool direct = (r.code == 8 && kind == scalargray) || (r.code == 16 && kind == scalarfullgray && !r.swap);
  if (direct && !filtered(r)) {
    bool ok = false;
    fieldcreate(f, kind, r.size);
    eachstorage(f, [&](auto& a) { ok = !fieldempty(f) && zlibinflate(packed, n, a.data, bytes) == bytes; });
    progress("  3D" + utf16(progressword(kind)) + " (zip)", 1);
    progressend();
    return ok;
  }
  tvoxelsource src{};
  const bool ok = sourcememory(src, "", bytes) && zlibinflate(packed, n, src.memory.data, bytes) == bytes &&
                  rawread(f, kind, src, r);
  sourceclose(src);
  return ok;
}

// Byte runs decoded into memory, what is missing zero, then through the raw conversion; a
// count that differs from the size is told.
bool runblock(tscalarfield& f, uint8_t kind, const uint8_t* packed, int64_t n, __int128 wide, bool fits,
              const trawvolume& r) {
  const int64_t items = byterle(packed, n, nullptr, 0);
  if (items != wide) println("Warning inconsistent RLE sizes " + nattext(items) + " vs. " + nattext(saturated(wide)) + " !");
  tvoxelsource src{};
  const bool ok = fits && sourcememory(src, "", static_cast<int64_t>(wide));
  if (ok) {
    std::fill_n(src.memory.data, src.size, uint8_t{0});
    byterle(packed, n, src.memory.data, src.size);
    rawread(f, kind, src, r);
  }
  sourceclose(src);
  return ok;
}

// The packed block behind the head, decoded into a field of the head's size. Sizes that
// the block cannot give are refused before anything is allocated: no zlib stream inflates
// more than 1032 bytes from one, and a run gives at most 127 bytes from 2.
bool readpacked(tscalarfield& f, uint8_t kind, const utf16& name, const tamirahead& h, const trawvolume& r) {
  const __int128 wide = static_cast<__int128>(r.size[0]) * r.size[1] * r.size[2] * voxelbytes(h.code);
  const int64_t n = filesize(name) - h.start;
  const bool zip = h.packing == tpacking::zip;
  const bool fits = wide <= static_cast<__int128>(n + 1) * (zip ? 1032 : 64);
  fieldcreate(f, kind);
  if (!zip && voxelbytes(h.code) != 1) {
    println("  3D" + utf16(progressword(kind)) + " (" + nattext(h.code) + " - unknown type) with (" +
            nattext(r.size[0]) + "x" + nattext(r.size[1]) + "x" + nattext(r.size[2]) + ")");
    if (fits) fieldcreate(f, kind, r.size);
    return false;
  }
  tvoxelsource file{};
  tlocalarray<tbytelist> buffer;
  const uint8_t* packed = nullptr;
  if (sourceopen(file, name) && sourceseek(file, h.start)) packed = sourcetake(file, n, *buffer);
  bool ok = packed != nullptr;
  if (ok) ok = zip ? fits && inflateblock(f, kind, packed, n, saturated(wide), r) : runblock(f, kind, packed, n, wide, fits, r);
  sourceclose(file);
  if (!ok || fieldempty(f)) {
    fieldcreate(f, kind);
    if (zip || !packed) println("  Couldn't read File (" + name + ")! Create empty field.");
    return false;
  }
  return true;
}

}  // namespace

bool amiraload(tscalarfield& f, uint8_t kind, const utf16& name) {
  tamirahead h;
  if (!fileexists(name) || !readhead(h, name))
    return volumefail(f, kind, "  Couldn't read File (" + name + ")! Create empty field.");
  const tnatvector& s = h.size;
  if (fieldcount(s[0], s[1], s[2]) < 1 || h.code == 0)
    return volumefail(f, kind, "  Wrong header information [" + nattext(s[0]) + "x" + nattext(s[1]) + "x" + nattext(s[2]) +
                                   "x" + nattext(h.code) + "] in File (" + name + ")! Create empty field.");
  if (h.packing == tpacking::unknown) return volumefail(f, kind, name + ")! Wrong compression.");
  trawvolume r = volumerequest(f, h.code, s);
  r.swap = h.bigendian;
  const bool ok = h.packing == tpacking::none ? volumeblock(f, kind, name, h.start, r, 0) : readpacked(f, kind, name, h, r);
  volumeplace(f, h.offset, diagonalrows(h.scale), name);
  return ok;
}

std::vector<utf16> amirahead(const utf16& name) {
  tamirahead h;
  std::vector<utf16> out;
  if (fileexists(name) && readhead(h, name))
    for (const std::string& line : h.lines) out.push_back(utf16fromutf8(line));
  return out;
}
