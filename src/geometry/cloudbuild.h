// Building and walking the line cloud: lines are opened by their first point and closed
// with a tag; objects are opened by their first line and closed with a name.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "field/cloud.h"

using tcloudpoint = std::array<double, 4>;  // x, y, z, t

void addpoint(tcloud& c, const tcloudpoint& p);
void closeline(tcloud& c, int64_t tag);
void closeobject(tcloud& c, const utf16& name);

// The length and tag of one closed line.
struct tlineentry {
  int64_t count, tag;
};

// Points (x, y, z; t is 0) of lines gathered by a run of unknown length, in blocks that
// never move: while it grows nothing is copied and no block is held twice, as a doubling
// list would.
class tpointblocks {
 public:
  void add(const tvector& p) {
    if (fill == blocksize) next();
    blocks.back()[fill++] = p;
  }
  int64_t count() const;
  // The closed lines in one go, as addpoint and closeline would add them: the point list
  // grows once, where point by point a long run climbs its growth ladder again and again.
  // Lines of no points are passed over. Each block is given back once it is copied, so
  // that the points are never held twice; the blocks are empty afterwards.
  void moveto(tcloud& c, std::span<const tlineentry> lines);

 private:
  // 2 MiB blocks on 2 MiB boundaries, so that each can be one huge page
  static constexpr size_t blockbytes = size_t{2} << 20;
  static constexpr size_t blocksize = blockbytes / sizeof(tvector);
  struct tblockfree {
    void operator()(tvector* p) const { ::operator delete(p, std::align_val_t{blockbytes}); }
  };
  std::vector<std::unique_ptr<tvector[], tblockfree>> blocks;
  size_t fill = blocksize;
  void next();
};

// The 1-based range of points of line l, first..last (last < first for an empty line).
struct tlinerange {
  int64_t first, last;
  int64_t count() const { return last - first + 1; }
};
tlinerange linerange(const tcloud& c, int64_t l);
// The lines of object o, first..last.
tlinerange objectlines(const tcloud& c, int64_t o);

// The sum of the segment lengths of line l, in x, y, z.
double linelength(const tcloud& c, int64_t l);
