#include "orientation/vectorgrid.h"

#include <algorithm>

#include "orientation/vectoraccess.h"
#include "shell/console.h"

void readvectorrow(const tvectorfield& f, int64_t y, int64_t z, int64_t width, tvector* out) {
  std::fill_n(out, width, tvector{0, 0, 0});
  eachstorage(f, [&](const auto& a) {
    if (y < 1 || y > a.sizey || z < 1 || z > a.sizez) return;
    const auto* row = a.items() + (a.index(1, y, z) - 1);
    const int64_t n = std::min(width, a.sizex);
    for (int64_t x = 0; x < n; ++x) out[x] = readvector(row[x]);
  });
}

void writevectorrow(tvectorfield& f, int64_t y, int64_t z, int64_t width, const tvector* in) {
  eachstorage(f, [&](auto& a) {
    using E = vectorelement<decltype(a)>;
    if (y < 1 || y > a.sizey || z < 1 || z > a.sizez) return;
    E* row = a.items() + (a.index(1, y, z) - 1);
    const int64_t n = std::min(width, a.sizex);
    for (int64_t x = 0; x < n; ++x) row[x] = writevector<E>(in[x]);
    a.sorted = false;
  });
}

void combinevectors(tvectorfield& target, std::span<const tvectorfield* const> operands, const char* word,
                    const tvectorexpression& op) {
  const tnatvector size = fieldsize(target);
  const int64_t nx = size[0], count = static_cast<int64_t>(operands.size());
  if (fieldempty(target)) return;
  std::vector<tvector> rows(nx * count), own(nx), values(count);
  for (int64_t z = 1; z <= size[2]; ++z) {
    progress(word, static_cast<double>(z - 1) / size[2]);
    for (int64_t y = 1; y <= size[1]; ++y) {
      for (int64_t i = 0; i < count; ++i) readvectorrow(*operands[i], y, z, nx, rows.data() + i * nx);
      readvectorrow(target, y, z, nx, own.data());
      for (int64_t x = 0; x < nx; ++x) {
        for (int64_t i = 0; i < count; ++i) values[i] = rows[i * nx + x];
        own[x] = op(values, own[x]);
      }
      writevectorrow(target, y, z, nx, own.data());
    }
  }
  progressend();
}
