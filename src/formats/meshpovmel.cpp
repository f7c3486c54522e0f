// POV-Ray mesh2 scenes and includes, and Maya MEL scripts.
#include <vector>

#include "formats/meshtext.h"
#include "formats/meshwriters.h"
#include "library/mathvector.h"
#include "shell/console.h"

namespace {

// Each point's normal as the normalised sum of the normals of its faces.
std::vector<tvector> facenormals(const tmesh& m) {
  std::vector<tvector> n(m.points.length + 1, tvector{0, 0, 0});
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    const tvector a = m.points.get(f.corners[0]), b = m.points.get(f.corners[1]), c = m.points.get(f.corners[2]);
    const tvector fn = cross(added(b, scaled(a, -1)), added(c, scaled(a, -1)));
    for (int64_t k : f.corners)
      if (k) n[k] = added(n[k], fn);
  }
  for (tvector& v : n) v = normalised(v);
  return n;
}

void povvector(std::string& out, const tvector& v) {
  out += "  <";
  appendvector(out, v, ", ");
  out += ">\n";
}

}  // namespace

template <bool head, int normals>
bool povwrite(const tmesh& m, const utf16& name, const tmeshsave& options) {
  std::string out;
  if (head)
    out += "#version 3.7;\n\nglobal_settings { adc_bailout 0.0039216 ambient_light rgb <0.25, 0.25, 0.25> assumed_gamma 1.25 "
           "noise_generator 1 }\n\n\n";
  int64_t used = 0;
  const std::vector<int64_t> number = usedpoints(m, used);
  out += " mesh2 {\nvertex_vectors {" + std::to_string(used) + ",\n";
  for (int64_t i = 1; i <= m.points.length; ++i)
    if (number[i]) povvector(out, m.points.get(i));
  out += "}\n";
  if (normals) {
    const std::vector<tvector> computed = normals == 2 ? facenormals(m) : std::vector<tvector>();
    out += "normal_vectors {" + std::to_string(used) + ",\n";
    for (int64_t i = 1; i <= m.points.length; ++i)
      if (number[i]) povvector(out, normals == 2 ? computed[i] : m.normals.get(i));
    out += "}\n";
  }
  std::string faces;
  int64_t count = 0;
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    progress("  Write POV-file", static_cast<double>(i) / m.faces.length);
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    auto triangle = [&](int a, int b, int c) {
      faces += "  <" + std::to_string(number[f.corners[a]] - 1) + ", " + std::to_string(number[f.corners[b]] - 1) + ", " +
               std::to_string(number[f.corners[c]] - 1) + ">\n";
      ++count;
    };
    triangle(0, 1, 2);
    if (f.corners[3]) triangle(0, 2, 3);
  }
  progressend();
  out += "face_indices {" + std::to_string(count) + ",\n" + faces + "}\n";
  if (normals) out += "normal_indices {" + std::to_string(count) + ",\n" + faces + "}\n";
  out += "pigment { color rgb <";
  appendvector(out, options.color, ", ");
  out += "> } finish { phong 0.5 }\n}\n";
  return meshwritefile(name, out);
}

template bool povwrite<true, 0>(const tmesh&, const utf16&, const tmeshsave&);
template bool povwrite<true, 1>(const tmesh&, const utf16&, const tmeshsave&);
template bool povwrite<true, 2>(const tmesh&, const utf16&, const tmeshsave&);
template bool povwrite<false, 0>(const tmesh&, const utf16&, const tmeshsave&);
template bool povwrite<false, 1>(const tmesh&, const utf16&, const tmeshsave&);
template bool povwrite<false, 2>(const tmesh&, const utf16&, const tmeshsave&);

template <bool smooth>
bool melwrite(const tmesh& m, const utf16& name, const tmeshsave&) {
  const std::string object = utf16toutf8(name);
  std::string out = melhead(object);
  bool first = true;
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    progress("  Write MEL-file", static_cast<double>(i) / m.faces.length);
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    out += smooth && !first ? "polyAppend -ch 0 -tx 1 -n \"" + object + "\" -ed " + std::to_string(i - 1)
                            : "polyCreateFacet -ch 0 -tx 1 -n \"" + object + "\"";
    for (int k = 0; k < 4 && f.corners[k]; ++k) {
      out += " -p ";
      appendvector(out, m.points.get(f.corners[k]));
    }
    out += ";\n";
    first = false;
  }
  progressend();
  if (smooth) out += "select \"" + object + "*\";\npolyUnite -ch 0 -n \"" + object + "\";\n";
  out += "// End of " + object + "\n";
  return meshwritefile(name, out);
}

template bool melwrite<false>(const tmesh&, const utf16&, const tmeshsave&);
template bool melwrite<true>(const tmesh&, const utf16&, const tmeshsave&);
