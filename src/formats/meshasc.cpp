#include "formats/meshasc.h"

#include "formats/meshtext.h"
#include "geometry/meshbuild.h"
#include "formats/meshwriters.h"
#include "shell/console.h"

bool ascread(tmesh& m, const utf16& name) {
  tlinefile f;
  if (!linefileread(f, name)) return false;
  const int64_t lines = linefilecount(f);
  int64_t normals = 0;
  if (linefileview(f, 1).substr(0, 10) == "NORM_ASCII") {
    double counts[2] = {};
    readnumbers(linefileview(f, 2), counts, 2);
    const int64_t points = meshindex(counts[0]), faces = meshindex(counts[1]);
    if (points < 0 || faces < 0 || points > lines || faces > lines - points) {
      linefilerelease(f);
      return false;
    }
    for (int64_t i = 0; i < points; ++i) {
      progress("  Analyze ASC(mesh)-file", static_cast<double>(i) / points);
      double v[6] = {};
      if (readnumbers(linefileview(f, 3 + i), v, 6) == 6) ++normals;
      appendpoint(m, {v[0], v[1], v[2]}, {v[3], v[4], v[5]});
    }
    for (int64_t i = 0; i < faces; ++i) {
      double v[5] = {};
      readnumbers(linefileview(f, 3 + points + i), v, 5);
      const auto n = meshindex(v[0]);
      if (n != 3 && n != 4) continue;
      std::array<int64_t, 4> c{meshindex(v[1]), meshindex(v[2]), meshindex(v[3]), n == 4 ? meshindex(v[4]) : 0};
      appendface(m, c);
    }
  } else {
    for (int64_t i = 1; i <= lines; ++i) {
      if ((i & 0xFFFF) == 0) progress("  Analyze ASCII-file", static_cast<double>(i) / lines);
      double v[3] = {};
      if (readnumbers(linefileview(f, i), v, 3)) appendpoint(m, {v[0], v[1], v[2]});
    }
  }
  progressend();
  linefilerelease(f);
  meshreadsummary(m, 0, 0, normals, 0, false);
  return true;
}

bool ascmeshwrite(const tmesh& m, const utf16& name, const tmeshsave&) {
  int64_t faces = 0;
  for (int64_t i = 1; i <= m.faces.length; ++i) faces += writtenface(m, m.faces.get(i)) ? 1 : 0;
  std::string out = "NORM_ASCII\n" + std::to_string(m.points.length) + " " + std::to_string(faces) + "\n";
  const bool normals = hasnormals(m);
  for (int64_t i = 1; i <= m.points.length; ++i) {
    progress("  Write ASC(mesh)-file", static_cast<double>(i) / (m.points.length + m.faces.length));
    appendvector(out, m.points.get(i));
    if (normals) {
      out += ' ';
      appendvector(out, m.normals.get(i));
    }
    out += '\n';
  }
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    out += f.corners[3] ? "4" : "3";
    for (int k = 0; k < 4 && f.corners[k]; ++k) out += ' ' + std::to_string(f.corners[k]);
    out += '\n';
  }
  progressend();
  return meshwritefile(name, out);
}

bool ascpointwrite(const tmesh& m, const utf16& name, const tmeshsave&) {
  std::string out;
  for (int64_t i = 1; i <= m.points.length; ++i) {
    progress("  Write ASCII-file", static_cast<double>(i) / m.points.length);
    appendvector(out, m.points.get(i));
    out += '\n';
  }
  progressend();
  return meshwritefile(name, out);
}
