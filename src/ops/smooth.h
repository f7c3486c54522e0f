// The box kernels of volumes: the 3 by 3 by 3 window cut at the border (not mirrored), S its
// sum and N its count, c the centre; the first and last slice take the 3 by 3 form of their
// own plane. All divisions truncate, in this order:
//   soft    (S / N + c * 26) / 27, flat (S / N + c * 8) / 9
//   smooth  (c + S / N) / 2
//   smooth0 as smooth, and 0 stays 0
//   hard    S / N
//   unsharp 2 * c - S / N, clamped to the kind
// Gray and fullgray volumes only: a mono field stays as it is.
#pragma once
#include <cstdint>

#include "field/imagefield.h"
#include "field/scalarfield.h"

enum class tsmoothkind { soft, smooth, smooth0, hard, unsharp };

// The word of the progress display.
const char* smoothword(tsmoothkind kind);
// Slices on at most `parallel` threads; the result does not depend on it.
void smoothfield(tscalarfield& f, tsmoothkind kind, int64_t parallel);

// The 3 by 3 form on each plane of an image (each colour on its own), `times` times.
void smoothimage(timagefield& f, tsmoothkind kind, int64_t times);
