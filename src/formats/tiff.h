// TIFF: little-endian, uncompressed, one strip, written from every kind: gray as 8 bit,
// fullgray as 16 bit, the colour kinds as 8-bit RGB. The gray directory keeps the
// program's fixed table, whose strip byte count and sample range entries stand as they
// always have, also where they do not describe 8-bit data.
#pragma once
#include "field/imagefield.h"

bool tiffwrite(timagefield& f, const utf16& name);
