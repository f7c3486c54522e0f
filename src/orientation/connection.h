// Tensor fields from gray values: every scan line through an object voxel votes with the
// outer product of its direction, weighted by 1 / statistic (sqrt(count + 1) for a line of
// statistic 0), so homogeneous lines weigh most. The lines and statistics are those of the
// diffusion scan (scan.h). The sum is not normalised: only ratios of it mean anything.
#pragma once
#include <cstdint>
#include <string>

#include "field/scalarfield.h"
#include "field/tensorfield.h"
#include "library/matheigen.h"
#include "orientation/scan.h"

// The method number a field keeps, mapped: 1..6, everything else 5.
int connectionmethod(uint8_t stored);
// Its "Method: " line.
std::string connectionmethodline(int method);

struct tconnectionsettings {
  int method = 5;
  int submethod = 2;
  bool fullscan = false;
  int64_t r = 0;  // 0: each line counts when it is at least as long as its own direction
};

// The per-worker scan state: directions (none for the fixed methods) and the value list.
struct tconnectionscan {
  tconnectionsettings s;
  tscandirectionset dirs;
  std::vector<int64_t> values;
};

// The tensor of one voxel (1-based position) with the worker's directions.
tsymmetric connectiontensor(const tscalarfield& f, tconnectionscan& scan, int64_t x, int64_t y, int64_t z);

// The aniso scan ellipsoid: radii r s / min(s) per axis of voxel size s.
tscanunit anisoradii(const tscalarfield& f, double r);
std::vector<tscanpoint> anisodirections(const tscanunit& radii);

struct tconnectionrun {
  int64_t r = 0;          // integer scan length (base and reduced)
  double anisor = 0;      // real scan length of the aniso family
  bool aniso = false;
  int64_t k = 1;          // reduction
  bool adaptive = false;
  int64_t parallel = 1;
  uint64_t seed = 0;      // the random subsets of slice j come from seed and j
  uint8_t newkind = vectorfloat;
  tscanunit radii{0, 0, 0};  // filled by the command for aniso
};

// The whole command: size test ("Wrong scan size (r)!"), the field made anew only when its
// size differs, the place in space (matrix times k), the method line, the slice pass.
bool scalarconnection(const tscalarfield& f, ttensorfield& out, const tconnectionrun& run);

// The histogram sweep: anisotropy of the voxel at p for the scan sizes s = round(min n / 2)
// down to 1; values[s - 1].
std::vector<double> connectionsweep(const tscalarfield& f, const tnatvector& p);
// The same as a chart of 640 x 480 saved under name.
bool connectionhistogram(const tscalarfield& f, const tnatvector& p, const utf16& name);
