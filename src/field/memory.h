// The one guarded allocator under every array of the program.
//
// A tfieldmemory record owns one heap block of maximal * element bytes, of which
// length elements are in use. It never lets a failed allocation reach the caller: the
// record becomes empty, one line is reported, and the macro goes on. The zero words
// around the pointer, the element size and the length reveal a record that has been
// overwritten; such a block is never handed back to the heap.
//
// Static records hold exactly their count; dynamic ones keep a reserve (dynamic > 0)
// that grows by a size-dependent ladder. Indices start at 1. A record runs no destructor (owners
// copy it byte by byte): an owner calls release itself or holds the record through
// field/owned.h, and a fresh record must be all zero (value-initialised).
#pragma once
#include <cstdint>
#include <cstring>
#include <type_traits>

struct tindexrange {
  int64_t first = 0;
  int64_t last = 0;
};

struct tfieldmemory {
  uint8_t kind = 0;        // tag of the array type on top; 0 on a bare record
  uintptr_t shadow = 0;    // copy of data while a block is owned; 1 emptied, 0 failed or freed
  int64_t maximal = 0;     // elements the block can hold
  int64_t dynamic = 0;     // free reserve; above 0 marks a dynamic record
  uint8_t flags[17] = {};  // cleared with the record, free for the owner
  uint64_t guard1 = 0;
  uint8_t* data = nullptr;
  uint64_t guard2 = 0;
  int64_t element = 0;  // bytes per element; 0 on an empty record
  uint64_t guard3 = 0;
  int64_t length = 0;   // elements in use
  tindexrange range;    // (1, length), or (0, 0) when empty
  bool sorted = false;  // kept by the array on top while its elements ascend

  void allocate(int64_t count, int64_t elementsize);  // static; count < 1 means dynamic
  void allocatedynamic(int64_t elementsize);
  void resize(int64_t count);  // the only way length changes
  void grow(int64_t n) { resize(length + n); }
  void release();  // give the block back and empty the record; element stays
  void reset();    // empty the record without giving anything back

  // Exchanges the blocks of two records of equal length and element size. shadow stays,
  // so both count as unallocated until they are swapped back: swap back before release.
  bool swapdata(tfieldmemory& other);

  // Makes the bytes of the static record from, from byte skip on, the count elements of this
  // static record, in from's block (moved to its start and cut to size): data that arrives
  // behind a prefix needs no second block. This record's own block is given back, from
  // ends empty. False, with nothing changed, when from holds too few bytes.
  bool takeblock(tfieldmemory& from, int64_t skip, int64_t count);

  bool unallocated() const { return data == nullptr || reinterpret_cast<uintptr_t>(data) != shadow; }
  bool isdynamic() const { return dynamic > 0; }
  int64_t bytes() const { return maximal * element; }

  uint8_t* address(int64_t i) const { return data + (i - 1) * element; }
  uint8_t* addresschecked(int64_t i) const { return i >= 1 && i <= length ? address(i) : nullptr; }
  void get(int64_t i, void* out) const { std::memcpy(out, address(i), static_cast<size_t>(element)); }
  void put(int64_t i, const void* in) {
    std::memcpy(address(i), in, static_cast<size_t>(element));
    sorted = false;
  }
  // Leaves inout as the caller preset it when i lies outside 1..length.
  void getchecked(int64_t i, void* inout) const {
    if (i >= 1 && i <= length) get(i, inout);
  }
  void putgrow(int64_t i, const void* in);

  void reverse();
  void copyfrom(const tfieldmemory& source);
  void insertblock(int64_t position, int64_t count, const tfieldmemory& source);
};

// Owners embed records by value and may copy them byte by byte.
static_assert(std::is_trivially_copyable_v<tfieldmemory>);

// Element count of a grid: 0 when a factor is below 1, the 64-bit maximum when the
// product overflows (which no allocation can satisfy, so it ends as a failed request).
int64_t fieldcount(int64_t x, int64_t y = 1, int64_t z = 1);

// The reserve, in elements, that a dynamic record of count elements (bytes in all) takes
// on when it outgrows its block.
int64_t growthreserve(int64_t bytes, int64_t count);

// Accounting of the allocator, for the whole process (allocation is single-threaded).
int64_t fieldmemoryheld();    // bytes in blocks the records hold, abandoned ones included
int64_t physicalmemory();     // bytes of RAM of the machine
int64_t fieldmemorylimit();   // requests beyond limit - held are refused
void setfieldmemorylimit(int64_t bytes);  // <= 0 restores the physical memory
