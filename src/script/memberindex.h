// The index of the syntax members by full name: each name leads to the positions of its
// entries in the member list, oldest first, so that a lookup walks only entries of that name.
#pragma once
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "script/utf16.h"

struct tnamehash {
  size_t operator()(const utf16& v) const noexcept {
    uint64_t h = 1469598103934665603ull;  // FNV-1a over both byte planes
    for (const char c : v.lo) h = (h ^ static_cast<uint8_t>(c)) * 1099511628211ull;
    for (const char c : v.hi)
      if (c) h = (h ^ static_cast<uint8_t>(c)) * 1099511628211ull;
    return static_cast<size_t>(h);
  }
};

struct tnameequal {
  bool operator()(const utf16& a, const utf16& b) const noexcept { return a.lo == b.lo && a.hi == b.hi; }
};

struct tmemberindex {
  std::unordered_map<utf16, std::vector<int64_t>, tnamehash, tnameequal> chains;
  int64_t highestlevel = 0;
  int64_t revision = 0;  // counts the changes of the member list  // no member has a higher level (a bound, not always reached)
};
