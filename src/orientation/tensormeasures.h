// What a tensor field says per voxel: scalar measures of the ordered eigenvalues (scaled
// into gray or fullgray) and vectors (eigenvalues, Westin measures, eigenvectors). Zero
// tensors give 0 and the zero vector.
#pragma once
#include <cstdint>

#include "field/scalarfield.h"
#include "field/tensorfield.h"
#include "field/vectorfield.h"
#include "library/matheigen.h"

enum class tmeasure { e1, e2, e3, fa, ra, md, radial, linear, planar, spherical, vr };
enum class tvectormeasure { eigenvalues, westin, westinrank, vectormax, vectormid, vectormin };

// The measure of ordered, guarded eigenvalues l (as eigenvalues() gives them).
double measureof(tmeasure m, const tvector& l);
// The full scale of a measure on a gray target (fullgray: 256 times this).
double measurescale(tmeasure m);
tvector vectormeasureof(tvectormeasure m, const tsymmetric& t);

// The target takes the tensor field's size and place ("  Assigned scalar field (..)
// updated." on a change of size); only gray and fullgray targets are written.
bool tensormeasure(const ttensorfield& t, tscalarfield& out, tmeasure m, int64_t parallel, uint8_t newkind);
// Vector targets: float as it is, integer times 2^63, rgb times 255, rounded.
bool tensorvectors(const ttensorfield& t, tvectorfield& out, tvectormeasure m, int64_t parallel, uint8_t newkind);
