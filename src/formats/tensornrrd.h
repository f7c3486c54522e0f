// Tensor fields as NRRD: a text header (kind 3D-symmetric-matrix, RAS space, the field's
// axes and origin) and the six values xx, xy, xz, yy, yz, zz of each voxel in turn, as
// little-endian doubles (float storage) or 64-bit integers (integer storage).
#pragma once
#include "field/tensorfield.h"
#include "script/utf16.h"

// ".nhdr": the header, naming stem + ".raw", which holds the values. Any other name: the
// header, an empty line and the values in one file. Nothing for an empty field.
bool tensornrrdsave(const ttensorfield& f, const utf16& name);
