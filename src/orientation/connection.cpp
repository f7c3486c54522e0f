#include "orientation/connection.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "drawing/chart.h"
#include "ops/slices.h"
#include "orientation/tensorvoxel.h"
#include "shell/console.h"

namespace {

constexpr double c3 = 0.5773502691896257, a2 = 0.7071067811865476;
// The fixed directions of the methods 1..3 (the first 3, 7 or 13), as multiples of r.
constexpr double fixeddirections[13][3] = {{1, 0, 0},    {0, 1, 0},    {0, 0, 1},     {c3, c3, c3},  {c3, c3, -c3},
                                           {-c3, c3, c3}, {-c3, c3, -c3}, {a2, a2, 0},   {-a2, a2, 0}, {a2, 0, a2},
                                           {-a2, 0, a2},  {0, a2, a2},   {0, a2, -a2}};

// The vote of one line: t = u w with w = 1 / v, or sqrt(count + 1) for v = 0.
void vote(tsymmetric& t, const tscanunit& u, double v, size_t count, bool diagonalonly) {
  const double w = v != 0 ? 1 / v : 1 / std::sqrt(1 / (static_cast<double>(count) + 1));
  const double x = u[0] * w, y = u[1] * w, z = u[2] * w;
  t.xx += x * x, t.yy += y * y, t.zz += z * z;
  if (diagonalonly) return;
  t.xy += x * y, t.xz += x * z, t.yz += y * z;
}

tscanunit unitof(const tscanpoint& d) {
  const double x = static_cast<double>(d[0]), y = static_cast<double>(d[1]), z = static_cast<double>(d[2]);
  const double l = std::sqrt(x * x + y * y + z * z);
  return l == 0 ? tscanunit{0, 0, 0} : tscanunit{x / l, y / l, z / l};
}

tsymmetric fixedtensor(const tscalarfield& f, tconnectionscan& scan, int64_t x, int64_t y, int64_t z) {
  const tconnectionsettings& s = scan.s;
  const int count = s.method == 1 ? 3 : s.method == 2 ? 7 : 13;
  const double r = static_cast<double>(s.r);
  const double p[3] = {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)};
  tsymmetric t;
  int q = 0;
  for (int i = 0; i < count; ++i) {
    tscanpoint p1, p2;
    for (int a = 0; a < 3; ++a) {
      p1[a] = roundnat(p[a] + fixeddirections[i][a] * r);
      p2[a] = roundnat(p[a] - fixeddirections[i][a] * r);
    }
    scanline(f, p1, p2, scan.values);
    if (static_cast<int64_t>(scan.values.size()) < s.r) continue;
    ++q;
    vote(t, unitof({p1[0] - p2[0], p1[1] - p2[1], p1[2] - p2[2]}), linestatistic(scan.values, s.submethod),
         scan.values.size(), s.method == 1);
  }
  return s.fullscan && q < count ? tsymmetric{} : t;
}

tsymmetric scannedtensor(const tscalarfield& f, tconnectionscan& scan, int64_t x, int64_t y, int64_t z) {
  const tconnectionsettings& s = scan.s;
  tsymmetric t;
  for (size_t i = 0; i < scan.dirs.points.size(); ++i) {
    const tscanpoint& d = scan.dirs.points[i];
    scanline(f, {x + d[0], y + d[1], z + d[2]}, {x - d[0], y - d[1], z - d[2]}, scan.values);
    const auto n = static_cast<int64_t>(scan.values.size());
    const double length = std::sqrt(static_cast<double>(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]));
    const bool counts = s.r > 0 ? n >= s.r : length <= static_cast<double>(n);
    if (!counts) {
      if (s.fullscan) return {};
      continue;
    }
    vote(t, scan.dirs.units[i], linestatistic(scan.values, s.submethod), scan.values.size(), false);
  }
  return t;
}

