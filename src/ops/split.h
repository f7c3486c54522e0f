// Images taken apart by colour and put together from gray images: the split commands
// write one gray image per colour plane or class, the extraction keeps the pixels of
// given colours, and the combination makes a colour image of gray channels. All of them
// see a pixel in 8 bits: fullgray shifted right by 8, colour components as they are.
#pragma once
#include <cstdint>
#include <span>
#include <vector>

#include "field/imagefield.h"
#include "script/utf16.h"

// The planes of the rgb and rgba splits and of the rainbow split, in the order in which
// the split routines fill them; the names are the suffixes of their entries.
inline constexpr const char* rgbaplanes[] = {"red", "green", "blue", "alpha"};
inline constexpr const char* rainbowplanes[] = {"red", "green", "blue", "yellow", "cyan", "purple", "gray"};

// A parameter holds a colour when it has a blank, comma or semicolon: <r, g, b>.
bool colourtext(const utf16& text);
// A colour parameter, or a number for the gray <v, v, v>; components clamped to 0..255.
trgb textcolour(const utf16& text);
// The 8-bit colour of a pixel: gray repeated, fullgray shifted right by 8, colour as kept.
trgb splitcolour(const timagefield& f, int64_t x, int64_t y);

// Whether a split of the field has to squeeze pixels into 8 bits: fullgray always, colour
// when the planes hold the pixel's gray (togray); an empty field has none.
bool splitreduces(const timagefield& source, bool togray);

// Each plane is made a gray image of the source's size and place in space. Red, green,
// blue (and alpha when four planes are given).
void splitrgb(const timagefield& source, std::span<timagefield* const> planes);
// The seven planes of rainbowplanes; `shift` low bits of each component are dropped before
// the strongest components are told.
void splitrainbow(const timagefield& source, int shift, std::span<timagefield* const> planes);
// One plane per colour: a pixel's gray goes into the plane of the colour nearest to it.
void splitcolours(const timagefield& source, std::span<const trgb> colours, std::span<timagefield* const> planes);

// The key of a colour for the extraction: r * 65536 + g * 256 + b. A scalar pixel's key
// is its value, as is a number given as a parameter.
int64_t textkey(const utf16& text);
int64_t pixelkey(const timagefield& f, int64_t x, int64_t y);
// The pixels of source whose key is one of keys, into the target; elsewhere it stays.
void imageextract(timagefield& target, const timagefield& source, std::vector<int64_t> keys);

// The target's channels from the 8-bit gray of 2 to 4 operands: red and blue, red, green
// and blue, or red, green, blue and alpha.
void imagecombineplanes(timagefield& target, std::span<const timagefield* const> operands);
