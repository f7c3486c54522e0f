// What the statement loop may keep between passes over the same text: a line's first word
// and rest (they change only when the store does), and the cut of a parameter text into
// words with their kinds (they change only when the members do). Substitution, which reads
// the variables, is never cached.
#pragma once
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "script/memberindex.h"

struct tpreparedline {
  bool ready = false;
  utf16 keyword;  // lower case
  utf16 rest;     // trimmed, through the long field
};

struct tcutwords {
  std::vector<utf16> words;
  std::vector<uint8_t> kinds;
};

struct tstatementcache {
  int64_t storerevision = 0;
  std::vector<tpreparedline> lines;  // index = line number
  int64_t memberrevision = -1;
  std::unordered_map<utf16, tcutwords, tnamehash, tnameequal> cuts[2];  // [raw]
};
