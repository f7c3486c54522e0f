// The image family's arithmetic: new := image.op old1 old2 ...; the loop lives in ops/.
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

using enum tcommandkind;
const tcommand rows[] = {
    {"select", k3, selectcmd<W>, selectcmd<W>,
     "new := select old <10, 20> 255 // or old 10 [value]: copy (or set to value) the pixels in the range"},
    {"sub", k3, expressioncmd<W, exactly(2), subtraction, pm::sub>, expressioncmd<W, exactly(2), subtraction, pm::sub>, "new := sub old1 old2 // old1 - old2"},
    {"sub.abs", k3, expressioncmd<W, exactly(2), absolutesubtraction, pm::subabs>, expressioncmd<W, exactly(2), absolutesubtraction, pm::subabs>,
     "new := sub.abs old1 old2 // abs(old1 - old2)"},
    {"sub.range", k3, expressioncmd<W, exactly(2), rangesubtraction, pm::subrange>, expressioncmd<W, exactly(2), rangesubtraction, pm::subrange>,
     "new := sub.range old1 old2 // old1 - old2 + 128 (or 32768 for 16 bit)"},
    {"between", k3, expressioncmd<W, exactly(3), neighborsubtraction, pm::between>, expressioncmd<W, exactly(3), neighborsubtraction, pm::between>,
     "new := between old1 old2 old3 // (old2 - old1) + (old2 - old3): old2 between its neighbours"},
    {"add", k3, expressioncmd<W, operandlist, addition, pm::add>, expressioncmd<W, operandlist, addition, pm::add>,
     "new := add old1 old2 ... // the sum of 2 to 99 images"},
    {"add.min", k3, expressioncmd<W, operandlist, minimal, pm::addmin>, expressioncmd<W, operandlist, minimal, pm::addmin>,
     "new := add.min old1 old2 ... // the smallest value of 2 to 99 images"},
    {"add.max", k3, expressioncmd<W, operandlist, maximal, pm::addmax>, expressioncmd<W, operandlist, maximal, pm::addmax>,
     "new := add.max old1 old2 ... // the largest value of 2 to 99 images"},
    {"mul", k3, expressioncmd<W, twoorthree, multiply, pm::mul>, expressioncmd<W, twoorthree, multiply, pm::mul>,
     "new := mul old1 old2 [old3] // old1 * old2 div 255 (div 65535 for 16 bit)"},
    {"mul.gauss", k3, expressioncmd<W, exactly(3), multiplygauss, pm::mulgauss>, expressioncmd<W, exactly(3), multiplygauss, pm::mulgauss>,
     "new := mul.gauss old1 old2 old3 // (old1 div 2) * old2 * (old3 div 2) div 16129"},
    {"div", k3, expressioncmd<W, exactly(2), divide, pm::div>, expressioncmd<W, exactly(2), divide, pm::div>,
     "new := div old1 old2 // old1 * 256 div (old2 + 1) (* 65536 for 16 bit)"},
    {"mean", k3, expressioncmd<W, twoorthree, averaging, pm::mean>, expressioncmd<W, twoorthree, averaging, pm::mean>,
     "new := mean old1 old2 [old3] // the mean of 2 or 3 images"},
    {"median", k3, mediancmd, mediancmd, "new := median old1 old2 old3 // the middle of three values"},
    {"intensity", k3, intensitycmd<W>, intensitycmd<W>,
     "new := intensity old1 old2 80 120 // two exposures into one: (old1/80 + old2/120)/2 * (80+120)/2"},
    {"hdr", k3, intensitycmd<W>, intensitycmd<W>, "new := hdr old1 old2 80 120 // same as intensity"},
    {"mask", k3, maskcmd<W>, maskcmd<W>,
     "new := mask old mask 1 <5, 9> // old where the mask's value is one of the values or ranges"},
};

}  // namespace

std::span<const tcommand> imagecombinerows() { return rows; }