// The worker's directions for its slice: none for the fixed methods, all for method 6, a
// random subset of 64 or 128 otherwise, drawn from a generator of its own.
tscandirectionset workerdirections(const tconnectionsettings& s, const tconnectionrun& run, int64_t slice) {
  if (s.method <= 3) return {};
  const int64_t n = s.method == 6 ? 0 : s.method == 4 ? 64 : 128;
  std::mt19937_64 generator(run.seed ^ (static_cast<uint64_t>(slice) * 0x9E3779B97F4A7C15ull));
  const auto draw = [&](int64_t m) {
    return static_cast<int64_t>(static_cast<double>(generator() >> 11) * 0x1p-53 * static_cast<double>(m));
  };
  if (run.aniso) return selectdirections(anisodirections(run.radii), n, draw);
  return scandirections(s.r, n, draw);
}

bool scansizeok(const tscalarfield& f, const tconnectionrun& run) {
  const tnatvector n = fieldsize(f);
  if (run.aniso) {
    if (n[0] >= 1 && n[1] >= 1 && n[2] >= 1) return true;
    println("Wrong scan size (" + realtext(run.anisor) + ")!");
    return false;
  }
  bool ok = run.r >= 1 && run.r <= 65535;
  for (int a = 0; a < 3; ++a) ok = ok && n[a] > 2 * run.r;
  if (!ok) println("Wrong scan size (" + nattext(run.r) + ")!");
  return ok;
}

tconnectionsettings settingsof(const tscalarfield& f, const tconnectionrun& run) {
  return {connectionmethod(f.connection), f.submethod, f.fullscan, run.aniso ? 0 : run.r};
}

// Slice j: z = j for the full field, z = j k for the reduced ones; the cell (i, y, j).
template <class V>
void connectionslice(const tscalarfield& f, V& diagonal, V& offdiagonal, const tconnectionrun& run, int64_t j) {
  tconnectionscan scan{settingsof(f, run), {}, {}};
  if (run.aniso && scan.s.method <= 3) return;
  scan.dirs = workerdirections(scan.s, run, j);
  const tnatvector n = fieldsize(f);
  const int64_t k = run.k, z = j * k, nx = n[0] / k, ny = n[1] / k;
  for (int64_t y = 1; y <= ny; ++y) {
    for (int64_t i = 1; i <= nx; ++i) {
      tsymmetric t;
      if (!run.adaptive) {
        if (getvalue(f, k * i, k * y, z) >= 1) t = connectiontensor(f, scan, k * i, k * y, z);
      } else {
        bool found = false;  // the first object voxel of the block that ends at (k i, k y, z)
        for (int64_t c = -(k - 1); c <= 0 && !found; ++c)
          for (int64_t b = -(k - 1); b <= 0 && !found; ++b)
            for (int64_t a = -(k - 1); a <= 0 && !found; ++a)
              if (getvalue(f, k * i + a, k * y + b, z + c) > 0) {
                t = connectiontensor(f, scan, k * i + a, k * y + b, z + c);
                found = true;
              }
      }
      puttensor(diagonal, offdiagonal, (i - 1) + (y - 1) * nx + (j - 1) * nx * ny, t);
    }
  }
}

}  // namespace

int connectionmethod(uint8_t stored) { return stored >= 1 && stored <= 6 ? stored : 5; }

std::string connectionmethodline(int method) {
  switch (method) {
    case 1: return "Method: hdti = similar to three direction (half) diffusion imaging";
    case 2: return "Method: dti = similar to seven direction diffusion imaging";
    case 3: return "Method: ddti = similar to thirteen direction (double) diffusion imaging";
    case 4: return "Method: hardhardi = similar to high angular resolution diffusion imaging with limit of 64 orientation vectors";
    case 6: return "Method: hardi = similar to high angular resolution diffusion imaging";
  }
  return "Method: softhardi = similar to high angular resolution diffusion imaging with limit of 128 orientation vectors";
}

tsymmetric connectiontensor(const tscalarfield& f, tconnectionscan& scan, int64_t x, int64_t y, int64_t z) {
  return scan.s.method <= 3 ? fixedtensor(f, scan, x, y, z) : scannedtensor(f, scan, x, y, z);
}

