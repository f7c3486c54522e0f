// The handlers that every workspace has, written once and instantiated per family with
// the workspace they act on: template <auto& W> takes the global list itself.
#pragma once
#include <type_traits>

#include "commands/threads.h"
#include "field/workspace.h"
#include "script/registry.h"
#include "script/values.h"

// The lookups that report a bad operand or target to the macro; the field model itself
// knows no script.
// The result of a command that reads the current field: writing into its own source
// would destroy what it reads, so the current entry as target is a syntax error (nil).
template <class F>
F* workspacetargetstrict(tscript& s, tworkspacelist<F>& w, const utf16& name) {
  ready(w);
  const utf16 key = lookupkey(name);
  if (workspaceentry(w, workspacefind(w, key)) == w.current) {
    const utf16 field = w.words->field;
    reportsyntax(s, "Same illegal assigment (" + field + "[" + key + "] := function " + field + "[" +
                        w.names.getchecked(w.index) + "])!");
    return nullptr;
  }
  return workspacetarget(w, key);
}

// A source operand: the entry of the name, or an error and nil.
template <class F>
F* workspaceoperand(tscript& s, tworkspacelist<F>& w, const utf16& name) {
  ready(w);
  const utf16 key = lookupkey(name);
  F* f = workspaceentry(w, workspacefind(w, key));
  if (!f) reporterror(s, "Empty " + utf16(w.words->field) + "[" + key + "]");
  return f;
}

template <auto& W>
using workspacefieldof = std::remove_pointer_t<decltype(W.current)>;

template <auto& W>
void usecmd(tscript& s) {
  if (checkparams(s, 1)) workspaceuse(W, param(s, 1));
}

template <auto& W>
void swapcmd(tscript& s) {
  if (checkparams(s, 2)) workspaceswap(W, param(s, 1), param(s, 2));
}

template <auto& W>
void namecmd(tscript& s) {
  if (checkparams(s, 1)) workspacerename(W, param(s, 1));
}

template <auto& W>
void dumpcmd(tscript& s) {
  if (checkparams(s, 0)) workspacedump(ready(W));
}

// The current field becomes empty and keeps its storage kind.
template <auto& W>
void clearcmd(tscript& s) {
  if (!checkparams(s, 0)) return;
  auto& f = currentfield(W);
  if constexpr (tgridfield<workspacefieldof<W>>)
    fieldcreate(f, f.kind ? f.kind : W.defaultkind);
  else
    fieldcreate(f);
}

// The current field made new in the workspace's default kind: at its own size without
// parameters, at <x, y(, z)> with one, at x y (z) with one per axis.
template <auto& W>
void newcmd(tscript& s) {
  using F = workspacefieldof<W>;
  F& f = currentfield(W);
  const int64_t n = paramcount(s);
  if (n > 1 && n < F::axes) {
    reportcount(s, F::axes);
    return;
  }
  tnatvector size = fieldsize(f);
  if (n == 1) size = textnatvector(param(s, 1));
  if (n > 1) size = {textnat(param(s, 1)), textnat(param(s, 2)), F::axes == 3 ? textnat(param(s, 3)) : 1};
  fieldcreate(f, W.defaultkind, size);
}

// A field of W's default kind made anew with the size and place of From's current field.
template <auto& From, auto& W>
void makecmd(tscript& s) {
  if (!checkparams(s, 0)) return;
  const auto& source = currentfield(From);
  const tspatial space = source.space;
  const tnatvector size = fieldsize(source);
  auto& f = currentfield(W);
  fieldcreate(f, W.defaultkind, size);
  f.space = space;
}

// The storage kind of the fields that the workspace creates next; existing fields stay.
template <auto& W, uint8_t kind>
void defaultkindcmd(tscript& s) {
  if (checkparams(s, 0)) W.defaultkind = kind;
}

// The target of a command that makes a field: the name left of ":=" (DEFAULT without
// one), resolved by the strict or the plain rule. The engine is told to store nothing,
// as the result lives in the workspace.
template <auto& W>
workspacefieldof<W>* resulttarget(tscript& s, bool strict) {
  const utf16 name = gettarget(s);
  settarget(s, utf16());
  return strict ? workspacetargetstrict(s, W, name) : workspacetarget(W, name);
}
