// Where a grid field lies in the common global space. Pixels and voxels are addressed in
// local coordinates 1..size; files and meshes work in global ones. offset is the global
// position of local <1, 1, 1>, the rows v1, v2, v3 of matrix the global step of one voxel
// along local x, y and z. negoffset and inverse are caches that keep the per-voxel
// global-to-local lookup free of divisions: every setter renews them in the same step,
// so nothing else may write offset or matrix.
#pragma once
#include <type_traits>

#include "library/mathmatrix.h"

trows identityrows();

struct tspatial {
  tvector offset{0, 0, 0};
  trows matrix = identityrows();
  tvector negoffset{0, 0, 0};
  trows inverse = identityrows();
};
static_assert(std::is_trivially_copyable_v<tspatial>);

void setoffset(tspatial& s, const tvector& offset);
// The inverse is the adjugate over the determinant, the zero matrix when that is exactly 0.
void setmatrix(tspatial& s, const trows& rows);
// The matrix of the x.matrix command: a row that is zero bit by bit (so -0 is no zero) is
// refused with the wrong-matrix line, and the identity is set. A singular matrix of
// non-zero rows stands, with a zero inverse. False when refused.
bool setmatrixchecked(tspatial& s, const trows& rows);

// p - <1, 1, 1> through the matrix, then moved by offset.
tvector localtoglobal(const tspatial& s, const tvector& p);
// The way back, rounded to the nearest voxel in each component.
tnatvector globaltolocal(const tspatial& s, const tvector& p);

// <|v1|, |v2|, |v3|>: the voxel size along each local axis.
tvector axisscales(const tspatial& s);
// A diagonal matrix of |scale|: rotations are lost, signs too. The zero vector does nothing;
// a single zero component is taken and leaves the matrix singular.
void setscale(tspatial& s, const tvector& scale);
// setscale, then offset times scale component by component (signed): a field fitted to a
// new voxel size stays in place.
void mulscale(tspatial& s, const tvector& scale);
void unflip(tspatial& s);    // every component of every row made positive
void unrotate(tspatial& s);  // the diagonal of the row lengths
// offset := (size * axis scales) / divisor, component by component; 0 divides to zero.
void centeroffset(tspatial& s, const tnatvector& size, double divisor);

// "(v1;v2;v3)", each row a full vector.
utf16 rowstext(const trows& rows);

// The relative position rule of each component along its axis (see position).
tnatvector positions(const tvector& v, const tnatvector& size);
