// The scalar family's arithmetic: new := scalar.op old1 old2 ...; the loop lives in ops/.
#include "commands/combine_handlers.h"
#include "commands/scalar_rows.h"

namespace {

using namespace combinewords;
namespace pm = pixelmath;
constexpr auto& W = scalarworkspace;

using enum tcommandkind;
const tcommand rows[] = {
    {"select", k3, selectcmd<W>, selectcmd<W>,
     "new := select old <10, 20> 255 // or old 10 [value]: copy (or set to value) the voxels in the range"},
    {"over", k3, expressioncmd<W, operandlist, over, pm::lastnonzero>, expressioncmd<W, operandlist, over, pm::lastnonzero>,
     "new := over old1 old2 ... // if old2 = 0 then new := old1 else new := old2"},
    {"sub", k3, expressioncmd<W, exactly(2), subtraction, pm::sub>, expressioncmd<W, exactly(2), subtraction, pm::sub>, "new := sub old1 old2 // old1 - old2"},
    {"sub.abs", k3, expressioncmd<W, exactly(2), absolutesubtraction, pm::subabs>, expressioncmd<W, exactly(2), absolutesubtraction, pm::subabs>,
     "new := sub.abs old1 old2 // abs(old1 - old2)"},
    {"sub.range", k3, expressioncmd<W, exactly(2), rangesubtraction, pm::subrange>, expressioncmd<W, exactly(2), rangesubtraction, pm::subrange>,
     "new := sub.range old1 old2 // old1 - old2 + 128 (or 32768 for 16 bit)"},
    {"between", k3, expressioncmd<W, exactly(3), neighborsubtraction, pm::between>, expressioncmd<W, exactly(3), neighborsubtraction, pm::between>,
     "new := between old1 old2 old3 // (old2 - old1) + (old2 - old3): old2 between its neighbours"},
    {"add", k3, expressioncmd<W, operandlist, addition, pm::add>, expressioncmd<W, operandlist, addition, pm::add>,
     "new := add old1 old2 ... // the sum of 2 to 99 fields"},
    {"add.min", k3, expressioncmd<W, operandlist, minimal, pm::addmin>, expressioncmd<W, operandlist, minimal, pm::addmin>,
     "new := add.min old1 old2 ... // the smallest value of 2 to 99 fields"},
    {"add.max", k3, expressioncmd<W, operandlist, maximal, pm::addmax>, expressioncmd<W, operandlist, maximal, pm::addmax>,
     "new := add.max old1 old2 ... // the largest value of 2 to 99 fields"},
    {"mul", k3, expressioncmd<W, exactly(2), multiply, pm::mul>, expressioncmd<W, exactly(2), multiply, pm::mul>,
     "new := mul old1 old2 // old1 * old2 div 255 (div 65535 for 16 bit)"},
    {"mean", k3, expressioncmd<W, operandlist, averaging, pm::listmean<false>>, expressioncmd<W, operandlist, averaging, pm::listmean<false>>,
     "new := mean old1 old2 ... // the mean of 2 to 99 fields, rounded"},
    {"mean.outliers", k3, expressioncmd<W, operandlist, averaging, pm::listmean<true>>, expressioncmd<W, operandlist, averaging, pm::listmean<true>>,
     "new := mean.outliers old1 old2 ... // the mean without the outliers (beyond 1.5 quartile distances)"},
    {"median", k3, expressioncmd<W, operandlist, median, pm::listmedian<false>>, expressioncmd<W, operandlist, median, pm::listmedian<false>>,
     "new := median old1 old2 ... // the median of 2 to 99 fields (the lower middle of an even count)"},
    {"median.outliers", k3, expressioncmd<W, operandlist, median, pm::listmedian<true>>, expressioncmd<W, operandlist, median, pm::listmedian<true>>,
     "new := median.outliers old1 old2 ... // the median without the outliers"},
    {"intensity", k3, intensitycmd<W>, intensitycmd<W>,
     "new := intensity old1 old2 80 120 // or with three fields and values: (old1/80 + old2/120)/2 * (80+120)/2"},
    {"mask", k3, maskcmd<W>, maskcmd<W>,
     "new := mask old mask 1 <5, 9> // old where the mask's value is one of the values or ranges"},
};

}  // namespace

std::span<const tcommand> scalarcombinerows() { return rows; }
