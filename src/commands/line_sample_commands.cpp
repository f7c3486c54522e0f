// scalar.samples: voxel values of several fields into the line workspace.
#include <algorithm>
#include <vector>

#include "commands/combine_handlers.h"
#include "commands/line_rows.h"
#include "field/workspaces.h"
#include "geometry/cloudsamples.h"

namespace {

void samplescmd(tscript& s) {
  if (paramcount(s) < 2) return reportmin(s, 2);
  int64_t lo = 0, hi = 0;
  cutrange(param(s, 1), lo, hi);
  std::vector<const tscalarfield*> fields;
  for (int64_t i = 2; i <= paramcount(s); ++i) {
    const tscalarfield* f = workspaceoperand(s, scalarworkspace, param(s, i));
    if (!f) return;
    fields.push_back(f);
  }
  samplevoxels(*fields[0], std::min(lo, hi), std::max(lo, hi), fields, currentfield(lineworkspace));
}

const tcommand rows[] = {
    {"samples", tcommandkind::procedure, samplescmd, nullptr,
     "samples <1, 255> old1 old2 // a line per voxel of old1 in the range: its position with each field's value as t"},
};

}  // namespace

std::span<const tcommand> scalarsamplerows() { return rows; }
