// How many gray values the diffusion scan of a volume puts into its line statistics: the
// sum over all object voxels and scan directions of the run that each line keeps. The
// benchmark divides this by the time of scalar.diffusion.
//   diffusion_count volume.nii r
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "formats/nifti.h"
#include "orientation/scan.h"

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  tscalarfield f{};
  if (!niftiload(f, scalargray, argv[1], 1, 0, 1)) return 1;
  const int64_t r = std::atoll(argv[2]);
  const tscandirectionset dirs = scandirections(r);
  const tnatvector n = fieldsize(f);
  std::vector<int64_t> values;
  int64_t samples = 0, voxels = 0;
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x) {
        if (getvalue(f, x, y, z) < 1) continue;
        ++voxels;
        for (const tscanpoint& d : dirs.points) {
          scanline(f, {x + d[0], y + d[1], z + d[2]}, {x - d[0], y - d[1], z - d[2]}, values);
          samples += static_cast<int64_t>(values.size());
        }
      }
  std::printf("objectvoxels=%lld directions=%zu samples=%lld\n", static_cast<long long>(voxels), dirs.points.size(),
              static_cast<long long>(samples));
  fieldrelease(f);
  return 0;
}
