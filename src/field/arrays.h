// The typed arrays of the field model. Every member is a tfieldmemory record with its
// kind tag, its element type and its own fields behind; there are no virtual operations,
// and each owner releases its arrays itself or holds them through field/owned.h.
#pragma once
#include "field/array_bits.h"
#include "field/array_grids.h"
#include "field/array_list.h"
#include "field/array_names.h"
#include "field/array_numbers.h"

using treallist = tnumberlist<double, 1>;
// tintlist = tnumberlist<int64_t, 2> is declared with the number lists.
using twordlist = tnumberlist<uint16_t, 3>;
using tbytelist = tnumberlist<uint8_t, 4>;
using tbitlist = tbitarray<5>;

using tpointlist = ttuplelist<double, 2, 0>;
// tcountlist = ttuplelist<int64_t, 2, 0> is declared with the number lists.
using tvectorlist = ttuplelist<double, 3, 0>;
using tintvectorlist = ttuplelist<int64_t, 3, 0>;
using tquadlist = ttuplelist<double, 4, 0>;
using tintquadlist = ttuplelist<int64_t, 4, 0>;

using trealplane = tplane<tnumberlist<double, 'A'>>;
using tintplane = tplane<tnumberlist<int64_t, 'B'>>;
using twordplane = tplane<tnumberlist<uint16_t, 'C'>>;
using tbyteplane = tplane<tnumberlist<uint8_t, 'D'>>;
using tvectorplane = tplane<ttuplelist<double, 3, 'H'>>;
using tintvectorplane = tplane<ttuplelist<int64_t, 3, 'I'>>;

using twordvolume = tvolume<tnumberlist<uint16_t, 'S'>>;
using tbytevolume = tvolume<tnumberlist<uint8_t, 'T'>>;
using tbitvolume = tvolume<tbitarray<'U'>>;
using tvectorvolume = tvolume<ttuplelist<double, 3, 'X'>>;
using tintvectorvolume = tvolume<ttuplelist<int64_t, 3, 'Y'>>;

// Pointers to objects that the list's owner frees; the list never does.
using tpointerlist = tarraylist<void*, 225>;
