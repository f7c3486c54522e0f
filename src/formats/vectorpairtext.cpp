// The pair text of vector fields: a position line, a tip line and an empty line a voxel.
#include <string>
#include <string_view>
#include <vector>

#include "base/filebuffer.h"
#include "base/linefile.h"
#include "formats/vectorformats.h"
#include "formats/wholewrite.h"
#include "script/values.h"
#include "shell/files.h"

namespace {

std::string vectorline(const tvector& v) {
  std::string out = "<";
  for (int a = 0; a < 3; ++a) (out += plainrealtext(v[a])) += a < 2 ? ", " : ">\n";
  return out;
}

// A line in the value notation: a bracketed list or a number.
bool vectorlike(std::string_view line) {
  while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
  return !line.empty() && (line.front() == '<' || line.front() == '-' || line.front() == '+' || line.front() == '.' ||
                           (line.front() >= '0' && line.front() <= '9'));
}

struct tpair {
  tvector position, vector;
};

// The field of an empty target: the positions' box at unit spacing.
void spanpositions(tvectorfield& f, uint8_t kind, const std::vector<tpair>& pairs) {
  tvector low = pairs.empty() ? tvector{0, 0, 0} : pairs[0].position, high = low;
  for (const tpair& p : pairs)
    for (int a = 0; a < 3; ++a) low[a] = std::min(low[a], p.position[a]), high[a] = std::max(high[a], p.position[a]);
  tnatvector size{0, 0, 0};
  if (!pairs.empty())
    for (int a = 0; a < 3; ++a) size[a] = roundnat(high[a] - low[a] + 1);  // in reals: a far position saturates
  fieldcreate(f, kind, size);
  setoffset(f.space, low);
}

}  // namespace

bool pairtextsave(const tvectorfield& f, const utf16& name, const tvector& scale) {
  if (fieldempty(f)) return false;
  std::string out;
  eachvector(f, scale, "Save vectorfield", [&](int64_t x, int64_t y, int64_t z, const tvector& v) {
    if (iszero(v)) return;
    const tvector p = localtoglobal(f.space, {double(x), double(y), double(z)});
    out += vectorline(p) + vectorline({p[0] + v[0], p[1] + v[1], p[2] + v[2]}) + "\n";
  });
  return writewhole(name, out, gzipextension(name));
}

bool pairtextload(tvectorfield& f, uint8_t kind, const utf16& name) {
  if (!fileexists(name)) {
    println("  Couldn't read File (" + name + ")! Create empty field.");
    fieldcreate(f, kind);
    return false;
  }
  println("Read file (" + name + ").");
  tlinefile lines{};
  linefileread(lines, name);
  std::vector<tpair> pairs;
  for (int64_t l = 1; l + 1 <= linefilecount(lines); l += 3) {
    if (!vectorlike(linefileview(lines, l)) || !vectorlike(linefileview(lines, l + 1))) {
      linefilerelease(lines);
      println("  Couldn't read File (" + name + ")! Create empty field.");
      fieldcreate(f, kind);
      return false;
    }
    const tvector p = textvector(linefiletext(lines, l)), tip = textvector(linefiletext(lines, l + 1));
    pairs.push_back({p, {tip[0] - p[0], tip[1] - p[1], tip[2] - p[2]}});
  }
  linefilerelease(lines);
  const tspatial space = f.space;
  const tnatvector size = fieldsize(f);
  if (fieldcount(size[0], size[1], size[2]) > 0) {
    fieldcreate(f, kind, size);
    f.space = space;
  } else {
    spanpositions(f, kind, pairs);
  }
  eachstorage(f, [&](auto& a) {
    using E = vectorelement<decltype(a)>;
    for (const tpair& p : pairs) {
      const tnatvector q = globaltolocal(f.space, p.position);
      if (a.inside(q[0], q[1], q[2])) a.put(q[0], q[1], q[2], writevector<E>(p.vector));
    }
  });
  return !fieldempty(f);
}
