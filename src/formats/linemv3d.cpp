// MV3D: a commented head with the counts, then "line x y z t" rows separated by tabs.
#include "formats/lineformats.h"

std::string mv3dbytes(const tcloud& c, const utf16&) {
  const int64_t lines = linecount(c);
  std::string o = "# MicroVisu3D file\n# Number of lines   " + std::to_string(lines) + "\n# Number of points  " +
                  std::to_string(c.points.length) + "\n# Number of inter.  n.a.\n#\n# No\t\tx\t\ty\t\tz\t\td\n#\n";
  for (int64_t l = 1; l <= lines; ++l) {
    const tlinerange r = linerange(c, l);
    for (int64_t i = r.first; i <= r.last; ++i) {
      const tcloudpoint p = pointof(c, i);
      o += std::to_string(l) + "\t" + numbertext(p[0]) + "\t" + numbertext(p[1]) + "\t" + numbertext(p[2]) + "\t" +
           numbertext(p[3]) + "\n";
    }
  }
  return o;
}
