// The volume files of imaging devices and other software, read into scalar fields: each
// reader makes f anew in the storage kind it is given (mono, gray, fullgray), converts the
// voxels on the way with f's load filter, and on any failure logs one line and leaves an
// empty (or, where the file says so, a zero) field. True when voxels were read.
#pragma once
#include <string>
#include <vector>

#include "field/scalarfield.h"

// "mif"/"mdf": stem.mif (KEY=value) with stem.mdf; "mifx": stem.mifx (one tag a line) with
// stem.raw. A name of either extension falls to the other header when its own is missing.
bool mifload(tscalarfield& f, uint8_t kind, const utf16& name);
// stem.pcr (key=value text) with the voxels in stem.vol.
bool pcrload(tscalarfield& f, uint8_t kind, const utf16& name);
// A clip file of tags, the voxels as one text line of reals a slice.
bool xmlclipload(tscalarfield& f, uint8_t kind, const utf16& name);
// AmiraMesh lattices: plain, byte run-length (hxbyterle) and zlib (hxzip) data.
bool amiraload(tscalarfield& f, uint8_t kind, const utf16& name);
// The head of an AmiraMesh file, its lines up to "@1".
std::vector<utf16> amirahead(const utf16& name);
// VTK legacy ascii structured points of float scalars.
bool vtkload(tscalarfield& f, uint8_t kind, const utf16& name);
// A CT project file naming its data file, grid size, type, origin and sampling distance.
bool vglload(tscalarfield& f, uint8_t kind, const utf16& name);
// ARF movies: 16-bit big-endian frames, one a slice.
bool arfload(tscalarfield& f, uint8_t kind, const utf16& name);
// Headerless voxels: header bytes passed over, then x*y*z voxels of the type word
// ("byte", "signword", "single", "rgb", ...).
bool rawload(tscalarfield& f, uint8_t kind, const utf16& name, int64_t header, const utf16& type,
             const tnatvector& size);
// The type code of a raw type word, 0 for an unknown word.
int rawtypecode(const utf16& word);
