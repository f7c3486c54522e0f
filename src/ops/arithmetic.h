// The per-pixel expressions of the combining commands, on the 64-bit samples of one
// channel: v[i] is the sample of operand i, n the number of operands, `top` the largest
// sample of the target's kind (1, 255 or 65535), from which every kind's constant follows;
// it arrives as a compile-time constant, so that the divisions become multiplications.
// Integer division truncates toward zero; the target's setter clamps the result.
#pragma once
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

#include "field/arrays.h"
#include "script/values.h"

namespace pixelmath {

inline int64_t sub(const int64_t* v, int64_t) { return v[0] - v[1]; }
inline int64_t subabs(const int64_t* v, int64_t) { return std::abs(v[0] - v[1]); }
// a + c - b, c the middle of the range: 128 or 32768.
inline constexpr auto subrange = [](auto top) {
  return [middle = (top + 1) / 2](const int64_t* v, int64_t) -> int64_t { return v[0] + middle - v[1]; };
};
// old1 between old2 (the second operand, m) and old3.
inline int64_t between(const int64_t* v, int64_t) { return (v[1] - v[0]) + (v[1] - v[2]); }

inline int64_t add(const int64_t* v, int64_t n) {
  int64_t sum = 0;
  for (int64_t i = 0; i < n; ++i) sum += v[i];
  return sum;
}
// The folds start at the kind's maximum and at 0.
inline constexpr auto addmin = [](auto top) {
  return [top](const int64_t* v, int64_t n) { return std::min<int64_t>(top, *std::min_element(v, v + n)); };
};
inline int64_t addmax(const int64_t* v, int64_t n) { return std::max<int64_t>(0, *std::max_element(v, v + n)); }

// Two operands: a * b div top; three: a * b * c div top².
inline constexpr auto mul = [](auto top) {
  return [top](const int64_t* v, int64_t n) {
    return n == 2 ? v[0] * v[1] / top : v[0] * v[1] * v[2] / (top * top);
  };
};
// (a div 2) * b * (c div 2) div (top div 2)²: 16129 on 8 bits, 1073676289 on 16.
inline constexpr auto mulgauss = [](auto top) {
  return [half = top / 2](const int64_t* v, int64_t) -> int64_t { return (v[0] / 2) * v[1] * (v[2] / 2) / (half * half); };
};
// a shifted by the kind's bits, divided by b + 1: never by zero.
inline constexpr auto div = [](auto top) {
  return [scale = top + 1](const int64_t* v, int64_t) -> int64_t { return v[0] * scale / (v[1] + 1); };
};
inline int64_t mean(const int64_t* v, int64_t n) { return add(v, n) / n; }

inline int64_t medianofthree(int64_t a, int64_t b, int64_t c) {
  if (a > b) std::swap(a, b);
  if (b > c) std::swap(b, c);
  if (a > b) std::swap(a, b);
  return b;
}
inline int64_t median3(const int64_t* v, int64_t) { return medianofthree(v[0], v[1], v[2]); }

// The operands as a sorted list, the statistics of lists on it: an even count takes the
// lower middle; the outlier forms first keep only q1 - d .. q3 + d, d = (q3 - q1) * 1.5.
struct tsortedsamples {
  int64_t values[99];
  int64_t count = 0;

  tsortedsamples(const int64_t* v, int64_t n) : count(n) {
    std::copy_n(v, n, values);
    std::sort(values, values + n);
  }
  // Positions outside the list read 0, as a list's default does.
  int64_t at(int64_t position) const { return position >= 1 && position <= count ? values[position - 1] : 0; }
  int64_t median() const { return at(quantilepositions(count)[1]); }
  int64_t mean() const { return count < 1 ? 0 : roundnat(static_cast<double>(add(values, count)) / static_cast<double>(count)); }
  void removeoutliers() {
    const auto q = quantilepositions(count);
    const double q1 = static_cast<double>(at(q[0])), q3 = static_cast<double>(at(q[2]));
    const double d = (q3 - q1) * 1.5;
    int64_t kept = 0;
    for (int64_t i = 0; i < count; ++i)
      if (static_cast<double>(values[i]) >= q1 - d && static_cast<double>(values[i]) <= q3 + d) values[kept++] = values[i];
    count = kept;
  }
};

template <bool outliers>
int64_t listmean(const int64_t* v, int64_t n) {
  tsortedsamples s(v, n);
  if constexpr (outliers) s.removeoutliers();
  return s.mean();
}
template <bool outliers>
int64_t listmedian(const int64_t* v, int64_t n) {
  tsortedsamples s(v, n);
  if constexpr (outliers) s.removeoutliers();
  return s.median();
}

}  // namespace pixelmath

namespace pixelmath {

// The last operand that is not 0; the first gives the start.
inline int64_t lastnonzero(const int64_t* v, int64_t n) {
  int64_t out = v[0];
  for (int64_t i = 1; i < n; ++i)
    if (v[i] != 0) out = v[i];
  return out;
}

// Two exposures of one scene into one image: (a * (e2 / e1 + 1) + b * (e1 / e2 + 1)) * 0.25.
inline auto exposurepair(double e1, double e2) {
  return [e1, e2](const int64_t* v, int64_t) {
    return roundnat((static_cast<double>(v[0]) * (e2 / e1 + 1) + static_cast<double>(v[1]) * (e1 / e2 + 1)) * 0.25);
  };
}
// The same for volumes, of two or three: (old1/e1 + old2/e2 ...)/n * (e1 + e2 ...)/n.
inline auto exposures(const std::array<double, 3>& e) {
  return [e](const int64_t* v, int64_t n) {
    double scaled = 0, sum = 0;
    for (int64_t i = 0; i < n; ++i) {
      scaled += static_cast<double>(v[i]) / e[i];
      sum += e[i];
    }
    const auto count = static_cast<double>(n);
    return roundnat(scaled / count * (sum / count));
  };
}

}  // namespace pixelmath
