// The surface of the mesh workspace: shared points with one normal each, and faces of up
// to four corners. Its lists grow as faces are added, so an empty mesh holds them dynamic.
#pragma once
#include <array>

#include "field/arrays.h"

struct tface {
  std::array<int64_t, 4> corners{};  // point indices; a triangle leaves the fourth 0
  std::array<int64_t, 4> extra{};    // further indices, 0 from the generators
  int64_t visible = 1;
  std::array<double, 4> color{0, 0, 0, 1};  // r, g, b, a, each 0..1
};
using tfacelist = tarraylist<tface, 0>;

struct tmesh {
  tvectorlist points{};
  tvectorlist normals{};  // one per point
  tfacelist faces{};
};

void fieldcreate(tmesh& m, uint8_t kind = 0);  // meshes have no storage kinds
void fieldrelease(tmesh& m);
utf16 fielddescription(const tmesh& m);  // "mesh(points:..;faces:..;normales:..)"
