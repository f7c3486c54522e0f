// The level commands of images and volumes, written once and instantiated per family with
// its workspace; the tables are made and applied in ops/leveladjust.
#pragma once
#include <span>

#include "commands/commandtable.h"
#include "commands/workspace_handlers.h"
#include "ops/leveladjust.h"
#include "ops/slices.h"
#include "ops/smooth.h"
#include "script/registry.h"
#include "script/values.h"
#include "shell/console.h"

// One pass of a box kernel: an image's plane form, a volume's slices on the threads allowed.
inline void smoothonce(tscript&, timagefield& f, tsmoothkind kind) { smoothimage(f, kind, 1); }
inline void smoothonce(tscript& s, tscalarfield& f, tsmoothkind kind) { smoothfield(f, kind, threadlimit(s)); }

// None: the occupied levels onto 0..top; <a, b>: a..b onto 0..top; <a, b> <c, d>: a..b onto
// c..d. The order of each given pair is tested before the table clamps and sorts it, so
// that a reversed or empty range is refused and the field stays.
template <auto& W>
void setadjustcmd(tscript& s) {
  auto& f = currentfield(W);
  const int64_t n = paramcount(s);
  if (n == 0) return stretchoccupied(f);
  if (n > 2) return reportmax(s, 2);
  const tnatvector from = textnatvector(param(s, 1));
  const tnatvector to = n == 2 ? textnatvector(param(s, 2)) : tnatvector{0, leveltop(f), 0};
  if (from[0] >= from[1] || (n == 2 && to[0] >= to[1])) return reportmax(s, 2);
  applytable(f, stretchtable(from[0], from[1], to[0], to[1], leveltop(f)));
}

// The stretch, one smoothing and two sharpenings, each step announced.
template <auto& W>
void cleanupcmd(tscript& s) {
  if (!checkparams(s, 0)) return;
  auto& f = currentfield(W);
  println("Adjust...");
  stretchoccupied(f);
  println("Smooth...");
  smoothonce(s, f, tsmoothkind::smooth);
  println("Unsharp(1/2)...");
  smoothonce(s, f, tsmoothkind::unsharp);
  println("Unsharp(2/2)...");
  smoothonce(s, f, tsmoothkind::unsharp);
}

// The level commands of a family, the same for images and volumes.
template <auto& W>
std::span<const tcommand> levelrows() {
  using enum tcommandkind;
  static const tcommand rows[] = {
      {"setadjust", procedure, setadjustcmd<W>, nullptr,
       "setadjust // or setadjust <a, b> or setadjust <a, b> <c, d>: stretch the used levels (or a..b) to 0..max "
       "(or c..d); colour images: one table for red, green and blue"},
      {"cleanup", procedure, cleanupcmd<W>, nullptr, "cleanup // setadjust, smooth, unsharpmasking and unsharpmasking again"},
  };
  return rows;
}
