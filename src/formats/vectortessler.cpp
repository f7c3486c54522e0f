// The numbered text of vector fields: each voxel's vector becomes the diagonal of its cell
// that points the vector's way (by the signs of its components), so the file is a set of
// numbered lattice points and the connections between them.
#include <string>
#include <vector>

#include "formats/vectorformats.h"
#include "formats/wholewrite.h"
#include "script/values.h"

namespace {

// The lattice corner of voxel (x, y, z) on the side of the sign of each component, or on
// the other side: the corners run from (x - 0.5, ...) to (x + 0.5, ...), 0-based k = x - 1 or x.
tnatvector corner(int64_t x, int64_t y, int64_t z, const tvector& v, bool tip) {
  const int64_t p[3] = {x, y, z};
  tnatvector c{};
  for (int a = 0; a < 3; ++a) c[a] = (v[a] >= 0) == tip ? p[a] : p[a] - 1;
  return c;
}

}  // namespace

bool tesslersave(const tvectorfield& f, const utf16& name, const tvector& scale) {
  if (fieldempty(f)) return false;
  const tnatvector n = fieldsize(f);
  const int64_t nx = n[0] + 1, ny = n[1] + 1;
  std::vector<int64_t> number(static_cast<size_t>(nx * ny * (n[2] + 1)), 0);
  const auto slot = [&](const tnatvector& c) -> int64_t& { return number[static_cast<size_t>(c[0] + nx * (c[1] + ny * c[2]))]; };
  std::string points, connections;
  int64_t count = 0;
  const auto use = [&](const tnatvector& c) {
    int64_t& k = slot(c);
    if (k > 0) return k;
    k = ++count;
    const tvector g = localtoglobal(f.space, {c[0] + 0.5, c[1] + 0.5, c[2] + 0.5});
    points += std::to_string(k) + ", " + plainrealtext(g[0]) + ", " + plainrealtext(g[1]) + ", " + plainrealtext(g[2]) + "\n";
    return k;
  };
  eachvector(f, scale, "Save vectorfield", [&](int64_t x, int64_t y, int64_t z, const tvector& v) {
    if (iszero(v)) return;
    const int64_t from = use(corner(x, y, z, v, false)), to = use(corner(x, y, z, v, true));
    connections += std::to_string(from) + ", " + std::to_string(to) + "\n";
  }, 0, 1.0 / 3);
  progress("Save vectorfield", 1);
  progressend();
  return writewhole(name, points + connections);
}
