// Homogeneous 4x4 matrices in row layout.
#include "library/mathmatrix.h"

#include "library/mathvector.h"

tmatrix identitymatrix() { return {thyper{1, 0, 0, 0}, thyper{0, 1, 0, 0}, thyper{0, 0, 1, 0}, thyper{0, 0, 0, 1}}; }

bool iszero(const tmatrix& m) {
  for (const thyper& row : m)
    for (const double x : row)
      if (x != 0) return false;
  return true;
}

tmatrix product(const tmatrix& a, const tmatrix& b) {
  tmatrix c{};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      for (int k = 0; k < 4; ++k) c[i][j] += a[i][k] * b[k][j];
  return c;
}

tmatrix transposed(const tmatrix& m) {
  tmatrix t{};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) t[i][j] = m[j][i];
  return t;
}

namespace {

// The determinant of the 3x3 minor without row r and column c. Products of small integers
// stay exact here, so a singular matrix of integers has a determinant of exactly 0.
double minor3(const tmatrix& m, int r, int c) {
  int rows[3], cols[3];
  for (int i = 0, n = 0; i < 4; ++i)
    if (i != r) rows[n++] = i;
  for (int j = 0, n = 0; j < 4; ++j)
    if (j != c) cols[n++] = j;
  auto e = [&](int i, int j) { return m[rows[i]][cols[j]]; };
  return e(0, 0) * (e(1, 1) * e(2, 2) - e(1, 2) * e(2, 1)) - e(0, 1) * (e(1, 0) * e(2, 2) - e(1, 2) * e(2, 0)) +
         e(0, 2) * (e(1, 0) * e(2, 1) - e(1, 1) * e(2, 0));
}

double cofactor(const tmatrix& m, int r, int c) { return ((r + c) % 2 == 0 ? 1 : -1) * minor3(m, r, c); }

}  // namespace

double determinant(const tmatrix& m) {
  double d = 0;
  for (int c = 0; c < 4; ++c) d += m[0][c] * cofactor(m, 0, c);
  return d;
}

tmatrix inverted(const tmatrix& m) {
  const double d = determinant(m);
  tmatrix inv{};
  if (d == 0) return inv;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) inv[i][j] = cofactor(m, j, i) / d;
  return inv;
}

tvector transformed(const tmatrix& m, const tvector& p) {
  tvector out{0, 0, 0};
  for (int j = 0; j < 3; ++j) out[j] = p[0] * m[0][j] + p[1] * m[1][j] + p[2] * m[2][j] + m[3][j];
  return out;
}

double trace(const tmatrix& m) { return m[0][0] + m[1][1] + m[2][2]; }

thyper matrixrow(const tmatrix& m, int row) { return m[row - 1]; }

namespace {

tvector head(const thyper& h) { return {h[0], h[1], h[2]}; }

}  // namespace

trows vectorpart(const tmatrix& m) { return {head(m[0]), head(m[1]), head(m[2])}; }
tvector translation(const tmatrix& m) { return head(m[3]); }

tvector rowlengths(const tmatrix& m) {
  const trows r = vectorpart(m);
  return {vectorlength(r[0]), vectorlength(r[1]), vectorlength(r[2])};
}

trows rotationrows(const tmatrix& m) {
  const trows r = vectorpart(m);
  return {normalised(r[0]), normalised(r[1]), normalised(r[2])};
}

tmatrix rowsmatrix(const trows& rows) {
  tmatrix m = identitymatrix();
  for (int i = 0; i < 3; ++i) m[i] = {rows[i][0], rows[i][1], rows[i][2], 0};
  return m;
}

tmatrix rotationmatrix(const tmatrix& m) { return rowsmatrix(rotationrows(m)); }

trows framerows(const tvector& a, const tvector& b) {
  const tvector x = normalised(a);
  const tvector z = normalised(cross(a, b));
  return {x, cross(z, x), z};
}

tmatrix framematrix(const trows& axes, const tvector& scale, const tvector& offset) {
  trows rows{};
  for (int i = 0; i < 3; ++i) rows[i] = scaled(normalised(axes[i]), scale[i]);
  tmatrix m = rowsmatrix(rows);
  m[3] = {offset[0], offset[1], offset[2], 1};
  return m;
}

tmatrix scalematrix(const tvector& scale) {
  tmatrix m = identitymatrix();
  for (int i = 0; i < 3; ++i) m[i][i] = scale[i];
  return m;
}

tmatrix movematrix(const tvector& offset) {
  tmatrix m = identitymatrix();
  m[3] = {offset[0], offset[1], offset[2], 1};
  return m;
}

tsymmetric symmetricpart(const tmatrix& m) {
  return {m[0][0], m[1][1], m[2][2], (m[0][1] + m[1][0]) / 2, (m[0][2] + m[2][0]) / 2, (m[1][2] + m[2][1]) / 2};
}
