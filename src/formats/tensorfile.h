// Tensor fields and their files: which reader or writer a name gets, the header alone, and
// merging a file into a field.
#pragma once
#include <span>
#include <string>

#include "field/tensorfield.h"
#include "formats/formattable.h"

using ttensorformat = tformatrow<bool (*)(ttensorfield&, uint8_t, const utf16&), bool (*)(const ttensorfield&, const utf16&)>;

std::span<const ttensorformat> tensorformats();
std::string tensorinputnote();
std::string tensoroutputnote();

// By the lower-cased extension; the field is made anew in kind. Other names read nothing
// and leave the field empty; they are written as NRRD.
bool tensorload(ttensorfield& f, uint8_t kind, const utf16& name);
bool tensorsave(const ttensorfield& f, const utf16& name);
// Offset and matrix from the file's header alone.
bool tensorloadproperties(ttensorfield& f, const utf16& name);
// The file merged into f through global space: the new tensor where f has none, else the
// mean of both.
void tensorappend(ttensorfield& f, const utf16& name);
