#include "field/memory.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "script/values.h"
#include "shell/console.h"

namespace {

constexpr int64_t int64max = std::numeric_limits<int64_t>::max();
constexpr int64_t kib = 1024;
constexpr int64_t mib = 1024 * kib;
constexpr int64_t gib = 1024 * mib;

int64_t held = 0;   // bytes in blocks handed out and not given back
int64_t limit = 0;  // 0: the physical memory

// Trace lines go only to the log; the console stays quiet while they are written.
void logline(const std::string& s) {
  if (!logon) return;
  const bool console = consoleon;
  consoleon = false;
  println(s);
  consoleon = console;
}

// A report reaches the log and then the user through the console-and-log writer.
void report(const std::string& s) {
  logline(s);
  println(s);
}

std::string num(int64_t v) { return utf16toutf8(nattext(v)); }

// Byte counts with thousands grouped; the separator is the one that isn't the decimal point.
std::string grouped(int64_t v) {
  std::string digits = std::to_string(v);
  if (v < 0) digits.erase(0, 1);
  const char separator = numbersettings.decimal ? ',' : '.';
  std::string out;
  for (size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) out.push_back(separator);
    out.push_back(digits[i]);
  }
  return v < 0 ? "-" + out : out;
}

std::string sizeline(const char* head, int64_t count, int64_t element) {
  return head + grouped(count * element) + " Bytes (" + num(count) + " * " + num(element) + ")";
}

int64_t product(int64_t a, int64_t b) {
  int64_t p = 0;
  return __builtin_mul_overflow(a, b, &p) ? int64max : p;
}

constexpr int64_t bigblock = 4 * mib;
constexpr uintptr_t hugepage = 2 * mib;

// A volume is touched whole soon after it is allocated; in 4 KiB pages the page faults
// cost about as much as filling it. The whole 2 MiB pages inside the block are asked for
// as huge pages (a hint the kernel may ignore; it matters for the fresh mappings that calloc
// gives big blocks, whose pages are still untouched).
void askhugepages(void* p, int64_t bytes) {
  const uintptr_t first = (reinterpret_cast<uintptr_t>(p) + hugepage - 1) & ~(hugepage - 1);
  const uintptr_t end = (reinterpret_cast<uintptr_t>(p) + static_cast<uintptr_t>(bytes)) & ~(hugepage - 1);
  if (end > first) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}

// Heap blocks come from calloc: zeroed, so the reserve of a dynamic record reads as zeros,
// and large blocks are mapped lazily. A request larger than the machine is refused before
// the heap is asked: with overcommit the heap would promise it, and the process would be
// killed later when the pages are touched. "Larger than the machine" means more than the
// physical memory minus what the records already hold (see fieldmemorylimit). calloc
// returns nil on failure and never throws.
uint8_t* obtain(int64_t count, int64_t element) {
  int64_t bytes = 0;
  if (count < 1 || element < 1 || __builtin_mul_overflow(count, element, &bytes)) return nullptr;
  if (bytes > fieldmemorylimit() - held) return nullptr;
  void* p = std::calloc(static_cast<size_t>(count), static_cast<size_t>(element));
  if (p) held += bytes;
  if (p && bytes >= bigblock) askhugepages(p, bytes);
  return static_cast<uint8_t*>(p);
}

uintptr_t addressof(const uint8_t* p) { return reinterpret_cast<uintptr_t>(p); }

void zero(uint8_t* p, int64_t bytes) {
  if (p && bytes > 0) std::memset(p, 0, static_cast<size_t>(bytes));
}

void copybytes(uint8_t* to, const uint8_t* from, int64_t bytes) {
  if (to && from && bytes > 0) std::memmove(to, from, static_cast<size_t>(bytes));
}

