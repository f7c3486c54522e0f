#include "formats/scalarfile.h"

#include <string>

#include "base/filebuffer.h"
#include "field/owned.h"
#include "formats/nifti.h"
#include "formats/niftiraw.h"
#include "formats/stackfile.h"
#include "formats/volumeformats.h"
#include "library/filelist.h"
#include "library/mathvector.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

// A reader makes the field anew; the load filter belongs to the field and stays.
template <class Load>
bool keepfilter(tscalarfield& f, Load load) {
  const int64_t add = f.filteradd, mul = f.filtermul;
  const bool ok = load();
  setloadfilter(f, add, mul);
  return ok;
}

tvector centre(const tscalarfield& f) {
  const tnatvector s = fieldsize(f);
  return localtoglobal(f.space, {(s[0] + 1) * 0.5, (s[1] + 1) * 0.5, (s[2] + 1) * 0.5});
}

utf16 corners(const tscalarfield& f) {
  const tnatvector s = fieldsize(f);
  return fullvectortext(localtoglobal(f.space, {1, 1, 1})) + " .. " +
         fullvectortext(localtoglobal(f.space, {static_cast<double>(s[0]), static_cast<double>(s[1]),
                                                static_cast<double>(s[2])}));
}

std::vector<std::string> textlines(const std::string& text) {
  std::vector<std::string> lines;
  size_t at = 0;
  while (at < text.size()) {
    size_t end = text.find('\n', at);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(at, end - at);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
    at = end + 1;
  }
  return lines;
}

template <tscalarreader read>
bool volume(tscalarfield& f, uint8_t kind, const utf16& name) {
  return scalarloadwith(f, kind, name, read);
}

bool stackread(tscalarfield& f, uint8_t kind, const utf16& name) { return scalarloadscale(f, kind, name, {0, 0, 0}); }

constexpr tfieldkind scalar = tfieldkind::scalar;

// Any name that no row with extensions takes is a stack of images, one a slice.
constexpr tscalarformat formats[] = {
    {"nii hdr img nii.gz hdr.gz img.gz", scalar, scalarloadnifti, nullptr, nullptr, "HDR, NII, gz NII", nullptr},
    {"hdr nii nii.gz", scalar, nullptr, niftisave, nullptr, nullptr, "HDR, NII, gz NII"},
    {"mdf mif mifx", scalar, volume<mifload>, nullptr, nullptr, "MIF (MDF), MIFX", nullptr},
    {"pcr", scalar, volume<pcrload>, nullptr, nullptr, "PCR (VOL)", nullptr},
    {"am", scalar, volume<amiraload>, nullptr, nullptr, "AM", nullptr},
    {"vtk", scalar, volume<vtkload>, nullptr, nullptr, "VTK", nullptr},
    {"vgl", scalar, volume<vglload>, nullptr, nullptr, "VGL", nullptr},
    {"", scalar, stackread, stacksave, nullptr, "image stacks with *", "PNM, BMP, TGA, TIF, PNG"},
};

}  // namespace

std::span<const tscalarformat> scalarformats() { return formats; }
std::string scalarinputnote() { return formatnotes(scalarformats(), false); }
std::string scalaroutputnote() { return formatnotes(scalarformats(), true); }

bool scalarloadnifti(tscalarfield& f, uint8_t kind, const utf16& name) {
  const utf16 file = firstmatch(name);
  const bool ok =
      keepfilter(f, [&] { return niftiload(f, kind, file, 1, f.filteradd, f.filtermul); });
  if (ok) atlaslookup(f, file);
  return ok;
}

bool scalarloadwith(tscalarfield& f, uint8_t kind, const utf16& name, tscalarreader read) {
  if (empty(name)) return false;
  const utf16 file = firstmatch(name);
  const bool ok = keepfilter(f, [&] { return read(f, kind, file); });
  if (ok) atlaslookup(f, file);
  return ok;
}

bool scalarloadraw(tscalarfield& f, uint8_t kind, const utf16& name, int64_t header, const utf16& type,
                   const tnatvector& size) {
  if (empty(name)) return false;
  const utf16 file = firstmatch(name);
  const bool ok = keepfilter(f, [&] { return rawload(f, kind, file, header, type, size); });
  if (ok) atlaslookup(f, file);
  return ok;
}

bool scalarload(tscalarfield& f, uint8_t kind, const utf16& name) {
  if (empty(name)) return false;
  const tscalarformat* r = formatrow(scalarformats(), lower(fileextension(name)), false);
  return r && r->read(f, kind, name);
}

bool scalarloadscale(tscalarfield& f, uint8_t kind, const utf16& name, const tvector& scale) {
  if (empty(name)) return false;
  return keepfilter(f, [&] { return stackload(f, kind, name, scale); });
}

bool scalarloadproperties(tscalarfield& f, const utf16& name) {
  const utf16 ext = lower(fileextension(name));
  if (empty(name) || oneof(ext, {"mdf", "mif", "mifx", "pcr", "vtk", "gz"})) return false;
  tniftiheader h;
  if (!niftiheaderread(firstmatch(name), h)) return false;
  if (h.dim[1] + h.dim[2] + h.dim[3] + h.dim[4] <= 0) return false;
  const tspatial s = headerspace(h);
  setmatrix(f.space, s.matrix);
  setoffset(f.space, s.offset);
  for (const utf16& line : transformationlines(f.space, true)) println(line);
  return true;
}

