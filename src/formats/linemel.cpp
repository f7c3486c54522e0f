// Maya MEL: the head of the mesh files and one linear curve a line.
#include "formats/lineformats.h"
#include "formats/meshtext.h"

std::string melbytes(const tcloud& c, const utf16& name) {
  const std::string n = utf16toutf8(name);
  std::string o = melhead(n);
  for (int64_t l = 1; l <= linecount(c); ++l) {
    const tlinerange r = linerange(c, l);
    o += "curve -d 1";
    for (int64_t i = r.first; i <= r.last; ++i) {
      const tcloudpoint p = pointof(c, i);
      o += " -p " + numbertext(p[0]) + " " + numbertext(p[1]) + " " + numbertext(p[2]);
    }
    o += ";\n";
  }
  return o + "// End of " + n + "\n";
}
