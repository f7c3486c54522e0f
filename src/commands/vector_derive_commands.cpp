// Fields made from the vector field: scalars of lengths and components, orientation
// tensors, the distance factor and the fusion into an image; the voxel work lives in
// orientation/.
#include "commands/vector_rows.h"
#include "commands/workspace_handlers.h"
#include "field/owned.h"
#include "field/workspaces.h"
#include "commands/threads.h"
#include "ops/resample.h"
#include "orientation/vectorderive.h"
#include "orientation/vectorgrid.h"
#include "script/registry.h"

namespace {

constexpr auto& W = vectorworkspace;
tvectorfield& current() { return currentfield(W); }

// The field named left of ":=" in workspace w, else its current one.
template <class F>
F& namedorcurrent(tscript& s, tworkspacelist<F>& w) {
  const utf16 name = gettarget(s);
  settarget(s, utf16());
  F* f = empty(name) ? nullptr : workspacetarget(w, name);
  return f ? *f : currentfield(w);
}

void lengthcmd(tscript& s) {
  if (checkparams(s, 0))
    vectorlengths(current(), namedorcurrent(s, scalarworkspace), scalarworkspace.defaultkind, threadlimit(s));
}

template <int axis>
void componentcmd(tscript& s) {
  if (checkparams(s, 0))
    vectorcomponents(current(), axis, namedorcurrent(s, scalarworkspace), scalarworkspace.defaultkind, threadlimit(s));
}

void tensorcmd(tscript& s) {
  if (checkparams(s, 0))
    orientationtensors(current(), namedorcurrent(s, tensorworkspace), tensorworkspace.defaultkind, threadlimit(s));
}

// None: the current field; one name: that field; two: the comparison of both. The result
// is computed apart, so that the target may be one of the sources.
void factorcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n > 2) return reportmax(s, 2);
  tvectorfield* target = resulttarget<W>(s, false);
  const tvectorfield* first = n >= 1 ? workspaceoperand(s, W, param(s, 1)) : &current();
  const tvectorfield* second = n == 2 ? workspaceoperand(s, W, param(s, 2)) : nullptr;
  if (!target || !first || (n == 2 && !second)) return;
  tlocalfield<tvectorfield> result;
  if (n == 2 ? distancefactor(*first, *second, *result) : (distancefactor(*first, *result), true))
    copyfield(*target, *result);
  else
    println("  Different field sizes!");
}

void fusecmd(tscript& s) {
  if (checkparams(s, 0))
    fusevectors(current(), currentfield(scalarworkspace), currentfield(imageworkspace), imageworkspace.defaultkind);
}

using enum tcommandkind;
const tcommand deriverows[] = {
    eitherway("measure.length", lengthcmd, "measure.length // scalar field of the rounded vector lengths"),
    eitherway("get.x", componentcmd<1>, "get.x // scalar field of the rounded x components"),
    eitherway("get.y", componentcmd<2>, "get.y // scalar field of the rounded y components"),
    eitherway("get.z", componentcmd<3>, "get.z // scalar field of the rounded z components"),
    eitherway("gettensor", tensorcmd, "gettensor // tensor field of v * v^T"),
    eitherway("gettensors", tensorcmd, "gettensors // same as gettensor"),
    eitherway("factor.distance", factorcmd,
              "new := factor.distance old1 old2 // or old1 or nothing: the distance factor of the vectors"),
    {"fuse", procedure, fusecmd, nullptr,
     "fuse // fuse color image stack (vector field along z) with best scalar value to new image value"},
};

}  // namespace

std::span<const tcommand> vectorderiverows() { return deriverows; }