// Frees the record's block p unless a guard word was overwritten: then the heap can't be
// trusted with it, and it stays allocated for good.
void guardcheck(const tfieldmemory& m, const char* where, uint8_t* p) {
  if (m.guard1 != 0 || m.guard2 != 0 || m.guard3 != 0) {
    report(std::string("  Corrupt memory (") + where + " size=" + num(static_cast<int64_t>(malloc_usable_size(p))) +
           " and should=" + num(m.maximal * m.element) + ")!");
    return;
  }
  std::free(p);
  held -= m.maximal * m.element;
}

void setempty(tfieldmemory& m) {
  m.range = {0, 0};
  m.length = 0;
  m.dynamic = 0;
  m.maximal = 0;
}

void clearflags(tfieldmemory& m) { std::memset(m.flags, 0, sizeof m.flags); }

void clearguards(tfieldmemory& m) {
  m.kind = 0;
  m.guard1 = m.guard2 = m.guard3 = 0;
}

}  // namespace

// Small lists double, multi-gigabyte lists claim only 1/32 to 1/64 more.
int64_t growthreserve(int64_t bytes, int64_t count) {
  if (bytes > 10 * gib) return count / 64;
  if (bytes > 1 * gib) return count / 32;
  if (bytes > 102 * mib) return count / 8;
  if (bytes > 10 * mib) return count / 4;
  if (bytes > 1 * mib) return count / 2;
  return count;
}

int64_t fieldcount(int64_t x, int64_t y, int64_t z) {
  if (x < 1 || y < 1 || z < 1) return 0;
  return product(product(x, y), z);
}

int64_t fieldmemoryheld() { return held; }

int64_t physicalmemory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pagesize = sysconf(_SC_PAGE_SIZE);
  if (pages <= 0 || pagesize <= 0) return int64max;
  return product(pages, pagesize);
}

int64_t fieldmemorylimit() {
  if (limit <= 0) limit = physicalmemory();
  return limit;
}

void setfieldmemorylimit(int64_t bytes) { limit = bytes > 0 ? bytes : physicalmemory(); }

void tfieldmemory::allocate(int64_t count, int64_t elementsize) {
  clearguards(*this);
  if (count < 1) {
    allocatedynamic(elementsize);
    return;
  }
  if (unallocated()) {
    if (elementsize < 1) {
      data = nullptr;
      shadow = 1;
      element = 0;
      setempty(*this);
    } else {
      data = obtain(count, elementsize);
      if (data) {
        logline(sizeline("  Allocate first : ", count, elementsize));
        range = {1, count};
        length = count;
        dynamic = 0;
        maximal = count;
      } else {
        report("  Wrong static allocation (Out of memory?)! Create empty field.");
        setempty(*this);
      }
      shadow = addressof(data);
      element = elementsize;
    }
    sorted = false;
    clearflags(*this);
    return;
  }
  if (elementsize < 1) {
    reset();
  } else if (maximal > 0 && maximal - dynamic == length && element == elementsize) {
    resize(count);
  } else {
    // A record that changes its element size, or fails the invariant, drops its block
    // without giving it back: the block may not be what the record claims.
    reset();
    allocate(count, elementsize);
  }
}

void tfieldmemory::allocatedynamic(int64_t elementsize) {
  clearguards(*this);
  if (unallocated()) {
    if (elementsize < 1) {
      data = nullptr;
      shadow = 1;
      element = 0;
      setempty(*this);
    } else {
      // The first block holds about 64 KiB; huge elements reserve their size in elements.
      const int64_t reserve = elementsize <= 65536 ? 65536 / elementsize : elementsize;
      data = obtain(reserve, elementsize);
      if (data) {
        logline("  Allocate first dynamic : " + grouped(reserve * elementsize) + " Bytes ((0 + " + num(reserve) +
                ") * " + num(elementsize) + ")");
        range = {0, 0};
        length = 0;
        dynamic = reserve;
        maximal = reserve;
        element = elementsize;
      } else {
        report("  Wrong dynamic allocation (Out of memory?)! Create empty field.");
        setempty(*this);
        element = 0;
      }
      shadow = addressof(data);
    }
    sorted = false;
    clearflags(*this);
    return;
  }
  if (elementsize < 1) {
    release();
  } else if (dynamic > 0 && maximal - dynamic == length && element == elementsize) {
    // Only a dynamic record keeps its block: emptying a static one would free it and
    // leave a record that can no longer grow.
    resize(0);
  } else {
    release();
    allocatedynamic(elementsize);
  }
}

