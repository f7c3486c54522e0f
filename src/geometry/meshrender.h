// Looking at one mesh from another: every point of a camera mesh casts a ray against its
// normal onto the faces of the seen mesh and keeps what it hits; the camera's face colours
// then become an image.
#pragma once
#include <cstdint>

#include "field/imagefield.h"
#include "field/mesh.h"

// What a render stores on the camera: colours and depths, one of them, or the colours of
// the uv map (an image) in place of the faces' own.
enum class trenderpart { both, color, depth, uv };

// Settings of the uv projections, held for the process.
struct tprojectionsettings {
  bool back = false;  // take hits of negative depth (the reverse side) as well
  int64_t fillholes = 1, neighbours = 2;
  int64_t results = 0;  // 0..6, where additional data goes
};
extern tprojectionsettings projectionsettings;

// Casts the rays (at most `limit` long) of every camera point onto the visible faces of
// source whose colour is not all zero; a face of the zero colour neither hides nor shows.
// The colour forms give a hit point the face's colour (for uv the map's pixel at the face's
// first uv corner), a missed one the zero colour, and each camera face the mean of its
// corners. The depth forms make a hit point's normal the normal times the depth, so that
// point - normal is the hit, and a missed point's normal zero: such a camera has spent
// those rays. Prints where both meshes lie; the result is the same for any thread count.
void meshrender(tmesh& camera, const tmesh& source, trenderpart part, double limit, int64_t threads,
                const timagefield& uvmap);

// Pixel (x, y) of a w x h image takes the colour of camera face x + (h - y) w, so that the
// first row shows the screen's last row. An empty image is created as rgb.
void projectcolor(timagefield& image, const tmesh& camera, int64_t w, int64_t h);
