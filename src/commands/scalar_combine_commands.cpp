// The scalar family's own arithmetic: new := scalar.op old1 old2 ...; the loop lives in ops/.
#include "commands/combine_handlers.h"
#include "commands/scalar_rows.h"

namespace {

using namespace combinewords;
namespace pm = pixelmath;
constexpr auto& W = scalarworkspace;

const tcommand rows[] = {
    eitherway("over", expressioncmd<W, operandlist, over, pm::lastnonzero>,
              "new := over old1 old2 ... // if old2 = 0 then new := old1 else new := old2"),
    eitherway("mul", expressioncmd<W, exactly(2), multiply, pm::mul>,
              "new := mul old1 old2 // old1 * old2 div 255 (div 65535 for 16 bit)"),
    eitherway("mean", expressioncmd<W, operandlist, averaging, pm::listmean<false>>,
              "new := mean old1 old2 ... // the mean of 2 to 99 fields, rounded"),
    eitherway("mean.outliers", expressioncmd<W, operandlist, averaging, pm::listmean<true>>,
              "new := mean.outliers old1 old2 ... // the mean without the outliers (beyond 1.5 quartile distances)"),
    eitherway("median", expressioncmd<W, operandlist, median, pm::listmedian<false>>,
              "new := median old1 old2 ... // the median of 2 to 99 fields (the lower middle of an even count)"),
    eitherway("median.outliers", expressioncmd<W, operandlist, median, pm::listmedian<true>>,
              "new := median.outliers old1 old2 ... // the median without the outliers"),
    eitherway("intensity", intensitycmd<W>,
              "new := intensity old1 old2 80 120 // or with three fields and values: (old1/80 + old2/120)/2 * (80+120)/2"),
};

}  // namespace

std::span<const tcommand> scalarcombinerows() { return rows; }
