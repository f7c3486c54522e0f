// The group commands of images and volumes, written once and instantiated per family;
// the labelling and the tables live in ops/group.
#pragma once
#include <concepts>
#include <span>

#include "commands/combine_handlers.h"
#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "ops/group.h"
#include "ops/slices.h"
#include "script/registry.h"
#include "script/values.h"
#include "script/variables.h"

template <auto& W>
constexpr const char* familyprefix() {
  return std::same_as<workspacefieldof<W>, timagefield> ? "image." : "scalar.";
}

// The target (strict: not the current field) sized after the source when it is empty,
// else told of, unless it is expected to hold groups already; nil when a name failed,
// reported.
template <auto& W>
std::pair<workspacefieldof<W>*, const workspacefieldof<W>*> grouptargets(tscript& s, bool filled = false) {
  auto* target = resulttarget<W>(s, true);
  if (!target) return {nullptr, nullptr};
  const auto* source = workspaceoperand(s, W, param(s, 1));
  if (!source) return {nullptr, nullptr};
  if (filled && !fieldempty(*target)) return {target, source};
  if (prepareresult(W, *target, *source, fieldsize(*source))) {
    if constexpr (std::same_as<workspacefieldof<W>, tscalarfield>) copylabels(*target, *source);
  }
  return {target, source};
}

// group old r; group.min old r m; group.minmax old r <lo, hi>.
template <auto& W, tgroupkeep keep>
void groupcmd(tscript& s) {
  if (!checkparams(s, keep == tgroupkeep::all ? 2 : 3)) return;
  const auto [target, source] = grouptargets<W>(s);
  if (!target) return;
  int64_t lo, hi, least = 0, most = 0;
  cutrange(param(s, 2), lo, hi);
  if (keep != tgroupkeep::all) cutrange(param(s, 3), least, most);
  const tgroupresult r = groupfield(*target, *source, lo, hi, {keep, least, most}, threadlimit(s));
  const utf16 prefix = familyprefix<W>();
  setvar(s, prefix + "groups", nattext(r.added));
  setvar(s, prefix + "groups.min", nattext(r.first));
  setvar(s, prefix + "groups.max", nattext(r.last));
}

template <auto& W>
void groupaddcmd(tscript& s) {
  if (!checkparams(s, 2)) return;
  const auto [target, source] = grouptargets<W>(s, true);
  if (!target) return;
  int64_t lo, hi;
  cutrange(param(s, 2), lo, hi);
  groupadd(*target, *source, lo, hi);
}

template <auto& W>
void unsortcmd(tscript& s) {
  if (checkparams(s, 0)) groupunsort(currentfield(W));
}

template <auto& W>
void inversecmd(tscript& s) {
  if (checkparams(s, 1)) grouptables().inverse = textbool(param(s, 1));
}

// None: ranks; one: that many bins (below 1 nothing happens).
template <auto& W, tgroupkey key>
void sortcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  const int64_t bins = paramcount(s) == 1 ? textnat(param(s, 1)) : 0;
  if (paramcount(s) == 1 && bins < 1) return;
  groupsort(currentfield(W), key, bins, 10);
}

// One parameter: the base, ranks; two: the count of bins first, then the base.
template <auto& W>
void sortlogcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportcount(s, 1);
  if (n > 2) return reportmax(s, 2);
  const int64_t bins = n == 2 ? textnat(param(s, 1)) : 0;
  if (n == 2 && bins < 1) return;
  groupsort(currentfield(W), tgroupkey::logfraction, bins, textreal(param(s, n)));
}

template <auto& W>
void statcmd(tscript& s) {
  if (checkparams(s, 1) && !fieldempty(currentfield(W))) groupstat(param(s, 1));
}

template <auto& W>
std::span<const tcommand> grouprows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      eitherway("group", groupcmd<W, tgroupkeep::all>,
                "new := group old <128, 255> // number the connected regions of the range (faces touch)"),
      eitherway("group.min", groupcmd<W, tgroupkeep::least>,
                "new := group.min old <128, 255> 100 // the same, groups of fewer than 100 members are dropped"),
      eitherway("group.minmax", groupcmd<W, tgroupkeep::between>,
                "new := group.minmax old <128, 255> <100, 1000> // keep groups of 100 to 1000 members"),
      eitherway("group.add", groupaddcmd<W>,
                "new := group.add old <128, 255> // regions of the range that touch one group join it"),
      {"group.unsort", procedure, unsortcmd<W>, nullptr, "group.unsort // random numbering of the groups"},
      {"group.sort.inverse", procedure, inversecmd<W>, nullptr, "group.sort.inverse true // sorts number from the largest"},
      {"group.sort.count", procedure, sortcmd<W, tgroupkey::count>, nullptr,
       "group.sort.count // renumber by voxel count; group.sort.count 20: into 20 classes"},
      {"group.sort.border", procedure, sortcmd<W, tgroupkey::border>, nullptr, "group.sort.border // renumber by border"},
      {"group.sort.fraction", procedure, sortcmd<W, tgroupkey::fraction>, nullptr,
       "group.sort.fraction // renumber by border/count"},
      {"group.sort.fraction.log", procedure, sortlogcmd<W>, nullptr,
       "group.sort.fraction.log 20 10 // 20 classes of log10(border/count); one parameter: the base, ranks"},
      {"group.stat", procedure, statcmd<W>, nullptr, "group.stat \"groups.txt\" // write groupid border count border/count"},
  };
  return rows;
}
