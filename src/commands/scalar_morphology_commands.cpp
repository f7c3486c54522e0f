// The scalar family's own morphology: skeletons, label forms, caves and hulls.
#include "commands/morphology_handlers.h"
#include "field/workspaces.h"
#include "commands/threads.h"

namespace {

template <int axis>
void cavecmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  fillcave(currentfield(scalarworkspace), axis, rangeparam<scalarworkspace>(s, 1));
}

template <int axis>
void hullcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  fillhull(currentfield(scalarworkspace), axis, rangeparam<scalarworkspace>(s, 1));
}

void fillconvexcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  fillconvex(currentfield(scalarworkspace), rangeparam<scalarworkspace>(s, 1), threadlimit(s));
}

constexpr auto& W = scalarworkspace;
using enum tcommandkind;
using enum tmorphkind;
const tcommand rows[] = {
    {"skeleton", procedure, morphcmd<W, skeleton, false>, nullptr,
     "skeleton <128, 255> 13 // as shrink, but thin tips (21 or more neighbors outside) stay"},
    {"fullskeleton", procedure, morphcmd<W, skeleton, true>, nullptr, "fullskeleton <128, 255> 13 // loop skeleton"},
    {"shrink.label", procedure, morphcmd<W, shrink, false, true>, nullptr,
     "shrink.label <1, 255> 13 // as shrink, with the most frequent neighbor in place of the mean"},
    {"erode.label", procedure, morphcmd<W, shrink, false, true>, nullptr, "erode.label // same as shrink.label"},
    {"fullshrink.label", procedure, morphcmd<W, shrink, true, true>, nullptr, "fullshrink.label // loop shrink.label"},
    {"fullerode.label", procedure, morphcmd<W, shrink, true, true>, nullptr, "fullerode.label // same as fullshrink.label"},
    {"ultimate_erosion.label", procedure, morphcmd<W, shrink, true, true>, nullptr,
     "ultimate_erosion.label // same as fullshrink.label"},
    {"skeleton.label", procedure, morphcmd<W, skeleton, false, true>, nullptr,
     "skeleton.label <1, 255> 13 // as skeleton, with the most frequent neighbor in place of the mean"},
    {"fullskeleton.label", procedure, morphcmd<W, skeleton, true, true>, nullptr, "fullskeleton.label // loop skeleton.label"},
    {"grow.label", procedure, morphcmd<W, grow, false, true>, nullptr,
     "grow.label <1, 255> 13 // as grow, with the most frequent neighbor in place of the mean"},
    {"dilate.label", procedure, morphcmd<W, grow, false, true>, nullptr, "dilate.label // same as grow.label"},
    {"fullgrow.label", procedure, morphcmd<W, grow, true, true>, nullptr, "fullgrow.label // loop grow.label"},
    {"fulldilate.label", procedure, morphcmd<W, grow, true, true>, nullptr, "fulldilate.label // same as fullgrow.label"},
    {"ultimate_dilation.label", procedure, morphcmd<W, grow, true, true>, nullptr,
     "ultimate_dilation.label // same as fullgrow.label"},
    {"open.label", procedure, openclosecmd<W, false, true>, nullptr, "open.label <1, 255> 13 13 // shrink.label + grow.label"},
    {"close.label", procedure, openclosecmd<W, true, true>, nullptr,
     "close.label <1, 255> 13 13 // grow.label + shrink.label"},
    {"fill.cave.x", procedure, cavecmd<0>, nullptr, "fill.cave.x <1, 255> // fill from outside along x axis"},
    {"fill.cave.y", procedure, cavecmd<1>, nullptr, "fill.cave.y <1, 255> // fill from outside along y axis"},
    {"fill.cave.z", procedure, cavecmd<2>, nullptr, "fill.cave.z <1, 255> // fill from outside along z axis"},
    {"convex.x", procedure, hullcmd<0>, nullptr, "convex.x <1, 255> // calculate convex hull (yz) and fill along x axis"},
    {"convex.yz", procedure, hullcmd<0>, nullptr, "convex.yz // same as convex.x"},
    {"convex.y", procedure, hullcmd<1>, nullptr, "convex.y <1, 255> // calculate convex hull (xz) and fill along y axis"},
    {"convex.xz", procedure, hullcmd<1>, nullptr, "convex.xz // same as convex.y"},
    {"convex.z", procedure, hullcmd<2>, nullptr, "convex.z <1, 255> // calculate convex hull (xy) and fill along z axis"},
    {"convex.xy", procedure, hullcmd<2>, nullptr, "convex.xy // same as convex.z"},
    {"fill.convex", procedure, fillconvexcmd, nullptr,
     "fill.convex <1, 255> // fill.cave along x, y and z until nothing changes, threaded"},
};

}  // namespace

std::span<const tcommand> scalarmorphologyrows() { return rows; }
