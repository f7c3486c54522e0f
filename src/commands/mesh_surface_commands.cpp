// Surfaces cut from the current scalar field into the current mesh.
#include "commands/combine_handlers.h"
#include "commands/fieldrows.h"
#include "commands/scalar_rows.h"
#include "field/workspaces.h"
#include "geometry/surface.h"

namespace {

// The value or range of the first parameter; the default without one.
bool surfacerange(tscript& s, int64_t& lo, int64_t& hi, int64_t defaultlo, int64_t defaulthi) {
  const int64_t n = paramcount(s);
  if (n > 1) {
    reportmax(s, 1);
    return false;
  }
  lo = defaultlo;
  hi = defaulthi;
  if (n == 1) cutrange(param(s, 1), lo, hi);
  return true;
}

// The `colored` forms take each face's colour from the current vector field.
template <tcornertest test, bool colored = false>
void surfacecmd(tscript& s) {
  int64_t lo, hi;
  if (!surfacerange(s, lo, hi, 128, test == tcornertest::weak ? 128 : 65535)) return;
  const tscalarfield& f = currentfield(scalarworkspace);
  warnnegativematrix(f);
  marchingsurface(currentfield(meshworkspace), f, test, lo, hi, threadlimit(s),
                  colored ? &currentfield(vectorworkspace) : nullptr);
}

template <bool colored = false>
void cubecmd(tscript& s) {
  int64_t lo, hi;
  if (!surfacerange(s, lo, hi, 128, 65535)) return;
  const tscalarfield& f = currentfield(scalarworkspace);
  warnnegativematrix(f);
  cubesurface(currentfield(meshworkspace), f, lo, hi, colored ? &currentfield(vectorworkspace) : nullptr);
}

using enum tcommandkind;
const tcommand rows[] = {
    {"surface", procedure, surfacecmd<tcornertest::range>, nullptr,
     "surface <128, 65535> // marching cubes of the voxels in the range into the mesh, vertices on the voxel lattice"},
    {"smoothsurface", procedure, surfacecmd<tcornertest::smooth>, nullptr,
     "smoothsurface <128, 65535> // the same on the local density of the range"},
    {"weaksurface", procedure, surfacecmd<tcornertest::weak>, nullptr,
     "weaksurface 128 // the same for the voxels of at least the value"},
    {"cube", procedure, cubecmd<>, nullptr, "cube <128, 65535> // the visible faces of the voxels in the range as quads"},
    {"surface.color", procedure, surfacecmd<tcornertest::range, true>, nullptr,
     "surface.color <128, 65535> // the same, each face coloured by the vector field's vector / 255"},
    {"smoothsurface.color", procedure, surfacecmd<tcornertest::smooth, true>, nullptr,
     "smoothsurface.color <128, 65535> // the same, coloured by the vector field"},
    {"weaksurface.color", procedure, surfacecmd<tcornertest::weak, true>, nullptr,
     "weaksurface.color 128 // the same, coloured by the vector field"},
    {"cube.color", procedure, cubecmd<true>, nullptr, "cube.color <128, 65535> // the same, coloured by the vector field"},
};

}  // namespace

std::span<const tcommand> scalarsurfacerows() { return rows; }
