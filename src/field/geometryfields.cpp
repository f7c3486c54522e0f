// Creation, release and the dump's description of meshes and clouds.
#include "field/cloud.h"
#include "field/mesh.h"

void fieldcreate(tmesh& m, uint8_t) {
  fieldrelease(m);
  m.points.createdynamic();
  m.normals.createdynamic();
  m.faces.createdynamic();
  m.colors.createdynamic();
  m.uvs.createdynamic();
  m.pairs.createdynamic();
  m.clusters.createdynamic();
  m.pairssorted = false;
  m.trianglesonly = true;
  m.smoothed = false;
  m.pivot = {0, 0, 0};
  meshpointschanged(m);
}

void meshpointschanged(tmesh& m) {
  m.hash = tpointhash{};
  m.lastface = {};
  m.pairssorted = false;
}

void fieldrelease(tmesh& m) {
  m.points.release();
  m.normals.release();
  m.faces.release();
  m.colors.release();
  m.uvs.release();
  m.pairs.release();
  m.clusters.release();
  meshpointschanged(m);
}

utf16 fielddescription(const tmesh& m) {
  return "mesh(points:" + nattext(m.points.length) + ";faces:" + nattext(m.faces.length) +
         ";normales:" + nattext(m.normals.length) + ")";
}

void fieldcreate(tcloud& c, uint8_t) {
  fieldrelease(c);
  c.points.createdynamic();
  c.linestarts.createdynamic();
  c.linetags.createdynamic();
  c.objectstarts.createdynamic();
  c.objectnames.createdynamic();
}

void fieldrelease(tcloud& c) {
  c.points.release();
  c.linestarts.release();
  c.linetags.release();
  c.objectstarts.release();
  c.objectnames.release();
  c.lineopen = c.objectopen = false;
}

int64_t linecount(const tcloud& c) {
  const int64_t n = c.linestarts.length;
  return n > 0 && c.linestarts.get(n) > c.points.length ? n - 1 : n;
}

utf16 fielddescription(const tcloud& c) {
  return "cloud(points:" + nattext(c.points.length) + ";lines:" + nattext(linecount(c)) +
         ";objects:" + nattext(c.objectstarts.length) + ")";
}
