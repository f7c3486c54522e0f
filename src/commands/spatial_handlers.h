// The spatial commands of the grid fields, written once and instantiated per family with
// its workspace. Vectors print in full, so that every result reads back as a vector.
#pragma once
#include <span>

#include "commands/workspace_handlers.h"
#include "field/spatial.h"
#include "library/mathtext.h"
#include "library/mathvector.h"

template <auto& W>
tspatial& currentspace() {
  return currentfield(W).space;
}

// <x, y> for an image, <x, y, z> otherwise.
template <auto& W>
void sizefunc(tscript& s) {
  const tnatvector size = fieldsize(currentfield(W));
  setresult(s, natlisttext(std::span(size).first(workspacefieldof<W>::axes), true));
}

template <auto& W>
void centerfunc(tscript& s) {
  const tnatvector size = fieldsize(currentfield(W));
  const tvector half{size[0] * 0.5, size[1] * 0.5, size[2] * 0.5};
  setresult(s, reallisttext(std::span(half).first(workspacefieldof<W>::axes), true));
}

template <auto& W>
void centerproc(tscript& s) {
  if (checkparams(s, 0))
    centeroffset(currentspace<W>(), fieldsize(currentfield(W)), workspacefieldof<W>::centerdivisor);
}

template <auto& W>
void offsetfunc(tscript& s) {
  setresult(s, fullvectortext(currentspace<W>().offset));
}

// No parameter puts the offset back to zero.
template <auto& W>
void offsetproc(tscript& s) {
  if (paramcount(s) > 1) {
    reportmax(s, 1);
    return;
  }
  setoffset(currentspace<W>(), paramcount(s) == 1 ? textvector(param(s, 1)) : tvector{0, 0, 0});
}

template <auto& W>
void offsetaddcmd(tscript& s) {
  if (checkparams(s, 1)) setoffset(currentspace<W>(), added(currentspace<W>().offset, textvector(param(s, 1))));
}

template <auto& W>
void scalefunc(tscript& s) {
  setresult(s, fullvectortext(axisscales(currentspace<W>())));
}

// Without a parameter the statement is the function.
template <auto& W>
void scaleproc(tscript& s) {
  if (paramcount(s) == 0)
    scalefunc<W>(s);
  else if (checkparams(s, 1))
    setscale(currentspace<W>(), textvector(param(s, 1)));
}

template <auto& W>
void scalemulcmd(tscript& s) {
  if (checkparams(s, 1)) mulscale(currentspace<W>(), textvector(param(s, 1)));
}

template <auto& W>
void matrixfunc(tscript& s) {
  setresult(s, rowstext(currentspace<W>().matrix));
}

template <auto& W, int row>
void matrixrowfunc(tscript& s) {
  setresult(s, fullvectortext(currentspace<W>().matrix[row - 1]));
}

// Three row vectors, or the one text that the function gives.
template <auto& W>
void matrixproc(tscript& s) {
  trows rows{};
  if (paramcount(s) == 1) {
    rows = vectorpart(textmatrix(param(s, 1)));
  } else if (checkparams(s, 3)) {
    for (int r = 0; r < 3; ++r) rows[r] = textvector(param(s, r + 1));
  } else {
    return;
  }
  setmatrixchecked(currentspace<W>(), rows);
}

template <auto& W>
void unflipcmd(tscript& s) {
  if (checkparams(s, 0)) unflip(currentspace<W>());
}

template <auto& W>
void unrotatecmd(tscript& s) {
  if (checkparams(s, 0)) unrotate(currentspace<W>());
}

template <auto& W>
void l2gfunc(tscript& s) {
  if (checkparams(s, 1)) setresult(s, fullvectortext(localtoglobal(currentspace<W>(), textvector(param(s, 1)))));
}

template <auto& W>
void g2lfunc(tscript& s) {
  if (checkparams(s, 1)) setresult(s, natlisttext(globaltolocal(currentspace<W>(), textvector(param(s, 1))), true));
}
