// The line scan under the orientation analysis: which directions a scan sphere of radius r
// holds, which gray values a straight line through a voxel meets, and the one number that
// sums a line up. Diffusion (vectors), connection (tensors) and their diagnostics all use
// these three, so they are fixed here once:
//
// scandirections(r, n): the half sphere of radius r as integer points. Row i = 0 ..
//   round(pi r) - 1 has np = round(pi r sin(i / r)) points, point j at the polar angle
//   (i + 1) / r and the azimuth (j + 1) / ring (ring taken at i, the angle at i + 1), each
//   coordinate rounded. Then one pass drops every entry that a later one repeats or
//   negates, and the last entry always (a list of one stays); then a heap sort by z alone.
//   The order of equal z is the one the heap sort leaves: it decides ties at a voxel.
//   n > 0 and below the count draws n distinct entries at random instead of taking all.
// scanline(field, p1, p2): the gray values from p1 towards p2 in 16.16 fixed point, steps
//   = round(|p2 - p1|), step per axis round(delta / steps * 65535) (short of the far end on
//   purpose), at most steps + 1 samples, outside reads 0. One connected run of non-zero
//   values: from p1 when p1 is not 0, else from p2 backwards when p2 is not 0, else from
//   the first non-zero sample on p1's side. Gray and fullgray only; other kinds: empty.
// linestatistic(values, submethod): 0 sum, 1 mean, 2 sample SD (n - 1), 3 min, 4 Q.25,
//   5 median, 6 Q.75, 7 max, anything else SD. Quantiles take one entry of the sorted copy:
//   odd n entry n/4 + 1, n/2 + 1, (n/4)*3 + 1; even n entry n/4, n/2, (n/4)*3 (1-based,
//   at least the first). Smaller is always the better line.
#pragma once
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "field/scalarfield.h"

using tscanpoint = std::array<int64_t, 3>;
using tscanunit = std::array<double, 3>;

struct tscandirectionset {
  std::vector<tscanpoint> points;  // integer scan vectors d; the line runs from p + d to p - d
  std::vector<tscanunit> units;    // the same, of length 1
};

// The rows of the sphere before any removal, as the dump walks them: row i, index j, point.
struct trawscanpoint {
  int64_t i, j;
  tscanpoint point;
};
std::vector<trawscanpoint> rawscanpoints(int64_t r);
// The same rows on an ellipsoid: the loops run on the nominal radius, each point is scaled
// per axis by radii before rounding. The sphere is radii = (r, r, r).
std::vector<trawscanpoint> rawellipsoidpoints(double nominal, const tscanunit& radii);
// The circle of the 2-D form: point i at the polar angle (i + 1) / r, z = 0.
std::vector<trawscanpoint> rawscancircle(int64_t r);

// draw(m) returns a uniform index in 0..m-1; it is only called for 0 < n < count.
tscandirectionset scandirections(int64_t r, int64_t n = 0, const std::function<int64_t(int64_t)>& draw = {});
// The selection step of scandirections on an already cleaned, sorted list.
tscandirectionset selectdirections(std::vector<tscanpoint> all, int64_t n, const std::function<int64_t(int64_t)>& draw);
// The 2-D form: the circle, the same removal, sorted by y; z is 0 throughout.
tscandirectionset scandirections2d(int64_t r);

// The removal pass and the sort by the last used axis (2 for z, 1 for y), as used by both.
std::vector<tscanpoint> uniquescanpoints(const std::vector<trawscanpoint>& raw, int axis);

void scanline(const tscalarfield& f, const tscanpoint& p1, const tscanpoint& p2, std::vector<int64_t>& values);

// 8.99e307: above every statistic a line can have.
constexpr double noscan = 8.99e307;

double linestatistic(const std::vector<int64_t>& values, int submethod);
// The statistics 0, 1, 2 from the exact integer moments of a line; the list form gives the
// same bits, since both go through here. Inline: the scan calls it once per line.
// The SD as sqrt(spread / pairs): n * sum of squares - sum^2 is exact in integers, so equal
// lines give equal bits. pairs = n (n - 1); both 0 and 1 below two values.
struct tspread {
  double spread = 0, pairs = 1;
};
inline tspread momentspread(int64_t count, int64_t sum, uint64_t squares) {
  if (count < 2) return {};
  const double pairs = static_cast<double>(count) * static_cast<double>(count - 1);
  if (count < (1 << 20) && squares < (uint64_t{1} << 42))  // the common case fits 64 bits
    return {static_cast<double>(count * static_cast<int64_t>(squares) - sum * sum), pairs};
  return {static_cast<double>(static_cast<__int128>(count) * squares - static_cast<__int128>(sum) * sum), pairs};
}
inline double momentstatistic(int64_t count, int64_t sum, uint64_t squares, int submethod) {
  if (submethod == 0) return static_cast<double>(sum);
  if (submethod == 1) return count > 0 ? static_cast<double>(sum) / static_cast<double>(count) : 0;
  const tspread s = momentspread(count, sum, squares);
  return std::sqrt(s.spread / s.pairs);
}

