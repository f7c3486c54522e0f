// Combinations of images that need more than the one sample of each operand at a pixel:
// alpha compositing, which folds its operands pair by pair, and focus stacking, which
// weighs each operand by how sharp it is around the pixel.
#pragma once
#include <span>

#include "field/imagefield.h"

// operands[1] over operands[0], then each further operand over that result: one pass per
// pair, read and written as rgba with samples taken as 0..1. The colour is not divided by
// the resulting alpha. A target that is not rgba stores each pass in its own kind.
void imageover(timagefield& target, std::span<const timagefield* const> operands);

// Per pixel and channel the mean of the operands weighted by the difference between the
// mean of the pixel's 4-neighbourhood with itself and the pixel: sum(v * w) / sum(w),
// clamped to the target's kind. Pixels outside an operand read as its background.
void imagestacking(timagefield& target, std::span<const timagefield* const> operands);
