// The vector formats beyond NIfTI, one file each: the text forms, AVS field, AmiraMesh and
// the image stack. Writers take a per-axis scale for the components and write the file
// whole (wholewrite.h); they write nothing for an empty field.
#pragma once
#include <cstdint>
#include <string>

#include "field/vectorfield.h"
#include "orientation/vectoraccess.h"
#include "shell/console.h"

// Pairs of lines "<position>" and "<position + vector>" and an empty line, for each voxel
// with a vector; a zero field gives an empty file. Reading puts each pair's vector into the
// voxel of its position: into a zero field of the current size and place, or, for an empty
// field, into one that spans the positions at unit spacing.
bool pairtextsave(const tvectorfield& f, const utf16& name, const tvector& scale);
bool pairtextload(tvectorfield& f, uint8_t kind, const utf16& name);
// Numbered lattice points "n, x, y, z", then the connections "a, b" of each voxel's vector.
bool tesslersave(const tvectorfield& f, const utf16& name, const tvector& scale);
// AVS field: text header, two form feeds, 32-bit floats (integers for integer storage).
bool avssave(const tvectorfield& f, const utf16& name, const tvector& scale);
// AmiraMesh 3D ASCII 2.0: a uniform lattice of float[3], one voxel a line.
bool amirasave(const tvectorfield& f, const utf16& name, const tvector& scale);
// Images of a name or pattern as slices z = 1..n; each pixel's (r, g, b) / 255 its vector.
bool rgbstackload(tvectorfield& f, uint8_t kind, const utf16& pattern);

// op(x, y, z, vector times scale) for every voxel, z outermost, with progress per slice
// running over the share from..to of the bar.
template <class Op>
void eachvector(const tvectorfield& f, const tvector& scale, const utf16& label, Op op, double from = 0, double to = 1) {
  const tnatvector n = fieldsize(f);
  eachstorage(f, [&](const auto& a) {
    const auto* items = a.items();
    int64_t i = 0;
    for (int64_t z = 1; z <= n[2]; ++z) {
      for (int64_t y = 1; y <= n[1]; ++y)
        for (int64_t x = 1; x <= n[0]; ++x, ++i) {
          const tvector v = readvector(items[i]);
          op(x, y, z, tvector{v[0] * scale[0], v[1] * scale[1], v[2] * scale[2]});
        }
      progress(label, from + (to - from) * static_cast<double>(z) / static_cast<double>(n[2]));
    }
  });
  if (to >= 1) progressend();
}
