#include "geometry/meshrender.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "geometry/meshsample.h"
#include "geometry/raybvh.h"
#include "library/mathvector.h"
#include "ops/blocks.h"
#include "shell/console.h"

tprojectionsettings projectionsettings;

namespace {

bool finite(const tvector& p) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); }

struct tsphere {
  tvector centre{0, 0, 0};
  double radius = 0;
};

// The mean of the finite points and the largest distance of one from it.
tsphere enclosing(const tvectorlist& points) {
  tsphere s;
  int64_t n = 0;
  for (int64_t i = 1; i <= points.length; ++i)
    if (finite(points.get(i))) s.centre = added(s.centre, points.get(i)), ++n;
  if (n) s.centre = scaled(s.centre, 1.0 / static_cast<double>(n));
  for (int64_t i = 1; i <= points.length; ++i)
    if (finite(points.get(i))) s.radius = std::max(s.radius, vectorlength(added(points.get(i), scaled(s.centre, -1))));
  return s;
}

utf16 pointtext(const tvector& p) { return reallisttext(p, true, 6); }

tsphere announce(const char* what, const tvectorlist& points) {
  const tsphere s = enclosing(points);
  println("  Found " + std::string(what) + " at " + utf16toutf8(pointtext(s.centre)) + " with radius " +
          utf16toutf8(roundedrealtext(s.radius, 6)) + ".");
  return s;
}

bool zerocolor(const tface& f) { return f.color[0] == 0 && f.color[1] == 0 && f.color[2] == 0 && f.color[3] == 0; }

// The visible, coloured faces as triangles; a quad's second triangle follows its first.
std::vector<traytriangle> seentriangles(const tmesh& m) {
  std::vector<traytriangle> out;
  out.reserve(static_cast<size_t>(m.faces.length));
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    const tface f = m.faces.get(i);
    if (!f.visible || zerocolor(f)) continue;
    const int corners = f.corners[3] ? 4 : 3;
    bool valid = true;
    for (int k = 0; k < corners; ++k) valid = valid && f.corners[k] >= 1 && f.corners[k] <= m.points.length;
    if (!valid) continue;
    auto p = [&](int k) { return m.points.get(f.corners[k]); };
    out.push_back({p(0), p(1), p(2), 2 * i});
    if (corners == 4) out.push_back({p(0), p(2), p(3), 2 * i + 1});
  }
  return out;
}

// The ray of a camera point runs against its normal; points far from the object are passed.
trayhit castpoint(const traybvh& bvh, const tmesh& camera, int64_t i, const tsphere& object, double limit) {
  const tvector o = camera.points.get(i), d = scaled(camera.normals.getchecked(i), -1);
  const double length = vectorlength(d);
  if (!finite(o) || !(length > 0) || !std::isfinite(length)) return {};
  const tvector toward = added(object.centre, scaled(o, -1));
  if (vectorlength(cross(toward, d)) / length > object.radius) return {};
  return firsthit(bvh, o, d, limit);
}

// All hits in blocks of points, so that the progress line moves between them.
std::vector<trayhit> castall(const traybvh& bvh, const tmesh& camera, const tsphere& object, double limit,
                             int64_t threads) {
  const int64_t n = camera.points.length;
  std::vector<trayhit> hits(static_cast<size_t>(n));
  const int64_t step = 16384;
  for (int64_t start = 0; start < n; start += step) {
    progress("  Projection", static_cast<double>(start) / static_cast<double>(n));
    const int64_t count = std::min(step, n - start);
    inblocks(count, threads, [&](int64_t first, int64_t end) {
      for (int64_t k = start + first; k < start + end; ++k) hits[k] = castpoint(bvh, camera, k + 1, object, limit);
    });
  }
  progressend();
  return hits;
}

// The face's colour, or for uv the map's pixel at the first corner's uv value.
tvector hitcolor(const tmesh& source, int64_t order, trenderpart part, const timagefield& uvmap) {
  const tface f = source.faces.get(order / 2);
  if (part != trenderpart::uv) return {f.color[0], f.color[1], f.color[2]};
  const int64_t uv = f.extra[0];
  if (uv < 1 || uv > source.uvs.length) return {0, 0, 0};
  const auto [u, v] = source.uvs.get(uv);
  const trgb c = getrgb(uvmap, roundnat(static_cast<double>(imagesizex(uvmap)) * u),
                        roundnat(static_cast<double>(imagesizey(uvmap)) * v));
  return {c[0] / 255.0, c[1] / 255.0, c[2] / 255.0};
}

}  // namespace

void meshrender(tmesh& camera, const tmesh& source, trenderpart part, double limit, int64_t threads,
                const timagefield& uvmap) {
  if (!camera.normals.length || !camera.points.length) return println("Destination mesh has no normals for projection.");
  if (!source.points.length || !source.faces.length) return println("Source mesh has no mesh or colors.");
  if (part == trenderpart::uv && (!source.uvs.length || fieldempty(uvmap))) return println("  Empty uv map!");
  const tsphere object = announce("Object", source.points);
  const tsphere screen = announce("Camera", camera.points);
  println("  Object-Camera distance: " +
          utf16toutf8(roundedrealtext(vectorlength(added(object.centre, scaled(screen.centre, -1))), 6)));
  const bool colours = part != trenderpart::depth, depths = part == trenderpart::both || part == trenderpart::depth;
  if (colours) {
    camera.colors.resize(camera.points.length);
    camera.colors.fill({0, 0, 0});
  }
  const traybvh bvh = buildraybvh(seentriangles(source), threads);
  const std::vector<trayhit> hits = castall(bvh, camera, object, limit, threads);
  for (int64_t i = 1; i <= camera.points.length; ++i) {
    const trayhit& h = hits[i - 1];
    if (colours && h.order >= 0) camera.colors.put(i, hitcolor(source, h.order, part, uvmap));
    if (depths && i <= camera.normals.length)
      camera.normals.put(i, h.order >= 0 ? scaled(camera.normals.get(i), h.depth) : tvector{0, 0, 0});
  }
  if (colours) facecolorsfrompoints(camera);
}

void projectcolor(timagefield& image, const tmesh& camera, int64_t w, int64_t h) {
  constexpr int64_t side = int64_t{1} << 31;
  if (w < 1 || h < 1 || w >= side || h >= side) return println("  Empty projection size!");
  if (fieldempty(image))
    fieldcreate(image, imagergb, {w, h, 1});
  else
    println("Attention, target image field seems not to be empty!");
  if (fieldempty(image)) return;  // the memory ran out and has said so
  auto byte = [](double c) { return std::clamp<int64_t>(roundnat(c * 255), 0, 255); };
  // Pixels beyond the image would be dropped anyway.
  const int64_t width = std::min(w, imagesizex(image)), height = std::min(h, imagesizey(image));
  withkind(image, [&](auto view) {
    for (int64_t y = 1; y <= height; ++y) {
      progress("  Draw screen", static_cast<double>(y) / static_cast<double>(height));
      for (int64_t x = 1; x <= width; ++x) {
        const int64_t face = x + (h - y) * w;
        if (face > camera.faces.length) continue;
        const auto& c = camera.faces.get(face).color;
        view.setrgb(x, y, {byte(c[0]), byte(c[1]), byte(c[2])});
      }
    }
  });
  progressend();
}