void tfieldmemory::resize(int64_t count) {
  count = std::max<int64_t>(count, 0);
  if (element < 1) {
    report("  Corrupt memory packet (size=" + num(element) + ")!");
    release();
    return;
  }
  if (unallocated()) {
    allocate(count, element);
    return;
  }
  if (count == 0) {
    if (dynamic > 0) {
      zero(data, bytes());
      range = {0, 0};
      length = 0;
      dynamic = maximal;
    } else {
      logline(sizeline("  Deallocate : ", maximal, element));
      guardcheck(*this, "Newlength-0", data);
      data = nullptr;
      shadow = 0;
      setempty(*this);
    }
    sorted = true;
    return;
  }
  sorted = false;
  if (dynamic < 1) {
    uint8_t* fresh = obtain(count, element);
    shadow = addressof(fresh);
    if (!fresh) {
      // The record lets go of its old block and becomes empty; the block goes back to the heap.
      report("  Not enough Memory! Create empty field.");
      guardcheck(*this, "Newlength-static", data);
      data = nullptr;
      setempty(*this);
      return;
    }
    logline(sizeline("  Deallocate : ", maximal, element));
    logline(sizeline("  Allocate : ", count, element));
    copybytes(fresh, data, std::min(count, maximal) * element);
    guardcheck(*this, "Newlength-static", data);
    data = fresh;
    range = {1, count};
    length = maximal = count;
    dynamic = 0;
    return;
  }
  if (count >= maximal) {
    // Reaching maximal exactly grows as well, so a dynamic record keeps one free element.
    dynamic = std::max(dynamic, growthreserve(product(count, element), count));
    int64_t total = 0;
    if (__builtin_add_overflow(dynamic, count, &total)) total = int64max;
    uint8_t* fresh = obtain(total, element);
    shadow = addressof(fresh);
    if (fresh) {
      logline(sizeline("  Deallocate : ", maximal, element));
      logline("  Allocate dynamic : " + grouped(total * element) + " Bytes ((" + num(count) + " + " + num(dynamic) +
              ") * " + num(element) + ")");
      copybytes(fresh, data, bytes());
      guardcheck(*this, "Newlength-dynamic", data);
      data = fresh;
      range = {1, count};
      length = count;
      maximal = total;
      return;
    }
    fresh = obtain(count, element);
    shadow = addressof(fresh);
    if (fresh) {
      report("  Not enough Memory! Disable dynamic memory.");
      copybytes(fresh, data, bytes());
      guardcheck(*this, "Newlength-dynamic", data);
      data = fresh;
      range = {1, count};
      dynamic = 0;
      maximal = length = count;
      return;
    }
    report("  Not enough Memory! Create empty field.");
    guardcheck(*this, "Newlength-dynamic", data);
    data = nullptr;
    setempty(*this);
    return;
  }
  // Inside the block: what lies behind the new end is zeroed, so that a later growth
  // into the reserve finds zeros.
  zero(address(count + 1), (maximal - count) * element);
  range = {1, count};
  length = count;
  dynamic = maximal - length;
}

void tfieldmemory::release() {
  uint8_t* p = data;
  data = nullptr;
  if (p && addressof(p) == shadow) {
    if (maximal >= 1 && maximal - dynamic == length) {
      logline(sizeline("  Deallocate finaly : ", maximal, element));
      guardcheck(*this, "Done", p);
    } else {
      logline("  Deallocation fails! Length: " + num(length) + " Dynamic length: " + num(dynamic) +
              " Maximal: " + num(maximal) + " mismatch!");
    }
  }
  shadow = 1;
  setempty(*this);
  sorted = false;
  clearflags(*this);
}

