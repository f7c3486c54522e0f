#include "formats/meshreaders.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "formats/meshtext.h"
#include "geometry/meshbuild.h"
#include "shell/console.h"

namespace {

std::string lowered(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

// The numbers behind each opener up to its closing bracket, one list per opener found,
// read from the text of all lines joined.
struct tnodes {
  std::vector<std::vector<double>> points, normals, indices;
};

std::vector<double> numbersuntil(const std::string& text, size_t from, char close) {
  std::vector<double> out;
  const size_t end = std::min(text.find(close, from), text.size());
  std::string_view rest(text.data() + from, end - from);
  while (!rest.empty()) {
    double v[64];
    const int n = readnumbers(rest, v, 64);
    if (!n) break;
    out.insert(out.end(), v, v + n);
    // readnumbers does not tell where it stopped: step past n tokens by hand.
    for (int k = 0; k < n && !rest.empty(); ++k) {
      size_t i = rest.find_first_not_of(" \t,;<>\r\n{}");
      if (i == std::string_view::npos) {
        rest = {};
        break;
      }
      rest.remove_prefix(i);
      i = rest.find_first_of(" \t,;<>\r\n{}");
      rest.remove_prefix(i == std::string_view::npos ? rest.size() : i);
    }
  }
  return out;
}

void collect(const std::string& text, const std::string& lower, const char* const openers[3][2], char close, tnodes& nodes) {
  std::vector<std::vector<double>>* lists[3] = {&nodes.points, &nodes.normals, &nodes.indices};
  struct thit {
    size_t at;
    int kind;
    size_t length;
  };
  std::vector<thit> hits;
  for (int k = 0; k < 3; ++k)
    for (int v = 0; v < 2; ++v) {
      const std::string o = openers[k][v];
      for (size_t at = lower.find(o); at != std::string::npos; at = lower.find(o, at + 1)) hits.push_back({at, k, o.size()});
    }
  std::sort(hits.begin(), hits.end(), [](const thit& a, const thit& b) { return a.at < b.at; });
  for (const thit& h : hits) lists[h.kind]->push_back(numbersuntil(text, h.at + h.length, close));
}

std::string joined(const tlinefile& f) {
  std::string text;
  for (int64_t i = 1; i <= linefilecount(f); ++i) {
    text += linefileview(f, i);
    text += '\n';
  }
  return text;
}

bool readnodes(tmesh& m, const utf16& name, const char* word, bool povform) {
  tlinefile f;
  if (!linefileread(f, name, 0, word)) return false;
  const std::string text = joined(f);
  linefilerelease(f);
  const std::string lower = lowered(text);
  tnodes nodes;
  static const char* const vrml[3][2] = {{"point [", "point\t["}, {"vector [", "vector\t["}, {"coordindex [", "coordindex\t["}};
  static const char* const pov[3][2] = {{"vertex_vectors {", "vertex_vectors{"}, {"normal_vectors {", "normal_vectors{"},
                                        {"face_indices {", "face_indices{"}};
  collect(text, lower, povform ? pov : vrml, povform ? '}' : ']', nodes);
  int64_t normals = 0;
  const int64_t objects = static_cast<int64_t>(nodes.points.size());
  for (size_t o = 0; o < nodes.points.size(); ++o) {
    const int64_t base = m.points.length;
    std::vector<double> p = nodes.points[o];
    if (povform && !p.empty()) p.erase(p.begin());  // the count
    for (size_t i = 0; i + 2 < p.size(); i += 3) appendpoint(m, {p[i], p[i + 1], p[i + 2]});
    if (o < nodes.normals.size()) {
      std::vector<double> n = nodes.normals[o];
      if (povform && !n.empty()) n.erase(n.begin());
      for (size_t i = 0; i + 2 < n.size() && base + 1 + static_cast<int64_t>(i / 3) <= m.points.length; i += 3, ++normals)
        m.normals.put(base + 1 + static_cast<int64_t>(i / 3), {n[i], n[i + 1], n[i + 2]});
    }
    if (o >= nodes.indices.size()) continue;
    std::vector<double> idx = nodes.indices[o];
    if (povform) {
      if (!idx.empty()) idx.erase(idx.begin());
      for (size_t i = 0; i + 2 < idx.size(); i += 3)
        appendface(m, {base + 1 + meshindex(idx[i]), base + 1 + meshindex(idx[i + 1]),
                       base + 1 + meshindex(idx[i + 2]), 0});
      continue;
    }
    std::array<int64_t, 4> c{};
    int k = 0;
    for (double v : idx) {
      if (v < 0) {
        if (k >= 3) appendface(m, c);
        c = {};
        k = 0;
      } else if (k < 4) {
        c[k++] = base + 1 + meshindex(v);
      }
    }
  }
  meshreadsummary(m, objects, 0, normals, 0, false);
  return true;
}

}  // namespace

bool stlread(tmesh& m, const utf16& name) {
  tlinefile f;
  if (!linefileread(f, name, 0, "  Analyze STL-file")) return false;
  if (linefileview(f, 1).find("solid") == std::string_view::npos) {
    println("This is not a STL-ascii-file!");
    linefilerelease(f);
    return false;
  }
  std::array<int64_t, 4> c{};
  int k = 0;
  for (int64_t i = 2; i <= linefilecount(f); ++i) {
    const std::string_view l = linefileview(f, i);
    const size_t at = l.find("vertex");
    if (at == std::string_view::npos) continue;
    tvector p{};
    readnumbers(l.substr(at + 6), p.data(), 3);
    c[k++] = appendpoint(m, p);
    if (k == 3) {
      appendface(m, c);
      k = 0;
    }
  }
  linefilerelease(f);
  meshreadsummary(m, 0, 0, 0, 0, false);
  return true;
}

bool vrmlread(tmesh& m, const utf16& name) { return readnodes(m, name, "  Analyze VRML-file", false); }
bool wrlread(tmesh& m, const utf16& name) { return readnodes(m, name, "  Analyze WRL-file", false); }
bool povread(tmesh& m, const utf16& name) { return readnodes(m, name, "  Analyze pov-file", true); }

bool anysurfread(tmesh& m, const utf16& name) {
  tlinefile f;
  if (!linefileread(f, name)) return false;
  double counts[2] = {};
  readnumbers(linefileview(f, 3), counts, 2);
  const int64_t lines = linefilecount(f);
  const auto points = meshindex(counts[0]), faces = meshindex(counts[1]);
  int64_t line = 4;
  for (int64_t i = 0; i < points && line <= lines; ++line) {
    const std::string_view l = linefileview(f, line);
    if (l.size() < 2) continue;
    double v[6] = {};
    readnumbers(l, v, 6);
    appendpoint(m, {v[0], v[1], v[2]}, {v[3], v[4], v[5]});
    ++i;
  }
  for (int64_t i = 0; i < faces && line <= lines; ++line) {
    const std::string_view l = linefileview(f, line);
    if (l.size() < 2) continue;
    double v[3] = {};
    readnumbers(l, v, 3);
    appendface(m, {meshindex(v[0]), meshindex(v[1]), meshindex(v[2]), 0});
    ++i;
  }
  linefilerelease(f);
  meshreadsummary(m, 0, 0, m.points.length, 0, false);
  return true;
}
