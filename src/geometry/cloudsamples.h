// Voxel samples into the line cloud: one line a voxel of the selecting field whose value
// lies in the range, one point a named field, each at the voxel's global position with
// that field's value there as t (0 where a field doesn't reach).
#pragma once
#include <span>

#include "field/cloud.h"
#include "field/scalarfield.h"

void samplevoxels(const tscalarfield& select, int64_t lo, int64_t hi, std::span<const tscalarfield* const> fields,
                  tcloud& out);
