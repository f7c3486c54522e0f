// Streamlines: the settings and the seed sources of the vector.stream family. The tracing
// is in orientation/streamlines.
#include <algorithm>
#include <numbers>

#include "commands/combine_handlers.h"
#include "commands/stream_rows.h"
#include "field/workspaces.h"
#include "geometry/lineops.h"
#include "orientation/streamlines.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

tstreamsettings settings;

using tranges = std::vector<std::pair<int64_t, int64_t>>;

tranges rangesfrom(tscript& s, int64_t first) {
  tranges out;
  for (int64_t i = first; i <= paramcount(s); ++i) {
    int64_t lo = 0, hi = 0;
    cutrange(param(s, i), lo, hi);
    out.emplace_back(std::min(lo, hi), std::max(lo, hi));
  }
  return out;
}

// How a form finds its seeds from its parameters.
enum class tsource : uint8_t { voxels, random, plane, planex, planey, planez };

template <tsource source, bool masked, bool muscle, bool nodes = false>
void streamcmd(tscript& s) {
  constexpr int64_t lead = source == tsource::voxels ? 0 : source == tsource::plane ? 2 : 1;
  const int64_t n = paramcount(s);
  if (masked ? n < lead + 2 : n != lead) return masked ? reportmin(s, lead + 2) : reportcount(s, lead);
  const tvectorfield& f = currentfield(vectorworkspace);
  if (fieldempty(f)) return;
  const tnatvector size = fieldsize(f);
  tseedsource seeds;
  tstreamjob job;
  if constexpr (source == tsource::voxels) {
    seeds = voxelseeds(size);
  } else if constexpr (source == tsource::random) {
    job.zero = zerotest(f, textnat(param(s, 1)));
    seeds = randomseeds(size, textnat(param(s, 1)), job.zero);
  } else if constexpr (source == tsource::plane) {
    seeds = planeseeds(f.space, size, textvector(param(s, 1)), textvector(param(s, 2)));
  } else {
    constexpr int axis = source == tsource::planex ? 0 : source == tsource::planey ? 1 : 2;
    tvector point{0, 0, 0}, normal{0, 0, 0};
    point[axis] = textreal(param(s, 1));
    normal[axis] = 1;
    seeds = planeseeds(f.space, size, point, normal);
  }
  if constexpr (masked) {
    const tscalarfield* mask = workspaceoperand(s, scalarworkspace, param(s, lead + 1));
    if (!mask) return;
    seeds = maskedseeds(seeds, *mask, rangesfrom(s, lead + 2));
  }
  // the plain voxel and slice forms seed where the vector is zero; the others where it is not
  const bool plain = !masked && !muscle && source != tsource::random;
  job.test = plain ? tseedtest::zerovector : tseedtest::nonzerovector;
  job.muscle = muscle;
  job.counted = source == tsource::random;
  job.warnmatrix = nodes || !(plain && source == tsource::voxels);  // all but stream and stream.uniform
  job.nodes = nodes;
  tscalarfield& scalar = currentfield(scalarworkspace);
  const tscalarfield* contrast = settings.stopcontrast != 0 && !fieldempty(scalar) ? &scalar : nullptr;
  tracestreams(f, settings, job, seeds, contrast, nodes ? &scalar : nullptr, currentfield(lineworkspace));
}

template <auto member>
void intsetting(tscript& s) {
  if (checkparams(s, 1)) settings.*member = textnat(param(s, 1));
}
template <auto member>
void realsetting(tscript& s) {
  if (checkparams(s, 1)) settings.*member = textreal(param(s, 1));
}
template <auto member>
void anglesetting(tscript& s) {
  if (checkparams(s, 1)) settings.*member = std::clamp(degreestoradians(textreal(param(s, 1))), 0.0, std::numbers::pi);
}

void vectorlinecmd(tscript& s) {
  if (checkparams(s, 0)) linesfromvectors(currentfield(vectorworkspace), currentfield(lineworkspace));
}

