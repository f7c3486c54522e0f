// Blocks of volumes: subfields and moved blocks, written once and instantiated per family.
#pragma once
#include <algorithm>

#include "commands/workspace_handlers.h"
#include "ops/reshape.h"
#include "script/registry.h"
#include "script/values.h"

// Two corners by the position rule, each pair put in order.
template <auto& W>
void substackcmd(tscript& s) {
  if (!checkparams(s, 2)) return;
  auto* target = resulttarget<W>(s, true);
  if (!target) return;
  const auto& f = currentfield(W);
  const tnatvector p = fieldpositions(f, textvector(param(s, 1))), q = fieldpositions(f, textvector(param(s, 2)));
  tnatvector lo, hi;
  for (int k = 0; k < 3; ++k) lo[k] = std::min(p[k], q[k]), hi[k] = std::max(p[k], q[k]);
  subfield(*target, f, lo, hi);
}

template <auto& W>
void moveblockcmd(tscript& s) {
  if (!checkparams(s, 3)) return;
  auto& f = currentfield(W);
  moveblock(f, fieldpositions(f, textvector(param(s, 1))), fieldpositions(f, textvector(param(s, 2))),
            textnatvector(param(s, 3)));
}
