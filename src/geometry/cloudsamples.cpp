#include "geometry/cloudsamples.h"

#include "field/grid.h"
#include "field/spatial.h"
#include "geometry/cloudbuild.h"

namespace {

double valueat(const tscalarfield& f, const tvector& g) {
  const tnatvector c = globaltolocal(f.space, g);
  const tnatvector n = fieldsize(f);
  for (int k = 0; k < 3; ++k)
    if (c[k] < 1 || c[k] > n[k]) return 0;
  return static_cast<double>(getvalue(f, c[0], c[1], c[2]));
}

}  // namespace

void samplevoxels(const tscalarfield& select, int64_t lo, int64_t hi, std::span<const tscalarfield* const> fields,
                  tcloud& out) {
  const tnatvector n = fieldsize(select);
  bool any = false;
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) {
        const int64_t v = getvalue(select, x, y, z);
        if (v < lo || v > hi) continue;
        const tvector g = localtoglobal(select.space, {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)});
        for (const tscalarfield* f : fields) addpoint(out, {g[0], g[1], g[2], valueat(*f, g)});
        closeline(out, v);
        any = true;
      }
  if (any) closeobject(out, "Samples");
}
