// Drawing on images with the program's own 8x16 bitmap font and primitives, so that charts
// and overviews need no system font. Coordinates are pixels from 1; what falls outside the
// image is skipped. Colours carry alpha: 255 covers, less blends with what is there.
#pragma once
#include <cstdint>
#include <array>
#include <vector>

#include "field/imagefield.h"
#include "script/utf16.h"

enum class tfontstyle { normal, bold, narrow };

// The 16 rows of a code point's glyph, or nullptr for code point 0; anything without a
// glyph gives the box.
const uint8_t* glyphrows(uint32_t codepoint);
// Combining marks (768..800) are drawn over the character before them.
inline bool combining(uint32_t c) { return c >= 768 && c <= 800; }
// Pixels the text advances: 8 a character (7 narrow), none for combining marks.
int64_t textwidth(const utf16& text, tfontstyle style = tfontstyle::normal);

using tpixels = std::vector<std::array<int64_t, 2>>;
// The pixels a text or a circle outline covers, each once: for drawing in any value.
tpixels textpixels(int64_t x, int64_t y, const utf16& text, tfontstyle style = tfontstyle::normal);
tpixels circlepixels(int64_t cx, int64_t cy, int64_t r);

void drawpoint(timagefield& f, int64_t x, int64_t y, const trgba& c);
// Top-left at (x, y); the background stays.
void drawtext(timagefield& f, int64_t x, int64_t y, const utf16& text, const trgba& c,
              tfontstyle style = tfontstyle::normal);
// Bresenham steps from (x0, y0) to (x1, y1), both ends drawn.
void drawline(timagefield& f, int64_t x0, int64_t y0, int64_t x1, int64_t y1, const trgba& c);
void drawrectangle(timagefield& f, int64_t x0, int64_t y0, int64_t x1, int64_t y1, const trgba& c);
void fillrectangle(timagefield& f, int64_t x0, int64_t y0, int64_t x1, int64_t y1, const trgba& c);
void drawcircle(timagefield& f, int64_t cx, int64_t cy, int64_t r, const trgba& c);
// The closed outline through the points.
void drawpolygon(timagefield& f, const std::vector<std::array<int64_t, 2>>& points, const trgba& c);
// The text turned a quarter to the left, reading upward: (x, y) is the left end of the
// glyphs' tops, the text runs up from y.
void drawtextup(timagefield& f, int64_t x, int64_t y, const utf16& text, const trgba& c);
