#include "formats/niftiheader.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "script/values.h"

namespace {

template <class T>
void swapvalue(T& v) {
  auto* p = reinterpret_cast<uint8_t*>(&v);
  std::reverse(p, p + sizeof(T));
}

template <class T, size_t N>
void swapall(T (&values)[N]) {
  for (T& v : values) swapvalue(v);
}

double length3(const tvector& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

bool zerovector(const tvector& v) { return v[0] == 0 && v[1] == 0 && v[2] == 0; }

utf16 fixedtext(const char* chars, size_t n) { return utf16(std::string(chars, strnlen(chars, n))); }

utf16 real(double v) { return realtext(v); }

const char* intentname(int code) {
  static const char* const low[] = {"CORREL",  "TTEST",   "FTEST",      "ZSCORE",     "CHISQ",    "BETA",
                                    "BINOM",   "GAMMA",   "POISSON",    "NORMAL",     "FTEST_NONC", "CHISQ_NONC",
                                    "LOGISTIC", "LAPLACE", "UNIFORM",   "TTEST_NONC", "WEIBULL",  "CHI",
                                    "INVGAUSS", "EXTVAL",  "PVAL"};
  static const char* const high[] = {"ESTIMATE", "LABEL",    "NEURONAME", "GENMATRIX", "SYMMATRIX", "DISPVECT",
                                     "VECTOR",   "POINTSET", "TRIANGLE",  "QUATERNION"};
  if (code >= 2 && code <= 22) return low[code - 2];
  if (code >= 1001 && code <= 1010) return high[code - 1001];
  return "No intent";
}

const char* slicecodename(int code) {
  static const char* const names[] = {"unknown", "sequential increasing", "sequential decreasing",
                                      "alternating increasing", "alternating decreasing",
                                      "alternating increasing 2", "alternating decreasing 2"};
  return code >= 0 && code <= 6 ? names[code] : "unknown";
}

// The spatial unit, the time unit behind " or " when both are given.
utf16 unittext(int units) {
  const char* spatial = "";
  switch (units & 3) {
    case 1: spatial = "m"; break;
    case 2: spatial = "mm"; break;
    case 3: spatial = "µm"; break;
  }
  const char* time = "";
  switch (units & 252) {
    case 8: time = "sec"; break;
    case 16: time = "msec"; break;
    case 24: time = "µsec"; break;
    case 32: time = "HZ"; break;
    case 40: time = "ppm"; break;
    case 48: time = "rad/sec"; break;
  }
  if (!*spatial) return utf16(time);
  return *time ? utf16(spatial) + " or " + time : utf16(spatial);
}

utf16 srowtext(const float (&row)[4]) {
  return "  [" + real(row[0]) + "\t" + real(row[1]) + "\t" + real(row[2]) + "\t" + real(row[3]) + "]";
}

}  // namespace

void swapheader(tniftiheader& h) {
  swapvalue(h.sizeof_hdr);
  swapvalue(h.extents);
  swapvalue(h.session_error);
  swapall(h.dim);
  swapvalue(h.intent_p1), swapvalue(h.intent_p2), swapvalue(h.intent_p3);
  swapvalue(h.intent_code), swapvalue(h.datatype), swapvalue(h.bitpix), swapvalue(h.slice_start);
  swapall(h.pixdim);
  swapvalue(h.vox_offset), swapvalue(h.scl_slope), swapvalue(h.scl_inter), swapvalue(h.slice_end);
  swapvalue(h.cal_max), swapvalue(h.cal_min), swapvalue(h.slice_duration), swapvalue(h.toffset);
  swapvalue(h.glmax), swapvalue(h.glmin);
  swapvalue(h.qform_code), swapvalue(h.sform_code);
  swapvalue(h.quatern_b), swapvalue(h.quatern_c), swapvalue(h.quatern_d);
  swapvalue(h.qoffset_x), swapvalue(h.qoffset_y), swapvalue(h.qoffset_z);
  swapall(h.srow_x), swapall(h.srow_y), swapall(h.srow_z);
}

bool takeheader(tniftiheader& h, const void* bytes) {
  std::memcpy(&h, bytes, sizeof h);
  if (h.sizeof_hdr == niftisize || h.sizeof_hdr == nifti2size) return false;
  swapheader(h);
  return true;
}

tspatial headerspace(const tniftiheader& h) {
  trows m{};
  tvector offset{0, 0, 0};
  const double px = h.pixdim[1], py = h.pixdim[2], pz = h.pixdim[3];
  if (h.sform_code >= 1) {
    for (int c = 0; c < 3; ++c) m[c] = {h.srow_x[c], h.srow_y[c], h.srow_z[c]};
    offset = {h.srow_x[3], h.srow_y[3], h.srow_z[3]};
  } else if (h.qform_code != 0) {
    const double b = h.quatern_b, c = h.quatern_c, d = h.quatern_d;
    const double a = std::sqrt(std::fabs(1 - b * b - c * c - d * d));
    const tvector r1{a * a + b * b - c * c - d * d, 2 * (a * d + b * c), 2 * (b * d - a * c)};
    const tvector r2{2 * (b * c - a * d), a * a + c * c - b * b - d * d, 2 * (a * b + c * d)};
    const tvector r3{2 * (a * c + b * d), 2 * (c * d - a * b), a * a + d * d - b * b - c * c};
    // The third axis takes qform_code as its factor, not qfac: files rely on it.
    const double third = static_cast<double>(h.qform_code) * pz;
    for (int k = 0; k < 3; ++k) m[0][k] = r1[k] * px, m[1][k] = r2[k] * py, m[2][k] = r3[k] * third;
    offset = {h.qoffset_x, h.qoffset_y, h.qoffset_z};
  } else {
    m = {tvector{px, 0, 0}, tvector{0, py, 0}, tvector{0, 0, pz}};
  }
  if (zerovector(m[0]) || zerovector(m[1]) || zerovector(m[2]))
    m = px * py * pz > 0 ? trows{tvector{px, 0, 0}, tvector{0, py, 0}, tvector{0, 0, pz}} : identityrows();
  tspatial s{};
  setmatrix(s, m);
  setoffset(s, offset);
  return s;
}

tvector headerquaternion(const trows& rows) {
  double m[9];
  for (int i = 0; i < 9; ++i) m[i] = rows[i / 3][i % 3];
  // The product of the diagonal, not the trace, and no division by the voxel size: this
  // is what the files of this program have always carried.
  const double h = std::sqrt(std::fabs(1 + m[0] * m[4] * m[8])) / 2;
  if (h == 0) return {1, 0, 0};
  return {(m[5] - m[7]) / 4 / h, (m[6] - m[2]) / 4 / h, (m[1] - m[3]) / 4 / h};
}

void spaceheader(const tspatial& s, tniftiheader& h) {
  const trows& m = s.matrix;
  for (int c = 0; c < 3; ++c) {
    h.srow_x[c] = static_cast<float>(m[c][0]);
    h.srow_y[c] = static_cast<float>(m[c][1]);
    h.srow_z[c] = static_cast<float>(m[c][2]);
    h.pixdim[c + 1] = static_cast<float>(length3(m[c]));
  }
  h.srow_x[3] = static_cast<float>(s.offset[0]);
  h.srow_y[3] = static_cast<float>(s.offset[1]);
  h.srow_z[3] = static_cast<float>(s.offset[2]);
  const tvector q = headerquaternion(m);
  h.quatern_b = static_cast<float>(q[0]);
  h.quatern_c = static_cast<float>(q[1]);
  h.quatern_d = static_cast<float>(q[2]);
  h.qoffset_x = h.srow_x[3];
  h.qoffset_y = h.srow_y[3];
  h.qoffset_z = h.srow_z[3];
}

std::vector<utf16> transformationlines(const tspatial& s, bool split) {
  const trows& m = s.matrix;
  const utf16 line = "  Transformation: " + fullvectortext(m[0]) + " " + fullvectortext(m[1]) + " " +
                     fullvectortext(m[2]) + " + " + fullvectortext(s.offset);
  if (!split || length(line) <= 70) return {line};
  const utf16 indent("                   ");
  return {"  Transformation: " + fullvectortext(m[0]), indent + fullvectortext(m[1]), indent + fullvectortext(m[2]),
          "                + " + fullvectortext(s.offset)};
}

const char* datatypename(int datatype) {
  switch (datatype) {
    case 2: return "INT8";  // unsigned, but named as the signed one, like 256
    case 4: return "INT16";
    case 8: return "INT32";
    case 16: return "FLOAT32";
    case 32: return "COMPLEX64";
    case 64: return "FLOAT64";
    case 128: return "RGB24";
    case 256: return "INT8";
    case 512: return "UINT16";
    case 768: return "UINT32";
    case 1024: return "INT64";
    case 1280: return "UINT64";
    case 1536: return "FLOAT128";
    case 1792: return "COMPLEX128";
    case 2048: return "COMPLEX256";
  }
  return "Unknown type";
}

std::vector<utf16> headertext(const tniftiheader& h) {
  std::vector<utf16> out;
  const utf16 magic = fixedtext(h.magic, 4);
  if (empty(magic))
    out.emplace_back("Nifti header - HDR");
  else if (equalutf8(magic, "ni1"))
    out.push_back("Nifti header - NII Version " + copy(magic, 3, 1));
  else
    out.push_back("Nifti header of one file - NII Version " + copy(magic, 3, 1));
  out.emplace_back("==================");
  out.push_back("Description: " + fixedtext(h.descrip, sizeof h.descrip));
  out.emplace_back("");
  out.emplace_back("Header.");
  out.push_back("  Size: " + nattext(h.sizeof_hdr));
  if (h.sizeof_hdr != niftisize) {
    out.push_back("Error (Header size = " + nattext(h.sizeof_hdr) + ")! Not a nifti 1 file format!");
    return out;
  }
  out.emplace_back("");
  out.emplace_back("Slices.");
  out.push_back("  Slice order: " + nattext(h.slice_code) + " (" + slicecodename(h.slice_code) +
                ") Timing order: " + nattext(h.dim_info));
  out.push_back("  Slice start: " + nattext(h.slice_start) + " End: " + nattext(h.slice_end));
  out.push_back("  Slice offset: " + real(h.scl_inter) + " Slope: " + real(h.scl_slope));
  out.push_back("  Time offset: " + real(h.toffset) + "  Duration: " + real(h.slice_duration));
  out.emplace_back("");
  out.push_back("Affine transformtion (" + nattext(h.sform_code) + ").");
  out.push_back(srowtext(h.srow_x));
  out.push_back(srowtext(h.srow_y));
  out.push_back(srowtext(h.srow_z));
  out.emplace_back("");
  out.push_back("Quaternion (" + nattext(h.qform_code) + ").");
  out.push_back("  [a,b,c,d] = [sqrt(1.0-(b*b+c*c+d*d)), " + real(h.quatern_b) + ", " + real(h.quatern_c) + ", " +
                real(h.quatern_d) + "]");
  out.push_back("  offset = [" + real(h.qoffset_x) + " " + real(h.qoffset_y) + " " + real(h.qoffset_z) + "]");
  out.emplace_back("");
  out.push_back("Data array dimensions (" + nattext(h.bitpix) + " bits & " + datatypename(h.datatype) + " (" +
                nattext(h.datatype) + ") data type).");
  for (int i = 0; i < 8; ++i) out.push_back("  Dim[" + nattext(i) + "] = " + nattext(h.dim[i]));
  out.emplace_back("");
  out.emplace_back("Grid spacings.");
  out.push_back("  Pixdim[0] = qfac = " + real(h.pixdim[0]));
  const utf16 unit = unittext(h.xyzt_units);
  for (int i = 1; i < 8; ++i)
    out.push_back("  Pixdim[" + nattext(i) + "] = " + real(h.pixdim[i]) + (empty(unit) ? utf16() : " " + unit));
  out.emplace_back("");
  out.push_back("Data (" + utf16(datatypename(h.datatype)) + " Meaning: " + intentname(h.intent_code) + " - " +
                real(h.intent_p1) + " " + real(h.intent_p2) + " " + real(h.intent_p3));
  out.push_back("  Min intensity: " + real(h.cal_min) + " Max intensity: " + real(h.cal_max));
  out.push_back("  Data offset: " + real(h.vox_offset));
  return out;
}

int niftitypecode(int bitpix, int datatype) {
  static constexpr int pairs[][3] = {{64, 64, 1064},  {32, 16, 1032}, {64, 1280, 64}, {64, 1024, -64},
                                     {32, 768, 32},   {32, 8, -32},   {16, 512, 16},  {16, 4, -16},
                                     {8, 2, 8},       {8, 256, -8},   {24, 128, 2024}, {32, 2304, 2032}};
  for (const auto& p : pairs)
    if (p[0] == bitpix && p[1] == datatype) return p[2];
  return 0;
}
