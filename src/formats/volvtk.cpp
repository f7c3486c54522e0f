// VTK legacy files: ascii structured points with float scalars, the values from line 11 on.
#include <charconv>
#include <string>

#include "base/linefile.h"
#include "formats/volumeformats.h"
#include "formats/volumeload.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

tvector lineof(std::string_view line) {
  const std::vector<double> v = textnumbers(line);
  return {v.size() > 0 ? v[0] : 0, v.size() > 1 ? v[1] : 0, v.size() > 2 ? v[2] : 0};
}

std::string_view trimmed(std::string_view t) {
  while (!t.empty() && (t.back() == ' ' || t.back() == '\t')) t.remove_suffix(1);
  return t;
}

// The blank-separated reals of the lines from 11 on into the voxels, in file order; a line
// equal to the one before repeats that line's voxels without reading them again.
template <class A>
void takevalues(A& a, const tlinefile& text, int64_t total) {
  const int64_t lines = linefilecount(text);
  int64_t done = 0, lastfrom = 0;
  std::string_view previous;
  for (int64_t n = 11; n <= lines && done < total; ++n) {
    const std::string_view line = linefileview(text, n);
    if (n > 11 && line == previous && !line.empty()) {
      const int64_t count = std::min(done - lastfrom, total - done);
      for (int64_t k = 0; k < count; ++k) a.put(done + k + 1, a.get(lastfrom + k + 1));
      lastfrom = done;
      done += count;
    } else {
      lastfrom = done;
      const char* p = line.data();
      const char* end = p + line.size();
      while (done < total) {
        while (p < end && (*p == ' ' || *p == '\t')) ++p;
        if (p >= end) break;
        double v = 0;
        const auto [next, ec] = std::from_chars(p, end, v);
        if (ec == std::errc::invalid_argument) {
          while (p < end && *p != ' ' && *p != '\t') ++p;  // a word that is no number is passed over
          continue;
        }
        a.put(++done, voxelof<A>(v));
        p = next;
      }
    }
    previous = line;
    if ((n & 1023) == 0) progress("  Analyze", static_cast<double>(done) / static_cast<double>(total));
  }
  progressend();
}

}  // namespace

bool vtkload(tscalarfield& f, uint8_t kind, const utf16& name) {
  tlinefile text{};
  if (!fileexists(name) || !linefileread(text, name))
    return volumefail(f, kind, "  Couldn't read File (" + name + ")! Create empty field.");
  const auto failed = [&](const utf16& line) {
    linefilerelease(text);
    return volumefail(f, kind, line);
  };
  if (linefilecount(text) < 11) return failed("  Empty File (" + name + ")! Create empty field.");
  const std::string_view head = linefileview(text, 1);
  if (head.find("# vtk DataFile") == std::string_view::npos || trimmed(lowertext(linefileview(text, 3))) != "ascii" ||
      trimmed(lowertext(linefileview(text, 4))) != "dataset structured_points" ||
      lowertext(linefileview(text, 9)).find("scalars") == std::string::npos ||
      lowertext(linefileview(text, 9)).find("float") == std::string::npos)
    return failed("  If this a ascii dataset structured_points VTK-File? Create empty field.");
  const tvector dims = lineof(linefileview(text, 5));
  const tnatvector size{headersize(dims[0]), headersize(dims[1]), headersize(dims[2])};
  const int64_t total = fieldcount(size[0], size[1], size[2]);
  // Every value takes two bytes at least, which refuses absurd sizes before allocation.
  if (total < 1 || total != headersize(firstnumber(linefileview(text, 8))) || total > text.buffer.size / 2 + 1)
    return failed("  Field size mismatch! Create empty field.");
  const tvector spacing = lineof(linefileview(text, 6)), origin = lineof(linefileview(text, 7));
  fieldcreate(f, kind, size);
  eachstorage(f, [&](auto& a) { if (!fieldempty(f)) takevalues(a, text, total); });
  linefilerelease(text);
  volumeplace(f, origin, diagonalrows(spacing), name);
  return !fieldempty(f);
}
