// The surface of the mesh workspace: shared points with one normal each, and faces of up
// to four corners. Its lists grow as faces are added, so an empty mesh holds them dynamic.
#pragma once
#include <array>
#include <vector>

#include "field/arrays.h"

struct tface {
  std::array<int64_t, 4> corners{};  // point indices; a triangle leaves the fourth 0
  std::array<int64_t, 4> extra{};    // further indices (uv), 0 from the generators
  int64_t visible = 1;
  std::array<double, 4> color{0, 0, 0, 1};  // r, g, b, a, each 0..1
};
using tfacelist = tarraylist<tface, 0>;

// Where the add operation finds a point again: an open table of (hash of the point's bytes,
// first point index with them). It covers points 1..count; points appended by other means
// join lazily, and any change of the points in place must call meshpointschanged.
struct tpointhash {
  struct tslot {
    uint64_t key = 0;
    int64_t index = 0;  // 0 for a free slot
  };
  std::vector<tslot> slots;  // a power of two, at most half full
  int64_t count = 0;
};

struct tmesh {
  tvectorlist points{};
  tvectorlist normals{};  // one per point
  tfacelist faces{};
  tvectorlist colors{};   // per point, 0..1, from files that carry them
  tpointlist uvs{};       // from files that carry them
  tcountlist pairs{};     // (point, face), built on demand
  bool pairssorted = false;
  bool trianglesonly = true;
  bool smoothed = false;
  tintlist clusters{};  // cluster id of each face after a split
  tvector pivot{0, 0, 0};
  int64_t digits = 0;  // significant digits of obj, ply and dxf; 0 is full
  tpointhash hash{};
  std::array<int64_t, 4> lastface{};  // the add operation's cache: indices of the last face
};

void fieldcreate(tmesh& m, uint8_t kind = 0);  // meshes have no storage kinds
void fieldrelease(tmesh& m);
utf16 fielddescription(const tmesh& m);  // "mesh(points:..;faces:..;normales:..)"
// The point list was changed in place (moved, compacted): the sharing starts anew.
void meshpointschanged(tmesh& m);
