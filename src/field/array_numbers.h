// Lists of one number type (real, int, word, byte) with their statistics, written once
// for all element types. Planes and volumes of numbers are built on this record.
#pragma once
#include <cmath>
#include <concepts>

#include "field/array_list.h"
#include "library/random.h"

// The 1-based positions in a sorted list of n elements of the first quartile, the median
// and the third quartile. An even list takes the lower element, no mean of two; a
// position of 0 lies outside the list (an even list of two has no quartiles).
constexpr std::array<int64_t, 3> quantilepositions(int64_t n) {
  const int64_t quarter = n / 4, half = n / 2;
  if (n % 2 == 1) return {quarter + 1, half + 1, quarter * 3 + 1};
  return {quarter, half, quarter * 3};
}

template <class T, uint8_t K>
struct tnumberlist;
using tintlist = tnumberlist<int64_t, 2>;
using tcountlist = ttuplelist<int64_t, 2, 0>;

template <class T, uint8_t K>
struct tnumberlist : tarraylist<T, K> {
  using sumtype = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;

  T value{};  // the element that drawing writes

  // The start values of min and max: an empty list answers with them.
  static constexpr T greatest() {
    if constexpr (std::numeric_limits<T>::has_infinity) return std::numeric_limits<T>::infinity();
    return std::numeric_limits<T>::max();
  }
  static constexpr T smallest() {
    if constexpr (std::numeric_limits<T>::has_infinity) return -std::numeric_limits<T>::infinity();
    return std::numeric_limits<T>::lowest();
  }

  T min() const {
    T m = greatest();
    for (int64_t i = 1; i <= this->length; ++i)
      if (this->get(i) < m) m = this->get(i);
    return m;
  }
  T max() const {
    T m = smallest();
    for (int64_t i = 1; i <= this->length; ++i)
      if (this->get(i) > m) m = this->get(i);
    return m;
  }
  // First index of the maximum, 0 on an empty list.
  int64_t maxindex() const {
    if (this->length < 1) return 0;
    int64_t best = 1;
    for (int64_t i = 2; i <= this->length; ++i)
      if (this->get(i) > this->get(best)) best = i;
    return best;
  }
  sumtype sum() const {
    sumtype s = 0;
    for (int64_t i = 1; i <= this->length; ++i) s += this->get(i);
    return s;
  }
  double mean() const { return this->length < 1 ? 0.0 : static_cast<double>(sum()) / static_cast<double>(this->length); }
  // Sample deviation; 0 below two elements.
  double sd() const {
    if (this->length < 2) return 0.0;
    const double m = mean();
    double s = 0;
    for (int64_t i = 1; i <= this->length; ++i) {
      const double d = static_cast<double>(this->get(i)) - m;
      s += d * d;
    }
    return std::sqrt(s / static_cast<double>(this->length - 1));
  }

  void sort() {
    heapsort(
        this->length, [&](int64_t a, int64_t b) { return this->get(a) < this->get(b); },
        [&](int64_t a, int64_t b) { this->swapitems(a, b); });
    this->sorted = true;
  }
  // result := the 1-based permutation that sorts the list; the list stays as it is.
  void sortindex(tintlist& result) const {
    const int64_t n = this->length;
    result.create(n);
    if (result.length != n) return;
    for (int64_t i = 1; i <= n; ++i) result.put(i, i);
    heapsort(
        n, [&](int64_t a, int64_t b) { return this->get(result.get(a)) < this->get(result.get(b)); },
        [&](int64_t a, int64_t b) { result.swapitems(a, b); });
  }

  // Index of the first element equal to v, 0 if none; a binary search on a sorted list.
  int64_t find(T v) const {
    if (!this->sorted) return tarraylist<T, K>::find(v);
    const int64_t hi = leftend(v);
    return hi <= this->length && this->get(hi) == v ? hi : 0;
  }
  // Index of the first element at or above v, 0 if none.
  int64_t findnotbelow(T v) const {
    if (this->sorted) {
      const int64_t hi = leftend(v);
      return hi <= this->length ? hi : 0;
    }
    for (int64_t i = 1; i <= this->length; ++i)
      if (this->get(i) >= v) return i;
    return 0;
  }

  // Quantiles by a fixed rule: an even list takes the lower element, no mean of two.
  T quantile25() const { return quantiles()[0]; }
  T median() const { return quantiles()[1]; }
  T quantile75() const { return quantiles()[2]; }
  tvector quartiles() const {
    const auto q = quantiles();
    return {static_cast<double>(q[0]), static_cast<double>(q[1]), static_cast<double>(q[2])};
  }

  // Reorders the list by how often each value occurs, the most frequent value last.
  void frequencysort()
    requires std::integral<T>
  {
    if (this->length < 1) return;
    sort();
    tcountlist pairs{};
    pairs.createdynamic();
    for (int64_t i = 1; i <= this->length; ++i) {
      const auto v = static_cast<int64_t>(this->get(i));
      if (pairs.length > 0 && pairs.get(pairs.length)[0] == v) {
        auto p = pairs.get(pairs.length);
        ++p[1];
        pairs.put(pairs.length, p);
      } else {
        pairs.add({v, 1});
      }
    }
    pairs.sort(2);
    int64_t out = 1;
    for (int64_t k = 1; k <= pairs.length; ++k)
      for (int64_t c = 0; c < pairs.get(k)[1]; ++c) this->put(out++, static_cast<T>(pairs.get(k)[0]));
    pairs.release();
  }

  void shuffle() {
    const int64_t n = this->length;
    for (int64_t k = 0; k < n; ++k) this->swapitems(randombelow(n) + 1, randombelow(n) + 1);
    this->sorted = false;
  }

  // One in-place pass of the 1-2-1 kernel: each step sees the smoothed left neighbour.
  void smooth121() {
    for (int64_t i = 2; i <= this->length - 1; ++i) {
      const double left = static_cast<double>(this->get(i - 1));
      const double right = static_cast<double>(this->get(i + 1));
      this->put(i, toelement<T>((static_cast<double>(this->get(i)) + (left + right) / 2) / 2));
    }
  }

 private:
  // Left end of the elements not below v in a sorted list: length + 1 when there is none.
  int64_t leftend(T v) const {
    int64_t lo = 1, hi = this->length + 1;
    while (lo < hi) {
      const int64_t mid = (lo + hi) / 2;
      if (this->get(mid) >= v)
        hi = mid;
      else
        lo = mid + 1;
    }
    return hi;
  }

  // First quartile, median and third quartile, read through the sorting permutation.
  // Positions outside the list (an even list of two has none for the quartiles) read
  // the default.
  std::array<T, 3> quantiles() const {
    const int64_t n = this->length;
    if (n < 1) return {T{}, T{}, T{}};
    const std::array<int64_t, 3> at = quantilepositions(n);
    tintlist order{};
    sortindex(order);
    std::array<T, 3> q{};
    for (int k = 0; k < 3; ++k) q[k] = this->getchecked(order.getchecked(at[k]));
    order.release();
    return q;
  }
};
