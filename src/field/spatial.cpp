#include "field/spatial.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "library/mathvector.h"
#include "shell/console.h"

trows identityrows() { return {tvector{1, 0, 0}, tvector{0, 1, 0}, tvector{0, 0, 1}}; }

void setoffset(tspatial& s, const tvector& offset) {
  s.offset = offset;
  s.negoffset = scaled(offset, -1.0);
}

void setmatrix(tspatial& s, const trows& rows) {
  s.matrix = rows;
  s.inverse = vectorpart(inverted(rowsmatrix(rows)));
}

namespace {
bool bitwisezero(const tvector& v) {
  for (const double x : v)
    if (std::bit_cast<uint64_t>(x) != 0) return false;
  return true;
}
}  // namespace

bool setmatrixchecked(tspatial& s, const trows& rows) {
  for (const tvector& row : rows) {
    if (!bitwisezero(row)) continue;
    println("Error! Wrong matrix " + rowstext(rows) + utf16(" -> (<1,0,0>;<0,1,0>;<0,0,1>)."));
    setmatrix(s, identityrows());
    return false;
  }
  setmatrix(s, rows);
  return true;
}

tvector localtoglobal(const tspatial& s, const tvector& p) {
  tvector g = s.offset;
  for (int a = 0; a < 3; ++a) g = added(g, scaled(s.matrix[a], p[a] - 1));
  return g;
}

tnatvector globaltolocal(const tspatial& s, const tvector& p) {
  const tvector a = added(p, s.negoffset);
  tvector b{1, 1, 1};
  for (int k = 0; k < 3; ++k) b = added(b, scaled(s.inverse[k], a[k]));
  return {roundnat(b[0]), roundnat(b[1]), roundnat(b[2])};
}

tvector axisscales(const tspatial& s) { return rowlengths(rowsmatrix(s.matrix)); }

void setscale(tspatial& s, const tvector& scale) {
  if (scale[0] == 0 && scale[1] == 0 && scale[2] == 0) return;
  trows rows{};
  for (int a = 0; a < 3; ++a) rows[a][a] = std::fabs(scale[a]);
  setmatrix(s, rows);
}

void mulscale(tspatial& s, const tvector& scale) {
  if (scale[0] == 0 && scale[1] == 0 && scale[2] == 0) return;
  setscale(s, scale);
  setoffset(s, {s.offset[0] * scale[0], s.offset[1] * scale[1], s.offset[2] * scale[2]});
}

void unflip(tspatial& s) {
  trows rows = s.matrix;
  for (tvector& row : rows)
    for (double& x : row) x = std::fabs(x);
  setmatrix(s, rows);
}

void unrotate(tspatial& s) {
  const tvector lengths = axisscales(s);
  trows rows{};
  for (int a = 0; a < 3; ++a) rows[a][a] = lengths[a];
  setmatrix(s, rows);
}

void centeroffset(tspatial& s, const tnatvector& size, double divisor) {
  const tvector c = axisscales(s);
  tvector o{};
  if (divisor != 0)
    for (int a = 0; a < 3; ++a) o[a] = static_cast<double>(size[a]) * c[a] / divisor;
  setoffset(s, o);
}

utf16 rowstext(const trows& rows) {
  return "(" + fullvectortext(rows[0]) + ";" + fullvectortext(rows[1]) + ";" + fullvectortext(rows[2]) + ")";
}

tnatvector positions(const tvector& v, const tnatvector& size) {
  return {position(v[0], size[0]), position(v[1], size[1]), position(v[2], size[2])};
}
