// TrackVis: a header of 1000 bytes, little-endian, then per line its point count and the
// points as float32 x, y, z. t is not stored; the lines have no properties.
#include <cmath>
#include <cstring>

#include "formats/lineformats.h"

namespace {

template <class T>
void putat(std::string& b, size_t at, T v) {
  std::memcpy(b.data() + at, &v, sizeof v);
}
template <class T>
void append(std::string& b, T v) {
  char raw[sizeof v];
  std::memcpy(raw, &v, sizeof v);
  b.append(raw, sizeof v);
}

}  // namespace

std::string trkbytes(const tcloud& c, const utf16&) {
  std::string b(1000, '\0');
  std::memcpy(b.data(), "TRACK", 5);
  for (int k = 0; k < 3; ++k) {
    putat(b, 6 + 2 * k, static_cast<int16_t>(std::lround(c.framesize[k])));
    putat(b, 12 + 4 * k, static_cast<float>(c.framescale[k]));
    putat(b, 24 + 4 * k, static_cast<float>(c.frameoffset[k]));
  }
  std::memcpy(b.data() + 948, "LPS", 3);
  std::memcpy(b.data() + 952, "LPS", 3);
  const float orientation[6] = {1, 0, 0, 0, 1, 0};
  for (int k = 0; k < 6; ++k) putat(b, 956 + 4 * k, orientation[k]);
  const int64_t lines = linecount(c);
  putat(b, 988, static_cast<int32_t>(lines));
  putat(b, 992, int32_t{2});
  putat(b, 996, int32_t{1000});
  b.reserve(1000 + static_cast<size_t>(lines) * 4 + static_cast<size_t>(c.points.length) * 12);
  for (int64_t l = 1; l <= lines; ++l) {
    const tlinerange r = linerange(c, l);
    append(b, static_cast<int32_t>(r.count()));
    for (int64_t i = r.first; i <= r.last; ++i) {
      const tcloudpoint p = pointof(c, i);
      for (int k = 0; k < 3; ++k) append(b, static_cast<float>(p[k]));
    }
  }
  return b;
}
