// Bits packed eight to the byte, lowest bit first: bit i lies in byte (i - 1) div 8 + 1
// at position (i - 1) mod 8. The block has count div 8 + 1 bytes, one more than needed
// when count is a multiple of 8. The bit volume is built on this record.
#pragma once
#include "field/array_list.h"

template <uint8_t K>
struct tbitarray : tfieldmemory {
  using elementtype = bool;
  static constexpr uint8_t kindtag = K;

  int64_t count = 0;  // bits in use
  bool defaultvalue = false;
  bool value = true;

  void create(int64_t bits) {
    count = std::max<int64_t>(bits, 0);
    allocate(count / 8 + 1, 1);
    kind = K;
    defaultvalue = false;
    value = true;
    if (length < 1) count = 0;
  }
  void createdynamic() {
    allocatedynamic(1);
    kind = K;
    count = 0;
    defaultvalue = false;
    value = true;
  }
  void release() {
    tfieldmemory::release();
    count = 0;
  }
  int64_t itemcount() const { return count; }
  void resizecount(int64_t bits) {
    bits = std::max<int64_t>(bits, 0);
    resize(bits / 8 + 1);
    count = length < 1 ? 0 : bits;
  }

  // A read outside 1..count returns the default.
  bool get(int64_t i) const {
    if (i < 1 || i > count) return defaultvalue;
    return ((data[(i - 1) >> 3] >> ((i - 1) & 7)) & 1) != 0;
  }
  bool getchecked(int64_t i) const { return get(i); }
  // The bits of a byte that grows into existence take the default. A dynamic array
  // grows to i bits; a static one keeps its count.
  void put(int64_t i, bool v) {
    if (i < 1) return;
    const int64_t b = (i - 1) / 8 + 1;
    uint8_t byte = defaultvalue ? 0xFF : 0x00;
    tfieldmemory::getchecked(b, &byte);
    const auto mask = static_cast<uint8_t>(1u << ((i - 1) & 7));
    byte = v ? static_cast<uint8_t>(byte | mask) : static_cast<uint8_t>(byte & ~mask);
    tfieldmemory::putgrow(b, &byte);
    if (i > count && dynamic > 0 && b <= length) count = i;
  }
  void add(bool v) { put(count + 1, v); }
  void fill(bool v) {
    if (length > 0) std::memset(data, v ? 0xFF : 0x00, static_cast<size_t>(length));
  }
  // Whole bytes must be 255, the last one only in its used bits.
  bool allset() const {
    const int64_t full = count / 8;
    for (int64_t b = 0; b < full; ++b)
      if (data[b] != 0xFF) return false;
    const int rest = static_cast<int>(count % 8);
    if (rest == 0) return true;
    const auto mask = static_cast<uint8_t>((1u << rest) - 1);
    return (data[full] & mask) == mask;
  }
};
