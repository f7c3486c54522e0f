// Colours of a mesh from the fields around it. Each point takes a colour (the point colour
// list, which the writers carry), and each face the mean of its corners' colours. Fields
// are read at a point's global position through their place in space.
#pragma once
#include "field/mesh.h"
#include "field/scalarfield.h"
#include "field/vectorfield.h"

// Each face takes the mean of its corners' point colours, alpha 1; faces whose corners
// have no colour keep theirs.
void facecolorsfrompoints(tmesh& m);

// Grey (value - lo) / (hi - lo), the value interpolated between the voxel centres.
void colordensity(tmesh& m, const tscalarfield& f, double lo, double hi);
// Grey length / maxlength: the length of the line along the point's normal, through the
// point, on which the interpolated value stays at least threshold; maxlength each way at most.
void colorthickness(tmesh& m, const tscalarfield& f, double threshold, double maxlength);
// Grey share of the voxels within radius of the point whose value is not the background.
void colorcount(tmesh& m, const tscalarfield& f, double radius);
// The absolute components of the unit vector of the nearest voxel; black for no vector.
void colorvector(tmesh& m, const tvectorfield& f);
// One colour r, g, b, a on every point and face.
void colorall(tmesh& m, const std::array<double, 4>& c);
// The absolute components of each point's unit normal; where a point has the zero normal,
// the normal of its faces by their winding (also for the curvature).
void colornormals(tmesh& m);
// Mean curvature k from the ring of neighbours (1 / r on a sphere of radius r whose normals
// point outward) as t = 0.5 + 0.5 k scale, clamped to 0..1: blue for t = 0 through grey to
// red for t = 1.
void colorcurvature(tmesh& m, double scale);

// The visible faces drawn into the field with value: every voxel a face passes through.
void drawmesh(tscalarfield& f, const tmesh& m, double value);
