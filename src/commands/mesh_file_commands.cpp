// The mesh family's files: load by extension, save by extension or by a named writer.
#include "commands/fieldrows.h"
#include "commands/mesh_rows.h"
#include "field/workspaces.h"
#include "formats/meshfile.h"

namespace {

tmesh& current() { return currentfield(meshworkspace); }

void loadcmd(tscript& s) {
  if (checkparams(s, 1)) meshload(current(), param(s, 1));
}

// The name, then for obj a material library and material, for pov and inc a colour and
// a line radius.
bool saveoptions(tscript& s, int64_t most, tmeshsave& o) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1), false;
  if (n > most) return reportmax(s, most), false;
  if (n >= 2) o.library = param(s, 2), o.color = textvector(param(s, 2));
  if (n >= 3) o.material = param(s, 3), o.radius = textreal(param(s, 3));
  return true;
}

void savecmd(tscript& s) {
  tmeshsave o;
  if (saveoptions(s, 3, o)) meshsave(current(), param(s, 1), o);
}

template <const char* ext, const char* suffix>
void saveascmd(tscript& s) {
  tmeshsave o;
  if (saveoptions(s, 3, o)) meshsaveas(current(), param(s, 1), ext, suffix, o);
}

void materialcmd(tscript& s) {
  if (checkparams(s, 4)) meshsavematerial(param(s, 1), param(s, 2), textnat(param(s, 3)), textvector(param(s, 4)));
}

constexpr char dxf[] = "dxf", obj[] = "obj", ply[] = "ply", plyascii[] = "ply.ascii", open[] = "open", vtp[] = "vtp",
               asc[] = "asc", csv[] = "csv", prn[] = "prn", mel[] = "mel", smel[] = "smel", pov[] = "pov", spov[] = "spov",
               inc[] = "inc", sinc[] = "sinc";
constexpr char dotdxf[] = ".dxf", dotobj[] = ".obj", dotply[] = ".ply", dotasc[] = ".asc", dotvtp[] = ".vtp",
               dotmel[] = ".mel", dotpov[] = ".pov", dotinc[] = ".inc";

using enum tcommandkind;
const tcommand rows[] = {
    {"load", procedure, loadcmd, nullptr, "load \"name\" // obj, ply, stl, dxf, wrl, vrml, iv, pov, inc, anysurf, asc, vtx, csv, prn"},
    {"save", procedure, savecmd, nullptr, "save \"name\" // by extension: obj, ply, ply.ascii, dxf, vtp, vtk, asc, csv, prn, open, pov, spov, npov, inc, sinc, ninc, mel, smel"},
    {"save.dxf", procedure, saveascmd<dxf, dotdxf>, nullptr, "save.dxf \"name\" // Autocad 3DFACE entities"},
    {"save.obj", procedure, saveascmd<obj, dotobj>, nullptr, "save.obj newfile newfile.mat mat1 // special for obj"},
    {"save.mat", procedure, materialcmd, nullptr,
     "save.mat newfile.mat mat1 1 <1,0.5,0.5> // special for obj // 1:Neon 2:Flat 3:Dissolved 4:Shiny 5:Mirror 6:Glas"},
    {"save.ply", procedure, saveascmd<ply, dotply>, nullptr, "save.ply \"name\" // binary little endian"},
    {"save.ply.ascii", procedure, saveascmd<plyascii, dotply>, nullptr, "save.ply.ascii \"name\" // ascii"},
    {"save.open", procedure, saveascmd<open, dotasc>, nullptr, "save.open \"name\" // NORM_ASCII mesh"},
    {"save.vtp", procedure, saveascmd<vtp, dotvtp>, nullptr, "save.vtp \"name\" // VTK XML poly data"},
    {"save.asc", procedure, saveascmd<asc, dotasc>, nullptr, "save.asc \"name\" // points only, x y z"},
    {"save.csv", procedure, saveascmd<csv, dotasc>, nullptr, "save.csv \"name\" // points only, x y z"},
    {"save.prn", procedure, saveascmd<prn, dotasc>, nullptr, "save.prn \"name\" // points only, x y z"},
    {"save.mel", procedure, saveascmd<mel, dotmel>, nullptr, "save.mel \"name\" // Maya, one facet a face"},
    {"save.mel.smooth", procedure, saveascmd<smel, dotmel>, nullptr, "save.mel.smooth \"name\" // Maya, faces appended and united"},
    {"save.pov", procedure, saveascmd<pov, dotpov>, nullptr, "save.pov \"name\" <1, 1, 1> 1.0 // POV-Ray scene, colour, radius"},
    {"save.pov.smooth", procedure, saveascmd<spov, dotpov>, nullptr, "save.pov.smooth \"name\" <1, 1, 1> 1.0 // with normals from the faces"},
    {"save.inc", procedure, saveascmd<inc, dotinc>, nullptr, "save.inc \"name\" <1, 1, 1> 1.0 // POV-Ray include"},
    {"save.inc.smooth", procedure, saveascmd<sinc, dotinc>, nullptr, "save.inc.smooth \"name\" <1, 1, 1> 1.0 // with normals from the faces"},
};

}  // namespace

std::span<const tcommand> meshfilerows() { return rows; }
