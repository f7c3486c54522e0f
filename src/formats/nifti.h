// NIfTI-1 volumes of scalar fields: a single ".nii" file, a ".hdr" and ".img" pair
// (Analyze 7.5 in the user's words), and the same gzip-compressed.
#pragma once
#include <cstdint>

#include "field/scalarfield.h"
#include "formats/niftiheader.h"

// Reads a volume into f, made anew in kind. stack selects the volume of a 4-D file (1 the
// first, negative counts from the end); add and mul are the load filter. Every failure is
// one line and an empty or zero field; true when voxels were read.
bool niftiload(tscalarfield& f, uint8_t kind, const utf16& name, int64_t stack, int64_t add, int64_t mul);

// Writes f as ".nii", ".nii.gz" or ".hdr" with ".img" by the extension; a name of any
// other extension gets ".nii" appended. Nothing for an empty field.
bool niftisave(const tscalarfield& f, const utf16& name);

// The header alone, from ".hdr" for either name of a pair; all zero and false when it is
// no NIfTI-1 header in either byte order.
bool niftiheaderread(const utf16& name, tniftiheader& h);

// The name of the header file and of the data file of a volume name.
utf16 niftiheadername(const utf16& name);
utf16 niftidataname(const utf16& name);
