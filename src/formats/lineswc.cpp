// SWC: one row a point, "id type x y z radius parent", t as the radius; every line starts
// a new tree.
#include "formats/lineformats.h"

std::string swcbytes(const tcloud& c, const utf16&) {
  std::string o;
  for (int64_t l = 1; l <= linecount(c); ++l) {
    const tlinerange r = linerange(c, l);
    const int64_t type = c.linetags.getchecked(l);
    for (int64_t i = r.first; i <= r.last; ++i) {
      const tcloudpoint p = pointof(c, i);
      o += std::to_string(i) + " " + std::to_string(type) + " " + numbertext(p[0]) + " " + numbertext(p[1]) + " " +
           numbertext(p[2]) + " " + numbertext(p[3]) + " ";
      o += i == r.first ? std::string("-1") : std::to_string(i - 1);
      o += '\n';
    }
  }
  return o;
}
