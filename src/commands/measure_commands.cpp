// The local maps of volumes: block and line measures written into the field named left of
// ":=", and the plane vectors into the current vector field. The kernels live in
// ops/measuremap and orientation/measure.
#include "commands/measure_handlers.h"
#include "commands/scalar_rows.h"
#include "commands/threads.h"
#include "field/workspaces.h"
#include "ops/measuremap.h"
#include "orientation/measure.h"

namespace {

// The target of a map; nil, reported, when the name is the current field's.
tscalarfield* maptarget(tscript& s) { return resulttarget<scalarworkspace>(s, true); }

template <tblockmeasure m>
void blockcmd(tscript& s) {
  static const char* const words[] = {"  Calculate mean", "  Calculate sd", "  Calculate local binary pattern (LBP)",
                                      "  Calculate binary gradient contours"};
  if (!checkparams(s, 1)) return;
  tscalarfield* target = maptarget(s);
  if (target)
    blockmeasure(currentfield(scalarworkspace), *target, m, textnat(param(s, 1)), threadlimit(s), scalarworkspace.defaultkind,
                 words[static_cast<int>(m)]);
}

// The three contour forms differ in their progress word only.
template <int loops>
void contourcmd(tscript& s) {
  static const char* const words[] = {"  Calculate binary gradient contours (single-loop)",
                                      "  Calculate binary gradient contours (double-loop)",
                                      "  Calculate binary gradient contours (triple-loop)"};
  if (!checkparams(s, 1)) return;
  tscalarfield* target = maptarget(s);
  if (target)
    blockmeasure(currentfield(scalarworkspace), *target, tblockmeasure::bgc, textnat(param(s, 1)), threadlimit(s),
                 scalarworkspace.defaultkind, words[loops - 1]);
}

template <tthickness m>
void thicknesscmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  tscalarfield* target = maptarget(s);
  if (target)
    thicknessmap(currentfield(scalarworkspace), *target, m, textnat(param(s, 1)), threadlimit(s), scalarworkspace.defaultkind);
}

void planecmd(tscript& s) {
  if (checkparams(s, 1))
    planemap(currentfield(scalarworkspace), currentfield(vectorworkspace), textnat(param(s, 1)), threadlimit(s),
             vectorworkspace.defaultkind);
}

void localboxcountingcmd(tscript& s) {
  if (!checkparams(s, 3)) return;
  tscalarfield* target = maptarget(s);
  if (target)
    localboxcounting(currentfield(scalarworkspace), *target, textreal(param(s, 1)), textreal(param(s, 2)),
                     textnat(param(s, 3)), threadlimit(s), scalarworkspace.defaultkind);
}

using enum tcommandkind;
const tcommand rows[] = {
    eitherway("boxcounting.local", localboxcountingcmd, "new := boxcounting.local 1 255 5 // box counting around each voxel"),
    eitherway("measure.mean", blockcmd<tblockmeasure::mean>, "new := measure.mean 2 // mean of the block of 5x5x5 voxels"),
    eitherway("measure.sd", blockcmd<tblockmeasure::sd>, "new := measure.sd 2 // SD of the block of 5x5x5 voxels"),
    eitherway("measure.thickness", thicknesscmd<tthickness::thickness>,
              "new := measure.thickness 16 // smallest thickness through each voxel, scan length 16"),
    eitherway("measure.skeleton", thicknesscmd<tthickness::skeleton>,
              "new := measure.skeleton 16 // thickness where the voxel lies in the middle of every line"),
    eitherway("measure.cartoon", thicknesscmd<tthickness::cartoon>,
              "new := measure.cartoon 16 // thickness on the border voxels only"),
    {"measure.plane", procedure, planecmd, nullptr,
     "measure.plane 16 // direction of the thinnest crossing as a vector of its length, in the vector field"},
    eitherway("measure.lbp", blockcmd<tblockmeasure::lbp>, "new := measure.lbp 1 // local binary pattern: mean difference to the neighbours"),
    eitherway("measure.bgc.single", contourcmd<1>, "new := measure.bgc.single 1 // binary gradient contours (single-loop)"),
    eitherway("measure.bgc.double", contourcmd<2>, "new := measure.bgc.double 1 // binary gradient contours (double-loop)"),
    eitherway("measure.bgc.triple", contourcmd<3>, "new := measure.bgc.triple 1 // binary gradient contours (triple-loop)"),
};

}  // namespace

std::span<const tcommand> scalarmeasurerows() { return rows; }
