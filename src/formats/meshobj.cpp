#include "formats/meshobj.h"

#include <vector>

#include "formats/meshtext.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

bool startswith(std::string_view line, std::string_view word) { return line.substr(0, word.size()) == word; }

// "a", "a/t", "a//n" or "a/t/n": the three indices, 0 where absent.
std::array<int64_t, 3> cornerindices(std::string_view token) {
  std::array<int64_t, 3> out{};
  for (int k = 0; k < 3 && !token.empty(); ++k) {
    const size_t slash = token.find('/');
    const std::string_view part = token.substr(0, slash);
    double v = 0;
    if (!part.empty() && readnumbers(part, &v, 1)) out[k] = meshindex(v);
    if (slash == std::string_view::npos) break;
    token.remove_prefix(slash + 1);
  }
  return out;
}

}  // namespace

bool objread(tmesh& m, const utf16& name) {
  tlinefile f;
  if (!linefileread(f, name, 0, "  Analyze OBJ-file")) return false;
  const int64_t lines = linefilecount(f);
  int64_t objects = 0, firstnormal = 0, firstuv = 0, firstface = 0;
  for (int64_t i = 1; i <= lines && !firstface; ++i) {
    const std::string_view l = linefileview(f, i);
    if (l.size() < 2) continue;
    if (startswith(l, "o ")) ++objects;
    if (startswith(l, "v ")) {
      tvector p{};
      readnumbers(l.substr(2), p.data(), 3);
      m.points.add(p);
    }
    if (!firstnormal && startswith(l, "vn")) firstnormal = i;
    if (!firstuv && startswith(l, "vt")) firstuv = i;
    if (l[0] == 'f') firstface = i;
  }
  std::vector<tvector> normals;
  std::vector<std::array<double, 2>> uvs;
  for (int64_t i = firstuv; firstuv && i <= lines; ++i) {
    const std::string_view l = linefileview(f, i);
    if (!startswith(l, "vt")) continue;
    std::array<double, 2> uv{};
    readnumbers(l.substr(2), uv.data(), 2);
    uvs.push_back(uv);
  }
  for (int64_t i = firstnormal; firstnormal && i <= lines; ++i) {
    const std::string_view l = linefileview(f, i);
    if (!startswith(l, "vn")) continue;
    tvector n{};
    readnumbers(l.substr(2), n.data(), 3);
    normals.push_back(n);
  }
  bool assignednormals = false;
  m.normals.resize(0);
  for (int64_t i = 1; i <= m.points.length; ++i) m.normals.add({0, 0, 0});
  for (int64_t i = firstface; firstface && i <= lines; ++i) {
    std::string_view l = linefileview(f, i);
    if (l.empty() || l[0] != 'f') continue;
    l.remove_prefix(1);
    tface face;
    int corners = 0;
    while (corners < 4) {
      const size_t start = l.find_first_not_of(" \t");
      if (start == std::string_view::npos) break;
      l.remove_prefix(start);
      const size_t end = l.find_first_of(" \t");
      const auto idx = cornerindices(l.substr(0, end));
      face.corners[corners] = idx[0];
      face.extra[corners] = idx[1];
      if (idx[2] >= 1 && idx[2] <= static_cast<int64_t>(normals.size()) && idx[0] >= 1 && idx[0] <= m.normals.length) {
        m.normals.put(idx[0], normals[idx[2] - 1]);
        assignednormals = true;
      }
      ++corners;
      if (end == std::string_view::npos) break;
      l.remove_prefix(end);
    }
    if (corners < 3) continue;
    face.color = {1, 1, 1, 1};
    if (corners == 4) m.trianglesonly = false;
    m.faces.add(face);
  }
  if (!assignednormals && !normals.empty() && normals.size() == static_cast<size_t>(m.points.length))
    for (size_t i = 0; i < normals.size(); ++i) m.normals.put(static_cast<int64_t>(i + 1), normals[i]);
  for (const auto& uv : uvs) m.uvs.add(uv);
  linefilerelease(f);
  meshreadsummary(m, objects, static_cast<int64_t>(uvs.size()), static_cast<int64_t>(normals.size()), 0, false);
  return true;
}

bool objwrite(const tmesh& m, const utf16& name, const tmeshsave& options) {
  int64_t used = 0;
  const std::vector<int64_t> number = usedpoints(m, used);
  if (!used) {
    println("Empty file (" + name + ") - not written!");
    return false;
  }
  const bool normals = hasnormals(m);
  const bool uvs = m.uvs.length > 0;
  std::string out = "# OBJ-File - " + utf16toutf8(name) + "\n# Version 1.0\n";
  if (!empty(options.library)) out += "mtllib " + utf16toutf8(options.library) + "\n";
  for (int64_t i = 1; i <= m.points.length; ++i) {
    if (!number[i]) continue;
    out += "v ";
    appendvector(out, m.points.get(i), " ", m.digits);
    out += '\n';
  }
  for (int64_t i = 1; uvs && i <= m.uvs.length; ++i) {
    out += "vt ";
    appendreal(out, m.uvs.get(i)[0], m.digits);
    out += ' ';
    appendreal(out, m.uvs.get(i)[1], m.digits);
    out += '\n';
  }
  for (int64_t i = 1; normals && i <= m.points.length; ++i) {
    if (!number[i]) continue;
    out += "vn ";
    appendvector(out, m.normals.get(i), " ", m.digits);
    out += '\n';
  }
  out += m.smoothed ? "s 1\n" : "s 0\n";
  if (!empty(options.material)) out += "usemtl " + utf16toutf8(options.material) + "\n";
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    if ((i & 0xFFFF) == 0) progress("  Write OBJ-file", 0.8 + 0.2 * i / m.faces.length);
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    out += 'f';
    for (int k = 0; k < 4 && f.corners[k]; ++k) {
      const std::string v = std::to_string(number[f.corners[k]]);
      out += ' ' + v;
      if (uvs) out += '/' + std::to_string(f.extra[k]);
      if (normals) out += (uvs ? "/" : "//") + v;
    }
    out += '\n';
  }
  progressend();
  return meshwritefile(name, out);
}

bool meshsavematerial(const utf16& name, const utf16& material, int64_t type, const tvector& color) {
  std::string v;
  appendvector(v, color);
  std::string out = "newmtl " + utf16toutf8(material) + "\n";
  switch (type) {
    case 1: out += "Kd " + v + "\nillum 0\n"; break;
    case 2: out += "Ka " + v + "\nKd " + v + "\nillum 1\n"; break;
    case 3: out += "Ka " + v + "\nKd " + v + "\nd 0.8000\nillum 1\n"; break;
    case 4: out += "Ka " + v + "\nKd " + v + "\nKs 1.0000 1.0000 1.0000\nNs 200.0000\nillum 1\n"; break;
    case 5: out += "Ka " + v + "\nKd " + v + "\nKs " + v + "\nNs 200.0000\nillum 3\n"; break;
    default: out += "Ka 0.0000 0.0000 0.0000\nKd 0.0000 0.0000 0.0000\nKs 0.9000 0.9000 0.9000\nd 0.1000\nNs 200\nillum 4\n"; break;
  }
  return meshwritefile(name, out);
}
