#include "geometry/cloudbuild.h"

#include <cmath>

#include <sys/mman.h>

void addpoint(tcloud& c, const tcloudpoint& p) {
  if (!c.lineopen) {
    if (!c.objectopen) {
      c.objectstarts.add(c.linestarts.length + 1);
      c.objectopen = true;
    }
    c.linestarts.add(c.points.length + 1);
    c.lineopen = true;
  }
  c.points.add(p);
}

void closeline(tcloud& c, int64_t tag) {
  if (!c.lineopen) return;
  c.linetags.add(tag);
  c.lineopen = false;
}

void tpointblocks::next() {
  void* block = ::operator new(blockbytes, std::align_val_t{blockbytes});
  blocks.emplace_back(static_cast<tvector*>(block));
  fill = 0;
  // a hint: one fault per block instead of one per 4 KiB page
  madvise(block, blockbytes, MADV_HUGEPAGE);
}

int64_t tpointblocks::count() const {
  return blocks.empty() ? 0 : static_cast<int64_t>((blocks.size() - 1) * blocksize + fill);
}

void tpointblocks::moveto(tcloud& c, std::span<const tlineentry> lines) {
  const int64_t base = c.points.length, n = count();
  if (n < 1) return;
  c.points.grow(n);
  if (c.points.length != base + n) return;  // the allocator said why
  tcloudpoint* to = c.points.items() + base;
  for (size_t b = 0; b < blocks.size(); ++b) {
    tvector* from = blocks[b].get();
    for (size_t i = 0, k = b + 1 < blocks.size() ? blocksize : fill; i < k; ++i) *to++ = {from[i][0], from[i][1], from[i][2], 0};
    // its pages go back now, to serve the faults of the cloud's next pages
    madvise(from, blockbytes, MADV_DONTNEED);
  }
  blocks.clear();
  fill = blocksize;
  c.points.sorted = false;
  int64_t first = base + 1;
  for (const tlineentry& l : lines) {
    if (l.count < 1) continue;
    if (!c.objectopen) {
      c.objectstarts.add(c.linestarts.length + 1);
      c.objectopen = true;
    }
    if (!c.lineopen) c.linestarts.add(first);  // else the points go on an open line
    c.linetags.add(l.tag);
    c.lineopen = false;
    first += l.count;
  }
}

void closeobject(tcloud& c, const utf16& name) {
  closeline(c, 0);
  if (!c.objectopen) return;
  c.objectnames.putgrow(c.objectstarts.length, name);
  c.objectopen = false;
}

tlinerange linerange(const tcloud& c, int64_t l) {
  const int64_t n = c.linestarts.length;
  const int64_t first = c.linestarts.get(l);
  const int64_t next = l < n ? c.linestarts.get(l + 1) : c.points.length + 1;
  return {first, next - 1};
}

tlinerange objectlines(const tcloud& c, int64_t o) {
  const int64_t n = c.objectstarts.length;
  const int64_t first = c.objectstarts.get(o);
  const int64_t next = o < n ? c.objectstarts.get(o + 1) : linecount(c) + 1;
  return {first, next - 1};
}

double linelength(const tcloud& c, int64_t l) {
  const tlinerange r = linerange(c, l);
  double sum = 0;
  for (int64_t i = r.first + 1; i <= r.last; ++i) {
    const tcloudpoint a = c.points.get(i - 1), b = c.points.get(i);
    sum += std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) + (a[2] - b[2]) * (a[2] - b[2]));
  }
  return sum;
}
