// Blocks of fields with records (vectors, tensors): subfields, moved blocks and exact
// copies, written once and instantiated per family.
#pragma once
#include <algorithm>
#include <type_traits>

#include "commands/workspace_handlers.h"
#include "ops/resample.h"
#include "ops/reshape.h"
#include "script/registry.h"
#include "script/values.h"
#include "shell/console.h"

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

// Only the exact copy: no factor, or one of 0 and below.
template <auto& W>
void exactcopycmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  if (paramcount(s) == 1 && textreal(param(s, 1)) > 0) {
    constexpr bool vectors = std::is_same_v<workspacefieldof<W>, tvectorfield>;
    println(vectors ? "  Vector fields are copied only as they are (factor 0)!"
                    : "  Tensor fields are copied only as they are (factor 0)!");
    return;
  }
  if (auto* target = resulttarget<W>(s, true)) copyfield(*target, currentfield(W));
}
