#include "formats/meshply.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <vector>

#include "formats/meshtext.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

// The scalar types of PLY, by their old and new names; unknown is 0.
enum tplytype : uint8_t { plyunknown, plyint8, plyuint8, plyint16, plyuint16, plyint32, plyuint32, plyfloat32, plyfloat64 };

tplytype plytypenamed(std::string_view t) {
  if (t == "char" || t == "int8") return plyint8;
  if (t == "uchar" || t == "uint8") return plyuint8;
  if (t == "short" || t == "int16") return plyint16;
  if (t == "ushort" || t == "uint16") return plyuint16;
  if (t == "int" || t == "int32") return plyint32;
  if (t == "uint" || t == "uint32") return plyuint32;
  if (t == "float" || t == "float32") return plyfloat32;
  if (t == "double" || t == "float64") return plyfloat64;
  return plyunknown;
}

int typesize(tplytype t) {
  constexpr int sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8};
  return sizes[t];
}

struct tplyproperty {
  std::string name;
  tplytype type = plyunknown;
  int size = 0;
};

struct tplyheader {
  int64_t vertices = -1, faces = -1;
  std::vector<tplyproperty> vertexprops;
  tplytype countype = plyuint8, indextype = plyint32;
  bool normals = false, colors = false, ascii = false, big = false;
  size_t datastart = 0;  // first byte behind the end_header line
  int64_t headerlines = 0;
};

template <class T>
double as(const char* p, bool swap) {
  char b[sizeof(T)];
  std::memcpy(b, p, sizeof b);
  if (swap) std::reverse(b, b + sizeof b);
  T v;
  std::memcpy(&v, b, sizeof v);
  return static_cast<double>(v);
}

double readscalar(const char* p, tplytype type, bool big) {
  const bool swap = big != (std::endian::native == std::endian::big);
  switch (type) {
    case plyint8: return as<int8_t>(p, false);
    case plyuint8: return as<uint8_t>(p, false);
    case plyint16: return as<int16_t>(p, swap);
    case plyuint16: return as<uint16_t>(p, swap);
    case plyint32: return as<int32_t>(p, swap);
    case plyuint32: return as<uint32_t>(p, swap);
    case plyfloat32: return as<float>(p, swap);
    case plyfloat64: return as<double>(p, swap);
    case plyunknown: break;
  }
  return 0;
}

std::vector<std::string_view> words(std::string_view l) {
  std::vector<std::string_view> out;
  while (!l.empty()) {
    const size_t s = l.find_first_not_of(" \t\r");
    if (s == std::string_view::npos) break;
    l.remove_prefix(s);
    const size_t e = l.find_first_of(" \t\r");
    out.push_back(l.substr(0, e));
    if (e == std::string_view::npos) break;
    l.remove_prefix(e);
  }
  return out;
}

// The header from the raw bytes; false with the message printed.
bool readheader(std::string_view data, const utf16& name, tplyheader& h) {
  size_t at = 0;
  bool inface = false, first = true, format = false;
  while (at < data.size()) {
    size_t end = data.find('\n', at);
    if (end == std::string_view::npos) end = data.size();
    const std::string_view line = data.substr(at, end - at);
    at = end + 1;
    ++h.headerlines;
    const auto w = words(line);
    if (first) {
      first = false;
      if (w.empty() || w[0] != "ply") {
        println("  File " + name + " not a PLY-file!");
        return false;
      }
      continue;
    }
    if (w.empty()) continue;
    if (w[0] == "format" && w.size() >= 2) {
      format = true;
      h.ascii = w[1] == "ascii";
      h.big = w[1] == "binary_big_endian";
      if (!h.ascii && w[1] != "binary_little_endian" && !h.big) break;
    } else if (w[0] == "element" && w.size() >= 3) {
      inface = w[1] == "face";
      const int64_t n = readcount(w[2]);
      if (w[1] == "vertex") h.vertices = n;
      if (inface) h.faces = n;
    } else if (w[0] == "property" && w.size() >= 3) {
      if (inface && w[1] == "list" && w.size() >= 4) {
        h.countype = plytypenamed(w[2]);
        h.indextype = plytypenamed(w[3]);
      } else if (!inface) {
        tplyproperty p{std::string(w[2]), plytypenamed(w[1]), typesize(plytypenamed(w[1]))};
        if (p.name == "nx") h.normals = true;
        if (p.name == "r" || p.name == "red") h.colors = true;
        h.vertexprops.push_back(p);
      }
    } else if (w[0] == "end_header") {
      h.datastart = at;
      if (!format) break;
      if (h.vertices <= 0 || h.faces <= 0) {
        println("  Empty PLY-file!");
        return false;
      }
      return true;
    }
  }
  println("  Can only read ascii and binary PLY-files!");
  return false;
}

