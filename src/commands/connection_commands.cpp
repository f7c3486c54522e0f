// Tensor fields from gray values: the connection scan of the scalar family and its method
// setting. The scan itself lives in orientation/connection.
#include "commands/connection_rows.h"
#include "commands/threads.h"
#include "field/workspaces.h"
#include "library/random.h"
#include "orientation/connection.h"
#include "orientation/diffusiondiagnostics.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

// The scan lengths each family took last.
int64_t basescan = 0;
int64_t reducedscan = 0;
double anisoscan = 0;

template <int64_t k, bool adaptive, bool aniso>
void connectioncmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  tconnectionrun run;
  if (aniso) anisoscan = textreal(param(s, 1));
  else (k == 1 ? basescan : reducedscan) = textnat(param(s, 1));
  run.r = k == 1 ? basescan : reducedscan;
  run.anisor = anisoscan, run.aniso = aniso, run.k = k, run.adaptive = adaptive, run.parallel = threadlimit(s);
  const tscalarfield& f = currentfield(scalarworkspace);
  // Only the random subsets take numbers from the script's generator: one seed per run.
  const int method = connectionmethod(f.connection);
  if (method == 4 || method == 5) run.seed = static_cast<uint64_t>(randombelow(int64_t{1} << 62));
  run.newkind = tensorworkspace.defaultkind;
  scalarconnection(f, currentfield(tensorworkspace), run);
}

void histogramcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 3) return reportmax(s, 3);
  const tscalarfield& f = currentfield(scalarworkspace);
  const tvector point = n >= 2 ? textvector(param(s, 2)) : tvector{}, offset = n >= 3 ? textvector(param(s, 3)) : tvector{};
  println("Connection histogram at: " + fullvectortext(point) + (n >= 3 ? " + " + fullvectortext(offset) : utf16()));
  connectionhistogram(f, diagnosticpoint(f, point, offset), param(s, 1));
}

void methodcmd(tscript& s) {
  if (checkparams(s, 1)) currentfield(scalarworkspace).connection = static_cast<uint8_t>(textnat(param(s, 1)));
}

using enum tcommandkind;
const tcommand rows[] = {
    {"connection", procedure, connectioncmd<1, false, false>, nullptr, "connection 8 // tensor field: every scan line votes, weighted by 1/SD"},
    {"connection.x2", procedure, connectioncmd<2, false, false>, nullptr, "connection.x2 8 // the same on every 2nd voxel: field of half size"},
    {"connection.x3", procedure, connectioncmd<3, false, false>, nullptr, "connection.x3 8 // every 3rd voxel"},
    {"connection.x4", procedure, connectioncmd<4, false, false>, nullptr, "connection.x4 8 // every 4th voxel"},
    {"connection.x5", procedure, connectioncmd<5, false, false>, nullptr, "connection.x5 8 // every 5th voxel"},
    {"connection.adaptive.x2", procedure, connectioncmd<2, true, false>, nullptr, "connection.adaptive.x2 8 // as x2, from the first object voxel of each block"},
    {"connection.adaptive.x3", procedure, connectioncmd<3, true, false>, nullptr, "connection.adaptive.x3 8 // as x3, adaptive"},
    {"connection.adaptive.x4", procedure, connectioncmd<4, true, false>, nullptr, "connection.adaptive.x4 8 // as x4, adaptive"},
    {"connection.adaptive.x5", procedure, connectioncmd<5, true, false>, nullptr, "connection.adaptive.x5 8 // as x5, adaptive"},
    {"connection.aniso", procedure, connectioncmd<1, false, true>, nullptr, "connection.aniso 8.0 // scan ellipsoid after the voxel size (methods 4..6)"},
    {"connection.aniso.x2", procedure, connectioncmd<2, false, true>, nullptr, "connection.aniso.x2 8.0 // as aniso on every 2nd voxel"},
    {"connection.aniso.x3", procedure, connectioncmd<3, false, true>, nullptr, "connection.aniso.x3 8.0 // every 3rd voxel"},
    {"connection.aniso.x4", procedure, connectioncmd<4, false, true>, nullptr, "connection.aniso.x4 8.0 // every 4th voxel"},
    {"connection.aniso.x5", procedure, connectioncmd<5, false, true>, nullptr, "connection.aniso.x5 8.0 // every 5th voxel"},
    {"connection.histogram", procedure, histogramcmd, nullptr, "connection.histogram \"chart.svg\" <0, 0, 0> // anisotropy of one voxel for each scan size"},
    {"connection.method", procedure, methodcmd, nullptr,
     "connection.method 4 // 1 hdti, 2 dti, 3 ddti, 4 hardhardi, 5 softhardi, 6 hardi"},
};

}  // namespace

std::span<const tcommand> scalarconnectionrows() { return rows; }