using enum tcommandkind;
using S = tstreamsettings;
const tcommand rows[] = {
    {"line", procedure, vectorlinecmd, nullptr, "line // every vector as a two-point line of the line workspace"},
    {"stream", procedure, streamcmd<tsource::voxels, false, false>, nullptr,
     "stream // streamlines from every voxel with the zero vector (see seeds)"},
    {"stream.uniform", procedure, streamcmd<tsource::voxels, false, false>, nullptr, "stream.uniform // same as stream"},
    {"stream.nodes", procedure, streamcmd<tsource::voxels, false, false, true>, nullptr,
     "stream.nodes // as stream, counting the lines into the scalar field"},
    {"stream.random", procedure, streamcmd<tsource::random, false, false>, nullptr,
     "stream.random 1000 // streamlines from random seeds"},
    {"stream.uniform.random", procedure, streamcmd<tsource::random, false, false>, nullptr,
     "stream.uniform.random 1000 // same as stream.random"},
    {"stream.mask", procedure, streamcmd<tsource::voxels, true, false>, nullptr,
     "stream.mask mask 1 <5, 9> // streamlines from the voxels where the scalar mask has one of the values"},
    {"stream.mask.random", procedure, streamcmd<tsource::random, true, false>, nullptr,
     "stream.mask.random 1000 mask 1 // random seeds within the mask"},
    {"stream.muscle", procedure, streamcmd<tsource::voxels, false, true>, nullptr,
     "stream.muscle // only lines with halves of about equal length"},
    {"stream.muscle.random", procedure, streamcmd<tsource::random, false, true>, nullptr,
     "stream.muscle.random 1000 // random seeds, balanced lines"},
    {"stream.muscle.mask", procedure, streamcmd<tsource::voxels, true, true>, nullptr,
     "stream.muscle.mask mask 1 // masked seeds, balanced lines"},
    {"stream.muscle.mask.random", procedure, streamcmd<tsource::random, true, true>, nullptr,
     "stream.muscle.mask.random 1000 mask 1 // random masked seeds, balanced lines"},
    {"stream.slice", procedure, streamcmd<tsource::plane, false, false>, nullptr,
     "stream.slice <0, 0, 0> <0, 0, 1> // seeds on the plane through the point with the normal"},
    {"stream.slicex", procedure, streamcmd<tsource::planex, false, false>, nullptr, "stream.slicex 10 // seeds on the plane x = 10"},
    {"stream.slicey", procedure, streamcmd<tsource::planey, false, false>, nullptr, "stream.slicey 10 // seeds on the plane y = 10"},
    {"stream.slicez", procedure, streamcmd<tsource::planez, false, false>, nullptr, "stream.slicez 10 // seeds on the plane z = 10"},
    {"stream.slice.mask", procedure, streamcmd<tsource::plane, true, false>, nullptr,
     "stream.slice.mask <0, 0, 0> <0, 0, 1> mask 1 // plane seeds within the mask"},
    {"stream.slicex.mask", procedure, streamcmd<tsource::planex, true, false>, nullptr,
     "stream.slicex.mask 10 mask 1 // seeds on x = 10 within the mask"},
    {"stream.slicey.mask", procedure, streamcmd<tsource::planey, true, false>, nullptr,
     "stream.slicey.mask 10 mask 1 // seeds on y = 10 within the mask"},
    {"stream.slicez.mask", procedure, streamcmd<tsource::planez, true, false>, nullptr,
     "stream.slicez.mask 10 mask 1 // seeds on z = 10 within the mask"},
    {"stream.seeds", procedure, intsetting<&S::seeds>, nullptr,
     "stream.seeds 1 // 0:all, 1:only at new points, 2:only at new points around -1..1, ..."},
    {"stream.snakes", procedure, intsetting<&S::snakes>, nullptr,
     "stream.snakes 0 // 0:whole lines, 1:only up to the first visited voxel, 2: with a margin of 1, ..."},
    {"stream.steps", procedure, realsetting<&S::steps>, nullptr, "stream.steps 1 // step length in voxel sizes"},
    {"stream.angles", procedure, anglesetting<&S::angles>, nullptr,
     "stream.angles 1 // store a point only where the line turns by more than this (degrees); 0 stores all"},
    {"stream.stop.angle", procedure, anglesetting<&S::stopangle>, nullptr,
     "stream.stop.angle 90 // end a line at a turn of at least this per step (degrees)"},
    {"stream.stop.length", procedure, realsetting<&S::stoplength>, nullptr,
     "stream.stop.length 0 // maximal length; 0 is the diagonal of the field"},
    {"stream.stop.contrast", procedure, intsetting<&S::stopcontrast>, nullptr,
     "stream.stop.contrast 0 // end a line where the scalar field changes by more than this per step; 0 off"},
};

}  // namespace

std::span<const tcommand> streamrows() { return rows; }
