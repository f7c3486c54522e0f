// Screens for looking at a mesh: a camera is itself a mesh, a grid of points whose normals
// are the viewing rays, with one quad per pixel.
#pragma once
#include <cstdint>
#include <optional>

#include "field/mesh.h"

enum class tcamerashape { flat, tube };

// Replaces m by a screen of w x h quads over (w + 1) x (h + 1) points, point (i, j) at index
// (w + 1) * j + i + 1. Rays run against the normals. Flat: the unit square around the origin
// in z = 0, normals +z. Tube: the unit cylinder about z, height 1, normals at its axis. With a
// focus every normal aims at that point instead, so the rays leave it through the screen. A size below 1 leaves the mesh empty.
void addcamera(tmesh& m, int64_t w, int64_t h, tcamerashape shape, const std::optional<tvector>& focus);
