// The image side of the file layer: which reader and writer a name gets. The own formats
// are the rows of one table; the optional libraries are asked first.
#pragma once
#include <span>
#include <string>

#include "field/imagefield.h"
#include "formats/formattable.h"
#include "formats/imagecodec.h"

using timageformat =
    tformatrow<bool (*)(timagefield&, const utf16&), bool (*)(timagefield&, const utf16&)>;

// The own readers and writers, one row a format.
std::span<const timageformat> imageformats();
// The help's notes of image.input and image.type.
std::string imageinputnote();
std::string imageoutputnote();

// Loading and saving with the optional libraries first: "Read file (<name>)." or "Write
// file (<name>).", then FreeImage, ImageMagick and the own code, as far as they are
// enabled and succeed. The load creates the field anew in the given kind; an empty result
// resets its name and place in space.
bool imageload(timagefield& f, const utf16& name, uint8_t kind);
bool imagesave(timagefield& f, const utf16& name);
// The own reader of the name for the field's kind, and the own writer.
bool ownread(timagefield& f, const utf16& name);
bool ownwrite(timagefield& f, const utf16& name);
