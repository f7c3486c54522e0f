// The one random generator of the program, seeded once at start.
#pragma once
#include <cstdint>

double randomreal();                // uniform in 0..1
int64_t randombelow(int64_t modulus);  // uniform in 0..modulus-1
void randomseed(uint64_t seed);
