// AmiraMesh files of vector fields: a uniform lattice of float[3] in ASCII.
#include <string>

#include "formats/vectorformats.h"
#include "formats/wholewrite.h"
#include "script/values.h"

bool amirasave(const tvectorfield& f, const utf16& name, const tvector& scale) {
  if (fieldempty(f)) return false;
  const tnatvector n = fieldsize(f);
  const std::string x = std::to_string(n[0]), y = std::to_string(n[1]), z = std::to_string(n[2]);
  const tvector first = localtoglobal(f.space, {1, 1, 1});
  const tvector last = localtoglobal(f.space, {double(n[0]), double(n[1]), double(n[2])});
  std::string out = "# AmiraMesh 3D ASCII 2.0\n\ndefine Lattice " + x + " " + y + " " + z + "\n\nParameters {\n";
  out += "    Content \"" + x + "x" + y + "x" + z + " float[3], uniform coordinates\",\n    BoundingBox";
  for (int a = 0; a < 3; ++a) ((out += " ") += plainrealtext(first[a])) += " ", out += plainrealtext(last[a]);
  out += ",\n    CoordType \"uniform\"\n}\n\nLattice { float[3] Data } @1\n\n# Data section follows\n@1\n";
  eachvector(f, scale, "Save vectorfield", [&](int64_t, int64_t, int64_t, const tvector& v) {
    for (int a = 0; a < 3; ++a) (out += plainrealtext(v[a])) += a < 2 ? " " : "\n";
  });
  return writewhole(name, out);
}
