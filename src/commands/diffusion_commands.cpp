// Orientation from gray values: the diffusion scan of volumes and images and the settings
// that each field keeps for it. The scan itself lives in orientation/.
#include "commands/diffusion_rows.h"
#include "commands/workspace_handlers.h"
#include "field/workspaces.h"
#include "commands/threads.h"
#include "orientation/diffusion.h"
#include "orientation/diffusiondiagnostics.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

// The scan length each family took last; an image command without target reports its old one.
int64_t scalarscan = 0;
int64_t imagescan = 0;

template <int64_t k, bool adaptive>
void diffusioncmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  scalarscan = textnat(param(s, 1));
  scalardiffusion(currentfield(scalarworkspace), currentfield(vectorworkspace), scalarscan, k, adaptive,
                  threadlimit(s), vectorworkspace.defaultkind);
}

void imagediffusioncmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  if (empty(gettarget(s))) {
    println("Wrong scan size (" + nattext(imagescan) + ")!");
    return;
  }
  imagescan = textnat(param(s, 1));
  timagefield* target = resulttarget<imageworkspace>(s, true);
  if (target) imagediffusion(currentfield(imageworkspace), *target, imagescan, imageworkspace.defaultkind);
}

// The diagnostics of one voxel: a file name, then optional r (16), point and offset.
using tdiagnostic = bool (*)(const tscalarfield&, int64_t, const tnatvector&, const utf16&);
template <tdiagnostic run>
void diagnosticcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 4) return reportmax(s, 4);
  const int64_t r = n >= 2 ? textnat(param(s, 2)) : 16;
  if (r < 1 || r > 65535) return println("Wrong scan size (" + nattext(r) + ")!");
  const tscalarfield& f = currentfield(scalarworkspace);
  run(f, r, diagnosticpoint(f, n >= 3 ? textvector(param(s, 3)) : tvector{}, n >= 4 ? textvector(param(s, 4)) : tvector{}),
      param(s, 1));
}

// The chart forms: a file name, optional point and offset.
template <bool (*run)(const tscalarfield&, const tnatvector&, const utf16&)>
void sweepcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 3) return reportmax(s, 3);
  const tscalarfield& f = currentfield(scalarworkspace);
  run(f, diagnosticpoint(f, n >= 2 ? textvector(param(s, 2)) : tvector{}, n >= 3 ? textvector(param(s, 3)) : tvector{}),
      param(s, 1));
}

// The setters store what they are given, unchecked; numbers of methods keep their low byte.
template <auto& W>
void fullscancmd(tscript& s) {
  if (checkparams(s, 1)) currentfield(W).fullscan = textbool(param(s, 1));
}
template <auto& W>
void submethodcmd(tscript& s) {
  if (checkparams(s, 1)) currentfield(W).submethod = static_cast<uint8_t>(textnat(param(s, 1)));
}
template <auto& W>
void methodcmd(tscript& s) {
  if (checkparams(s, 1)) currentfield(W).method = static_cast<uint8_t>(textnat(param(s, 1)));
}
template <auto& W>
void anglecmd(tscript& s) {
  if (checkparams(s, 1)) currentfield(W).diffusionangle = textreal(param(s, 1));
}
template <auto& W>
void maxcmd(tscript& s) {
  if (checkparams(s, 1)) currentfield(W).diffusionmax = textreal(param(s, 1));
}

template <auto& W>
std::span<const tcommand> settingrows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"fullscan", procedure, fullscancmd<W>, nullptr, "fullscan false // true: one too short scan line fails the voxel"},
      {"submethod", procedure, submethodcmd<W>, nullptr,
       "submethod 2 // line statistic: 0 sum, 1 mean, 2 SD, 3 min, 4 Q.25, 5 median, 6 Q.75, 7 max"},
      {"diffusion.method", procedure, methodcmd<W>, nullptr,
       "diffusion.method 5 // 1 brell2013, 2 brell2014a, 3 brell2014b, 4 brell2015a, 5 brell2015b, 6 brell2019"},
      {"diffusion.angle", procedure, anglecmd<W>, nullptr, "diffusion.angle 5° // half opening of the cone around the mean"},
      {"diffusion.max", procedure, maxcmd<W>, nullptr,
       "diffusion.max 25% // no orientation if at least this part of all directions ties"},
  };
  return rows;
}

