// Vector fields and their files: which reader or writer a name gets, the header alone, and
// merging a file into a field.
#pragma once
#include <span>
#include <string>

#include "field/vectorfield.h"
#include "formats/formattable.h"

using tvectorformat = tformatrow<bool (*)(tvectorfield&, uint8_t, const utf16&),
                                 bool (*)(const tvectorfield&, const utf16&, const tvector&)>;

// The vector readers and writers, one row a format, and the help's notes made from them.
std::span<const tvectorformat> vectorformats();
std::string vectorinputnote();
std::string vectoroutputnote();

// By the lower-cased extension; the field is made anew in kind (a text file keeps the
// field's size and place). scale multiplies each component on the way out.
bool vectorload(tvectorfield& f, uint8_t kind, const utf16& name);
bool vectorsave(const tvectorfield& f, const utf16& name, const tvector& scale);

// Offset and matrix from the file's header alone.
bool vectorloadproperties(tvectorfield& f, const utf16& name);
// The same for any field's place in space.
bool loadspaceproperties(tspatial& space, const utf16& name);
// The file merged into f through global space: the new vector where f has none, else the
// mean of both.
void vectorappend(tvectorfield& f, const utf16& name);
