// Vector fields in NIfTI-1: the scalar header with dim[0] = 5, dim[5] = 3, intent VECTOR
// (1007), sform only, and the voxels as three component planes (all x, then all y, then
// all z) of 64-bit floats (float and rgb storage) or 64-bit integers (integer storage).
// Reading takes every numeric voxel type of the scalar reader, with the components in
// dim[4] or dim[5], and the RGB types as (r, g, b) / 255.
#pragma once
#include <cstdint>

#include "field/tensorfield.h"
#include "field/vectorfield.h"
#include "script/utf16.h"

// ".nii", ".nii.gz", ".hdr" (with ".img"); scale multiplies each component on the way.
// The file appears under its name only when it was written whole.
bool vectorniftisave(const tvectorfield& f, const utf16& name, const tvector& scale);
// The field made anew in kind from the file; every failure is one line and an empty or
// zero field. True when voxels were read.
bool vectorniftiload(tvectorfield& f, uint8_t kind, const utf16& name);

// Tensor fields the same way: dim[5] = 6, intent SYMMATRIX (1005) with intent_p1 3, the
// planes in the order xx, xy, xz, yy, yz, zz.
bool tensorniftisave(const ttensorfield& f, const utf16& name);
bool tensorniftiload(ttensorfield& f, uint8_t kind, const utf16& name);
