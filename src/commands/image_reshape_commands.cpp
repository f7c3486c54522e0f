// The image family's subimages, crops, flips and quarter turns.
#include "commands/resample_handlers.h"
#include "field/workspaces.h"
#include "ops/reshape.h"

namespace {

constexpr auto& W = imageworkspace;
timagefield& current() { return currentfield(W); }

void sub(tscript& s, const tnatvector& p, const tnatvector& q, bool relative) {
  timagefield* target = resulttarget<W>(s, true);
  if (!target) return;
  tnatvector lo{1, 1, 1}, hi{1, 1, 1};
  for (int k = 0; k < 2; ++k) {
    lo[k] = relative ? p[k] : std::min(p[k], q[k]);
    hi[k] = relative ? p[k] + q[k] - 1 : std::max(p[k], q[k]);
  }
  if (hi[0] < lo[0] || hi[1] < lo[1]) return fieldcreate(*target, current().kind);  // a size of 0
  subfield(*target, current(), lo, hi);
}

void subimagecmd(tscript& s) {
  if (checkparams(s, 2))
    sub(s, fieldpositions(current(), textvector(param(s, 1))), fieldpositions(current(), textvector(param(s, 2))), false);
}

void subimagerelcmd(tscript& s) {
  if (checkparams(s, 2)) sub(s, fieldpositions(current(), textvector(param(s, 1))), textnatvector(param(s, 2)), true);
}

void cropcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  cropimage(current(), paramcount(s) == 1 ? textnat(param(s, 1)) : 0);
}

template <int axis>
void flipcmd(tscript& s) {
  if (checkparams(s, 0)) flipfield(current(), axis);
}

template <int degrees>
void rotatecmd(tscript& s) {
  if (checkparams(s, 0)) rotateimage(current(), degrees);
}

using enum tcommandkind;
const tcommand rows[] = {
    eitherway("subimage", subimagecmd, "new := subimage <10, 10> <50%, 50%> // copy the block between two corners"),
    eitherway("subimage.rel", subimagerelcmd, "new := subimage.rel <10, 10> <20, 20> // copy the block at position of size"),
    {"crop", procedure, cropcmd, nullptr, "crop 0 // cut to the box of the pixels above 0"},
    {"flip.x", procedure, flipcmd<0>, nullptr, "flip.x // mirror left and right"},
    {"flip.y", procedure, flipcmd<1>, nullptr, "flip.y // mirror top and bottom"},
    {"rotate.90", procedure, rotatecmd<90>, nullptr, "rotate.90 // turn a quarter clockwise"},
    {"rotate.180", procedure, rotatecmd<180>, nullptr, "rotate.180 // turn half round"},
    {"rotate.270", procedure, rotatecmd<270>, nullptr, "rotate.270 // turn a quarter counter-clockwise"},
    {"rotate.360", procedure, rotatecmd<360>, nullptr, "rotate.360 // no turn"},
    {"rotate.-90", procedure, rotatecmd<-90>, nullptr, "rotate.-90 // same as rotate.270"},
    {"rotate.-180", procedure, rotatecmd<-180>, nullptr, "rotate.-180 // same as rotate.180"},
    {"rotate.-270", procedure, rotatecmd<-270>, nullptr, "rotate.-270 // same as rotate.90"},
    {"rotate.-360", procedure, rotatecmd<-360>, nullptr, "rotate.-360 // same as rotate.360"},
};

}  // namespace

std::span<const tcommand> imagereshaperows() { return rows; }
