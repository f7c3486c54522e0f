// The mesh family's smoothing, its laying into the xy-plane, and its normals and faces.
#include "commands/fieldrows.h"
#include "commands/mesh_rows.h"
#include "field/workspaces.h"
#include "geometry/meshadjust.h"
#include "geometry/meshsmooth.h"
#include "geometry/meshtransform.h"

namespace {

tmesh& current() { return currentfield(meshworkspace); }

template <tsmoothing kind>
void smoothcmd(tscript& s) {
  if (checkparams(s, 1)) meshsmooth(current(), kind, textnat(param(s, 1)));
}

// adjust takes its steps; the share forms default to 3 steps.
template <int percent>
void adjustcmd(tscript& s) {
  if (percent == 100 && !checkparams(s, 1)) return;
  if (paramcount(s) > 1) return reportmax(s, 1);
  meshadjust(current(), paramcount(s) ? textnat(param(s, 1)) : 3, percent / 100.0);
}

// The further forms for large or stubborn meshes: every n-th point, rounds until a turn is
// below n degrees, or the principal axes of every n-th point.
void reducecmd(tscript& s) {
  if (checkparams(s, 1)) meshadjust(current(), 1, 1.0, textnat(param(s, 1)));
}
void enhancecmd(tscript& s) {
  if (checkparams(s, 1)) meshadjust(current(), 100, 1.0, 1, textreal(param(s, 1)));
}
void optimalcmd(tscript& s) {
  if (checkparams(s, 1)) meshprincipal(current(), textnat(param(s, 1)));
}

template <void (*op)(tmesh&)>
void meshcmd(tscript& s) {
  if (checkparams(s, 0)) op(current());
}

void normalscalecmd(tscript& s) {
  if (checkparams(s, 1)) meshnormalscale(current(), textreal(param(s, 1)));
}

void normalflip(tmesh& m) { meshnormalscale(m, -1); }

using enum tcommandkind;
using enum tsmoothing;
const tcommand rows[] = {
    {"softsmooth", procedure, smoothcmd<soft>, nullptr, "softsmooth 1 // passes: midpoint of the point and the mean of its neighbours"},
    {"smooth", procedure, smoothcmd<plain>, nullptr, "smooth 1 // passes: mean of the point and its neighbours"},
    {"hardsmooth", procedure, smoothcmd<hard>, nullptr, "hardsmooth 1 // passes: mean of the neighbours alone"},
    {"adjust", procedure, adjustcmd<100>, nullptr, "adjust 3 // steps: lay the mesh into the xy-plane by the differences of all points (slow for many points)"},
    {"adjust5", procedure, adjustcmd<5>, nullptr, "adjust5 3 // the same by the 5 % longest differences"},
    {"adjust10", procedure, adjustcmd<10>, nullptr, "adjust10 3 // the same by the 10 % longest differences"},
    {"adjust15", procedure, adjustcmd<15>, nullptr, "adjust15 3 // the same by the 15 % longest differences"},
    {"reduce", procedure, reducecmd, nullptr, "reduce 10 // adjust by every n-th point, for large meshes"},
    {"enhance", procedure, enhancecmd, nullptr, "enhance 0.1 // adjust in rounds until one turns by less than the degrees"},
    {"optimal", procedure, optimalcmd, nullptr, "optimal 1 // centre and turn onto the principal axes of every n-th point"},
    {"normal.recalc", procedure, meshcmd<meshnormals>, nullptr, "normal.recalc // normals from the faces"},
    {"normal.ortho", procedure, meshcmd<meshorthonormals>, nullptr, "normal.ortho // normals from the faces, turned to the nearest axis"},
    {"normal.scale", procedure, normalscalecmd, nullptr, "normal.scale 2 // multiply the normals"},
    {"normal.norm", procedure, meshcmd<meshnormalnorm>, nullptr, "normal.norm // unit normals"},
    {"normal.remove", procedure, meshcmd<meshnormalremove>, nullptr, "normal.remove // zero normals"},
    {"normal.flip", procedure, meshcmd<normalflip>, nullptr, "normal.flip // normals times -1"},
    {"face.flip", procedure, meshcmd<meshfaceflip>, nullptr, "face.flip // reverse the corner order of every face"},
};

}  // namespace

std::span<const tcommand> meshsmoothrows() { return rows; }
