// ARF movies: a big-endian header with width, height and frame count, two labels, and the
// frames of 16-bit big-endian pixels at the end of the file, one a slice.
#include <algorithm>
#include <string>

#include "formats/volumeformats.h"
#include "formats/volumeload.h"
#include "formats/voxelsource.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

constexpr int64_t widthat = 0x51, heightat = 0x59, framesat = 0x5D, labelat = 0x305, secondlabelat = 0x493;
constexpr int64_t labelsize = 10, headsize = secondlabelat + labelsize;

int64_t bigendian32(const uint8_t* p) {
  return static_cast<int64_t>(p[0]) << 24 | static_cast<int64_t>(p[1]) << 16 | p[2] << 8 | p[3];
}

std::string label(const uint8_t* p) {
  std::string s(reinterpret_cast<const char*>(p), labelsize);
  return s.substr(0, s.find('\0'));
}

}  // namespace

bool arfload(tscalarfield& f, uint8_t kind, const utf16& name) {
  if (!fileexists(name)) return volumefail(f, kind, "  Couldn't read File (" + name + ")! Create empty field.");
  uint8_t head[headsize];
  const tnatvector size = sourcehead(name, head, headsize) == headsize
                              ? tnatvector{bigendian32(head + widthat), bigendian32(head + heightat), bigendian32(head + framesat)}
                              : tnatvector{0, 0, 0};
  if (fieldcount(size[0], size[1], size[2]) < 1) return volumefail(f, kind, "  ARF file empty!");
  println("  ARF file frames (" + nattext(size[2]) + ")");
  const __int128 frames = static_cast<__int128>(size[0]) * size[1] * size[2] * 2;
  const int64_t start = static_cast<int64_t>(std::max<__int128>(filesize(name) - frames, -1));
  if (start < headsize) return volumefail(f, kind, wrongfilesize(size));
  trawvolume r = volumerequest(f, 16, size);
  r.swap = true;
  if (!volumeblock(f, kind, name, start, r, 0)) return false;
  volumeplace(f, {0, 0, 0}, diagonalrows({1, 1, 1}), name);
  f.title = utf16fromutf8(label(head + labelat) + label(head + secondlabelat));
  return true;
}
