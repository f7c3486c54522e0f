// The one sort of the arrays: a heap sort over positions 1..n, in place, without
// temporary storage. less(a, b) compares the items at positions a and b, swap(a, b)
// exchanges them. Of two equal children the left one is taken, which fixes the order
// of equal items; a comparison that is false both ways (NaN) counts as equal.
#pragma once
#include <cstdint>

template <class Less, class Swap>
void heapsort(int64_t n, Less less, Swap swap) {
  const auto siftdown = [&](int64_t root, int64_t last) {
    while (2 * root <= last) {
      int64_t child = 2 * root;
      if (child + 1 <= last && less(child, child + 1)) ++child;
      if (!less(root, child)) return;
      swap(root, child);
      root = child;
    }
  };
  for (int64_t i = n / 2; i >= 1; --i) siftdown(i, n);
  for (int64_t last = n; last >= 2; --last) {
    swap(1, last);
    siftdown(1, last - 1);
  }
}
