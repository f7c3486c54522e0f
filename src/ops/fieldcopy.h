// What the operations that make one field from another share: the settings that travel
// with the samples, and the sample arrays of source and target side by side.
#pragma once
#include <type_traits>

#include "field/tensorfield.h"
#include "field/vectorfield.h"
#include "ops/voxelgrid.h"

// Title, place in space, labels, value, background and the settings of copy and
// analysis, onto a target already created in the source's kind; the samples are the
// caller's.
inline void copysettings(tscalarfield& to, const tscalarfield& from) {
  to.space = from.space;
  to.title = from.title;
  copylabels(to, from);
  to.filteradd = from.filteradd, to.filtermul = from.filtermul;
  to.method = from.method, to.copymethod = from.copymethod, to.submethod = from.submethod;
  to.fullscan = from.fullscan, to.fullscanlocal = from.fullscanlocal;
  to.diffusionangle = from.diffusionangle, to.diffusionmax = from.diffusionmax;
  setbackground(to, static_cast<double>(getbackground(from)));
  setdrawvalue(to, static_cast<double>(getdrawvalue(from)));
}

inline void copysettings(timagefield& to, const timagefield& from) {
  to.space = from.space;
  to.name = from.name;
  to.method = from.method, to.copymethod = from.copymethod, to.submethod = from.submethod;
  to.fullscan = from.fullscan, to.diffusionangle = from.diffusionangle, to.diffusionmax = from.diffusionmax;
  to.zscale = from.zscale, to.zmaximum = from.zmaximum;
  for (int c = 0; c < 4; ++c)
    to.channels[c].defaultvalue = from.channels[c].defaultvalue, to.channels[c].value = from.channels[c].value;
  to.words.defaultvalue = from.words.defaultvalue, to.words.value = from.words.value;
}

inline void copysettings(tvectorfield& to, const tvectorfield& from) {
  to.space = from.space;
  to.background = from.background;
  to.copymethod = from.copymethod;
}

inline void copysettings(ttensorfield& to, const ttensorfield& from) {
  to.space = from.space;
  to.copymethod = from.copymethod;
}

// op(target grid, source grid) for each array pair of two fields of one kind: a volume's
// one array (mono lent as bytes), an image's planes in order. The source is read only;
// target values and backgrounds are those of the target's arrays.
template <class Op>
void eachgridpair(tscalarfield& target, const tscalarfield& source, Op op) {
  auto& s = const_cast<tscalarfield&>(source);
  switch (source.kind) {
    case scalargray: return op(gridof(target.gray, 255), gridof(s.gray, 255));
    case scalarfullgray: return op(gridof(target.full, 65535), gridof(s.full, 65535));
    case scalarmono: {
      const tbitvolume& m = source.mono;
      const int64_t n = fieldcount(m.sizex, m.sizey, m.sizez);
      std::vector<uint8_t> bytes(static_cast<size_t>(n));
      for (int64_t i = 0; i < n; ++i) bytes[i] = m.get(i + 1);
      const tgrid<uint8_t> from{bytes.data(), m.sizex, m.sizey, m.sizez, m.defaultvalue, 1};
      withgrid(target, [&](auto t) {
        if constexpr (std::is_same_v<decltype(t), tgrid<uint8_t>>) op(t, from);
      });
      return;
    }
  }
}

template <class Op>
void eachgridpair(timagefield& target, const timagefield& source, Op op) {
  auto& s = const_cast<timagefield&>(source);
  const int colours = source.kind == imagergba ? 4 : colourkind(source.kind) ? 3 : source.kind == imagegray ? 1 : 0;
  for (int c = 0; c < colours; ++c) op(gridof(target.channels[c], 255), gridof(s.channels[c], 255));
  if (source.kind == imagefullgray || source.kind == imagezrgb) op(gridof(target.words, 65535), gridof(s.words, 65535));
}

template <class Op>
void eachgridpair(tvectorfield& target, const tvectorfield& source, Op op) {
  auto& s = const_cast<tvectorfield&>(source);
  switch (source.kind) {
    case vectorfloat: return op(gridof(target.real, 0), gridof(s.real, 0));
    case vectorinteger: return op(gridof(target.integer, 0), gridof(s.integer, 0));
    case vectorrgb: return op(gridof(target.rgb, 0), gridof(s.rgb, 0));
  }
}

// A tensor field's two volumes in turn: the diagonal, then the off-diagonal entries.
template <class Op>
void eachgridpair(ttensorfield& target, const ttensorfield& source, Op op) {
  auto& s = const_cast<ttensorfield&>(source);
  switch (source.kind) {
    case vectorfloat:
      op(gridof(target.diagonal, 0), gridof(s.diagonal, 0));
      return op(gridof(target.offdiagonal, 0), gridof(s.offdiagonal, 0));
    case vectorinteger:
      op(gridof(target.intdiagonal, 0), gridof(s.intdiagonal, 0));
      return op(gridof(target.intoffdiagonal, 0), gridof(s.intoffdiagonal, 0));
  }
}
