// Vector fields in NIfTI-1: the scalar header with dim[0] = 5, dim[5] = 3, intent VECTOR
// (1007), sform only, and the voxels as three component planes (all x, then all y, then
// all z) of 64-bit floats (float and rgb storage) or 64-bit integers (integer storage).
// Reading takes every numeric voxel type of the scalar reader, with the components in
// dim[4] or dim[5], and the RGB types as (r, g, b) / 255.
#pragma once
#include <cstdint>

#include "field/vectorfield.h"
#include "script/utf16.h"

// ".nii", ".nii.gz", ".hdr" (with ".img"); scale multiplies each component on the way.
// The file appears under its name only when it was written whole.
bool vectorniftisave(const tvectorfield& f, const utf16& name, const tvector& scale);
// The field made anew in kind from the file; every failure is one line and an empty or
// zero field. True when voxels were read.
bool vectorniftiload(tvectorfield& f, uint8_t kind, const utf16& name);

// By the lower-cased extension: the NIfTI forms; other formats are not in this build
// ("Not provided!").
bool vectorload(tvectorfield& f, uint8_t kind, const utf16& name);
bool vectorsave(const tvectorfield& f, const utf16& name, const tvector& scale);

// Offset and matrix from the file's header alone.
bool vectorloadproperties(tvectorfield& f, const utf16& name);
// The file merged into f through global space: the new vector where f has none, else the
// mean of both.
void vectorappend(tvectorfield& f, const utf16& name);
