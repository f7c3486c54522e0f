// IMGF, the image files of GE MR Signa 5.x scanners: "IMGF", then a record of six
// little-endian 32-bit numbers: data offset, width, height, depth, compression (1 means
// none) and the background value; 8 or 16 bits a pixel, rows from the top.
#pragma once
#include "field/imagefield.h"

bool imgfread(timagefield& f, const utf16& name);
