// MIF: stem.mif of KEY=value lines with the voxels in stem.mdf; MIFX: stem.mifx of one tag a
// line with the voxels in stem.raw.
#include <string>

#include "base/filebuffer.h"
#include "base/linefile.h"
#include "field/owned.h"
#include "formats/volumeformats.h"
#include "formats/volumeload.h"
#include "shell/files.h"

namespace {

bool startswith(std::string_view line, std::string_view key) { return line.substr(0, key.size()) == key; }

// The .mif form knows one voxel type only, the 64-bit word; the bit depth is checked
// and sizes the file, but does not change the type.
bool mifread(tscalarfield& f, uint8_t kind, const utf16& stem, const tlinefile& text) {
  tnatvector size{0, 0, 0};
  int64_t bits = 0;
  constexpr const char* keys[] = {"SIZEX", "SIZEY", "SIZEZ"};
  for (int64_t n = 1; n <= linefilecount(text); ++n) {
    const std::string_view line = linefileview(text, n);
    for (int a = 0; a < 3; ++a)
      if (startswith(line, keys[a])) size[a] = headersize(firstnumber(behindequal(line)));
    if (startswith(line, "BITSALLOCATED")) bits = headersize(firstnumber(behindequal(line)));
  }
  const int64_t bytes = bits / 8;
  if (bytes != 1 && bytes != 2 && bytes != 4 && bytes != 8)
    return volumefail(f, kind, "  Wrong bit depth(" + nattext(bytes) + ")! Create empty field.");
  return volumeblock(f, kind, stem + ".mdf", 0, volumerequest(f, 64, size), bytes);
}

int mifxtype(std::string_view word) {
  constexpr std::pair<const char*, int> types[] = {{"int8", 8},      {"int16", 16},      {"int32", 32},
                                                   {"int64", 64},    {"real32", 1032},   {"real64", 1064}};
  for (const auto& [w, code] : types)
    if (word == w) return code;
  return 0;
}

// The text of a tag line between its opening tag and its closing one.
std::string_view tagvalue(std::string_view line) {
  const size_t open = line.find('>'), close = line.rfind('<');
  if (open == std::string_view::npos || close == std::string_view::npos || close <= open) return {};
  return line.substr(open + 1, close - open - 1);
}

tvector vectorof(std::string_view value) {
  const std::vector<double> v = textnumbers(value);
  return {v.size() > 0 ? v[0] : 0, v.size() > 1 ? v[1] : 0, v.size() > 2 ? v[2] : 0};
}

bool mifxread(tscalarfield& f, uint8_t kind, const utf16& stem, const tlinefile& text) {
  tnatvector size{0, 0, 0};
  tvector origin{0, 0, 0};
  trows axes = diagonalrows({1, 1, 1});
  int code = 0;
  constexpr const char* sizes[] = {"<numberofxvoxels", "<numberofyvoxels", "<numberofzvoxels"};
  constexpr const char* vectors[] = {"<xvector", "<yvector", "<zvector"};
  for (int64_t n = 1; n <= linefilecount(text); ++n) {
    const std::string line = lowertext(linefileview(text, n));
    const std::string_view value = tagvalue(line);
    if (line.find("<origin") != std::string::npos) origin = vectorof(value);
    for (int a = 0; a < 3; ++a) {
      if (line.find(sizes[a]) != std::string::npos) size[a] = headersize(firstnumber(value));
      if (line.find(vectors[a]) != std::string::npos) axes[a] = vectorof(value);
    }
    if (line.find("<binarytype") != std::string::npos) code = mifxtype(value);
  }
  if (code == 0) return volumefail(f, kind, "  Wrong bit depth (0)! Create empty field.");
  const utf16 data = stem + ".raw";
  if (!volumeblock(f, kind, data, 0, volumerequest(f, code, size), voxelbytes(code))) return false;
  volumeplace(f, origin, axes, data);
  return true;
}

}  // namespace

bool mifload(tscalarfield& f, uint8_t kind, const utf16& name) {
  const utf16 stem = filestem(name);
  const bool mifx = equalutf8(lower(fileextension(name)), "mifx") ? fileexists(stem + ".mifx") || !fileexists(stem + ".mif")
                                                                 : !fileexists(stem + ".mif") && fileexists(stem + ".mifx");
  tlinefile text{};
  const utf16 header = stem + (mifx ? ".mifx" : ".mif");
  if (!fileexists(header) || !linefileread(text, header))
    return volumefail(f, kind, "  Couldn't read File (" + stem + ".mif or .mifx)! Create empty field.");
  const bool ok = mifx ? mifxread(f, kind, stem, text) : mifread(f, kind, stem, text);
  linefilerelease(text);
  if (ok && !mifx) volumeplace(f, {0, 0, 0}, diagonalrows({1, 1, 1}), stem + ".mdf");
  return ok;
}
