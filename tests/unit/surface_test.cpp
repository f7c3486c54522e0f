#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>

#include "field/scalarfield.h"
#include "geometry/cubetables.h"
#include "geometry/meshbuild.h"
#include "geometry/surface.h"

namespace {

struct tvolumefixture {
  tscalarfield f{};
  tmesh m{};
  explicit tvolumefixture(tnatvector size) {
    fieldcreate(f, scalargray, size);
    fieldcreate(m);
  }
  ~tvolumefixture() {
    fieldrelease(f);
    fieldrelease(m);
  }
};

// A ball of radius r around c, plus a second one when asked.
void ball(tscalarfield& f, tvector c, double r) {
  const tnatvector n = fieldsize(f);
  for (int64_t z = 1; z <= n[2]; ++z)
    for (int64_t y = 1; y <= n[1]; ++y)
      for (int64_t x = 1; x <= n[0]; ++x)
        if (std::hypot(x - c[0], y - c[1], z - c[2]) <= r) setvalue(f, x, y, z, 255);
}

TEST(CubeTables, PublishedEntriesAndEveryRowCutsExactlyTheEdgesBetweenInsideAndOutside) {
  const tcubetables& t = cubetables();
  EXPECT_EQ(t.edgetable[1], 0x109);
  EXPECT_EQ(t.edgetable[2], 0x203);
  EXPECT_EQ(t.edgetable[255], 0);
  for (int i = 0; i < 256; ++i) {
    uint16_t cut = 0;
    for (int e = 0; e < 12; ++e)
      if (((i >> cubeedges[e][0]) & 1) != ((i >> cubeedges[e][1]) & 1)) cut |= 1 << e;
    EXPECT_EQ(t.edgetable[i], cut) << "cube index " << i;
  }
}

TEST(MeshModel, SharedPointsKeepTheFirstNormalAndVerificationMergesCopies) {
  tmesh m{};
  fieldcreate(m);
  const std::array<tvector, 3> p{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}};
  addtriangle(m, p, {{{0, 0, 1}, {0, 0, 1}, {0, 0, 1}}}, {0, 0, 0});
  addtriangle(m, p, {{{1, 0, 0}, {1, 0, 0}, {1, 0, 0}}}, {0, 0, 0});
  EXPECT_EQ(m.points.length, 3);
  EXPECT_EQ(m.faces.length, 2);
  EXPECT_EQ(m.normals.get(1)[2], 1.0);
  // -0 is another point byte for byte.
  addtriangle(m, {{{-0.0, 0, 0}, {5, 5, 5}, {6, 6, 6}}}, {}, {0, 0, 0});
  EXPECT_EQ(m.points.length, 6);
  // Points appended without sharing (as readers do) merge on verification.
  const int64_t a = appendpoint(m, {1, 0, 0}), b = appendpoint(m, {1, 0, 0});
  appendface(m, {a, b, 2, 0});
  testing::internal::CaptureStdout();
  meshverification(m);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "3 zero points.\n");
  EXPECT_EQ(m.points.length, 6);
  EXPECT_EQ(m.faces.get(4).corners[0], 2);
  EXPECT_EQ(m.faces.get(4).corners[1], 2);
  fieldrelease(m);
}

TEST(Surface, SingleVoxelGivesTheRoundedOctahedron) {
  tvolumefixture v({5, 5, 5});
  setvalue(v.f, 3, 3, 3, 255);
  marchingsurface(v.m, v.f, tcornertest::range, 128, 65535, 1);
  EXPECT_EQ(v.m.points.length, 6);
  EXPECT_EQ(v.m.faces.length, 8);
  for (int64_t i = 1; i <= v.m.points.length; ++i) {
    const tvector p = v.m.points.get(i);
    EXPECT_EQ(std::abs(p[0] - 2) + std::abs(p[1] - 2) + std::abs(p[2] - 2), 1.0);
  }
}

// Closed and consistently wound: every edge in two faces in opposite directions. The
// volume, the outward sense and the split into balls: mesh_clients.py with vtk and meshio.
TEST(Surface, BallsAreClosedAndTheSameForAnyThreadCount) {
  tvolumefixture one({40, 40, 40}), three({40, 40, 40});
  for (auto* v : {&one, &three}) {
    ball(v->f, {12, 12, 12}, 8);
    ball(v->f, {28, 28, 28}, 6);
  }
  marchingsurface(one.m, one.f, tcornertest::range, 128, 65535, 1);
  marchingsurface(three.m, three.f, tcornertest::range, 128, 65535, 3);
  ASSERT_EQ(one.m.points.length, three.m.points.length);
  ASSERT_EQ(one.m.faces.length, three.m.faces.length);
  EXPECT_EQ(std::memcmp(one.m.points.data, three.m.points.data, one.m.points.length * sizeof(tvector)), 0);
  std::map<std::pair<int64_t, int64_t>, int> directed;
  for (int64_t i = 1; i <= one.m.faces.length; ++i) {
    const auto c = one.m.faces.get(i).corners;
    for (int k = 0; k < 3; ++k) ++directed[{c[k], c[(k + 1) % 3]}];
  }
  for (const auto& [edge, n] : directed) {
    EXPECT_EQ(n, 1);
    EXPECT_EQ((directed.count({edge.second, edge.first})), 1u);
  }
}

TEST(Surface, TouchingVoxelsShareNoCubeFace) {
  tvolumefixture v({4, 4, 4});
  setvalue(v.f, 2, 2, 2, 200);
  setvalue(v.f, 3, 2, 2, 200);
  tvectorfield colors{};
  fieldcreate(colors, vectorrgb, {4, 4, 4});
  colors.rgb.put(colors.rgb.index(3, 2, 2), {255, 0, 51});
  cubesurface(v.m, v.f, 128, 65535, &colors);
  fieldrelease(colors);
  EXPECT_EQ(v.m.faces.length, 10);
  EXPECT_EQ(v.m.faces.get(1).color[0], 0.0);  // the first voxel has no vector: black
  const auto c = v.m.faces.get(10).color;      // the last face is the second voxel's
  EXPECT_EQ(c[0], 1.0);
  EXPECT_EQ(c[2], 0.2);
  EXPECT_EQ(c[3], 1.0);
  EXPECT_EQ(v.m.points.length, 16);  // the gaps keep the two cubes apart
  EXPECT_FALSE(v.m.trianglesonly);
}

}  // namespace
