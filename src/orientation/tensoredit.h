// Edits of a tensor field in place: component scaling and mirrors.
#pragma once
#include "field/tensorfield.h"
#include "script/values.h"

// Each (xx, yy, zz) times a, each (xy, xz, yz) times b, component by component.
void tensormul(ttensorfield& t, const tvector& a, const tvector& b);
// Mirror along axis 0, 1, 2 (x, y, z), swapping voxels, and negate the two off-diagonal
// entries that hold that axis.
void tensorflip(ttensorfield& t, int axis);

// True when every voxel holds the same tensor (also for an empty field).
bool plaintensors(const ttensorfield& t);
