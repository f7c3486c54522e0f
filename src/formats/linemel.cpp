// Maya MEL: the head of the mesh files and one linear curve a line.
#include "formats/lineformats.h"
#include <ctime>

namespace {

std::string nowtext() {
  const std::time_t now = std::time(nullptr);
  char text[32] = {};
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&now));
  return text;
}

}  // namespace

std::string melbytes(const tcloud& c, const utf16& name) {
  const std::string n = utf16toutf8(name);
  std::string o = "// Maya MEL\n// Name: " + n + "\n// Last modified: " + nowtext() + "\n";
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
