// The index of the variables by name: each name leads to the positions of its entries in
// the variable list, oldest first, so that the newest entry of a name, and the next older
// one of a chained lookup, are found without walking the list.
#pragma once
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "script/memberindex.h"

struct tvariableindex {
  std::unordered_map<utf16, std::vector<int64_t>, tnamehash, tnameequal> chains;
  int64_t indexed = -1;  // entries of the list the chains hold; a list of another length is indexed anew
  // One bit for each (length, first character) class of the names that were entered since the
  // list was last emptied: a lookup of a name whose bit is clear finds nothing, without a walk.
  uint64_t namemask = 0;
};
