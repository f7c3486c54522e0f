// BMP and DIB: uncompressed Windows and OS/2 bitmaps of 1, 4, 8, 24 and 32 bits read into
// every kind; 24-bit ones written from rgb.
#pragma once
#include "field/imagefield.h"

bool bmpread(timagefield& f, const utf16& name);
bool bmpwrite(timagefield& f, const utf16& name);
