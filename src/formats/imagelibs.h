// FreeImage and ImageMagick's MagickWand, opened at run time when they are installed: they
// widen image.load and image.save to the formats they know (PNG, JPEG, TIFF, GIF and
// more). Nothing is linked against them and none of their headers is used; the few
// routines needed are declared here by their published signatures. Missing libraries are
// silent: the program's own readers and writers do the work.
#pragma once
#include <string>

#include "field/imagefield.h"

struct timagelibrary {
  void* handle = nullptr;
  bool available = false;  // found, its routines there and initialised
  bool enabled = false;    // asked before the own code; on when available
  std::string version;
};

extern timagelibrary freeimage;
extern timagelibrary imagemagick;

// Search, open and initialise both (once; later calls do nothing), and the end of both.
void imagelibrariesopen();
void imagelibrariesclose();
// The status line of the help: "FreeImage (<version>) ready!", empty when not available.
std::string imagelibrarystatus(const timagelibrary& l);
// The enable and disable commands: a library that is not there stays off.
void imagelibraryenable(timagelibrary& l, bool on);

// Each library's own opening and end, behind imagelibrariesopen and imagelibrariesclose.
void openfreeimage();
void closefreeimage();
void openmagick();
void closemagick();

// False where the own reader gives the same pixels as the libraries, only sooner (binary
// PNM of 8 bits): then they are not asked.
bool librariesasked(uint8_t kind, const utf16& name);
// True when the library is enabled and did the work; false lets the next one try.
bool freeimageload(timagefield& f, const utf16& name);
bool freeimagesave(timagefield& f, const utf16& name);
bool magickload(timagefield& f, const utf16& name);
bool magicksave(timagefield& f, const utf16& name);

// The formats the libraries add, as the help lists them behind the own ones.
inline constexpr const char* imagelibrarynote = "TGA, TIF, PNG, JPG, GIF through FreeImage or ImageMagick";
