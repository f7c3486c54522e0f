// Connected regions of a value range (faces only: 6 neighbours in a volume, 4 in an image),
// numbered in the order their first voxel comes in a scan with z outermost and x innermost.
// One set of tables serves images and volumes: the last grouping run describes them.
#pragma once
#include <cstdint>
#include <vector>

#include "field/imagefield.h"
#include "field/scalarfield.h"
#include "script/utf16.h"

struct tgrouptables {
  std::vector<int64_t> count;   // voxels of group i at index i - 1
  std::vector<int64_t> border;  // how often the fill met a non-member neighbour of group i
  bool inverse = false;         // the sorts number from the largest key down
};
tgrouptables& grouptables();

// Which groups a run keeps: all, those with at least `least` voxels, or least..most.
enum class tgroupkeep { all, least, between };
struct tgroupfilter {
  tgroupkeep keep = tgroupkeep::all;
  int64_t least = 0, most = 0;
};

struct tgroupresult {
  int64_t added = 0;  // groups numbered by this run
  int64_t first = 0;  // the first new number
  int64_t last = 0;   // the last one (first - 1 when none was added)
};

// Labels the regions of `source` whose value lies in lo..hi and where the target is 0,
// from max(target) + 1 on; a target of size 0 must have been sized by the caller. Prints
// the range conflict, the first number and the count of groups. hi < lo means hi = lo.
// Volumes work on up to `threads` threads, with the same result for any count.
tgroupresult groupfield(tscalarfield& target, const tscalarfield& source, int64_t lo, int64_t hi,
                        const tgroupfilter& keep, int64_t threads = 1);
tgroupresult groupfield(timagefield& target, const timagefield& source, int64_t lo, int64_t hi,
                        const tgroupfilter& keep, int64_t threads = 1);
// Regions of the range where the target is 0 join the one group they touch; a region
// that touches two groups stays 0. The tables grow by what joined.
void groupadd(tscalarfield& target, const tscalarfield& source, int64_t lo, int64_t hi);
void groupadd(timagefield& target, const timagefield& source, int64_t lo, int64_t hi);

// The sort keys of the tables.
enum class tgroupkey { count, border, fraction, logfraction };
// Renumbers the current field's groups by rank of their key (bins < 1), or into `bins`
// classes of equal key width; `base` is the logarithm's base of logfraction.
void groupsort(tscalarfield& f, tgroupkey key, int64_t bins, double base);
void groupsort(timagefield& f, tgroupkey key, int64_t bins, double base);
// A random renumbering of 1..65535; 0 stays.
void groupunsort(tscalarfield& f);
void groupunsort(timagefield& f);
// The table as text lines "i<TAB>border<TAB>count<TAB>border/count"; false when there is
// nothing to write. The text is made whole before the file opens.
bool groupstat(const utf16& name);

// The labelling core on a grid of voxel states, shared by both field kinds and the tests.
enum : uint8_t { groupstaken = 0, groupsmember = 1, groupsfree = 2 };
struct tgroupgrid {
  int64_t nx = 0, ny = 0, nz = 0;
  std::vector<uint8_t> states;  // taken (target not 0), member (in range, target 0), free
  bool planar = false;          // the image rule of the border
  bool outsideborder = false;   // a position outside the volume counts toward the border
};
// Components in scan order (0-based here); member voxels lie in runs along x, listed row by
// row (row = (z - 1) * ny + y - 1), each run with its component.
struct tgrouprun {
  int32_t x0, x1;  // 0-based, inclusive
};
struct tgroupcomponents {
  std::vector<tgrouprun> runs;
  std::vector<int64_t> rowstart;     // runs of row r: rowstart[r] .. rowstart[r + 1] - 1
  std::vector<uint32_t> component;   // per run
  std::vector<int64_t> count, border;
};
// The fast labelling: runs of members joined by a union-find, on up to `threads` threads;
// the result is the same for any count.
tgroupcomponents groupcomponents(const tgroupgrid& g, int64_t threads = 1);
// Per voxel: 0 or the component number from 1.
std::vector<int64_t> grouplabels(const tgroupgrid& g, const tgroupcomponents& c);
// The plain stack fill, voxel by voxel in the push order z+1, z-1, y+1, y-1, x+1, x-1:
// the model that the fast form must agree with, and the rule for a region that fills the
// whole volume, where the stop at the voxel count makes the border depend on the order.
// Gives labels per voxel (from 1) and the tables, no runs.
struct tgroupreference {
  std::vector<int64_t> label, count, border;
};
tgroupreference groupreference(const tgroupgrid& g);
