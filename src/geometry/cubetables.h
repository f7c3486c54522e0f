// The classic marching cubes tables. Corners are numbered by their (x, y, z) offsets:
// 0 (0,0,0), 1 (1,0,0), 2 (1,1,0), 3 (0,1,0), 4 (0,0,1), 5 (1,0,1), 6 (1,1,1), 7 (0,1,1).
#pragma once
#include <array>
#include <cstdint>

struct tcubetables {
  std::array<uint16_t, 256> edgetable;               // bit e set: edge e is cut
  std::array<std::array<int8_t, 16>, 256> tritable;  // edge triples, ended by -1
};

const tcubetables& cubetables();
extern const std::array<std::array<int8_t, 3>, 8> cubecorners;    // offsets of the corners
extern const std::array<std::array<int8_t, 2>, 12> cubeedges;     // end corners of each edge
extern const std::array<std::array<int8_t, 3>, 12> edgedirection;  // from the first end
