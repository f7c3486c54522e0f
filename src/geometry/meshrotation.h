// Rotations of a mesh, built from angles, from two directions or from three points, and
// the lines that tell a log what was done, so that a later run can repeat it.
#pragma once
#include <array>
#include <span>
#include <string>
#include <vector>

#include "library/mathquaternion.h"

// Angles in degrees about x, then about the turned y, then about the twice turned z
// (Tait-Bryan X-Y'-Z''), so that the angles printed for a rotation give it back. As rows:
// the images of the x, y and z axes. Multiples of 90 degrees give exact rows.
trows anglerotation(const tvector& degrees);
// The turn that takes the direction of `from` to that of `to`, about from x to. False
// (and no turn) for a zero vector or equal directions; opposite directions turn by 180
// degrees about an axis normal to them.
bool vectorrotation(const tvector& from, const tvector& to, trows& rows);
// The turn that lays the plane of three points parallel to the xy-plane, its normal
// (p2 - p1) x (p3 - p1) along +z. False for points on one line.
bool planerotation(const tvector& p1, const tvector& p2, const tvector& p3, trows& rows);

// X-Y'-Z'' angles in degrees; at +-90 degrees about y the z angle is 0.
tvector taitbryan(const trows& rows);

// "<axis> with angle <degrees>", the axis a unit vector, the angle 0..180.
std::string axisangletext(const trows& rows);

// A number with 5 decimals, never "-0.00000"; numbers joined by blanks.
std::string fivedecimals(std::span<const double> values);

// "Rotate around <axes or axis vector>[ with angle <a>]", the Tait-Bryan angles, the
// quaternion (x, y, z, w with w >= 0) and the matrix (rows: images of the x, y, z axes).
// The axes text names the non-zero components of degrees ("x & y", "x, y & z"); a
// single one, or a rotation by vector (degrees empty), adds the angle.
std::vector<std::string> rotationlines(const trows& rows, const tvector* degrees);
