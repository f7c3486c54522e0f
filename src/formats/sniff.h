// A look at a raster file's header before an optional library may decode it: the sizes a
// PNM, PAM, BMP, TGA, TIFF, PNG, GIF or JPEG header claims are held against the file's
// length and against the memory of the machine. A file that claims more than its bytes can
// hold never reaches a library; the own reader answers it with its usual message.
#pragma once
#include <cstdint>
#include <string_view>

struct tsniff {
  bool known = false;      // the header is of one of the formats above
  bool plausible = true;   // false: the header claims what the file cannot hold
  int64_t pixels = 0;      // the claimed width times height, where known
};

// bytes: the whole file (it may be mapped: only the header is read); extension: lower case,
// used only for TGA, which has no signature.
tsniff sniffimage(const uint8_t* bytes, int64_t size, std::string_view extension);

// At most this many pixels pass, whatever the file: four bytes each must fit a quarter of
// the memory (the library, its converted copy and the field each hold one).
int64_t sniffpixellimit();

// True for a binary PNM (P5, or P6 into colour) of maxval 255: the own reader gives the same
// pixels as the libraries, only sooner. kind: the image storage kind it is read into.
bool plainpnm(const uint8_t* bytes, int64_t size, uint8_t kind);
