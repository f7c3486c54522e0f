// What lies around each point of a mesh: the faces that hold it, in the order of the
// sorted point-to-face pairs, and the corners of those faces.
#pragma once
#include <cstdint>
#include <vector>

#include "field/mesh.h"

// Point i's faces are faces[start[i] .. start[i + 1]), 1-based points and faces, in the
// order of the pairs (faces ascending). A face is counted with three corners when the
// mesh holds triangles only, with four otherwise.
struct tmeshneighbours {
  std::vector<int64_t> start;  // points + 2 entries; start[0] is unused
  std::vector<int64_t> faces;
  int corners = 3;
};

// Built from the faces in linear time; corners that name no point of the mesh are left out.
tmeshneighbours meshneighbours(const tmesh& m);

// Point i's neighbours are points[start[i] .. start[i + 1]).
struct tpointlinks {
  std::vector<int64_t> start;  // points + 2 entries; start[0] is unused
  std::vector<int64_t> points;
};
// The other corners of the faces of each point: with repeats in face order (an edge of two
// faces gives its end twice), or once each in ascending order when unique is set.
tpointlinks meshlinks(const tmeshneighbours& nb, const tmesh& m, bool unique);

// Calls visit(q) for every corner q != p of every face that holds p: a neighbour shared by
// two faces is visited twice. Corners that name no point are skipped.
template <class F>
void forneighbours(const tmeshneighbours& nb, const tmesh& m, int64_t p, F&& visit) {
  const tface* f = m.faces.items();
  const int64_t points = m.points.length;
  for (int64_t k = nb.start[p]; k < nb.start[p + 1]; ++k) {
    const tface& face = f[nb.faces[k] - 1];
    for (int c = 0; c < nb.corners; ++c) {
      const int64_t q = face.corners[c];
      if (q != p && q >= 1 && q <= points) visit(q);
    }
  }
}
