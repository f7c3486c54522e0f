// AVS field files of vector fields: a uniform 3-D field of 3-vectors.
#include <algorithm>
#include <string>

#include "formats/vectorformats.h"
#include "formats/wholewrite.h"
#include "script/values.h"

namespace {

// The extent of the voxel centres along each global axis, over the eight corner voxels.
void extents(const tvectorfield& f, tvector& low, tvector& high) {
  const tnatvector n = fieldsize(f);
  low = high = localtoglobal(f.space, {1, 1, 1});
  for (int c = 1; c < 8; ++c) {
    const tvector g = localtoglobal(f.space, {double(c & 1 ? n[0] : 1), double(c & 2 ? n[1] : 1), double(c & 4 ? n[2] : 1)});
    for (int a = 0; a < 3; ++a) low[a] = std::min(low[a], g[a]), high[a] = std::max(high[a], g[a]);
  }
}

std::string blankjoined(const tvector& v) {
  return plainrealtext(v[0]) + " " + plainrealtext(v[1]) + " " + plainrealtext(v[2]);
}

}  // namespace

bool avssave(const tvectorfield& f, const utf16& name, const tvector& scale) {
  if (fieldempty(f)) return false;
  const tnatvector n = fieldsize(f);
  const bool integer = f.kind == vectorinteger;
  tvector low, high;
  extents(f, low, high);
  std::string out = "# AVS field file\n# " + utf16toutf8(name) + "\nndim=3\n";
  for (int a = 0; a < 3; ++a) out += "dim" + std::to_string(a + 1) + "=" + std::to_string(n[a]) + "\n";
  out += "nspace=3\nveclen=3\n";
  out += integer ? "data=integer\n" : "data=float\n";
  out += "field=uniform\nmin_ext=" + blankjoined(low) + "\nmax_ext=" + blankjoined(high) + "\n\f\f";
  out.reserve(out.size() + static_cast<size_t>(12 * n[0] * n[1] * n[2]));
  const utf16 label = utf16(integer ? "  3DVector32 with (" : "  3DVector64 with (") + dimensionstext(f) + ")";
  eachvector(f, scale, label, [&](int64_t, int64_t, int64_t, const tvector& v) {
    for (double c : v)
      if (integer)
        appendnumber(out, toelement<int32_t>(c));
      else
        appendnumber(out, static_cast<float>(c));
  });
  return writewhole(name, out);
}
