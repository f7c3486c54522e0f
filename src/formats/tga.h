// TGA: uncompressed 24-bit true colour, written from rgb.
#pragma once
#include "field/imagefield.h"

bool tgawrite(timagefield& f, const utf16& name);
