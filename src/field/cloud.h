// The object of the line workspace: polylines, vectors and single points, each point
// (x, y, z, t), grouped into named objects. A line of one point is a point, of two a
// vector. The lists grow as lines are added, so an empty cloud holds them dynamic.
#pragma once
#include "field/arrays.h"

struct tcloud {
  tquadlist points{};       // all points of all lines, in line order
  tintlist linestarts{};    // first point of each line
  tintlist linetags{};      // one number per line, such as the seed
  tintlist objectstarts{};  // first line of each object
  tnamelist objectnames{};
  // The frame of the field the lines came from, for formats that store one.
  tvector frameoffset{0, 0, 0};
  tvector framescale{1, 1, 1};
  tvector framesize{0, 0, 0};
  bool lineopen = false;    // the next point continues the last line
  bool objectopen = false;  // the next line continues the last object
};

void fieldcreate(tcloud& c, uint8_t kind = 0);  // clouds have no storage kinds
void fieldrelease(tcloud& c);
// A line that was started but has no point yet doesn't count.
int64_t linecount(const tcloud& c);
utf16 fielddescription(const tcloud& c);  // "cloud(points:..;lines:..;objects:..)"