void tfieldmemory::reset() {
  data = nullptr;
  shadow = 1;
  setempty(*this);
  sorted = false;
  clearflags(*this);
}

bool tfieldmemory::swapdata(tfieldmemory& other) {
  if (length != other.length || element != other.element) return false;
  std::swap(data, other.data);
  return true;
}

bool tfieldmemory::takeblock(tfieldmemory& from, int64_t skip, int64_t count) {
  int64_t bytes = 0;
  if (element < 1 || count < 1 || skip < 0 || __builtin_mul_overflow(count, element, &bytes)) return false;
  if (from.unallocated() || from.isdynamic() || from.length != from.maximal || skip > from.bytes() - bytes) return false;
  std::memmove(from.data, from.data + skip, static_cast<size_t>(bytes));
  uint8_t* block = from.data;
  // Cutting a block shrinks it where it lies; should it fail, the block stays whole.
  if (void* cut = std::realloc(block, static_cast<size_t>(bytes))) block = static_cast<uint8_t*>(cut);
  held -= from.bytes() - bytes;
  from.reset();
  uint8_t owned[sizeof flags];
  std::memcpy(owned, flags, sizeof flags);
  release();
  std::memcpy(flags, owned, sizeof flags);
  data = block;
  shadow = addressof(block);
  range = {1, count};
  length = maximal = count;
  return true;
}

void tfieldmemory::putgrow(int64_t i, const void* in) {
  sorted = false;
  if (i >= 1 && i <= length) {
    put(i, in);
    return;
  }
  if (i < 1 || dynamic < 1) return;
  if (i < maximal) {
    length = i;
    dynamic = maximal - length;
    range = {1, i};
    put(i, in);
  } else {
    // The element may lie in the block that the growth is about to move.
    const auto* source = static_cast<const uint8_t*>(in);
    const std::vector<uint8_t> keep(source, source + element);
    resize(i);
    if (i <= length) put(i, keep.data());
  }
  sorted = false;
}

void tfieldmemory::reverse() {
  if (length < 2) return;
  std::vector<uint8_t> temporary(static_cast<size_t>(element));
  for (int64_t i = 1, j = length; i < j; ++i, --j) {
    std::memcpy(temporary.data(), address(i), temporary.size());
    std::memcpy(address(i), address(j), temporary.size());
    std::memcpy(address(j), temporary.data(), temporary.size());
  }
}

void tfieldmemory::copyfrom(const tfieldmemory& source) {
  if (&source == this || source.element != element) return;
  resize(source.length);
  if (length == source.length) copybytes(data, source.data, length * element);
}

void tfieldmemory::insertblock(int64_t position, int64_t count, const tfieldmemory& source) {
  if (source.element != element || position < 1 || position > length) return;
  const int64_t removed = std::clamp<int64_t>(count, 0, length - position + 1);
  const int64_t inserted = source.length;
  // A list spliced into itself is read from a copy, as the block moves under it; the
  // copy comes from this allocator too, so lacking memory ends in a report, not a throw.
  tfieldmemory self{};
  const uint8_t* from = source.data;
  if (&source == this) {
    self.allocate(inserted, element);
    if (self.length != inserted) {
      self.release();
      return;
    }
    copybytes(self.data, data, inserted * element);
    from = self.data;
  }
  const int64_t tail = length - (position + removed) + 1;
  const int64_t newlength = length - removed + inserted;
  bool fits = true;
  if (newlength > length) {
    resize(newlength);
    fits = length == newlength;
    if (fits) copybytes(address(position + inserted), address(position + removed), tail * element);
  } else if (newlength < length) {
    copybytes(address(position + inserted), address(position + removed), tail * element);
    resize(newlength);
    fits = length == newlength;
  }
  if (fits) copybytes(address(position), from, inserted * element);
  if (fits && inserted > 0) sorted = false;
  self.release();
}
