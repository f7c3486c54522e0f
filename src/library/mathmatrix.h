// Homogeneous 4x4 matrices in the row layout of the fields' spatial properties: rows v1,
// v2, v3 are the images of the unit axes, v4 holds the translation, and a point p maps to
// p.x v1 + p.y v2 + p.z v3 + v4. A product a*b therefore applies a first, then b.
#pragma once
#include <array>

#include "library/matheigen.h"
#include "script/values.h"

using tmatrix = std::array<thyper, 4>;
// Three row vectors: the 3x3 part of a matrix, or a frame of axes.
using trows = std::array<tvector, 3>;

tmatrix identitymatrix();
bool iszero(const tmatrix& m);
tmatrix product(const tmatrix& a, const tmatrix& b);
tmatrix transposed(const tmatrix& m);
double determinant(const tmatrix& m);
// The adjugate over the determinant; a determinant of exactly 0 gives the zero matrix.
tmatrix inverted(const tmatrix& m);
// The mapped point; the fourth column takes no part (no projective divide).
tvector transformed(const tmatrix& m, const tvector& p);
// The trace of the 3x3 part, which is the sum of its eigenvalues.
double trace(const tmatrix& m);

// Rows 1..4 of a matrix, and the first three components of rows 1..3 or of row 4.
thyper matrixrow(const tmatrix& m, int row);
trows vectorpart(const tmatrix& m);
tvector translation(const tmatrix& m);
// The lengths of v1, v2, v3: the scale of each axis.
tvector rowlengths(const tmatrix& m);
// v1, v2, v3 made unit vectors: the rotation without scale and translation.
trows rotationrows(const tmatrix& m);
// The same as a homogeneous matrix: zero fourth column, v4 = <0, 0, 0, 1>.
tmatrix rotationmatrix(const tmatrix& m);
// The right-handed frame of two directions: v1 along a, v3 normal to a and b, v2 = v3 x v1.
// Parallel or zero directions leave the rows that they cannot fix zero.
trows framerows(const tvector& a, const tvector& b);

// Builders. A frame v1..v3 (made unit vectors), scaled per axis and then moved.
tmatrix framematrix(const trows& axes, const tvector& scale, const tvector& offset);
tmatrix scalematrix(const tvector& scale);
tmatrix movematrix(const tvector& offset);
// The rows as a matrix, with the fourth column zero and v4 = <0, 0, 0, 1>.
tmatrix rowsmatrix(const trows& rows);

// The symmetric part (m + m^T) / 2 of the 3x3 part.
tsymmetric symmetricpart(const tmatrix& m);
