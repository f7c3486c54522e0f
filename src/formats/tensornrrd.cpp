#include "formats/tensornrrd.h"

#include <string>
#include <type_traits>

#include "base/filebuffer.h"
#include "formats/wholewrite.h"
#include "orientation/tensorvoxel.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

std::string triple(const tvector& v) {
  std::string out = "(";
  for (int a = 0; a < 3; ++a) (out += plainrealtext(v[a])) += a < 2 ? "," : ")";
  return out;
}

// The data file is named relative to the header, so without the header's directory.
utf16 withoutdirectory(const utf16& name) {
  int64_t slash = 0;
  for (int64_t i = 1; i <= length(name); ++i)
    if (charat(name, i) == '/') slash = i;
  return copy(name, slash + 1, length(name) - slash);
}

std::string header(const ttensorfield& f, const utf16& datafile) {
  const tnatvector n = fieldsize(f);
  std::string h = "NRRD0004\n# voxmill\n";
  h += f.kind == vectorinteger ? "type: int64\n" : "type: double\n";
  h += "dimension: 4\nspace: right-anterior-superior\n";
  h += "# This space is used in the NIFTI-1 extension to the Analyze format.\n";
  h += "sizes: 6 " + std::to_string(n[0]) + " " + std::to_string(n[1]) + " " + std::to_string(n[2]) + "\n";
  h += "space directions: none " + triple(f.space.matrix[0]) + " " + triple(f.space.matrix[1]) + " " +
       triple(f.space.matrix[2]) + "\n";
  h += "kinds: 3D-symmetric-matrix domain domain domain\nendian: little\nencoding: raw\n";
  h += "space origin: " + triple(f.space.offset) + "\n";
  if (!empty(datafile)) h += "data file: " + utf16toutf8(datafile) + "\n";
  return h;
}

// The six values of each voxel in file order, appended to out.
void appendtensors(std::string& out, const ttensorfield& f) {
  const utf16 label = utf16(f.kind == vectorinteger ? "  3DTensor with (" : "  3DTensor64 with (") + dimensionstext(f) + ")";
  const tnatvector n = fieldsize(f);
  const int64_t area = n[0] * n[1];
  out.reserve(out.size() + static_cast<size_t>(48 * area * n[2]));
  withtensorvolumes(f, [&](const auto& diagonal, const auto& offdiagonal) {
    using C = typename std::remove_cvref_t<decltype(diagonal)>::elementtype::value_type;
    for (int64_t z = 0; z < n[2]; ++z) {
      for (int64_t i = z * area; i < (z + 1) * area; ++i) {
        const auto& d = diagonal.items()[i];
        const auto& o = offdiagonal.items()[i];
        for (C v : {d[0], o[0], o[1], d[1], o[2], d[2]}) appendnumber(out, v);
      }
      progress(label, static_cast<double>(z + 1) / static_cast<double>(n[2]));
    }
  });
  progressend();
}

}  // namespace

bool tensornrrdsave(const ttensorfield& f, const utf16& name) {
  if (fieldempty(f)) return false;
  if (equalutf8(lower(fileextension(name)), "nhdr")) {
    const utf16 raw = filestem(name) + ".raw";
    std::string values;
    appendtensors(values, f);
    return writewhole(raw, values) && writewhole(name, header(f, withoutdirectory(raw)));
  }
  std::string bytes = header(f, utf16()) + "\n";
  appendtensors(bytes, f);
  return writewhole(name, bytes);
}
