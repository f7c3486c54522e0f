// Whole-field vector operations: exact copies and the combination of several
// fields voxel by voxel. Rows are read into float vectors and written back through the
// rounding write, so a kind is looked at once per row, never per voxel.
#pragma once
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "field/vectorfield.h"


// Row (y, z) of f from x = 1, `width` vectors; outside the field the zero vector.
void readvectorrow(const tvectorfield& f, int64_t y, int64_t z, int64_t width, tvector* out);
void writevectorrow(tvectorfield& f, int64_t y, int64_t z, int64_t width, const tvector* in);

// For each voxel of the target: op(values of the operands, target's own value) -> new value.
using tvectorexpression = std::function<tvector(std::span<const tvector>, const tvector&)>;
void combinevectors(tvectorfield& target, std::span<const tvectorfield* const> operands, const char* word,
                    const tvectorexpression& op);
