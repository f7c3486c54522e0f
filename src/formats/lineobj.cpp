// OBJ of lines: every point a "v" row with t as a fourth value, then per line a "p" row
// (one point), an "f" row (closed: first point equals last) or an "l" row.
#include "formats/lineformats.h"

std::string objbytes(const tcloud& c, const utf16&) {
  std::string o;
  for (int64_t i = 1; i <= c.points.length; ++i) {
    const tcloudpoint p = pointof(c, i);
    o += "v " + numbertext(p[0]) + " " + numbertext(p[1]) + " " + numbertext(p[2]) + " " + numbertext(p[3]) + "\n";
  }
  o += "s 1\n";
  for (int64_t l = 1; l <= linecount(c); ++l) {
    const tlinerange r = linerange(c, l);
    if (r.count() < 1) continue;
    const bool closed = r.count() > 2 && pointof(c, r.first) == pointof(c, r.last);
    o += r.count() == 1 ? "p" : closed ? "f" : "l";
    for (int64_t i = r.first; i <= (closed ? r.last - 1 : r.last); ++i) {
      o += ' ';
      o += std::to_string(i);
    }
    o += "\n";
  }
  return o;
}
