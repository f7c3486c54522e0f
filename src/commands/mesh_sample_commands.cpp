// The current mesh coloured by the current scalar or vector field, by its own shape, or
// drawn into the scalar field.
#include "commands/fieldrows.h"
#include "commands/mesh_rows.h"
#include "field/workspaces.h"
#include "geometry/meshsample.h"

namespace {

tmesh& current() { return currentfield(meshworkspace); }
const tscalarfield& scalar() { return currentfield(scalarworkspace); }

// The real of parameter i, or fallback when it is not given.
double optional(tscript& s, int64_t i, double fallback) { return paramcount(s) >= i ? textreal(param(s, i)) : fallback; }

void densitycmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  const tvector range = paramcount(s) ? textvector(param(s, 1)) : tvector{0, static_cast<double>(kindmaximum(scalar().kind))};
  colordensity(current(), scalar(), range[0], range[1] != range[0] ? range[1] : range[0] + 1);
}

void thicknesscmd(tscript& s) {
  if (paramcount(s) > 2) return reportmax(s, 2);
  colorthickness(current(), scalar(), optional(s, 2, 128), optional(s, 1, 10));
}

void countcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  colorcount(current(), scalar(), optional(s, 1, 2));
}

void vectorcmd(tscript& s) {
  if (checkparams(s, 0)) colorvector(current(), currentfield(vectorworkspace));
}

void drawcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  tscalarfield& f = currentfield(scalarworkspace);
  drawmesh(f, current(), optional(s, 1, static_cast<double>(getdrawvalue(f))));
}

void colorcmd(tscript& s) {
  if (paramcount(s) < 1) return reportmin(s, 1);
  if (paramcount(s) > 2) return reportmax(s, 2);
  const tvector c = textvector(param(s, 1));
  colorall(current(), {c[0], c[1], c[2], optional(s, 2, 1)});
}

void normalcmd(tscript& s) {
  if (checkparams(s, 0)) colornormals(current());
}

void curvaturecmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  colorcurvature(current(), optional(s, 1, 1));
}

using enum tcommandkind;
const tcommand rows[] = {
    {"getdensity", procedure, densitycmd, nullptr,
     "getdensity <0, 255> // colour each point grey by the scalar field's value there, interpolated, over the range"},
    {"getthickness", procedure, thicknesscmd, nullptr,
     "getthickness 10 128 // grey by the length along the normal where the scalar field stays >= 128, of at most 10 each way"},
    {"getcount", procedure, countcmd, nullptr,
     "getcount 2 // grey by the share of scalar voxels other than the background within the radius"},
    {"getvector", procedure, vectorcmd, nullptr, "getvector // colour each point by the absolute unit vector of the vector field"},
    {"draw", procedure, drawcmd, nullptr, "draw 255 // the visible faces into the scalar field with the value (default its draw value)"},
    {"color", procedure, colorcmd, nullptr, "color <1, 0.5, 0> (1) // one colour r, g, b 0..1 (and alpha) on every point and face"},
    {"color.normal", procedure, normalcmd, nullptr, "color.normal // colour each point by its absolute unit normal"},
    {"color.curvature", procedure, curvaturecmd, nullptr,
     "color.curvature 10 // blue (concave) over grey to red (convex): 0.5 + 0.5 * curvature * scale"},
};

}  // namespace

std::span<const tcommand> meshsamplerows() { return rows; }
