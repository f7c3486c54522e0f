// Feeds arbitrary bytes as a raster file through the own readers or through image.load with
// FreeImage and ImageMagick enabled (where installed). The first byte picks the reader (PNM,
// BMP, own RGB, IMGF, raw, then the load by extension: PNG, TIFF, TGA, GIF, JPEG, PPM) and the
// kind of the field it reads into; the rest is the file. A reader must end with a field that
// is either empty or whole.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "field/imagefield.h"
#include "formats/bmp.h"
#include "formats/imagefile.h"
#include "formats/imagelibs.h"
#include "formats/imagelibchild.h"
#include "formats/imgf.h"
#include "formats/pnm.h"
#include "formats/raw.h"
#include "formats/rgb.h"
#include "shell/console.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  consoleon = false;
  // Enough for every small image; a library that pads a tiny file to a claimed giant is refused
  // before it spends the fuzzer's time.
  setfieldmemorylimit(int64_t{64} << 20);
  // A hung library decode is stopped by design; here it must not reach the fuzzer's timeout.
  librarybaseseconds = 2;
  static const uint8_t kinds[] = {imagegray, imagefullgray, imagergb, imagergba, imagezrgb};
  const uint8_t kind = kinds[(data[0] >> 4) % 5];
  const int reader = data[0] % 11;
  static const char* const endings[] = {".pnm", ".bmp", ".rgb", ".imgf", ".raw", ".png", ".tif", ".tga", ".gif", ".jpg", ".ppm"};
  imagelibrariesopen();
  const std::string name = "/tmp/voxmill-fuzz-" + std::to_string(getpid()) + endings[reader];
  if (FILE* f = std::fopen(name.c_str(), "wb")) {
    std::fwrite(data + 1, 1, size - 1, f);
    std::fclose(f);
  }
  timagefield field{};
  fieldcreate(field, kind);
  const utf16 file = utf16fromutf8(name);
  switch (reader) {
    case 0: pnmread(field, file); break;
    case 1: bmpread(field, file); break;
    case 2: rgbread(field, file); break;
    case 3: imgfread(field, file); break;
    case 4: rawread(field, file, size > 1 ? data[1] % 16 : 0, size > 2 ? data[2] % 64 : 0, size > 3 ? data[3] % 64 : 0); break;
    default: imageload(field, file, kind); break;
  }
  // Every plane of the kind has the field's size, or the field is empty.
  const tnatvector s = fieldsize(field);
  eachstorage(field, [&](const auto& a) {
    if (fieldcount(s[0], s[1]) > 0 && a.length != fieldcount(s[0] * supersampling(field), s[1] * supersampling(field)))
      __builtin_trap();
  });
  fieldrelease(field);
  std::remove(name.c_str());
  return 0;
}
