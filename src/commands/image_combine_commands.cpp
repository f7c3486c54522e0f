// The image family's own arithmetic: new := image.op old1 old2 ...; the loop lives in ops/.
#include "commands/combine_handlers.h"
#include "commands/fieldrows.h"

namespace {

using namespace combinewords;
namespace pm = pixelmath;
constexpr auto& W = imageworkspace;
constexpr tcount twoorthree{2, 3};

// The middle of three values; a colour counts as its sum and the result goes into each
// of its components.
void mediancmd(tscript& s) {
  if (!checkcount(s, exactly(3))) return;
  auto c = combination<W>(s, 1, 3);
  if (c) runcombination(c, median, perchannel(1, pm::median3), {1, 1, 1}, 1);
}

const tcommand rows[] = {
    eitherway("mul", expressioncmd<W, twoorthree, multiply, pm::mul>,
              "new := mul old1 old2 [old3] // old1 * old2 div 255 (div 65535 for 16 bit)"),
    eitherway("mul.gauss", expressioncmd<W, exactly(3), multiplygauss, pm::mulgauss>,
              "new := mul.gauss old1 old2 old3 // (old1 div 2) * old2 * (old3 div 2) div 16129"),
    eitherway("div", expressioncmd<W, exactly(2), divide, pm::div>,
              "new := div old1 old2 // old1 * 256 div (old2 + 1) (* 65536 for 16 bit)"),
    eitherway("mean", expressioncmd<W, twoorthree, averaging, pm::mean>, "new := mean old1 old2 [old3] // the mean of 2 or 3 images"),
    eitherway("median", mediancmd, "new := median old1 old2 old3 // the middle of three values"),
    eitherway("intensity", intensitycmd<W>,
              "new := intensity old1 old2 80 120 // two exposures into one: (old1/80 + old2/120)/2 * (80+120)/2"),
    eitherway("hdr", intensitycmd<W>, "new := hdr old1 old2 80 120 // same as intensity"),
};

}  // namespace

std::span<const tcommand> imagecombinerows() { return rows; }
