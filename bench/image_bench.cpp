// Raster file throughput of the own code on the files that bench/image_bench.py makes:
// load and save of PGM and PPM, save of PNG (the own encoder) and load of PNG (FreeImage,
// the one PNG reader the program has). Prints "<operation> <seconds>", best of five; the
// console goes to /dev/null while the work runs.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "field/imagefield.h"
#include "formats/imagefile.h"
#include "formats/imagelibs.h"
#include "formats/png.h"
#include "formats/pnm.h"
#include "shell/console.h"

namespace {

template <class Work>
double best(Work work) {
  double least = 1e30;
  for (int run = 0; run < 5; ++run) {
    const auto start = std::chrono::steady_clock::now();
    work();
    least = std::min(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return least;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string dir = argc > 1 ? argv[1] : ".";
  imagelibrariesopen();
  consoleon = false;
  struct tcase {
    const char* label;
    uint8_t kind;
    const char* pnm;
    const char* png;
  };
  for (const tcase& c : {tcase{"gray", imagegray, "g.pgm", "g.png"}, tcase{"rgb", imagergb, "c.ppm", "c.png"}}) {
    timagefield f{};
    fieldcreate(f, c.kind);
    const utf16 pnm = utf16fromutf8(dir + "/" + c.pnm), png = utf16fromutf8(dir + "/" + c.png);
    const utf16 outpnm = utf16fromutf8(dir + "/out_" + c.pnm), outpng = utf16fromutf8(dir + "/out_" + c.png);
    const double loadpnm = best([&] { pnmread(f, pnm); });
    const double savepnm = best([&] { pnmwrite(f, outpnm, c.kind == imagegray ? tpnmform::pgm : tpnmform::ppm); });
    const double savepng = best([&] { pngwrite(f, outpng); });
    imagelibraryenable(imagemagick, false);
    const double loadpng = freeimage.available ? best([&] { freeimageload(f, png); }) : -1;
    std::printf("%s load PNM %.6f\n%s save PNM %.6f\n%s load PNG %.6f\n%s save PNG %.6f\n", c.label, loadpnm, c.label,
                savepnm, c.label, loadpng, c.label, savepng);
    fieldrelease(f);
  }
  imagelibrariesclose();
  return 0;
}
