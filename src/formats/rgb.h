// The program's own RGB format: 8 bytes of header (0, 0, 0x20, 0, then width and height as
// 16-bit little-endian numbers), then rows from the top. Written with four bytes a pixel;
// read by the size of the data, which tells 2 (12-bit colour), 3 or 4 bytes a pixel.
#pragma once
#include <cstdint>

#include "field/imagefield.h"

bool rgbread(timagefield& f, const utf16& name);
bool rgbwrite(timagefield& f, const utf16& name);

// Headerless pixels of w by h from the read position of the buffer, the layout told by
// the size of the rest: the reader of the own format and of image.loadraw. badsize is the
// line for a size that fits none of the three layouts.
struct tfilebuffer;
bool rgbpixels(timagefield& f, const tfilebuffer& b, int64_t at, int64_t w, int64_t h, const char* badsize);
