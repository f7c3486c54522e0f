#include "formats/imagefile.h"

#include "formats/bmp.h"
#include "formats/imagelibs.h"
#include "formats/imgf.h"
#include "formats/png.h"
#include "formats/pnm.h"
#include "formats/rgb.h"
#include "formats/tga.h"
#include "formats/tiff.h"
#include "shell/console.h"

namespace {

bool colour(uint8_t kind) { return colourkind(kind); }
// zrgb goes as the rgb of its colour planes; alpha only where a format keeps it.
bool colournoalpha(uint8_t kind) { return colourkind(kind) && kind != imagergba; }
bool colourorgray(uint8_t kind) { return colourkind(kind) || kind == imagegray || kind == imagefullgray; }

bool pbmwrite(timagefield& f, const utf16& name) { return pnmwrite(f, name, tpnmform::pbm); }
bool pgmwrite(timagefield& f, const utf16& name) { return pnmwrite(f, name, tpnmform::pgm); }
bool ppmwrite(timagefield& f, const utf16& name) { return pnmwrite(f, name, tpnmform::ppm); }
bool pamwrite(timagefield& f, const utf16& name) { return pnmwrite(f, name, tpnmform::pam); }

constexpr tfieldkind image = tfieldkind::image;

// A name that no row with extensions writes goes as PNG when PNG takes its kind.
constexpr timageformat formats[] = {
    {"pbm pgm ppm pnm pam pbm.gz pgm.gz ppm.gz pnm.gz pam.gz", image, pnmread, nullptr, nullptr,
     "PNM (PBM, PGM, PPM, PAM)", nullptr},
    {"pbm pbm.gz", image, nullptr, pbmwrite, colour, nullptr, "PNM (PBM, PGM, PPM)"},
    {"pgm pgm.gz", image, nullptr, pgmwrite, colourorgray, nullptr, nullptr},
    {"ppm ppm.gz pnm pnm.gz", image, nullptr, ppmwrite, colour, nullptr, nullptr},
    {"pam pam.gz", image, nullptr, pamwrite, colour, nullptr, nullptr},
    {"bmp dib", image, bmpread, bmpwrite, colournoalpha, "BMP (DIB)", "BMP (DIB)"},
    {"rgb", image, rgbread, rgbwrite, colour, "RGB", nullptr},
    {"imgf fro fre pd t1 t2", image, imgfread, nullptr, nullptr, "IMGF", nullptr},
    {"tga", image, nullptr, tgawrite, colournoalpha, nullptr, "TGA"},
    {"tif tiff", image, nullptr, tiffwrite, nullptr, nullptr, "TIF"},
    {"", image, nullptr, pngwrite, colourorgray, nullptr, "PNG"},
};

utf16 lowerextension(const utf16& name) { return lower(fileextension(name)); }

}  // namespace

std::span<const timageformat> imageformats() { return formats; }

std::string imageinputnote() {
  // Raw has no extension of its own: loadraw reads it with the sizes it is given.
  return formatnotes(imageformats(), false) + ", raw; " + imagelibrarynote;
}

std::string imageoutputnote() { return formatnotes(imageformats(), true); }

bool ownread(timagefield& f, const utf16& name) {
  if (const timageformat* r = formatrow(imageformats(), lowerextension(name), false)) return r->read(f, name);
  return readfailed(f, "  Couldn't read File (" + name + ")! Create empty field.");
}

bool ownwrite(timagefield& f, const utf16& name) {
  const timageformat* r = formatrow(imageformats(), lowerextension(name), true, f.kind);
  return r && r->write(f, name);
}

bool imageload(timagefield& f, const utf16& name, uint8_t kind) {
  fieldcreate(f, kind);
  if (f.kind == 0) return false;
  println("Read file (" + shortname(name) + ").");
  bool done = (librariesasked(f.kind, name) && (freeimageload(f, name) || magickload(f, name))) || ownread(f, name);
  if (done && fieldempty(f)) done = false;
  if (!done) {
    fieldcreate(f, f.kind);
    f.name = utf16();
  }
  return done;
}

bool imagesave(timagefield& f, const utf16& name) {
  if (f.kind == 0) return false;
  println("Write file (" + shortname(name) + ").");
  if (fieldempty(f)) {
    println("Empty file!");
    return false;
  }
  return freeimagesave(f, name) || magicksave(f, name) || ownwrite(f, name);
}
