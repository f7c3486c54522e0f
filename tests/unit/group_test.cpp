#include <gtest/gtest.h>

#include <random>

#include "ops/group.h"

namespace {

tgroupgrid randomgrid(int64_t nx, int64_t ny, int64_t nz, double density, double taken, uint32_t seed) {
  std::mt19937 r(seed);
  std::uniform_real_distribution<double> u(0, 1);
  tgroupgrid g;
  g.nx = nx, g.ny = ny, g.nz = nz;
  g.planar = nz == 1;
  g.outsideborder = seed % 2 == 0;
  for (int64_t i = 0; i < nx * ny * nz; ++i) {
    const double v = u(r);
    g.states.push_back(v < taken ? groupstaken : v < taken + density ? groupsmember : groupsfree);
  }
  return g;
}

// The run labelling agrees with the plain stack fill voxel for voxel, in numbering, counts
// and borders, in volumes and planes, at densities below and above percolation, on one to
// three threads.
TEST(Groups, RunsAgreeWithStackFill) {
  uint32_t seed = 1;
  for (const auto& [nx, ny, nz] : {std::array<int64_t, 3>{17, 9, 6}, {31, 23, 1}, {140, 4, 3}, {1, 1, 7}, {40, 1, 1}, {5, 6, 4}})
    for (double density : {0.2, 0.35, 0.6, 0.9})
      for (double taken : {0.0, 0.1}) {
        const tgroupgrid g = randomgrid(nx, ny, nz, density, taken, seed++);
        const tgroupcomponents fast = groupcomponents(g, 1 + seed % 3);
        const tgroupreference model = groupreference(g);
        ASSERT_EQ(grouplabels(g, fast), model.label) << nx << "x" << ny << "x" << nz << " at " << density;
        ASSERT_EQ(fast.count, model.count);
        ASSERT_EQ(fast.border, model.border);
      }
}

// Diagonal contact joins nothing; a whole volume stops its fill at the voxel count.
TEST(Groups, FacesOnlyAndWholeVolume) {
  tgroupgrid g;
  g.nx = 2, g.ny = 2, g.nz = 2;
  g.states = {1, 2, 2, 1, 2, 1, 1, 2};
  EXPECT_EQ(groupcomponents(g).count, (std::vector<int64_t>{1, 1, 1, 1}));
  g.states.assign(8, groupsmember);
  g.outsideborder = true;
  const tgroupcomponents whole = groupcomponents(g);
  EXPECT_EQ(whole.count, std::vector<int64_t>{8});
  EXPECT_EQ(whole.border, groupreference(g).border);
  EXPECT_LT(whole.border[0], 24);  // positions still stacked when the count was reached
}

}  // namespace
