// Quaternions as rotations: x, y, z the vector part, w the scalar part, which is the order
// of their text <x, y, z, w>. A quaternion of any length other than zero stands for the
// rotation of its unit quaternion; the zero quaternion stands for no rotation.
#pragma once
#include "library/mathmatrix.h"
#include "script/values.h"

struct tquaternion {
  double x = 0, y = 0, z = 0, w = 1;
};

tquaternion quaternion(const thyper& h);
thyper hyperof(const tquaternion& q);

// The rotation by angle (radians) about axis; a zero axis gives no rotation.
tquaternion axisangle(const tvector& axis, double angle);
// The unit axis (zero without rotation) and the angle 0..2 pi.
tvector rotationaxis(const tquaternion& q);
double rotationangle(const tquaternion& q);
tquaternion conjugate(const tquaternion& q);
tquaternion hamilton(const tquaternion& a, const tquaternion& b);
// The rotation a, followed by the rotation b: the product b a.
tquaternion joined(const tquaternion& a, const tquaternion& b);
tvector rotated(const tquaternion& q, const tvector& v);
// The images of the unit axes, the rows of the rotation in matrix layout.
trows quaternionrows(const tquaternion& q);
tmatrix quaternionmatrix(const tquaternion& q);
// The unit quaternion with w >= 0 of the rotation part of a matrix (scale removed).
tquaternion matrixquaternion(const tmatrix& m);
