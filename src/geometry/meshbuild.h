// Adding faces to a mesh with shared points, the point-to-face pairs, the repair of doubled
// points, and the split into connected parts.
#pragma once
#include <array>

#include "field/mesh.h"

using tcolor4 = std::array<double, 3>;  // r, g, b in 0..1; alpha is always 1

// A face of three or four corners. Each corner is found again by exact byte comparison
// (the previous face first, then the hash), else appended with its normal, whose first
// value then stays. A quad clears the triangles-only flag.
void addtriangle(tmesh& m, const std::array<tvector, 3>& p, const std::array<tvector, 3>& n, const tcolor4& color);
void addquad(tmesh& m, const std::array<tvector, 4>& p, const std::array<tvector, 4>& n, const tcolor4& color);
// A quad without normals: new points get the zero normal.
void addquad(tmesh& m, const std::array<tvector, 4>& p, const tcolor4& color);

// Points and faces appended as they stand, for readers that keep duplicates. Index of the
// point; the face's corners are taken as given (a triangle leaves the fourth 0).
int64_t appendpoint(tmesh& m, const tvector& p, const tvector& n = {0, 0, 0});
void appendface(tmesh& m, const std::array<int64_t, 4>& corners, const tcolor4& color = {1, 1, 1});

// Room for this many more faces and points, so that a large surface grows its lists once.
void meshreserve(tmesh& m, int64_t faces, int64_t points);

// True when all corners of the face name points of the mesh (the fourth may be 0).
bool validface(const tmesh& m, const tface& f);

// (point, face) pairs of all faces, sorted by the point: three a face when the mesh holds
// triangles only, four otherwise. Progress "  Sort".
void sortpairs(tmesh& m);

// Later copies of an equal point are removed and faces point at the first one; the
// count of equal pairs found is printed as "<n> zero points.".
void meshverification(tmesh& m);

// Connected parts through shared corners. The n largest stay visible, the others are
// hidden; sizelimit > 0 keeps instead every part of at least that many faces (up to n).
// Prints the "Max" lines and the counts.
void meshcluster(tmesh& m, int64_t n, int64_t sizelimit = 0);

// Visible faces.
int64_t visiblefaces(const tmesh& m);

// Target := source with every point multiplied by scale component by component.
void meshcopy(tmesh& target, const tmesh& source, const tvector& scale);