// The vertex properties mapped to point, normal and colour slots.
void takevertex(tmesh& m, const tplyheader& h, const double* v) {
  tvector p{}, n{}, c{};
  double alpha = 255;
  for (size_t k = 0; k < h.vertexprops.size(); ++k) {
    const std::string& s = h.vertexprops[k].name;
    if (s == "x") p[0] = v[k];
    else if (s == "y") p[1] = v[k];
    else if (s == "z") p[2] = v[k];
    else if (s == "nx") n[0] = v[k];
    else if (s == "ny") n[1] = v[k];
    else if (s == "nz") n[2] = v[k];
    else if (s == "r" || s == "red") c[0] = v[k] / 255;
    else if (s == "g" || s == "green") c[1] = v[k] / 255;
    else if (s == "b" || s == "blue") c[2] = v[k] / 255;
    else if (s == "alpha") alpha = v[k];
  }
  (void)alpha;
  m.points.add(p);
  m.normals.add(n);
  if (h.colors) m.colors.add(c);
}

bool takeface(tmesh& m, int64_t count, const int64_t* idx) {
  if (count != 3 && count != 4) {
    println("  Wrong face count (" + nattext(count) + ")!");
    return false;
  }
  tface f;
  for (int64_t k = 0; k < count; ++k) f.corners[k] = idx[k] + 1;
  f.color = {1, 1, 1, 1};
  if (count == 4) m.trianglesonly = false;
  m.faces.add(f);
  return true;
}

bool readbinary(tmesh& m, const tplyheader& h, std::string_view data) {
  int64_t stride = 0;
  for (const auto& p : h.vertexprops) {
    if (!p.size) {
      println("  Can only read ascii and binary PLY-files!");
      return false;
    }
    stride += p.size;
  }
  const int cs = typesize(h.countype), is = typesize(h.indextype);
  const int64_t available = static_cast<int64_t>(data.size() - h.datastart);
  // A header's counts are checked against the bytes before anything is allocated.
  if (!cs || !is || stride <= 0 || h.vertices > available / stride ||
      h.faces > (available - h.vertices * stride) / (cs + 3 * is)) {
    println("  Empty PLY-file!");
    return false;
  }
  const char* p = data.data() + h.datastart;
  const char* end = data.data() + data.size();
  std::vector<double> v(h.vertexprops.size());
  for (int64_t i = 0; i < h.vertices; ++i) {
    for (size_t k = 0; k < h.vertexprops.size(); ++k) {
      v[k] = readscalar(p, h.vertexprops[k].type, h.big);
      p += h.vertexprops[k].size;
    }
    takevertex(m, h, v.data());
  }
  for (int64_t i = 0; i < h.faces; ++i) {
    if (end - p < cs) return false;
    const auto count = meshindex(readscalar(p, h.countype, h.big));
    p += cs;
    if (count != 3 && count != 4) return takeface(m, count, nullptr);
    if (end - p < count * is) {
      println("  Empty PLY-file!");
      return false;
    }
    int64_t idx[4];
    for (int64_t k = 0; k < count; ++k, p += is) idx[k] = meshindex(readscalar(p, h.indextype, h.big));
    if (!takeface(m, count, idx)) return false;
  }
  return true;
}

bool readascii(tmesh& m, const tplyheader& h, tlinefile& f) {
  const int64_t lines = linefilecount(f);
  if (h.vertices > lines || h.faces > lines - h.vertices) {
    println("  Empty PLY-file!");
    return false;
  }
  int64_t line = h.headerlines + 1;
  std::vector<double> v(h.vertexprops.size() + 1);
  for (int64_t i = 0; i < h.vertices; ++i, ++line) {
    std::fill(v.begin(), v.end(), 0);
    readnumbers(linefileview(f, line), v.data(), static_cast<int>(h.vertexprops.size()));
    takevertex(m, h, v.data());
  }
  for (int64_t i = 0; i < h.faces; ++i, ++line) {
    double n[5] = {};
    readnumbers(linefileview(f, line), n, 5);
    const int64_t idx[4] = {meshindex(n[1]), meshindex(n[2]), meshindex(n[3]), meshindex(n[4])};
    if (!takeface(m, meshindex(n[0]), idx)) return false;
  }
  return true;
}

