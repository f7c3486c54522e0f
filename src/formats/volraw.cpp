// Headerless volumes: the caller names the header bytes to pass over, the voxel type and
// the size.
#include "formats/volumeformats.h"
#include "formats/volumeload.h"
#include "shell/files.h"

int rawtypecode(const utf16& word) {
  constexpr std::pair<const char*, int> types[] = {
      {"byte", 8},       {"signbyte", -8},    {"word", 16},      {"signword", -16},  {"longword", 32},
      {"signlongword", -32}, {"quadword", 64}, {"signquadword", -64}, {"single", 1032}, {"double", 1064},
      {"extended", 1080}, {"rgb", 2024},      {"rgba", 2032},    {"wordrgb", 3024},  {"wordrgba", 3032}};
  const utf16 low = lower(trimblanks(word));
  for (const auto& [w, code] : types)
    if (equalutf8(low, w)) return code;
  return 0;
}

bool rawload(tscalarfield& f, uint8_t kind, const utf16& name, int64_t header, const utf16& type,
             const tnatvector& size) {
  if (size[0] == 0 && size[1] == 0 && size[2] == 0) return false;
  if (!fileexists(name)) return volumefail(f, kind, "  Couldn't read File (" + name + ")! Create empty field.");
  const tnatvector s{headersize(static_cast<double>(size[0])), headersize(static_cast<double>(size[1])),
                     headersize(static_cast<double>(size[2]))};
  const trawvolume r = volumerequest(f, rawtypecode(type), s);
  if (!knowntypecode(r.code)) {
    // The raw reader tells the unknown type and leaves a zero field.
    tvoxelsource src{};
    if (sourceopen(src, name)) rawread(f, kind, src, r);
    else volumefail(f, kind, "  Couldn't read File (" + name + ")! Create empty field.");
    sourceclose(src);
    return false;
  }
  if (!volumeblock(f, kind, name, std::max<int64_t>(header, 0), r, 0)) return false;
  volumeplace(f, {0, 0, 0}, diagonalrows({1, 1, 1}), name);
  return true;
}
