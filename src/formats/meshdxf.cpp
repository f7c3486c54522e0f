#include "formats/meshdxf.h"

#include <cmath>

#include "formats/meshtext.h"
#include "formats/meshwriters.h"
#include "shell/console.h"

namespace {

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

bool isface(std::string_view s) {
  s = trimmed(s);
  if (s.size() != 6) return false;
  const char* w = "3DFACE";
  for (int i = 0; i < 6; ++i)
    if (std::toupper(static_cast<unsigned char>(s[i])) != w[i]) return false;
  return true;
}

}  // namespace

bool dxfread(tmesh& m, const utf16& name) {
  tlinefile f;
  if (!linefileread(f, name, 0, "  Analyze DXF-file")) return false;
  const int64_t lines = linefilecount(f);
  for (int64_t i = 1; i <= lines; ++i) {
    if (!isface(linefileview(f, i))) continue;
    std::array<tvector, 4> c{};
    int64_t j = i + 1;
    for (; j + 1 <= lines; j += 2) {
      const int64_t code = readcount(trimmed(linefileview(f, j)));
      if (code == 0) break;
      double v = 0;
      readnumbers(linefileview(f, j + 1), &v, 1);
      if (code >= 10 && code <= 33 && code % 10 <= 3) c[code % 10][code / 10 - 1] = v;
    }
    i = j - 1;
    const bool triangle = c[2] == c[3];
    std::array<int64_t, 4> corners{};
    for (int k = 0; k < (triangle ? 3 : 4); ++k) {
      m.points.add(c[k]);
      m.normals.add({0, 0, 0});
      corners[k] = m.points.length;
    }
    tface face;
    face.corners = corners;
    face.color = {1, 1, 1, 1};
    if (!triangle) m.trianglesonly = false;
    m.faces.add(face);
  }
  linefilerelease(f);
  println("  Points : " + nattext(m.points.length));
  println("  Faces  : " + nattext(m.faces.length));
  return true;
}

bool dxfwrite(const tmesh& m, const utf16& name, const tmeshsave&) {
  std::string out =
      "0\nSECTION\n2\nHEADER\n9\n$AUNITS\n70\n0\n9\n$FILLMODE\n70\n1\n9\n$SPLFRAME\n70\n0\n9\n$SPLINESEGS\n70\n8\n0\nENDSEC\n"
      "0\nSECTION\n2\nTABLES\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";
  const int64_t layer = 1;
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    progress("  Write DXF-file", static_cast<double>(i) / m.faces.length);
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    const double mean = std::clamp((f.color[0] + f.color[1] + f.color[2]) / 3, 0.0, 1.0);
    out += "0\n3DFACE\n8\n" + std::to_string(layer) + "\n62\n" + std::to_string(roundnat(mean * 255)) + "\n";
    for (int k = 0; k < 4; ++k) {
      const tvector p = m.points.get(f.corners[k] ? f.corners[k] : f.corners[2]);
      for (int c = 0; c < 3; ++c) {
        out += std::to_string(10 * (c + 1) + k) + "\n";
        appendreal(out, p[c], m.digits);
        out += '\n';
      }
    }
  }
  progressend();
  out += "0\nENDSEC\n0\nEOF\n";
  return meshwritefile(name, out);
}
