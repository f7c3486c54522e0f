// The mesh family's moves, turns and scalings about the origin, a given centre or the
// pivot, the pivot itself, and the edits of single coordinates.
#include "commands/fieldrows.h"
#include "commands/mesh_rows.h"
#include "field/workspaces.h"
#include "geometry/meshrotation.h"
#include "geometry/meshtransform.h"
#include "library/mathvector.h"
#include "shell/console.h"

namespace {

tmesh& current() { return currentfield(meshworkspace); }

// Where a transform is centred: the relative forms take the centre as first parameter.
enum class tcentre { origin, given, pivot };

// The centre, the index of the first parameter behind it, and the parameter check.
template <tcentre where>
bool centred(tscript& s, int64_t operands, tvector& centre, int64_t& first) {
  const int64_t extra = where == tcentre::given ? 1 : 0;
  if (!checkparams(s, operands + extra)) return false;
  centre = where == tcentre::given ? textvector(param(s, 1)) : where == tcentre::pivot ? current().pivot : tvector{0, 0, 0};
  first = 1 + extra;
  return current().points.length > 0;
}

void printrotation(tcentre where, const tvector& centre, const trows& rows, const tvector* degrees) {
  if (where != tcentre::origin) println("Pivot: " + fivedecimals(centre));
  for (const std::string& line : rotationlines(rows, degrees)) println(line);
}

template <tcentre where>
void translatecmd(tscript& s) {
  tvector centre;
  int64_t first;
  if (!centred<where>(s, 1, centre, first)) return;
  const tvector move = textvector(param(s, first));
  if (move != tvector{0, 0, 0}) meshtranslate(current(), move);
}

// A zero scale would fold the mesh into a point; it is ignored like <1, 1, 1>.
template <tcentre where>
void scalecmd(tscript& s) {
  tvector centre;
  int64_t first;
  if (!centred<where>(s, 1, centre, first)) return;
  const tvector scale = textvector(param(s, first));
  if (scale != tvector{1, 1, 1} && scale != tvector{0, 0, 0}) meshscale(current(), scale, centre);
}

template <tcentre where>
void rotatecmd(tscript& s) {
  tvector centre;
  int64_t first;
  if (!centred<where>(s, 1, centre, first)) return;
  const tvector degrees = textvector(param(s, first));
  if (degrees == tvector{0, 0, 0}) return;
  const trows rows = anglerotation(degrees);
  printrotation(where, centre, rows, &degrees);
  meshrotate(current(), rows, centre);
}

template <tcentre where>
void rotatevectorcmd(tscript& s) {
  tvector centre;
  int64_t first;
  trows rows;
  if (!centred<where>(s, 2, centre, first)) return;
  if (!vectorrotation(textvector(param(s, first)), textvector(param(s, first + 1)), rows)) return;
  printrotation(where, centre, rows, nullptr);
  meshrotate(current(), rows, centre);
}

void threepointcmd(tscript& s) {
  trows rows;
  if (!checkparams(s, 3) || !current().points.length) return;
  if (!planerotation(textvector(param(s, 1)), textvector(param(s, 2)), textvector(param(s, 3)), rows))
    return println("  Three points on one line: no rotation.");
  println("  Rotate around " + axisangletext(rows));
  meshrotate(current(), rows, {0, 0, 0});
}

// The script reads the pivot back through the function mesh.pivot.
enum class tpivot { zero, box, gravity, given };

template <tpivot rule>
void setpivotcmd(tscript& s) {
  if (rule == tpivot::given && !checkparams(s, 1)) return;
  if (paramcount(s) > 1) return reportmax(s, 1);  // the others take an optional word
  tmesh& m = current();
  m.pivot = rule == tpivot::zero      ? tvector{0, 0, 0}
            : rule == tpivot::box     ? meshboxcentre(m)
            : rule == tpivot::gravity ? meshgravity(m)
                                      : textvector(param(s, 1));
}

// center moves the pivot to zero, recenter zero back to the pivot; the pivot stays.
template <int sign>
void centercmd(tscript& s) {
  if (checkparams(s, 0)) meshtranslate(current(), scaled(current().pivot, sign));
}

template <int axis, tcoordinateedit edit>
void coordinatecmd(tscript& s) {
  if (checkparams(s, 0)) meshcoordinate(current(), axis, edit);
}

template <int a, int b>
void swapcmd(tscript& s) {
  if (checkparams(s, 0)) meshswapaxes(current(), a, b);
}

using enum tcommandkind;
using enum tcentre;
using enum tcoordinateedit;
const tcommand rows[] = {
    {"translate", procedure, translatecmd<origin>, nullptr, "translate <1, 0, 0> // move every point; zero does nothing"},
    {"scale", procedure, scalecmd<origin>, nullptr, "scale <2, 2, 2> // scale about the origin; <1, 1, 1> and zero do nothing"},
    {"rotate", procedure, rotatecmd<origin>, nullptr, "rotate <0, 0, 90> // degrees about x, the turned y, the twice turned z (X-Y'-Z''); prints the rotation"},
    {"rotate.vector", procedure, rotatevectorcmd<origin>, nullptr, "rotate.vector <1, 0, 0> <0, 1, 0> // turn the first direction onto the second"},
    {"translate.relative", procedure, translatecmd<given>, nullptr, "translate.relative <1, 1, 1> <1, 0, 0> // centre, move: the same as translate"},
    {"scale.relative", procedure, scalecmd<given>, nullptr, "scale.relative <1, 1, 1> <2, 2, 2> // scale about the centre"},
    {"rotate.relative", procedure, rotatecmd<given>, nullptr, "rotate.relative <1, 1, 1> <0, 0, 90> // rotate about the centre"},
    {"rotate.vector.relative", procedure, rotatevectorcmd<given>, nullptr, "rotate.vector.relative <1, 1, 1> <1, 0, 0> <0, 1, 0> // about the centre"},
    {"translate.pivot", procedure, translatecmd<pivot>, nullptr, "translate.pivot <1, 0, 0> // the same as translate"},
    {"scale.pivot", procedure, scalecmd<pivot>, nullptr, "scale.pivot <2, 2, 2> // scale about the pivot"},
    {"rotate.pivot", procedure, rotatecmd<pivot>, nullptr, "rotate.pivot <0, 0, 90> // rotate about the pivot"},
    {"set.pivot.zero", procedure, setpivotcmd<tpivot::zero>, nullptr, "set.pivot.zero // pivot := <0, 0, 0>"},
    {"set.pivot.center", procedure, setpivotcmd<tpivot::box>, nullptr, "set.pivot.center // pivot := centre of the bounding box"},
    {"set.pivot.gravity", procedure, setpivotcmd<tpivot::gravity>, nullptr, "set.pivot.gravity // pivot := mean of the points"},
    {"set.pivot", procedure, setpivotcmd<tpivot::given>, nullptr, "set.pivot <1, 2, 3> // pivot := the point"},
    {"center", procedure, centercmd<-1>, nullptr, "center // move the mesh so that the pivot goes to zero"},
    {"recenter", procedure, centercmd<1>, nullptr, "recenter // move zero to the pivot, the inverse of center"},
    {"3point", procedure, threepointcmd, nullptr, "3point <0, 0, 0> <1, 0, 0> <0, 1, 0> // turn the plane of the points parallel to the xy-plane"},
    {"clear.x", procedure, coordinatecmd<0, clear>, nullptr, "clear.x // x of every point := 0"},
    {"clear.y", procedure, coordinatecmd<1, clear>, nullptr, "clear.y // y of every point := 0"},
    {"clear.z", procedure, coordinatecmd<2, clear>, nullptr, "clear.z // z of every point := 0"},
    {"clean.x", procedure, coordinatecmd<0, clear>, nullptr, "clean.x // same as clear.x"},
    {"clean.y", procedure, coordinatecmd<1, clear>, nullptr, "clean.y // same as clear.y"},
    {"clean.z", procedure, coordinatecmd<2, clear>, nullptr, "clean.z // same as clear.z"},
    {"mirror.x", procedure, coordinatecmd<0, mirror>, nullptr, "mirror.x // x := -x in points and normals; faces stay (see face.flip)"},
    {"mirror.y", procedure, coordinatecmd<1, mirror>, nullptr, "mirror.y // y := -y in points and normals"},
    {"mirror.z", procedure, coordinatecmd<2, mirror>, nullptr, "mirror.z // z := -z in points and normals"},
    {"abs.x", procedure, coordinatecmd<0, absolute>, nullptr, "abs.x // x := |x|"},
    {"abs.y", procedure, coordinatecmd<1, absolute>, nullptr, "abs.y // y := |y|"},
    {"abs.z", procedure, coordinatecmd<2, absolute>, nullptr, "abs.z // z := |z|"},
    {"swap.xy", procedure, swapcmd<0, 1>, nullptr, "swap.xy // exchange x and y in points and normals"},
    {"swap.yz", procedure, swapcmd<1, 2>, nullptr, "swap.yz // exchange y and z"},
    {"swap.xz", procedure, swapcmd<0, 2>, nullptr, "swap.xz // exchange x and z"},
};

}  // namespace

std::span<const tcommand> meshtransformrows() { return rows; }
