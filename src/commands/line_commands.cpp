// The line family's files and counts.
#include <algorithm>

#include "commands/line_rows.h"
#include "field/workspaces.h"
#include "formats/lineformats.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

void savecmd(tscript& s) {
  if (checkparams(s, 1)) linesave(currentfield(lineworkspace), param(s, 1));
}

template <tlinewriter write>
void savewithcmd(tscript& s) {
  if (checkparams(s, 1)) linesavewith(currentfield(lineworkspace), param(s, 1), write);
}

void loadcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 2) return reportcount(s, 1);
  lineload(currentfield(lineworkspace), param(s, 1), n == 2 ? textreal(param(s, 2)) : 0);
}

void objectsfunc(tscript& s) { setresult(s, nattext(currentfield(lineworkspace).objectstarts.length)); }
void linesfunc(tscript& s) { setresult(s, nattext(linecount(currentfield(lineworkspace)))); }
void pointsfunc(tscript& s) { setresult(s, nattext(currentfield(lineworkspace).points.length)); }

using enum tcommandkind;
const tcommand rows[] = {
    {"load", procedure, loadcmd, nullptr, "load \"lines.txt\" 20 // a skein2 file; 20 drops about 20 % of its lines at random"},
    {"save", procedure, savecmd, nullptr, "save \"lines.trk\" // by extension: dxf obj vtp vtk trk mel mv3d swc, else skein2 text"},
    {"save.txt", procedure, savewithcmd<nativebytes>, nullptr, "save.txt \"lines.txt\" // skein2 text"},
    {"savetxt", procedure, savewithcmd<nativebytes>, nullptr, "savetxt \"lines.txt\" // same as save.txt"},
    {"save.dxf", procedure, savewithcmd<dxfbytes>, nullptr, "save.dxf \"lines.dxf\" // polylines"},
    {"save.obj", procedure, savewithcmd<objbytes>, nullptr, "save.obj \"lines.obj\" // points, lines and closed lines"},
    {"save.vtp", procedure, savewithcmd<vtpbytes>, nullptr, "save.vtp \"lines.vtp\" // VTK XML poly data"},
    {"save.vtk", procedure, savewithcmd<vtpbytes>, nullptr, "save.vtk \"lines.vtp\" // same as save.vtp"},
    {"save.trackvis", procedure, savewithcmd<trkbytes>, nullptr, "save.trackvis \"lines.trk\" // TrackVis"},
    {"savetrackvis", procedure, savewithcmd<trkbytes>, nullptr, "savetrackvis \"lines.trk\" // same as save.trackvis"},
    {"save.maya", procedure, savewithcmd<melbytes>, nullptr, "save.maya \"lines.mel\" // Maya MEL curves"},
    {"savemaya", procedure, savewithcmd<melbytes>, nullptr, "savemaya \"lines.mel\" // same as save.maya"},
    {"save.mv3d", procedure, savewithcmd<mv3dbytes>, nullptr, "save.mv3d \"lines.mv3d\" // MicroVisu3D"},
    {"save.swc", procedure, savewithcmd<swcbytes>, nullptr, "save.swc \"lines.swc\" // SWC trees, t as the radius"},
    {"objects", function, objectsfunc, nullptr, "n := line.objects // number of objects"},
    {"lines", function, linesfunc, nullptr, "n := line.lines // number of lines"},
    {"points", function, pointsfunc, nullptr, "n := line.points // number of points"},
};

}  // namespace

std::span<const tcommand> linefilerows() { return rows; }
