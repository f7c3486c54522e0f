#include "geometry/meshbuild.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include "shell/console.h"

namespace {

bool samepoint(const tvector& a, const tvector& b) { return std::memcmp(a.data(), b.data(), sizeof(tvector)) == 0; }

uint64_t pointkey(const tvector& p) {
  uint64_t w[3];
  std::memcpy(w, p.data(), sizeof w);
  uint64_t h = w[0] * 0x9E3779B97F4A7C15ull;
  h = (h ^ (h >> 29) ^ w[1]) * 0xBF58476D1CE4E5B9ull;
  h = (h ^ (h >> 31) ^ w[2]) * 0x94D049BB133111EBull;
  return h ^ (h >> 32);
}

// The slot of p: the one holding its first copy, or the free one where it would go.
tpointhash::tslot& hashslot(const tmesh& m, const tvector& p, uint64_t key) {
  auto& slots = const_cast<std::vector<tpointhash::tslot>&>(m.hash.slots);
  const size_t mask = slots.size() - 1;
  for (size_t i = key & mask;; i = (i + 1) & mask) {
    tpointhash::tslot& s = slots[i];
    if (!s.index || (s.key == key && samepoint(m.points.get(s.index), p))) return s;
  }
}

int64_t hashfind(const tmesh& m, const tvector& p) {
  if (m.hash.slots.empty()) return 0;
  return hashslot(m, p, pointkey(p)).index;
}

// Point i joins the table unless an earlier copy is there: the first one answers.
void hashinsert(tmesh& m, int64_t i) {
  const tvector p = m.points.get(i);
  const uint64_t key = pointkey(p);
  tpointhash::tslot& s = hashslot(m, p, key);
  if (!s.index) s = {key, i};
}

// Brings the table up to the points list, doubling it to stay at most half full.
void hashsync(tmesh& m) {
  tpointhash& h = m.hash;
  const int64_t n = m.points.length;
  if (static_cast<int64_t>(h.slots.size()) < 2 * (n + 1)) {
    size_t size = 1024;
    while (static_cast<int64_t>(size) < 4 * (n + 1)) size *= 2;
    h.slots.assign(size, {});
    h.count = 0;
  }
  for (int64_t i = h.count + 1; i <= n; ++i) hashinsert(m, i);
  h.count = n;
}

int64_t sharepoint(tmesh& m, const tvector& p, const tvector& n) {
  for (int64_t i : m.lastface)
    if (i >= 1 && i <= m.points.length && samepoint(m.points.get(i), p)) return i;
  hashsync(m);
  const uint64_t key = pointkey(p);
  tpointhash::tslot& s = hashslot(m, p, key);
  if (s.index) return s.index;
  const int64_t i = appendpoint(m, p, n);
  m.pairs.add({i, m.faces.length + 1});
  s = {key, i};
  m.hash.count = i;
  return i;
}

template <size_t N>
void addface(tmesh& m, const std::array<tvector, N>& p, const std::array<tvector, N>& n, const tcolor4& color) {
  std::array<int64_t, 4> corners{};
  for (size_t k = 0; k < N; ++k) corners[k] = sharepoint(m, p[k], n[k]);
  appendface(m, corners, color);
  m.lastface = corners;
}

}  // namespace

int64_t appendpoint(tmesh& m, const tvector& p, const tvector& n) {
  m.points.add(p);
  m.normals.add(n);
  m.pairssorted = false;
  return m.points.length;
}

void appendface(tmesh& m, const std::array<int64_t, 4>& corners, const tcolor4& color) {
  tface f;
  f.corners = corners;
  f.color = {color[0], color[1], color[2], 1.0};
  m.faces.add(f);
  if (corners[3]) m.trianglesonly = false;
  m.pairssorted = false;
}

void addtriangle(tmesh& m, const std::array<tvector, 3>& p, const std::array<tvector, 3>& n, const tcolor4& color) {
  addface(m, p, n, color);
}

void addquad(tmesh& m, const std::array<tvector, 4>& p, const std::array<tvector, 4>& n, const tcolor4& color) {
  addface(m, p, n, color);
}

void addquad(tmesh& m, const std::array<tvector, 4>& p, const tcolor4& color) {
  addface(m, p, std::array<tvector, 4>{}, color);
}

namespace {

template <class L>
void reserve(L& list, int64_t more) {
  const int64_t n = list.length;
  if (more <= 0 || n + more < list.maximal) return;
  list.resize(n + more);
  list.resize(n);
}

}  // namespace

void meshreserve(tmesh& m, int64_t faces, int64_t points) {
  reserve(m.faces, faces);
  reserve(m.points, points);
  reserve(m.normals, points);
  reserve(m.pairs, points);
}

bool validface(const tmesh& m, const tface& f) {
  for (int k = 0; k < 4; ++k) {
    const int64_t i = f.corners[k];
    if (k == 3 && i == 0) continue;
    if (i < 1 || i > m.points.length) return false;
  }
  return true;
}

int64_t visiblefaces(const tmesh& m) {
  int64_t n = 0;
  for (int64_t i = 1; i <= m.faces.length; ++i) n += m.faces.get(i).visible ? 1 : 0;
  return n;
}

