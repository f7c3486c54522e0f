// The typed layer over tfieldmemory: one record per element type, written once.
// tarraylist gives the element accessors and the default value that bounds-tested reads
// return; ttuplelist adds the pair, triple and quad members with per-component sorting.
// Accessors are inline: the voxel loops call them once per element.
#pragma once
#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "field/array_sort.h"
#include "field/memory.h"
#include "script/values.h"

// A real becomes an element: integers are rounded (ties to even) and clamped to their range.
template <class T>
T toelement(double x) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(x);
  } else {
    const int64_t r = roundnat(x);
    const auto lo = static_cast<int64_t>(std::numeric_limits<T>::lowest());
    const auto hi = static_cast<int64_t>(std::numeric_limits<T>::max());
    return static_cast<T>(std::clamp(r, lo, hi));
  }
}

template <class T, uint8_t K>
struct tarraylist : tfieldmemory {
  using elementtype = T;
  static constexpr uint8_t kindtag = K;

  T defaultvalue{};  // what a bounds-tested read returns outside the array

  void create(int64_t count) {
    allocate(count, sizeof(T));
    kind = K;
    defaultvalue = T{};
  }
  void createdynamic() {
    allocatedynamic(sizeof(T));
    kind = K;
    defaultvalue = T{};
  }
  // The grids size their base through these two, which the bit arrays define in bits.
  int64_t itemcount() const { return length; }
  void resizecount(int64_t count) { resize(count); }

  T* items() const { return reinterpret_cast<T*>(data); }
  T get(int64_t i) const { return items()[i - 1]; }
  void put(int64_t i, const T& v) {
    items()[i - 1] = v;
    sorted = false;
  }
  T getchecked(int64_t i) const { return i >= 1 && i <= length ? items()[i - 1] : defaultvalue; }
  void putgrow(int64_t i, const T& v) { tfieldmemory::putgrow(i, &v); }
  void add(const T& v) { putgrow(length + 1, v); }
  void fill(const T& v) {
    T* p = items();
    for (int64_t i = 0; i < length; ++i) p[i] = v;
    sorted = false;
  }
  void swapitems(int64_t a, int64_t b) { std::swap(items()[a - 1], items()[b - 1]); }

  // Index of the first element equal to v, 0 if none.
  int64_t find(const T& v) const {
    for (int64_t i = 1; i <= length; ++i)
      if (get(i) == v) return i;
    return 0;
  }
};

// Pairs, triples and quads of one number type. Each component has its sort flag; a flag
// holds only while the record's sorted flag does, so any write clears all of them.
template <class C, int N, uint8_t K>
struct ttuplelist : tarraylist<std::array<C, N>, K> {
  using tuple = std::array<C, N>;

  bool sortflags[N] = {};
  tuple value{};

  // Ascending by one component (1-based); other components follow their tuple.
  void sort(int component = 1) {
    if (component < 1 || component > N) return;
    const int c = component - 1;
    heapsort(
        this->length, [&](int64_t a, int64_t b) { return this->get(a)[c] < this->get(b)[c]; },
        [&](int64_t a, int64_t b) { this->swapitems(a, b); });
    this->sorted = true;
    std::fill(sortflags, sortflags + N, false);
    sortflags[c] = true;
  }
  bool issortedby(int component) const {
    return this->sorted && component >= 1 && component <= N && sortflags[component - 1];
  }
};
