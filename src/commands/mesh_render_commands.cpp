// Cameras, renders of the current mesh onto a camera, and the camera's picture.
#include <limits>
#include <optional>

#include "commands/fieldrows.h"
#include "commands/mesh_rows.h"
#include "commands/threads.h"
#include "field/workspaces.h"
#include "geometry/camera.h"
#include "geometry/meshrender.h"

namespace {

template <tcamerashape shape, bool focused>
void cameracmd(tscript& s) {
  if (!checkparams(s, focused ? 2 : 1)) return;
  const tnatvector size = textnatvector(param(s, 1));
  std::optional<tvector> focus;
  if (focused) focus = textvector(param(s, 2));
  addcamera(currentfield(meshworkspace), size[0], size[1], shape, focus);
}

// new := mesh.render (length): the current mesh seen by the camera `new`.
template <trenderpart part>
void rendercmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  const double limit = paramcount(s) == 1 ? textreal(param(s, 1)) : std::numeric_limits<double>::infinity();
  if (empty(gettarget(s))) return println("Destination mesh has no normals for projection.");
  tmesh* camera = resulttarget<meshworkspace>(s, true);
  if (camera) meshrender(*camera, currentfield(meshworkspace), part, limit, threadlimit(s), currentfield(imageworkspace));
}

void projectioncmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  const tnatvector size = textnatvector(param(s, 1));
  projectcolor(currentfield(imageworkspace), currentfield(meshworkspace), size[0], size[1]);
}

void backcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  projectionsettings.back = paramcount(s) == 1 && textbool(param(s, 1));
}

void fillholescmd(tscript& s) {
  if (paramcount(s) > 2) return reportmax(s, 2);
  projectionsettings.fillholes = paramcount(s) >= 1 ? std::max<int64_t>(0, textnat(param(s, 1))) : 1;
  projectionsettings.neighbours = paramcount(s) == 2 ? std::max<int64_t>(0, textnat(param(s, 2))) : 2;
}

void resultscmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  projectionsettings.results = paramcount(s) == 1 ? std::clamp<int64_t>(textnat(param(s, 1)), 0, 6) : 0;
}

using enum tcommandkind;
using enum tcamerashape;
const tcommand rows[] = {
    {"add.camera", procedure, cameracmd<flat, false>, nullptr,
     "add.camera <64, 48> // the mesh becomes a flat screen of w x h quads, 1 x 1 about the origin in z = 0; normals +z, rays run against them"},
    {"add.camera.focus", procedure, cameracmd<flat, true>, nullptr,
     "add.camera.focus <64, 48> <0, 0, 2> // the same screen, its rays running from the focus point through the screen"},
    {"add.camera.tube", procedure, cameracmd<tube, false>, nullptr,
     "add.camera.tube <64, 48> // a tube of radius 1 and height 1 about z; normals at its axis, rays run outward"},
    {"add.camera.tube.focus", procedure, cameracmd<tube, true>, nullptr,
     "add.camera.tube.focus <64, 48> <0, 0, 0> // the tube, its rays running from the focus point through it"},
    eitherway("render", rendercmd<trenderpart::both>,
              "render 100 // camera := mesh.render (ray length): colours and depths of the mesh seen by the camera"),
    eitherway("render.color", rendercmd<trenderpart::color>,
              "render.color // camera := mesh.render.color (ray length): colours only"),
    eitherway("render.depth", rendercmd<trenderpart::depth>,
              "render.depth // camera := mesh.render.depth (ray length): depths only, each normal becomes normal * depth"),
    eitherway("render.uv", rendercmd<trenderpart::uv>,
              "render.uv // camera := mesh.render.uv (ray length): the colours of the uv map (the current image)"),
    {"projection.color", procedure, projectioncmd, nullptr,
     "projection.color <64, 48> // the camera's face colours into the current image, first row the screen's last"},
    {"projection.uv.back", procedure, backcmd, nullptr,
     "projection.uv.back false // false (default) ignore negative depth values (background / reverse side)"},
    {"projection.uv.fill.holes", procedure, fillholescmd, nullptr,
     "projection.uv.fill.holes 1 2 // hole filling of the uv map: iterations, neighbours"},
    {"projection.uv.results", procedure, resultscmd, nullptr,
     "projection.uv.results 0 // 0..6, where additional data of the uv projections goes"},
};

}  // namespace

std::span<const tcommand> meshrenderrows() { return rows; }
