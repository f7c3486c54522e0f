// The raw voxel reader under NIfTI, Analyze and the other volume formats: a block of
// voxels of one type code, in file order (x fastest, z slowest), converted into the
// storage kind of a scalar field as it arrives.
//
// Type codes are signed: the byte size of a voxel is (|code| mod 1000) / 8.
//   8, 16, 32, 64         unsigned integers     -8, -16, -32, -64   signed integers
//   1032, 1064, 1080      float32, float64, 80-bit extended
//   2024, 2032            rgb and rgba of bytes  3024, 3032          rgb and rgba of words
// Word colours take two bytes a channel, twice what the digits of their code say.
#pragma once
#include <cstdint>

#include "field/arrays.h"
#include "field/scalarfield.h"
#include "formats/voxelsource.h"
#include "shell/files.h"

constexpr int64_t voxelbytes(int code) { return (code < 0 ? -code : code) % 1000 / 8 * (code >= 3000 ? 2 : 1); }
bool knowntypecode(int code);

struct trawvolume {
  int code = 8;
  bool swap = false;  // multi-byte numbers of the other byte order; rgb types never swap
  tnatvector size{0, 0, 0};
  int64_t filteradd = 0;  // the load filter: (v + add), then * mul (>= 2) or / -mul (< 0)
  int64_t filtermul = 1;
  double calmin = 0, calmax = 0;  // range of float voxels; empty: found by a first pass
};

// The field made anew in kind at the volume's size, and the voxels read from the source's
// position and converted. A failed allocation leaves the field empty (reported); data that
// ends early leaves the rest zero. False for an unknown type code (zero field).
bool rawread(tscalarfield& f, uint8_t kind, tvoxelsource& src, const trawvolume& r);

// The label of the storage kind in progress lines: "Mono", "Grey", "Fullgrey".
const char* progressword(uint8_t kind);
