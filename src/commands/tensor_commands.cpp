// The tensor measures: scalar and vector fields from the current tensor field, and the
// edits of the tensors themselves.
#include "commands/tensor_rows.h"
#include "commands/threads.h"
#include "commands/workspace_handlers.h"
#include "field/workspaces.h"
#include "orientation/tensoredit.h"
#include "orientation/tensormeasures.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

template <tmeasure m>
void measurecmd(tscript& s) {
  if (!checkparams(s, 0)) return;
  tensormeasure(currentfield(tensorworkspace), currentfield(scalarworkspace), m, threadlimit(s), scalarworkspace.defaultkind);
}

template <tvectormeasure m>
void vectorcmd(tscript& s) {
  if (!checkparams(s, 0)) return;
  tensorvectors(currentfield(tensorworkspace), currentfield(vectorworkspace), m, threadlimit(s), vectorworkspace.defaultkind);
}

void mulcmd(tscript& s) {
  if (checkparams(s, 2)) tensormul(currentfield(tensorworkspace), textvector(param(s, 1)), textvector(param(s, 2)));
}

template <int axis>
void flipcmd(tscript& s) {
  if (checkparams(s, 0)) tensorflip(currentfield(tensorworkspace), axis);
}

using enum tcommandkind;
const tcommand rows[] = {
    {"measure.e1", procedure, measurecmd<tmeasure::e1>, nullptr, "measure.e1 // first eigenvalue into the scalar field (x128)"},
    {"measure.axial", procedure, measurecmd<tmeasure::e1>, nullptr, "measure.axial // same as measure.e1"},
    {"measure.e2", procedure, measurecmd<tmeasure::e2>, nullptr, "measure.e2 // second eigenvalue (x128)"},
    {"measure.e3", procedure, measurecmd<tmeasure::e3>, nullptr, "measure.e3 // third eigenvalue (x128)"},
    {"measure.fa", procedure, measurecmd<tmeasure::fa>, nullptr, "measure.fa // fractional anisotropy (x128)"},
    {"measure.ra", procedure, measurecmd<tmeasure::ra>, nullptr, "measure.ra // relative anisotropy (x128)"},
    {"measure.md", procedure, measurecmd<tmeasure::md>, nullptr, "measure.md // mean of the eigenvalues (x128)"},
    {"measure.radial", procedure, measurecmd<tmeasure::radial>, nullptr, "measure.radial // (e2+e3)/2 (x255)"},
    {"measure.linear", procedure, measurecmd<tmeasure::linear>, nullptr, "measure.linear // (e1-e2)/e1 (x255)"},
    {"measure.planar", procedure, measurecmd<tmeasure::planar>, nullptr, "measure.planar // (e2-e3)/e1 (x255)"},
    {"measure.spherical", procedure, measurecmd<tmeasure::spherical>, nullptr, "measure.spherical // e3/e1 (x255)"},
    {"measure.vr", procedure, measurecmd<tmeasure::vr>, nullptr, "measure.vr // volume ratio (x255)"},
    {"eigenvalues", procedure, vectorcmd<tvectormeasure::eigenvalues>, nullptr, "eigenvalues // (e1, e2, e3) into the vector field"},
    {"westin", procedure, vectorcmd<tvectormeasure::westin>, nullptr, "westin // (cl, cp, cs) into the vector field"},
    {"westin.rank", procedure, vectorcmd<tvectormeasure::westinrank>, nullptr, "westin.rank // only the leading Westin measure of 0.5 or more"},
    {"eigenvector.max", procedure, vectorcmd<tvectormeasure::vectormax>, nullptr, "eigenvector.max // first eigenvector into the vector field"},
    {"eigenvector.mid", procedure, vectorcmd<tvectormeasure::vectormid>, nullptr, "eigenvector.mid // second eigenvector"},
    {"eigenvector.min", procedure, vectorcmd<tvectormeasure::vectormin>, nullptr, "eigenvector.min // third eigenvector"},
    {"mul", procedure, mulcmd, nullptr, "mul <1,1,1> <-1,-1,1> // diagonal times a, off-diagonal times b: a mirror in x"},
    {"flip.x", procedure, flipcmd<0>, nullptr, "flip.x // mirror along x, with the signs of xy and xz"},
    {"flip.y", procedure, flipcmd<1>, nullptr, "flip.y // mirror along y, with the signs of xy and yz"},
    {"flip.z", procedure, flipcmd<2>, nullptr, "flip.z // mirror along z, with the signs of xz and yz"},
    {"make.scalar", procedure, makecmd<tensorworkspace, scalarworkspace>, nullptr, "make.scalar // new scalar field of the tensor field's size"},
    {"make.vector", procedure, makecmd<tensorworkspace, vectorworkspace>, nullptr, "make.vector // new vector field of the tensor field's size"},
    {"make", procedure, makecmd<tensorworkspace, tensorworkspace>, nullptr, "make // the tensor field made anew at its size (all zero)"},
    {"make.tensor", procedure, makecmd<tensorworkspace, tensorworkspace>, nullptr, "make.tensor // same as make"},
};

}  // namespace

std::span<const tcommand> tensormeasurerows() { return rows; }
