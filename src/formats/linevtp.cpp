// VTK XML poly data of lines. The lines block closes with the polygon tag, as our files
// always have: readers that insist on well-formed XML need that one tag mended.
#include "formats/lineformats.h"

std::string vtpbytes(const tcloud& c, const utf16&) {
  const int64_t lines = linecount(c);
  std::string o = "<?xml version=\"1.0\"?>\n<VTKFile type=\"PolyData\" version=\"0.1\" byte_order=\"LittleEndian\">\n\t<PolyData>\n";
  o += "\t\t<Piece NumberOfPoints=\"" + std::to_string(c.points.length) +
       "\" NumberOfVerts=\"0\" NumberOfLines=\"0\" NumberOfStrips=\"0\" NumberOfPolys=\"" + std::to_string(lines) + "\">\n";
  o += "\t\t\t<Points>\n\t\t\t\t<DataArray type=\"Float32\" NumberOfComponents=\"3\" format=\"ascii\">\n";
  for (int64_t i = 1; i <= c.points.length; ++i) {
    const tcloudpoint p = pointof(c, i);
    o += "\t\t\t\t\t" + numbertext(p[0]) + " " + numbertext(p[1]) + " " + numbertext(p[2]) + "\n";
  }
  o += "\t\t\t\t</DataArray>\n\t\t\t</Points>\n\t\t\t<Lines>\n";
  o += "\t\t\t\t<DataArray type=\"Int32\" Name=\"connectivity\" format=\"ascii\">\n";
  for (int64_t l = 1; l <= lines; ++l) {
    const tlinerange r = linerange(c, l);
    o += "\t\t\t\t\t";
    for (int64_t i = r.first; i <= r.last; ++i) o += std::to_string(i - 1) + (i < r.last ? " " : "\n");
  }
  o += "\t\t\t\t</DataArray>\n\t\t\t\t<DataArray type=\"Int32\" Name=\"offsets\" format=\"ascii\">\n";
  for (int64_t l = 1; l <= lines; ++l) o += "\t\t\t\t\t" + std::to_string(linerange(c, l).last) + "\n";
  o += "\t\t\t\t</DataArray>\n\t\t\t</Polys>\n\t\t</Piece>\n\t</PolyData>\n</VTKFile>\n";
  return o;
}