void sortpairs(tmesh& m) {
  m.pairs.resize(0);
  const int corners = m.trianglesonly ? 3 : 4;
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    if ((i & 0xFFFF) == 0) progress("  Sort", static_cast<double>(i) / m.faces.length);
    const tface f = m.faces.get(i);
    for (int k = 0; k < corners; ++k)
      if (f.corners[k]) m.pairs.add({f.corners[k], i});
  }
  auto* p = m.pairs.items();
  std::stable_sort(p, p + m.pairs.length, [](const auto& a, const auto& b) { return a[0] < b[0]; });
  progressend();
  m.pairssorted = true;
}

void meshverification(tmesh& m) {
  // Equal points group under their first index; each later one is one removal per
  // earlier equal point, as a pairwise comparison would count it.
  meshpointschanged(m);
  const int64_t n = m.points.length;
  std::vector<int64_t> first(n + 1, 0), seen(n + 1, 0);
  int64_t pairs = 0;
  hashsync(m);
  for (int64_t i = 1; i <= n; ++i) {
    if ((i & 0xFFFF) == 0) progress("  Check zero lengths", static_cast<double>(i) / n);
    first[i] = hashfind(m, m.points.get(i));
    pairs += seen[first[i]]++;
  }
  progressend();
  println(nattext(pairs) + " zero points.");
  if (!pairs) return;
  std::vector<int64_t> newindex(n + 1, 0);
  int64_t kept = 0;
  for (int64_t i = 1; i <= n; ++i) {
    if (first[i] != i) continue;
    newindex[i] = ++kept;
    m.points.put(kept, m.points.get(i));
    m.normals.put(kept, m.normals.get(i));
    if (m.colors.length >= i) m.colors.put(kept, m.colors.get(i));
  }
  for (int64_t i = 1; i <= n; ++i) newindex[i] = newindex[first[i]];
  m.points.resize(kept);
  m.normals.resize(kept);
  if (m.colors.length > kept) m.colors.resize(kept);
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    tface f = m.faces.get(i);
    for (int64_t& c : f.corners)
      if (c >= 1 && c <= n) c = newindex[c];
    m.faces.put(i, f);
  }
  meshpointschanged(m);
}

void meshcluster(tmesh& m, int64_t n, int64_t sizelimit) {
  const int64_t faces = m.faces.length;
  if (!faces) return;
  if (!m.pairssorted) sortpairs(m);
  // Faces that share a point are joined; a union of roots gives the parts that the
  // relabelling of ids by shared corners gives.
  std::vector<int64_t> root(faces + 1);
  std::iota(root.begin(), root.end(), 0);
  auto find = [&](int64_t a) {
    while (root[a] != a) a = root[a] = root[root[a]];
    return a;
  };
  const auto* p = m.pairs.items();
  for (int64_t i = 1; i < m.pairs.length; ++i) {
    if ((i & 0xFFFF) == 0) progress("  Cluster", static_cast<double>(i) / m.pairs.length);
    if (p[i][0] != p[i - 1][0]) continue;
    const int64_t a = find(p[i - 1][1]), b = find(p[i][1]);
    if (a != b) root[std::max(a, b)] = std::min(a, b);
  }
  progressend();
  std::vector<int64_t> id(faces + 1, 0), size(1, 0);
  std::vector<int64_t> idofroot(faces + 1, 0);
  m.clusters.resize(0);
  for (int64_t i = 1; i <= faces; ++i) {
    const int64_t r = find(i);
    if (!idofroot[r]) {
      idofroot[r] = static_cast<int64_t>(size.size());
      size.push_back(0);
    }
    id[i] = idofroot[r];
    ++size[id[i]];
    m.clusters.add(id[i]);
  }
  std::vector<int64_t> order(size.size() - 1);
  std::iota(order.begin(), order.end(), 1);
  std::stable_sort(order.begin(), order.end(), [&](int64_t a, int64_t b) { return size[a] > size[b]; });
  std::vector<char> keep(size.size(), 0);
  int64_t kept = 0;
  for (int64_t rank = 1; rank <= n && rank <= static_cast<int64_t>(order.size()); ++rank) {
    const int64_t c = order[rank - 1];
    if (sizelimit > 0 && size[c] < sizelimit) break;
    println("  Max (" + nattext(rank) + ") : " + nattext(size[c]));
    keep[c] = 1;
    ++kept;
  }
  for (int64_t i = 1; i <= faces; ++i) {
    tface f = m.faces.get(i);
    f.visible = keep[id[i]] ? 1 : 0;
    m.faces.put(i, f);
  }
  println("  Objects (visible) : " + nattext(kept));
  println("  Points  : " + nattext(m.points.length));
  println("  Normals : " + nattext(m.normals.length));
  println("  Faces (visible)  : " + nattext(visiblefaces(m)));
}

void meshcopy(tmesh& target, const tmesh& source, const tvector& scale) {
  if (&target == &source) return;
  fieldcreate(target);
  for (int64_t i = 1; i <= source.points.length; ++i) {
    const tvector p = source.points.get(i);
    target.points.add({p[0] * scale[0], p[1] * scale[1], p[2] * scale[2]});
  }
  for (int64_t i = 1; i <= source.normals.length; ++i) target.normals.add(source.normals.get(i));
  for (int64_t i = 1; i <= source.faces.length; ++i) target.faces.add(source.faces.get(i));
  for (int64_t i = 1; i <= source.colors.length; ++i) target.colors.add(source.colors.get(i));
  for (int64_t i = 1; i <= source.uvs.length; ++i) target.uvs.add(source.uvs.get(i));
  target.trianglesonly = source.trianglesonly;
  target.smoothed = source.smoothed;
  target.pivot = source.pivot;
  target.digits = source.digits;
}
