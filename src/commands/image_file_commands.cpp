// Image files and pixels: load, the forced loaders, save, value, background, the two
// tests, and the global switches of the optional image libraries.
#include "commands/families.h"
#include "commands/fieldrows.h"
#include "field/workspaces.h"
#include "formats/bmp.h"
#include "formats/imagefile.h"
#include "formats/imagelibs.h"
#include "formats/imgf.h"
#include "formats/pnm.h"
#include "formats/raw.h"
#include "formats/rgb.h"
#include "library/filelist.h"
#include "shell/console.h"

namespace {

// The name of the one parameter; empty (and nothing to do) for a wrong count or no name.
utf16 nameparam(tscript& s) {
  if (!checkparams(s, 1)) return utf16();
  return firstmatch(param(s, 1));
}

void loadcmd(tscript& s) {
  const utf16 name = nameparam(s);
  if (!empty(name)) imageload(currentfield(imageworkspace), name, imageworkspace.defaultkind);
}

// The forced loaders: the reader without the libraries, into a field of the bit level.
template <bool (*reader)(timagefield&, const utf16&)>
void forcedcmd(tscript& s) {
  const utf16 name = nameparam(s);
  if (empty(name)) return;
  timagefield& f = currentfield(imageworkspace);
  fieldcreate(f, imageworkspace.defaultkind);
  if (f.kind == 0) return;
  println("Read file (" + shortname(name) + ").");
  if (!reader(f, name) || fieldempty(f)) {
    fieldcreate(f, f.kind);
    f.name = utf16();
  }
}

void loadrawcmd(tscript& s) {
  if (!checkparams(s, 4)) return;
  const utf16 name = firstmatch(param(s, 1));
  if (empty(name)) return;
  const int64_t header = textnat(param(s, 2)), w = textnat(param(s, 3)), h = textnat(param(s, 4));
  timagefield& f = currentfield(imageworkspace);
  fieldcreate(f, imageworkspace.defaultkind);
  if (f.kind == 0) return;
  println("Read file (" + shortname(name) + ").");
  if (!rawread(f, name, header, w, h) || fieldempty(f)) {
    fieldcreate(f, f.kind);
    f.name = utf16();
  }
}

void savecmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  const utf16 name = param(s, 1);
  if (!empty(name)) imagesave(currentfield(imageworkspace), name);
}

void ifimagefunc(tscript& s) {
  setresult(s, fieldempty(currentfield(imageworkspace)) ? utf16() : utf16("1"));
}

// x y or <x, y>: the pixel as its kind keeps it, a colour as <r, g, b> or <r, g, b, a>.
void getfunc(tscript& s) {
  const int64_t n = paramcount(s);
  if (n != 1 && n != 2) return reportcount(s, 2);
  const tnatvector at = n == 1 ? textnatvector(param(s, 1)) : tnatvector{textnat(param(s, 1)), textnat(param(s, 2)), 0};
  const timagefield& f = currentfield(imageworkspace);
  if (f.kind == imagergba) return setresult(s, natlisttext(getrgba(f, at[0], at[1]), true));
  if (colourkind(f.kind)) return setresult(s, natlisttext(getrgb(f, at[0], at[1]), true));
  setresult(s, nattext(getvalue(f, at[0], at[1])));
}

void ifplainfunc(tscript& s) { setresult(s, imageplain(currentfield(imageworkspace)) ? utf16("1") : utf16()); }

// One parameter: a colour when it holds a blank, comma or semicolon, a number otherwise;
// two: colour and alpha.
template <bool background>
void colourcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) {
    reportmin(s, 1);
    return;
  }
  if (n > 2) {
    reportmax(s, 2);
    return;
  }
  timagefield& f = currentfield(imageworkspace);
  const utf16 first = param(s, 1);
  const bool colour = n == 2 || poschar(' ', first) > 0 || poschar(',', first) > 0 || poschar(';', first) > 0;
  if (!colour) {
    const double v = textreal(first);
    background ? setbackground(f, v) : setvaluevalue(f, v);
    return;
  }
  const tvector c = textvector(first);
  const trgb rgb{clampround(c[0], 255), clampround(c[1], 255), clampround(c[2], 255)};
  const int64_t alpha = n == 2 ? clampround(textreal(param(s, 2)), 255) : -1;
  background ? setbackgroundrgb(f, rgb, alpha) : setvaluergb(f, rgb, alpha);
}

template <timagelibrary& L, bool on>
void librarycmd(tscript& s) {
  if (checkparams(s, 0)) imagelibraryenable(L, on);
}

using enum tcommandkind;
const tcommand filerows[] = {
    {"load", procedure, loadcmd, nullptr, "load \"name.ppm\" // read an image at the bit level set (FreeImage, ImageMagick, own code)"},
    {"loadpnm", procedure, forcedcmd<pnmread>, nullptr, "loadpnm \"name.pgm\" // read PBM, PGM, PPM or PAM by the own reader"},
    {"loadbmp", procedure, forcedcmd<bmpread>, nullptr, "loadbmp \"name.bmp\" // read a BMP by the own reader"},
    {"loadimgf", procedure, forcedcmd<imgfread>, nullptr, "loadimgf \"name.imgf\" // read a GE Signa image"},
    {"loadrgb", procedure, forcedcmd<rgbread>, nullptr, "loadrgb \"name.rgb\" // read the own RGB format"},
    {"loadraw", procedure, loadrawcmd, nullptr,
     "loadraw \"name.raw\" header x y // headerless colour of 2, 3 or 4 bytes a pixel, told by the file size"},
    {"save", procedure, savecmd, nullptr, "save \"name.png\" // write by the extension: PNM, PAM, BMP, TGA, TIF, RGB, PNG"},
    {"ifimage", variablefunction, ifimagefunc, nullptr, "ifimage // true, if the image has a size bigger than 0x0"},
    {"ifplain", variablefunction, ifplainfunc, nullptr, "ifplain // true, if all pixels are equal"},
    {"get", function, getfunc, nullptr, "a := get x y // or <x, y>: the pixel's value, <r, g, b> or <r, g, b, a> for colour"},
    {"value", procedure, colourcmd<false>, nullptr, "value v // or <r, g, b> [alpha]: the value drawing writes"},
    {"background", procedure, colourcmd<true>, nullptr, "background v // or <r, g, b> [alpha]: the value outside the image"},
};

const tcommand libraryrows[] = {
    {"imagemagick.enable", procedure, librarycmd<imagemagick, true>, nullptr, "imagemagick.enable // use ImageMagick where it is installed"},
    {"imagemagick.disable", procedure, librarycmd<imagemagick, false>, nullptr, "imagemagick.disable // do without ImageMagick"},
    {"freeimage.enable", procedure, librarycmd<freeimage, true>, nullptr, "freeimage.enable // use FreeImage where it is installed"},
    {"freeimage.disable", procedure, librarycmd<freeimage, false>, nullptr, "freeimage.disable // do without FreeImage"},
};

}  // namespace

std::span<const tcommand> imagefilerows() { return filerows; }

tcommandfamily imagelibrarycommands() { return {"", libraryrows}; }
