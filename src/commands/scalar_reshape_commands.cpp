// The scalar family's subfields, crops, moves, gap patches and flips.
#include "commands/morphology_handlers.h"
#include "commands/resample_handlers.h"
#include "commands/reshape_handlers.h"
#include "field/workspaces.h"
#include "ops/reshape.h"

namespace {

constexpr auto& W = scalarworkspace;
tscalarfield& current() { return currentfield(W); }

// r in place; new := crop r, new := crop old1 r, new := crop old1 mask r.
void cropcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1 || n > 3) return reportcount(s, 1);
  const bool function = !empty(gettarget(s));
  tscalarfield* source = &current();
  const tscalarfield* mask = nullptr;
  if (n >= 2 && !(source = workspaceoperand(s, W, param(s, 1)))) return;
  if (n == 3 && !(mask = workspaceoperand(s, W, param(s, 2)))) return;
  tscalarfield* target = function ? resulttarget<W>(s, false) : source;
  if (target) cropfield(*target, *source, mask, rangeparam<W>(s, n));
}

template <int axis>
void patchcmd(tscript& s) {
  if (checkparams(s, 1)) patchgaps(current(), axis, textnat(param(s, 1)));
}

template <int axis>
void flipcmd(tscript& s) {
  if (checkparams(s, 0)) flipfield(current(), axis);
}

using enum tcommandkind;
const tcommand rows[] = {
    eitherway("substack", substackcmd<W>, "new := substack <10, 10, 10> <50%, 50%, 50%> // copy the block between two corners"),
    eitherway("crop", cropcmd,
              "crop <1, 10> // cut to the box of the voxels in range; new := crop old1 mask <1, 10>: of the mask's voxels"),
    {"move", procedure, moveblockcmd<W>, nullptr, "move <10, 10, 10> <20, 20, 20> <0, 50, 50> // move block (<10, 10, 10> <20, 20, 20>) with <0, 50, 50> to <10, 60, 60>"},
    {"patch.x", procedure, patchcmd<0>, nullptr, "patch.x 1 // close gaps of 1 empty slice along x"},
    {"patch.y", procedure, patchcmd<1>, nullptr, "patch.y 1 // close gaps of 1 empty slice along y"},
    {"patch.z", procedure, patchcmd<2>, nullptr, "patch.z 1 // close gaps of 1 empty slice along z"},
    {"flip.x", procedure, flipcmd<0>, nullptr, "flip.x // reverse the x axis"},
    {"flip.y", procedure, flipcmd<1>, nullptr, "flip.y // reverse the y axis"},
    {"flip.z", procedure, flipcmd<2>, nullptr, "flip.z // reverse the z axis"},
};

}  // namespace

std::span<const tcommand> scalarreshaperows() { return rows; }
