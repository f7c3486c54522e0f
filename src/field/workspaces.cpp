#include "field/workspaces.h"

namespace {
constexpr tworkspacewords imagewords{"image", "image", "  Image (", "  Imagelist empty!", "imagefield"};
constexpr tworkspacewords scalarwords{"scalar", "scalar", "  Scalar (", "  Scalarlist empty!", "scalarfield"};
constexpr tworkspacewords vectorwords{"vector", "vector", "  Vector field (", "  Vector field list empty!",
                                      "vectorfield"};
constexpr tworkspacewords tensorwords{"tensor", "tensor", "  Tensor field (", "  Tensor field list empty!",
                                      "tensorfield"};
constexpr tworkspacewords meshwords{"mesh", "mesh", "  Mesh (", "  Meshlist empty!", "mesh"};
// The line workspace dumps under the word of its objects, clouds.
constexpr tworkspacewords linewords{"line", "cloud", "  cloud (", "  Cloudlist empty!", "line"};

// Calls op on each workspace, in the order of creation or the reverse.
template <class Op>
void eachworkspace(Op op, bool reverse = false) {
  if (reverse) {
    op(lineworkspace), op(meshworkspace), op(tensorworkspace), op(vectorworkspace), op(scalarworkspace),
        op(imageworkspace);
  } else {
    op(imageworkspace), op(scalarworkspace), op(vectorworkspace), op(tensorworkspace), op(meshworkspace),
        op(lineworkspace);
  }
}
}  // namespace

tworkspacelist<timagefield> imageworkspace(&imagewords, imagefullgray);
tworkspacelist<tscalarfield> scalarworkspace(&scalarwords, scalarfullgray);
tworkspacelist<tvectorfield> vectorworkspace(&vectorwords, vectorfloat);
tworkspacelist<ttensorfield> tensorworkspace(&tensorwords, vectorfloat);
tworkspacelist<tmesh> meshworkspace(&meshwords, 0);
tworkspacelist<tcloud> lineworkspace(&linewords, 0);

void createworkspaces() {
  eachworkspace([](auto& w) { workspacecreate(w); });
}

void releaseworkspaces() {
  eachworkspace([](auto& w) { workspacerelease(w); }, true);
}

void resetworkspaces() {
  eachworkspace([](auto& w) { workspacereset(w); });
}

void dumpworkspaces() {
  eachworkspace([](auto& w) { workspacedump(w); });
}
