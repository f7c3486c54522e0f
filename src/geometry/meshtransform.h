// Moving, turning, scaling and editing the coordinates of a mesh in place. Points and their
// normals change together; faces stay as they are. Empty meshes are left alone.
#pragma once
#include <cstdint>

#include "field/mesh.h"
#include "library/mathquaternion.h"

void meshtranslate(tmesh& m, const tvector& move);
// p -> centre + scale * (p - centre) per axis. Normals follow the inverse transpose and keep
// their length, so that they stay normal to the scaled surface and a mirror keeps them outward.
void meshscale(tmesh& m, const tvector& scale, const tvector& centre);
// p -> centre + R (p - centre); normals turn with R, given by the images of the axes.
void meshrotate(tmesh& m, const trows& rows, const tvector& centre);
// The plane (a, b) turned by -angle (radians), taking direction angle in it to axis a.
void meshplaneturn(tmesh& m, int a, int b, double angle);

// One coordinate (0, 1, 2) of every point: set to 0, negated (normals too), or made
// absolute (normals of the points that turned, too).
enum class tcoordinateedit { clear, mirror, absolute };
void meshcoordinate(tmesh& m, int axis, tcoordinateedit edit);
// Two coordinates exchanged in points and normals.
void meshswapaxes(tmesh& m, int a, int b);

// Centre of the bounding box and mean of the points, non-finite points left out; zero for
// a mesh without finite points.
tvector meshboxcentre(const tmesh& m);
tvector meshgravity(const tmesh& m);

// Normals multiplied by f, made unit vectors (zero stays zero), or set to zero.
void meshnormalscale(tmesh& m, double f);
void meshnormalnorm(tmesh& m);
void meshnormalremove(tmesh& m);
// The corners (and their uv indices) of each face in reverse order.
void meshfaceflip(tmesh& m);

// The points changed in place: the sharing of added points starts anew, while the
// point-to-face pairs stay valid.
void meshpointsmoved(tmesh& m);
