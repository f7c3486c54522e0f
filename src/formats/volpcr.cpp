// PCR: a text header of key=value lines with the voxels, 16-bit words, in stem.vol.
#include <string>

#include "base/filebuffer.h"
#include "base/linefile.h"
#include "formats/volumeformats.h"
#include "formats/volumeload.h"
#include "script/values.h"
#include "shell/files.h"

bool pcrload(tscalarfield& f, uint8_t kind, const utf16& name) {
  const utf16 stem = filestem(name);
  tlinefile text{};
  if (!fileexists(stem + ".pcr") || !linefileread(text, stem + ".pcr"))
    return volumefail(f, kind, "  Couldn't read File (" + stem + ".pcr)! Create empty field.");
  tnatvector size{0, 0, 0};
  tvector offset{0, 0, 0}, scale{1, 1, 1};
  int64_t format = 0;
  // The keys in the order they are tried on each line; volume sizes after ROI sizes in the
  // file overwrite them.
  constexpr const char* sizes[] = {"roi_sizex", "roi_sizey", "roi_sizez"};
  constexpr const char* offsets[] = {"roi_offx", "roi_offy", "roi_offz"};
  constexpr const char* volumes[] = {"volume_sizex", "volume_sizey", "volume_sizez"};
  for (int64_t n = 1; n <= linefilecount(text); ++n) {
    const std::string line = lowertext(linefileview(text, n));
    const double value = firstnumber(behindequal(line));
    const auto has = [&](const char* key) { return line.find(key) != std::string::npos; };
    bool taken = false;
    for (int a = 0; a < 3 && !taken; ++a) {
      if ((taken = has(sizes[a]))) size[a] = headersize(value);
      else if ((taken = has(offsets[a]))) offset[a] = value;
      else if ((taken = has(volumes[a]))) size[a] = headersize(value);
    }
    if (taken) continue;
    if (has("voxelsizerec")) scale = {value, value, value};
    else if (has("format")) format = truncnat(value);
  }
  linefilerelease(text);
  if (format != 5) return volumefail(f, kind, "  Wrong bit depth (" + nattext(format) + ")! Create empty field.");
  const utf16 data = stem + ".vol";
  if (!volumeblock(f, kind, data, 0, volumerequest(f, 16, size), 2)) return false;
  volumeplace(f, offset, diagonalrows(scale), data);
  return true;
}
