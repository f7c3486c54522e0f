// Scalar fields and their files: which reader or writer a name gets, and what follows a
// load (the atlas labels) or a save (the label file).
#pragma once
#include <span>
#include <string>

#include "field/scalarfield.h"
#include "formats/formattable.h"

using tscalarformat = tformatrow<bool (*)(tscalarfield&, uint8_t, const utf16&), bool (*)(const tscalarfield&, const utf16&)>;

// The volume readers and writers, one row a format, and the help's notes made from them.
std::span<const tscalarformat> scalarformats();
std::string scalarinputnote();
std::string scalaroutputnote();

// Volume by the lower-cased extension, else an image stack. The field is made anew in kind
// and keeps its load filter. After a volume load the atlas beside the file is read.
bool scalarload(tscalarfield& f, uint8_t kind, const utf16& name);
// The forced readers: NIfTI and Analyze whatever the extension says; any volume reader of
// formats/volumeformats.h the same way (the field keeps its filter, the atlas is read).
bool scalarloadnifti(tscalarfield& f, uint8_t kind, const utf16& name);
using tscalarreader = bool (*)(tscalarfield&, uint8_t, const utf16&);
bool scalarloadwith(tscalarfield& f, uint8_t kind, const utf16& name, tscalarreader read);
// Headerless voxels: header bytes, a type word ("byte", "word", "single", ...) and a size.
bool scalarloadraw(tscalarfield& f, uint8_t kind, const utf16& name, int64_t header, const utf16& type,
                   const tnatvector& size);
// A stack with a given voxel size.
bool scalarloadscale(tscalarfield& f, uint8_t kind, const utf16& name, const tvector& scale);
// Only offset and matrix from the file's header, when the header has sizes.
bool scalarloadproperties(tscalarfield& f, const utf16& name);
// The file read into a field of f's kind and filter, then merged into f through global
// space: a new value where f is not positive, else the mean of both. center first moves
// the source so that both centres coincide.
void scalarappend(tscalarfield& f, const utf16& name, bool center);

// ".hdr", ".nii", ".nii.gz" as volumes, any other extension as one image a slice; a field
// with labels also writes them beside as stem + ".labels".
bool scalarsave(const tscalarfield& f, const utf16& name);

// The header as text, to the log or into the file out: NIfTI's fields, an Amira file's head.
void scalarinfo(const utf16& name, const utf16& out);

// Label files: one label a line, "<value> <name>", values 0..999.
bool labelsave(const tscalarfield& f, const utf16& name);
bool labelload(tscalarfield& f, const utf16& name);
// The names of the <area> entries of stem + ".atlas.xml" become labels behind the present ones.
void atlaslookup(tscalarfield& f, const utf16& name);
