#include "formats/stackfile.h"

#include <cmath>

#include "field/imagefield.h"
#include "base/filebuffer.h"
#include "field/owned.h"
#include "formats/imagefile.h"
#include "library/filelist.h"
#include "shell/console.h"

namespace {

const char* stackline(uint8_t kind) {
  switch (kind) {
    case scalarmono: return "  3DMono (stack) with (";
    case scalargray: return "  3DGrey (stack) with (";
  }
  return "  3DFullgrey (imagestack) with (";
}

bool samescale(const tvector& a, const tvector& b) { return a[0] == b[0] && a[1] == b[1]; }

// Slice z from an image. Equal pixel sizes place the image centred by a whole-pixel
// shift; other sizes are resampled to the nearest pixel about the common centre.
void putslice(tscalarfield& f, const timagefield& img, int64_t z, const tvector& stackscale) {
  const tnatvector size = fieldsize(f);
  const int64_t w = imagesizex(img), h = imagesizey(img);
  const tvector own = axisscales(img.space);
  const bool same = samescale(own, stackscale) || own[0] <= 0 || own[1] <= 0;
  if (!same) {
    const tvector factor{own[0] / stackscale[0], own[1] / stackscale[1], 1};
    println("  Scale image to new size (" + nattext(roundnat(w * factor[0])) + " x " + nattext(roundnat(h * factor[1])) +
            " [" + realtext(own[0]) + ", " + realtext(own[1]) + "]->[" + realtext(stackscale[0]) + ", " +
            realtext(stackscale[1]) + "]).");
  }
  const double cx = (size[0] + 1) * 0.5, cy = (size[1] + 1) * 0.5, ix = (w + 1) * 0.5, iy = (h + 1) * 0.5;
  const int64_t shiftx = (size[0] - w) / 2, shifty = (size[1] - h) / 2;
  for (int64_t y = 1; y <= size[1]; ++y) {
    for (int64_t x = 1; x <= size[0]; ++x) {
      const int64_t sx = same ? x - shiftx : roundnat((x - cx) * stackscale[0] / own[0] + ix);
      const int64_t sy = same ? y - shifty : roundnat((y - cy) * stackscale[1] / own[1] + iy);
      if (sx < 1 || sx > w || sy < 1 || sy > h) continue;
      const int64_t v = getvalue(img, sx, sy);
      setvalue(f, x, y, z, f.kind == scalarmono ? (v > 127 ? 1 : 0) : v);
    }
  }
}

utf16 slicename(const utf16& name, int64_t z, int64_t count) {
  const utf16 ext = fileextension(name);
  const utf16 base = empty(ext) ? name : copy(name, 1, length(name) - length(ext) - 1);
  utf16 number = nattext(z);
  while (length(number) < length(nattext(count))) number = "0" + number;
  return base + "_" + number + "." + ext;
}

}  // namespace

int64_t stackfiles(const utf16& pattern, tfilelist& files) {
  filelistnew(files, pattern);
  const int64_t n = filelistcount(files);
  if (n < 1) println("Stack empty for files (" + pattern + ") .");
  return n;
}

bool stackload(tscalarfield& f, uint8_t kind, const utf16& pattern, const tvector& scale) {
  tfilelist files{};
  const int64_t n = stackfiles(pattern, files);
  fieldcreate(f, kind);
  if (n < 1) return false;
  println(stackline(kind) + nattext(n) + " images)");
  const uint8_t imagekind = kind == scalarfullgray ? imagefullgray : imagegray;
  tvector stackscale{1, 1, 1};
  for (int64_t z = 1; z <= n; ++z) {
    tlocalfield<timagefield> slice;
    timagefield& img = *slice;
    fieldcreate(img, imagekind);
    imageload(img, files.entries[static_cast<size_t>(z - 1)].name, imagekind);
    if (z == 1) {
      fieldcreate(f, kind, {imagesizex(img), imagesizey(img), n});
      if (scale[0] > 0 && scale[1] > 0 && scale[2] > 0) {
        setmatrix(f.space, {tvector{scale[0], 0, 0}, tvector{0, scale[1], 0}, tvector{0, 0, scale[2]}});
      } else {
        setmatrix(f.space, img.space.matrix);
        setoffset(f.space, img.space.offset);
      }
      stackscale = axisscales(f.space);
    }
    if (!fieldempty(img) && !fieldempty(f)) putslice(f, img, z, stackscale);
  }
  f.title = pattern;
  return !fieldempty(f);
}

bool stacksave(const tscalarfield& f, const utf16& name) {
  const tnatvector size = fieldsize(f);
  if (fieldempty(f)) return false;
  const uint8_t imagekind = f.kind == scalarfullgray ? imagefullgray : imagegray;
  bool ok = true;
  for (int64_t z = 1; z <= size[2]; ++z) {
    tlocalfield<timagefield> slice;
    timagefield& img = *slice;
    fieldcreate(img, imagekind, {size[0], size[1], 1});
    setmatrix(img.space, f.space.matrix);
    setoffset(img.space, localtoglobal(f.space, {1, 1, static_cast<double>(z)}));
    for (int64_t y = 1; y <= size[1]; ++y)
      for (int64_t x = 1; x <= size[0]; ++x) setvalue(img, x, y, static_cast<double>(getvalue(f, x, y, z)));
    ok = imagesave(img, slicename(name, z, size[2])) && ok;
  }
  return ok;
}
