// VTK XML poly data, ascii.
#include "formats/meshtext.h"
#include "formats/meshwriters.h"
#include "shell/console.h"

bool vtpwrite(const tmesh& m, const utf16& name, const tmeshsave&) {
  int64_t used = 0;
  const std::vector<int64_t> number = usedpoints(m, used);
  int64_t faces = 0;
  for (int64_t i = 1; i <= m.faces.length; ++i) faces += writtenface(m, m.faces.get(i)) ? 1 : 0;
  const bool normals = hasnormals(m);
  std::string out = "<?xml version=\"1.0\"?>\n<VTKFile type=\"PolyData\" version=\"0.1\" byte_order=\"LittleEndian\">\n\t<PolyData>\n";
  out += "\t\t<Piece NumberOfPoints=\"" + std::to_string(used) +
         "\" NumberOfVerts=\"0\" NumberOfLines=\"0\" NumberOfStrips=\"0\" NumberOfPolys=\"" + std::to_string(faces) + "\">\n";
  auto points = [&](const tvectorlist& list) {
    for (int64_t i = 1; i <= m.points.length; ++i) {
      if (!number[i]) continue;
      out += "\t\t\t\t\t";
      appendvector(out, list.get(i));
      out += '\n';
    }
  };
  if (normals) {
    out += "\t\t\t<PointData Normals=\"Normals\">\n\t\t\t\t<DataArray type=\"Float32\" Name=\"Normals\" NumberOfComponents=\"3\" format=\"ascii\">\n";
    points(m.normals);
    out += "\t\t\t\t</DataArray>\n\t\t\t</PointData>\n";
  }
  out += "\t\t\t<Points>\n\t\t\t\t<DataArray type=\"Float32\" NumberOfComponents=\"3\" format=\"ascii\">\n";
  points(m.points);
  out += "\t\t\t\t</DataArray>\n\t\t\t</Points>\n\t\t\t<Polys>\n\t\t\t\t<DataArray type=\"Int32\" Name=\"connectivity\" format=\"ascii\">\n";
  std::string offsets;
  int64_t sum = 0;
  for (int64_t i = 1; i <= m.faces.length; ++i) {
    progress("  Write VTK(mesh)-file", static_cast<double>(i) / m.faces.length);
    const tface f = m.faces.get(i);
    if (!writtenface(m, f)) continue;
    out += "\t\t\t\t\t";
    for (int k = 0; k < 4 && f.corners[k]; ++k, ++sum) out += (k ? " " : "") + std::to_string(number[f.corners[k]] - 1);
    out += '\n';
    offsets += "\t\t\t\t\t" + std::to_string(sum) + '\n';
  }
  progressend();
  out += "\t\t\t\t</DataArray>\n\t\t\t\t<DataArray type=\"Int32\" Name=\"offsets\" format=\"ascii\">\n" + offsets;
  out += "\t\t\t\t</DataArray>\n\t\t\t</Polys>\n\t\t</Piece>\n\t</PolyData>\n</VTKFile>\n";
  return meshwritefile(name, out);
}
