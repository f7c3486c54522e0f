// The mesh family's own building, repair, split and counts.
#include <array>

#include "commands/fieldrows.h"
#include "commands/mesh_rows.h"
#include "field/workspaces.h"
#include "geometry/meshbuild.h"

namespace {

tmesh& current() { return currentfield(meshworkspace); }

// Three or four corners, optionally as many normals, and with `colored` a last colour.
template <bool colored>
void putcmd(tscript& s) {
  const int64_t n = paramcount(s) - (colored ? 1 : 0);
  if (n != 3 && n != 4 && n != 6 && n != 8) return reportcount(s, colored ? 4 : 3);
  const int64_t corners = n == 4 || n == 8 ? 4 : 3;
  const bool normals = n > 4;
  std::array<tvector, 4> p{}, nv{};
  for (int64_t i = 0; i < corners; ++i) {
    p[i] = textvector(param(s, i + 1));
    if (normals) nv[i] = textvector(param(s, corners + i + 1));
  }
  const tcolor4 color = colored ? textvector(param(s, n + 1)) : tcolor4{0, 0, 0};
  if (corners == 4)
    addquad(current(), p, nv, color);
  else
    addtriangle(current(), {p[0], p[1], p[2]}, {nv[0], nv[1], nv[2]}, color);
}

// target := a copy of the current mesh, scaled by a factor or a vector.
template <bool byvector>
void copycmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  tvector scale{1, 1, 1};
  if (paramcount(s) == 1) {
    const double f = textreal(param(s, 1));
    scale = byvector ? textvector(param(s, 1)) : tvector{f, f, f};
  }
  if (tmesh* target = resulttarget<meshworkspace>(s, true)) meshcopy(*target, current(), scale);
}

void verificationcmd(tscript& s) {
  if (checkparams(s, 0)) meshverification(current());
}

void splitcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n > 2) return reportmax(s, 2);
  const int64_t count = n >= 1 ? textnat(param(s, 1)) : 1;
  const int64_t limit = n == 2 ? textnat(param(s, 2)) : 0;
  if (!current().faces.length) return;
  if (n == 2 && count >= 1 && limit >= 1)
    meshcluster(current(), count, limit);
  else
    meshcluster(current(), count < 1 ? 1 : count);
}

void digitscmd(tscript& s) {
  if (checkparams(s, 1)) current().digits = std::max<int64_t>(0, textnat(param(s, 1)));
}

void verticesfunc(tscript& s) { setresult(s, nattext(current().points.length)); }
void facesfunc(tscript& s) { setresult(s, nattext(current().faces.length)); }
void normalsfunc(tscript& s) { setresult(s, nattext(current().normals.length)); }
void pivotfunc(tscript& s) { setresult(s, vectortext(current().pivot)); }

using enum tcommandkind;
const tcommand rows[] = {
    {"put", procedure, putcmd<false>, nullptr, "put <p1> <p2> <p3> (<p4>) (<n1> <n2> <n3> (<n4>)) // add a face, points shared"},
    {"put.color", procedure, putcmd<true>, nullptr, "put.color <p1> <p2> <p3> (<p4>) (normals) <r, g, b> // the same with a colour 0..1"},
    eitherway("copy", copycmd<false>, "copy 0.5 // new := mesh.copy (factor): a scaled copy of the mesh"),
    eitherway("copyscale", copycmd<true>, "copyscale <1, 1, 2> // new := mesh.copyscale <x, y, z>: the same per axis"),
    {"verification", procedure, verificationcmd, nullptr, "verification // remove doubled points, faces keep their shape"},
    {"split", procedure, splitcmd, nullptr, "split 1 // keep the largest connected parts visible (count, optional minimal faces)"},
    {"digits", procedure, digitscmd, nullptr, "digits 0 // significant digits of obj, ply and dxf files; 0 writes all"},
    {"vertices", variablefunction, verticesfunc, nullptr, "vertices // number of points"},
    {"faces", variablefunction, facesfunc, nullptr, "faces // number of faces"},
    {"normals", variablefunction, normalsfunc, nullptr, "normals // number of normals"},
    {"pivot", variablefunction, pivotfunc, nullptr, "pivot // centre of the transformations"},
};

}  // namespace

std::span<const tcommand> meshbuildrows() { return rows; }
