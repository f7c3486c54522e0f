// The one random generator of the program, seeded once at start.
#pragma once
#include <cstdint>
#include <cstddef>
#include <utility>
#include <vector>

double randomreal();                // uniform in 0..1
int64_t randombelow(int64_t modulus);  // uniform in 0..modulus-1
void randomseed(uint64_t seed);
// Shuffles in place with the program's generator (Fisher-Yates).
template <class T>
void randomshuffle(std::vector<T>& items) {
  for (size_t i = items.size(); i > 1; --i) std::swap(items[i - 1], items[static_cast<size_t>(randombelow(static_cast<int64_t>(i)))]);
}
