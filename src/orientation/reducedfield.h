// The result field of a scan over every k-th voxel: (nx/k, ny/k, nz/k) cells that take the
// scalar field's place in space, with the matrix scaled by k. Diffusion and connection share it.
#pragma once
#include <cstdint>
#include <string>

#include "field/scalarfield.h"
#include "shell/console.h"

// Recreates `out` (with "  Assigned <word> field (...) updated.") only when its size times k
// differs from the scalar's; a field of the right size is reused as it is, not cleared.
template <class F>
void fitreducedfield(F& out, const tscalarfield& f, int64_t k, uint8_t newkind, const char* word) {
  const tnatvector n = fieldsize(f);
  const tnatvector have = fieldsize(out);
  if (have[0] * k != n[0] || have[1] * k != n[1] || have[2] * k != n[2]) {
    fieldcreate(out, out.kind ? out.kind : newkind, {n[0] / k, n[1] / k, n[2] / k});
    println("  Assigned " + std::string(word) + " field (" + dimensionstext(out) + ") updated.");
  }
  out.space = f.space;
  if (k > 1) {
    trows m = f.space.matrix;
    for (auto& row : m)
      for (double& c : row) c *= static_cast<double>(k);
    setmatrix(out.space, m);
  }
}
