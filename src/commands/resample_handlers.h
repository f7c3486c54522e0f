// Copying and scaling of images and volumes, written once and instantiated per family with
// its workspace; the sample work lives in ops/resample.
#pragma once
#include <span>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "ops/resample.h"
#include "script/registry.h"
#include "script/values.h"

// The rows of one family only: subfields, crops, moves, flips and turns.
std::span<const tcommand> scalarreshaperows();
std::span<const tcommand> imagereshaperows();

template <auto& W>
void copymethodcmd(tscript& s) {
  if (checkparams(s, 1)) currentfield(W).copymethod = static_cast<uint8_t>(std::clamp<int64_t>(textnat(param(s, 1)), 0, 255));
}

// A factor or a vector of them; a zero component means "as the first". A factor of 0 or
// below, or none, is an exact copy.
template <auto& W, bool label = false>
void copycmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  auto* target = resulttarget<W>(s, true);
  if (!target) return;
  const auto& source = currentfield(W);
  tvector f = paramcount(s) == 1 ? textvector(param(s, 1)) : tvector{0, 0, 0};
  for (double& c : f)
    if (c == 0) c = f[0];
  const bool plain = f[0] <= 0 || f[1] <= 0 || f[2] <= 0 || (f[0] == 1 && f[1] == 1 && f[2] == 1);
  if (plain) return copyfield(*target, source);
  scalefield(*target, source, {f[0], f[1], f[2]}, label);
}

// <nx, ny(, nz)>: the factors that give exactly this size; a zero keeps the axis.
template <auto& W>
void resizecmd(tscript& s) {
  if (!checkparams(s, 1)) return;
  auto* target = resulttarget<W>(s, true);
  if (!target) return;
  const auto& source = currentfield(W);
  const tnatvector want = textnatvector(param(s, 1)), size = fieldsize(source);
  std::array<double, 3> f{1, 1, 1};
  for (int a = 0; a < workspacefieldof<W>::axes; ++a)
    if (want[a] > 0 && size[a] > 0) f[a] = static_cast<double>(want[a]) / static_cast<double>(size[a]);
  scalefield(*target, source, f, false);
}

template <auto& W>
std::span<const tcommand> resamplerows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"copy.method", procedure, copymethodcmd<W>, nullptr,
       "copy.method 1 // binning: 0 sum, 1 mean, 2 sd, 3 min, 4 Q.25, 5 median, 6 Q.75, 7 max; upscaling volumes: "
       "0 block, 1 trilinear, 2 Lanczos"},
      eitherway("copy", copycmd<W>,
       "new := copy 0.5 // or <fx, fy, fz>: copy and scale to new; no factor: exact copy"),
      eitherway("copyscale", copycmd<W>, "new := copyscale 0.5 // same as copy"),
      eitherway("copy.label", copycmd<W, true>,
       "new := copy.label 0.5 // copy and scale field to new, without label averaging (max. value count)"),
      eitherway("copyscale.label", copycmd<W, true>, "new := copyscale.label 0.5 // same as copy.label"),
      eitherway("resize", resizecmd<W>, "new := resize <100, 100, 100> // copy and scale to this size"),
  };
  return rows;
}
