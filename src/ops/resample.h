// Fields of another size made from a field: exact copies and scaling. Downscaling bins
// blocks of 1 / f samples by the field's copy method; upscaling interpolates (nearest for
// images, for the block method 0 and for labels; trilinear for method 1 and Lanczos for
// method 2 on volumes). The target takes kind, place and settings of the source; its
// matrix rows are divided by the factors, its offset stays.
//
// copy methods when binning: 0 sum, 1 mean, 2 sample SD, 3 min, 4 Q.25, 5 median, 6 Q.75,
// 7 max; another method leaves the target at 0.
#pragma once
#include <array>
#include <cstdint>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "field/tensorfield.h"
#include "field/vectorfield.h"

// An equal copy: kind, size, samples, labels, title, place in space and settings.
void copyfield(tscalarfield& target, const tscalarfield& source);
void copyfield(timagefield& target, const timagefield& source);
void copyfield(tvectorfield& target, const tvectorfield& source);
void copyfield(ttensorfield& target, const ttensorfield& source);

// The size along an axis for a factor: size * f rounded, halves up.
int64_t scaledsize(int64_t size, double f);

// Scaling by positive factors per axis (an image uses the first two). A target that
// memory can't hold is left empty, as the allocator reported. `label` takes the most
// frequent value of a block in place of the method, and the nearest sample upwards.
// Prints the size change.
void scalefield(tscalarfield& target, const tscalarfield& source, const std::array<double, 3>& factors, bool label);
void scalefield(timagefield& target, const timagefield& source, const std::array<double, 3>& factors, bool label);
// Vectors and tensors scale each component as a volume of reals; there are no labels.
void scalefield(tvectorfield& target, const tvectorfield& source, const std::array<double, 3>& factors, bool label);
void scalefield(ttensorfield& target, const ttensorfield& source, const std::array<double, 3>& factors, bool label);

// The Lanczos weight of 4 lobes at distance d.
double lanczos4(double d);