void scalarappend(tscalarfield& f, const utf16& name, bool center) {
  if (empty(name)) return;
  tlocalfield<tscalarfield> loaded;
  tscalarfield& source = *loaded;
  setloadfilter(source, f.filteradd, f.filtermul);
  scalarload(source, f.kind ? f.kind : uint8_t{scalarfullgray}, name);
  if (!fieldempty(source)) {
    if (center) setoffset(source.space, added(source.space.offset, added(centre(f), scaled(centre(source), -1))));
    println("  Source     : " + corners(source));
    println("  Destination: " + corners(f));
    const tnatvector s = fieldsize(source);
    for (int64_t z = 1; z <= s[2]; ++z) {
      for (int64_t y = 1; y <= s[1]; ++y) {
        for (int64_t x = 1; x <= s[0]; ++x) {
          const tvector g = localtoglobal(source.space, {double(x), double(y), double(z)});
          const tnatvector q = globaltolocal(f.space, g);
          const int64_t old = getvalue(f, q[0], q[1], q[2]), fresh = getvalue(source, x, y, z);
          setvalue(f, q[0], q[1], q[2], static_cast<double>(old > 0 ? (old + fresh) / 2 : fresh));
        }
      }
      progress("  Merging", static_cast<double>(z) / static_cast<double>(s[2]));
    }
    progressend();
  }
}

bool scalarsave(const tscalarfield& f, const utf16& name) {
  if (empty(name)) return false;
  const tscalarformat* r = formatrow(scalarformats(), lower(fileextension(name)), true, f.kind);
  const bool ok = r && r->write(f, name);
  if (ok && labelcount(f) > 0) labelsave(f, filestem(name) + ".labels");
  return ok;
}

// The NIfTI header's fields as text; empty when the file can't be read.
static std::vector<utf16> niftiinfo(const utf16& name) {
  uint8_t bytes[niftisize] = {};
  if (sourcehead(niftiheadername(name), bytes, niftisize) < 0) return {};
  tniftiheader h;
  // A header of neither byte order is shown as it lies in the file.
  if (takeheader(h, bytes) && h.sizeof_hdr != niftisize && h.sizeof_hdr != nifti2size) swapheader(h);
  return headertext(h);
}

void scalarinfo(const utf16& name, const utf16& out) {
  if (empty(name)) return;
  const utf16 ext = lower(fileextension(name));
  if (oneof(ext, {"mdf", "mif", "mifx", "pcr", "vtk"})) return println("Not provided!");
  if (equalutf8(ext, "gz")) return println("Zipped file not provided!");
  const std::vector<utf16> lines = equalutf8(ext, "am") ? amirahead(firstmatch(name)) : niftiinfo(firstmatch(name));
  if (lines.empty()) return;
  if (empty(out)) {
    for (const utf16& line : lines) println(line);
    return;
  }
  tfile file;
  if (!writefile(file, out)) return;
  for (const utf16& line : lines) writetext(file, utf16toutf8(line) + "\n");
  closefile(file);
}

bool labelsave(const tscalarfield& f, const utf16& name) {
  tfile file;
  if (!writefile(file, name)) return false;
  bool ok = true;
  for (int64_t i = 0; i < std::min<int64_t>(labelcount(f), 1000); ++i) {
    const utf16 label = f.labels.get(i + 1);
    if (!empty(label)) ok = writetext(file, utf16toutf8(nattext(i) + " " + label) + "\n") && ok;
  }
  return closefile(file) && ok;
}

bool labelload(tscalarfield& f, const utf16& name) {
  std::string text;
  if (!readwholefile(name, text)) return false;
  for (const std::string& line : textlines(text)) {
    utf16 rest = trimblanks(utf16(line));
    const utf16 number = cutword(rest, " ");
    const int64_t i = textnat(number);
    if (!empty(number) && i >= 0 && i < 1000) setlabel(f, i, rest);
  }
  return true;
}

void atlaslookup(tscalarfield& f, const utf16& name) {
  const utf16 atlas = filestem(name) + ".atlas.xml";
  std::string text;
  if (!fileexists(atlas) || !readwholefile(atlas, text, true)) return;
  int64_t found = 0;
  for (const std::string& line : textlines(text)) {
    const utf16 l(line);
    if (pos("<area", lower(l)) == 0) continue;
    const int64_t at = pos("name=\"", l);
    if (at == 0) continue;
    const utf16 rest = copy(l, at + 6, length(l));
    setlabel(f, labelcount(f), copy(rest, 1, poschar('"', rest) > 0 ? poschar('"', rest) - 1 : length(rest)));
    ++found;
  }
  if (found == 0) println("  Found nothing.");
  else if (found == 1) println("  Found one label.");
  else println("  Found " + nattext(found) + " labels.");
}