using enum tcommandkind;
const tcommand scalarrows[] = {
    {"diffusion", procedure, diffusioncmd<1, false>, nullptr, "diffusion 16 // vector field of the most homogeneous scan lines, radius 16"},
    {"diffusion.x2", procedure, diffusioncmd<2, false>, nullptr, "diffusion.x2 16 // the same on every 2nd voxel: field of half size"},
    {"diffusion.x3", procedure, diffusioncmd<3, false>, nullptr, "diffusion.x3 16 // every 3rd voxel"},
    {"diffusion.x4", procedure, diffusioncmd<4, false>, nullptr, "diffusion.x4 16 // every 4th voxel"},
    {"diffusion.x5", procedure, diffusioncmd<5, false>, nullptr, "diffusion.x5 16 // every 5th voxel"},
    {"diffusion.adaptive.x2", procedure, diffusioncmd<2, true>, nullptr,
     "diffusion.adaptive.x2 16 // as x2, and if fails for subpixels the neighbours are tried"},
    {"diffusion.adaptive.x3", procedure, diffusioncmd<3, true>, nullptr, "diffusion.adaptive.x3 16 // as x3, adaptive"},
    {"diffusion.adaptive.x4", procedure, diffusioncmd<4, true>, nullptr, "diffusion.adaptive.x4 16 // as x4, adaptive"},
    {"diffusion.adaptive.x5", procedure, diffusioncmd<5, true>, nullptr, "diffusion.adaptive.x5 16 // as x5, adaptive"},
    {"diffusion.dump", procedure, diagnosticcmd<diffusiondump>, nullptr,
     "diffusion.dump \"scan.txt\" 16 <0, 0, 0> <0, 0, 0> // every scan line of one voxel as text (centre + offset)"},
    {"diffusion.map", procedure, diagnosticcmd<diffusionmap>, nullptr,
     "diffusion.map \"map.pgm\" 16 <0, 0, 0> <-3, -3, -3> // 2 SD of each direction as an image of the sphere"},
    {"diffusion.colormap", procedure, diagnosticcmd<diffusioncolormap>, nullptr,
     "diffusion.colormap \"map.ppm\" 16 // mean (red) and 2 SD (blue) of each direction, also as -mean. and -sd."},
    {"diffusion.histogram", procedure, sweepcmd<diffusionhistogram>, nullptr,
     "diffusion.histogram \"chart.svg\" <0, 0, 0> // number of best directions for each scan size"},
    {"diffusion.sd", procedure, sweepcmd<diffusionsd>, nullptr,
     "diffusion.sd \"chart.svg\" <0, 0, 0> // lowest and highest mean and SD of the line windows by size"},
};

const tcommand imagerows[] = {
    eitherway("diffusion", imagediffusioncmd, "new := diffusion 16 // orientation of each pixel as gray level"),
};

std::vector<tcommand> joined(std::span<const tcommand> a, std::span<const tcommand> b) {
  std::vector<tcommand> out(a.begin(), a.end());
  out.insert(out.end(), b.begin(), b.end());
  return out;
}

}  // namespace

std::span<const tcommand> scalardiffusionrows() {
  static const std::vector<tcommand> rows = joined(scalarrows, settingrows<scalarworkspace>());
  return rows;
}

std::span<const tcommand> imagediffusionrows() {
  static const std::vector<tcommand> rows = joined(imagerows, settingrows<imageworkspace>());
  return rows;
}
