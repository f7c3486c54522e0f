// PNG written by the program itself, without compression: the zlib stream is made of
// stored blocks. An image of less than 1 MiB of raw rows goes out in one IDAT; a larger
// one a row per IDAT, so that no more than one row is held besides the image.
#pragma once
#include <cstdint>

#include "field/imagefield.h"

bool pngwrite(timagefield& f, const utf16& name);
// The IDAT data length of n raw bytes in one chunk: blocks of 8192 with five bytes each,
// the zlib header and the Adler-32.
int64_t pngidatlength(int64_t n);