struct tplylayout {
  bool normals, colors;
  int64_t used;
  std::vector<int64_t> number;
  int64_t faces = 0;
};

std::string plyhead(const tmesh& m, const utf16& name, tplylayout& l, bool ascii) {
  l.number = usedpoints(m, l.used);
  l.normals = hasnormals(m);
  l.colors = hascolors(m);
  for (int64_t i = 1; i <= m.faces.length; ++i) l.faces += writtenface(m, m.faces.get(i)) ? 1 : 0;
  std::string out = ascii ? "ply\nformat ascii 1.0\ncomment object: " + utf16toutf8(name) + "\n" : "ply\nformat binary_little_endian 1.0\n";
  out += "element vertex " + std::to_string(l.used) + "\nproperty float x\nproperty float y\nproperty float z\n";
  if (l.normals) out += "property float nx\nproperty float ny\nproperty float nz\n";
  if (l.colors) out += "property uchar red\nproperty uchar green\nproperty uchar blue\nproperty uchar alpha\n";
  out += "element face " + std::to_string(l.faces) + "\n";
  out += ascii ? "property list uchar int vertex_index\n" : "property list uchar int vertex_indices\n";
  out += "end_header\n";
  return out;
}

uint8_t colorbyte(double c) { return static_cast<uint8_t>(std::clamp<int64_t>(roundnat(c * 255), 0, 255)); }

template <class T>
void put(std::string& out, T v) {
  char b[sizeof(T)];
  std::memcpy(b, &v, sizeof v);
  if constexpr (std::endian::native == std::endian::big) std::reverse(b, b + sizeof b);
  out.append(b, sizeof b);
}

}  // namespace

bool plyread(tmesh& m, const utf16& name) {
  tlinefile f;
  if (!bufferread(f.buffer, name)) {
    if (f.buffer.size == 0 && fileexists(name)) println("  File " + name + " empty!");
    return false;
  }
  const std::string_view data = bufferview(f.buffer);
  tplyheader h;
  bool ok = readheader(data, name, h);
  if (ok && h.ascii) {
    linefileindex(f, 0, "  Analyze PLY-file");
    ok = readascii(m, h, f);
  } else if (ok) {
    ok = readbinary(m, h, data);
  }
  linefilerelease(f);
  if (!ok) {
    fieldcreate(m);
    return false;
  }
  meshreadsummary(m, 0, 0, h.normals ? m.points.length : 0, m.colors.length, true);
  return true;
}

bool plywrite(const tmesh& m, const utf16& name, const tmeshsave&) {
  tplylayout l;
  std::string out = plyhead(m, name, l, false);
  if (!l.used) {
    println("Empty file (" + name + ") - not written!");
    return false;
  }
  out.reserve(out.size() + l.used * 28 + l.faces * 17);
  for (int64_t i = 1; i <= m.points.length; ++i) {
    if (!l.number[i]) continue;
    for (double c : m.points.get(i)) put(out, static_cast<float>(c));
    if (l.normals)
      for (double c : m.normals.get(i)) put(out, static_cast<float>(c));
    if (l.colors) {
      for (double c : m.colors.get(i)) out += static_cast<char>(colorbyte(c));
      out += static_cast<char>(255);
    }
  }
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    const int n = f.corners[3] ? 4 : 3;
    out += static_cast<char>(n);
    for (int k = 0; k < n; ++k) put(out, static_cast<int32_t>(l.number[f.corners[k]] - 1));
  }
  println("  Deleted verticies: " + nattext(m.points.length - l.used));
  return meshwritefile(name, out);
}

bool plywriteascii(const tmesh& m, const utf16& name, const tmeshsave&) {
  tplylayout l;
  std::string out = plyhead(m, name, l, true);
  if (!l.used) {
    println("Empty file (" + name + ") - not written!");
    return false;
  }
  for (int64_t i = 1; i <= m.points.length; ++i) {
    if (!l.number[i]) continue;
    appendvector(out, m.points.get(i), " ", m.digits);
    if (l.normals) {
      out += ' ';
      appendvector(out, m.normals.get(i), " ", m.digits);
    }
    if (l.colors) {
      for (double c : m.colors.get(i)) out += ' ' + std::to_string(colorbyte(c));
      out += " 255";
    }
    out += '\n';
  }
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    const int n = f.corners[3] ? 4 : 3;
    out += std::to_string(n);
    for (int k = 0; k < n; ++k) out += ' ' + std::to_string(l.number[f.corners[k]] - 1);
    out += '\n';
  }
  return meshwritefile(name, out);
}