tscanunit anisoradii(const tscalarfield& f, double r) {
  tscanunit s{};
  for (int a = 0; a < 3; ++a) {
    double l = 0;
    for (int b = 0; b < 3; ++b) l += f.space.matrix[b][a] * f.space.matrix[b][a];
    s[a] = std::sqrt(l);
  }
  const double least = std::min({s[0], s[1], s[2]});
  if (!(least > 0)) return {0, 0, 0};
  return {r * s[0] / least, r * s[1] / least, r * s[2] / least};
}

std::vector<tscanpoint> anisodirections(const tscanunit& radii) {
  return uniquescanpoints(rawellipsoidpoints(std::max({radii[0], radii[1], radii[2]}), radii), 2);
}

bool scalarconnection(const tscalarfield& f, ttensorfield& out, const tconnectionrun& given) {
  if (!scansizeok(f, given)) return false;
  tconnectionrun run = given;
  if (run.aniso) run.radii = anisoradii(f, run.anisor);
  const tnatvector n = fieldsize(f);
  const int64_t k = run.k;
  const tnatvector have = fieldsize(out);
  if (have[0] * k != n[0] || have[1] * k != n[1] || have[2] * k != n[2]) {
    fieldcreate(out, out.kind ? out.kind : run.newkind, {n[0] / k, n[1] / k, n[2] / k});
    println("  Assigned tensor field (" + dimensionstext(out) + ") updated.");
  }
  out.space = f.space;
  if (k > 1) {
    trows m = f.space.matrix;
    for (auto& row : m)
      for (double& c : row) c *= static_cast<double>(k);
    setmatrix(out.space, m);
  }
  const int method = connectionmethod(f.connection);
  println(run.aniso && method <= 3 ? std::string("Method: not supported") : connectionmethodline(method));
  const bool ok = withtensorvolumes(out, [&](auto& diagonal, auto& offdiagonal) {
    tslicejob job{[&](int64_t j) { connectionslice(f, diagonal, offdiagonal, run, j); }, [](int64_t) {}};
    runslices(job, n[2] / k, run.parallel, "  Calculate tensorfield");
  });
  if (!ok) println("Error! Empty tensorfield!");
  return ok;
}

std::vector<double> connectionsweep(const tscalarfield& f, const tnatvector& p) {
  const tnatvector n = fieldsize(f);
  const int64_t top = roundnat(static_cast<double>(std::min({n[0], n[1], n[2]})) * 0.5);
  std::vector<double> values(static_cast<size_t>(std::max<int64_t>(top, 0)), 0);
  tconnectionrun run;
  run.aniso = true;
  tconnectionscan scan{settingsof(f, run), {}, {}};
  const bool object = getvalue(f, p[0], p[1], p[2]) >= 1;
  for (int64_t s = top; s >= 1; --s) {
    if (scan.s.method > 3 && object) {
      run.anisor = static_cast<double>(s);
      run.radii = anisoradii(f, run.anisor);
      scan.dirs = workerdirections(scan.s, run, s);
      values[static_cast<size_t>(s - 1)] = anisotropy(connectiontensor(f, scan, p[0], p[1], p[2]));
    }
    progress("  Calculate histogram", static_cast<double>(top - s + 1) / static_cast<double>(top));
  }
  progressend();
  return values;
}

bool connectionhistogram(const tscalarfield& f, const tnatvector& p, const utf16& name) {
  const std::vector<double> values = connectionsweep(f, p);
  tchart c = chartcreate(640, 480);
  // The title is shared with the diffusion histogram, although the values are anisotropies.
  charttitles(c, "number of maximas", "", "scansize");
  const double top = values.empty() ? 1 : std::max(1.0, *std::max_element(values.begin(), values.end()));
  chartranges(c, 0, static_cast<double>(values.size()) + 1, 0, top);
  chartaxes(c);
  std::vector<std::array<double, 2>> curve;
  for (size_t s = 1; s <= values.size(); ++s) curve.push_back(chartpoint(c, static_cast<double>(s), values[s - 1]));
  if (!curve.empty()) chartcurve(c, curve, {0, 0, 255, 255});
  return chartsave(c, name);
}
