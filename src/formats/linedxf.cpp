// DXF: the header of the mesh files, then one POLYLINE entity a line, t as the width.
#include "formats/lineformats.h"

std::string dxfbytes(const tcloud& c, const utf16&) {
  std::string o =
      "0\nSECTION\n2\nHEADER\n9\n$AUNITS\n70\n0\n9\n$FILLMODE\n70\n1\n9\n$SPLFRAME\n70\n0\n9\n$SPLINESEGS\n70\n8\n0\nENDSEC\n"
      "0\nSECTION\n2\nTABLES\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";
  for (int64_t l = 1; l <= linecount(c); ++l) {
    const tlinerange r = linerange(c, l);
    o += "0\nPOLYLINE\n8\n0\n70\n0\n66\n1\n10\n0\n20\n0\n30\n0\n";
    for (int64_t i = r.first; i <= r.last; ++i) {
      const tcloudpoint p = pointof(c, i);
      o += "0\nVERTEX\n8\n0\n10\n" + numbertext(p[0]) + "\n20\n" + numbertext(p[1]) + "\n30\n" + numbertext(p[2]) +
           "\n40\n" + numbertext(p[3]) + "\n";
    }
    o += "0\nSEQEND\n8\n0\n";
  }
  return o + "0\nENDSEC\n0\nEOF\n";
}
