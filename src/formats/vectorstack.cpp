// Image stacks as vector fields: slice z is the z-th image of the pattern, each pixel's
// colour over 255 its vector; smaller images lie centred, pixels outside are left out.
#include "field/imagefield.h"
#include "field/owned.h"
#include "formats/imagefile.h"
#include "formats/stackfile.h"
#include "formats/vectorformats.h"
#include "library/filelist.h"
#include "script/values.h"

namespace {

void putslice(tvectorfield& f, const timagefield& img, int64_t z) {
  const tnatvector size = fieldsize(f);
  const int64_t w = imagesizex(img), h = imagesizey(img);
  const int64_t shiftx = (size[0] - w) / 2, shifty = (size[1] - h) / 2;
  eachstorage(f, [&](auto& a) {
    using E = vectorelement<decltype(a)>;
    for (int64_t y = 1; y <= h; ++y)
      for (int64_t x = 1; x <= w; ++x) {
        const int64_t tx = x + shiftx, ty = y + shifty;
        if (!a.inside(tx, ty, z)) continue;
        const trgb c = getrgb(img, x, y);
        a.put(tx, ty, z, writevector<E>({c[0] / 255.0, c[1] / 255.0, c[2] / 255.0}));
      }
  });
}

}  // namespace

bool rgbstackload(tvectorfield& f, uint8_t kind, const utf16& pattern) {
  tfilelist files{};
  const int64_t n = stackfiles(pattern, files);
  fieldcreate(f, kind);
  if (n < 1) return false;
  println("  3DRGB (stack) with (" + nattext(n) + " images)");
  for (int64_t z = 1; z <= n; ++z) {
    tlocalfield<timagefield> slice;
    timagefield& img = *slice;
    imageload(img, files.entries[static_cast<size_t>(z - 1)].name, imagergb);
    if (z == 1) {
      fieldcreate(f, kind, {imagesizex(img), imagesizey(img), n});
      setmatrix(f.space, img.space.matrix);
      setoffset(f.space, img.space.offset);
    }
    if (!fieldempty(img) && !fieldempty(f)) putslice(f, img, z);
  }
  return !fieldempty(f);
}
