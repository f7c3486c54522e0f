#include "library/random.h"

#include <random>

namespace {
std::mt19937_64& generator() {
  static std::mt19937_64 engine{std::random_device{}()};
  return engine;
}
}  // namespace

double randomreal() { return std::uniform_real_distribution<double>(0.0, 1.0)(generator()); }

int64_t randombelow(int64_t modulus) {
  if (modulus <= 1) return 0;
  return std::uniform_int_distribution<int64_t>(0, modulus - 1)(generator());
}

void randomseed(uint64_t seed) { generator().seed(seed); }
