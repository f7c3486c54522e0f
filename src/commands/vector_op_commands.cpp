// The vector field's own operations: direction, normalising, lengths, cleaning, smoothing.
// The voxel work lives in orientation/.
#include "commands/vector_rows.h"
#include "field/workspaces.h"
#include "commands/threads.h"
#include "orientation/vectorpoint.h"
#include "orientation/vectorsmooth.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

tvectorfield& current() { return currentfield(vectorworkspace); }

void directioncmd(tscript& s) {
  if (checkparams(s, 0)) pointdirection(current());
}

void inversecmd(tscript& s) {
  if (checkparams(s, 0)) invertvectors(current());
}

template <tnormkind kind>
void normcmd(tscript& s) {
  if (checkparams(s, 0)) normvectors(current(), kind);
}

template <bool relative>
void setlengthcmd(tscript& s) {
  if (checkparams(s, 1)) setlengths(current(), textreal(param(s, 1)), relative);
}

template <bool above>
void erasecmd(tscript& s) {
  if (checkparams(s, 1)) eraselengths(current(), textreal(param(s, 1)), above);
}

void backgroundcmd(tscript& s) {
  if (checkparams(s, 0)) scanbackground(current());
}

void cleanupcmd(tscript& s) {
  if (checkparams(s, 0)) cleanupvectors(current());
}

// Optional pass count, 1 without; only the mean smoothing runs on several threads.
template <tvectorsmooth kind>
void smoothcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  const int64_t passes = paramcount(s) == 1 ? textnat(param(s, 1)) : 1;
  smoothvectors(current(), kind, passes, kind == tvectorsmooth::smooth ? threadlimit(s) : 1);
}

void outlierscmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  const double factor = paramcount(s) == 1 ? textreal(param(s, 1)) : 2;
  const int64_t count = removeoutliers(current(), factor);
  println("  Removed outliers: " + nattext(count));
  setresult(s, nattext(count));
}

using enum tcommandkind;
const tcommand rows[] = {
    {"direction", procedure, directioncmd, nullptr, "direction // turn each vector to the side of <1, 1, 1> (float and integer)"},
    {"inverse", procedure, inversecmd, nullptr, "inverse // <1/x, 1/y, 1/z> of each non-zero vector, 0 stays (float only)"},
    {"norm", procedure, normcmd<tnormkind::length>, nullptr, "norm // v/|v| (times 2^64 for integer, 255 for rgb)"},
    {"norm.min", procedure, normcmd<tnormkind::min>, nullptr, "norm.min // v/min(x, y, z), zero if the minimum is 0"},
    {"norm.max", procedure, normcmd<tnormkind::max>, nullptr, "norm.max // v/max(x, y, z), zero if the maximum is 0"},
    {"norm.relative", procedure, normcmd<tnormkind::relative>, nullptr, "norm.relative // v/M with M the longest vector"},
    {"setlength", procedure, setlengthcmd<false>, nullptr, "setlength 2.5 // (v/|v|) * 2.5 for every vector"},
    {"setlength.relative", procedure, setlengthcmd<true>, nullptr, "setlength.relative 2.5 // (v/M) * 2.5, M the longest vector"},
    {"erase.min", procedure, erasecmd<false>, nullptr, "erase.min 0.5 // vectors shorter than 0.5 become zero"},
    {"erase.max", procedure, erasecmd<true>, nullptr, "erase.max 10 // vectors longer than 10 become zero"},
    {"background", procedure, backgroundcmd, nullptr, "background // the mean vector, zero vectors included"},
    {"cleanup", procedure, cleanupcmd, nullptr, "cleanup // vectors not near the background become the background"},
    {"softsmooth", procedure, smoothcmd<tvectorsmooth::soft>, nullptr, "softsmooth 1 // n passes: (corners/26 + midpoint)/2"},
    {"smooth", procedure, smoothcmd<tvectorsmooth::smooth>, nullptr, "smooth 1 // n passes of the 3x3x3 mean, threaded"},
    {"hardsmooth", procedure, smoothcmd<tvectorsmooth::hard>, nullptr, "hardsmooth 1 // n passes: corners/26, without the midpoint"},
    eitherway("remove.outliers", outlierscmd,
              "remove.outliers 2 // vectors beyond median +- 2 * IQR of their 3x3x3 block become the medians; the count"),
};

}  // namespace

std::span<const tcommand> vectoroprows() { return rows; }
