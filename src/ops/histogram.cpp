// Histograms in one pass over the voxel array, and the console chart drawn from them.
#include "ops/histogram.h"

#include <algorithm>
#include <cmath>

#include "script/values.h"

namespace {

template <class T>
void countinto(std::vector<int64_t>& counts, const T* p, int64_t n) {
  for (int64_t i = 0; i < n; ++i) ++counts[p[i]];
}

// U+2581 .. U+2588: one eighth to a full block.
const char* const blocks[] = {"\u2581", "\u2582", "\u2583", "\u2584", "\u2585", "\u2586", "\u2587", "\u2588"};

int64_t entry(const std::vector<int64_t>& counts, int64_t i) {  // from 1; 0 outside
  return i >= 1 && i <= static_cast<int64_t>(counts.size()) ? counts[i - 1] : 0;
}

}  // namespace

std::vector<int64_t> fieldhistogram(const tscalarfield& f) {
  std::vector<int64_t> counts;
  if (f.kind == scalargray) {
    counts.assign(256, 0);
    countinto(counts, f.gray.items(), f.gray.length);
  } else if (f.kind == scalarfullgray) {
    counts.assign(65536, 0);
    countinto(counts, f.full.items(), f.full.length);
  }
  return counts;
}

std::vector<int64_t> fieldhistogram(const tvectorfield& f) {
  std::vector<int64_t> counts;
  eachstorage(f, [&](const auto& a) {
    counts.assign(65536, 0);
    const auto* p = a.items();
    for (int64_t i = 0; i < a.length; ++i) {
      const double x = p[i][0], y = p[i][1], z = p[i][2];
      ++counts[std::clamp<int64_t>(roundnat(std::sqrt(x * x + y * y + z * z)), 0, 65535)];
    }
  });
  return counts;
}

std::vector<int64_t> fieldhistogram(const timagefield& f) {
  std::vector<int64_t> counts;
  withkind(f, [&](auto v) {
    using V = decltype(v);
    counts.assign(V::kind == imagefullgray ? 65536 : 256, 0);
    if constexpr (!V::colour) {
      countinto(counts, v.plane().items(), v.plane().length);
    } else {
      for (int64_t y = 1; y <= v.sizey(); ++y)
        for (int64_t x = 1; x <= v.sizex(); ++x) ++counts[v.getgray(x, y)];
    }
  });
  return counts;
}

std::vector<std::string> histogramchart(const std::vector<int64_t>& counts, int64_t width, int64_t height) {
  std::vector<std::string> lines;
  const int64_t n = static_cast<int64_t>(counts.size());
  if (n < 1) return lines;
  const double step = static_cast<double>(width) / static_cast<double>(n);
  const double top = std::log10(static_cast<double>(*std::max_element(counts.begin(), counts.end())));
  // Narrow charts show the largest of the entries that fall into a column.
  const int64_t span = step < 1 ? roundnat(1 / step) + 1 : 1;
  for (int64_t row = height; row >= 1; --row) {
    std::string line = row == 1 ? "0 " : "  ";
    if (!(top > 0)) {
      if (row == 1) line += "empty";
      lines.push_back(line);
      continue;
    }
    for (int64_t c = 1; c <= width + 1; ++c) {
      const int64_t first = roundnat(static_cast<double>(c) / step);
      int64_t value = 0;
      for (int64_t k = 0; k < span; ++k) value = std::max(value, entry(counts, first + k));
      const int64_t e =
          value > 0 ? roundnat(std::log10(static_cast<double>(value)) / top * static_cast<double>(height * 8)) - (row - 1) * 8
                    : -1;
      line += e <= 0 ? " " : blocks[std::min<int64_t>(e, 8) - 1];
    }
    if (row == 1) line += std::to_string(n - 1);
    lines.push_back(line);
  }
  return lines;
}

std::string histogramtable(const std::vector<int64_t>& counts) {
  std::string text;
  for (size_t v = 0; v < counts.size(); ++v)
    if (counts[v] > 0) text += std::to_string(v) + "\t" + std::to_string(counts[v]) + "\n";
  return text;
}
