// Headerless colour pixels of a given size (image.loadraw): the header bytes are passed
// over and the layout of 2, 3 or 4 bytes a pixel is told by the size of the rest.
#pragma once
#include "field/imagefield.h"

bool rawread(timagefield& f, const utf16& name, int64_t header, int64_t w, int64_t h);
