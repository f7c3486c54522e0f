#include "formats/vectornifti.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <type_traits>

#include "base/filebuffer.h"
#include "formats/nifti.h"
#include "formats/niftiheader.h"
#include "formats/niftiraw.h"
#include "formats/voxelsource.h"
#include "formats/wholewrite.h"
#include "orientation/tensorvoxel.h"
#include "script/values.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

// ---- writing ---------------------------------------------------------------------------

// Three components: intent VECTOR; six: SYMMATRIX of rank 3.
template <class F>
tniftiheader orientationheader(const F& f, int components, bool single) {
  tniftiheader h{};
  h.sizeof_hdr = niftisize;
  h.regular = 'r';
  const tnatvector size = fieldsize(f);
  h.dim[0] = 5;
  for (int a = 0; a < 3; ++a) h.dim[a + 1] = static_cast<int16_t>(size[a]);
  h.dim[4] = 1;
  h.dim[5] = static_cast<int16_t>(components);
  h.intent_code = components == 6 ? 1005 : 1007;
  h.intent_p1 = components == 6 ? 3 : 0;
  h.datatype = f.kind == vectorinteger ? 1024 : 64;
  h.bitpix = 64;
  h.pixdim[0] = 1;
  spaceheader(f.space, h);
  h.vox_offset = single ? static_cast<float>(niftidatastart) : 0;
  h.scl_slope = 1;
  h.slice_code = 1;
  h.xyzt_units = 10;
  h.qform_code = 0;
  h.sform_code = 1;
  std::strncpy(h.descrip, "voxmill", sizeof h.descrip);
  std::memcpy(h.magic, single ? "n+1" : "ni1", 4);
  return h;
}

// The component planes: value(c, i) of component c at the 0-based voxel index i.
template <class Value>
void appendplanes(std::string& out, int64_t count, int components, bool integer, const utf16& label, Value value) {
  for (int c = 0; c < components; ++c) {
    for (int64_t i = 0; i < count; ++i) {
      const double v = value(c, i);
      if (integer)
        appendnumber(out, toelement<int64_t>(v));
      else
        appendnumber(out, v);
    }
    progress(label, static_cast<double>(c + 1) / components);
  }
  progressend();
}

// The tensor components in file order xx, xy, xz, yy, yz, zz: which volume, which entry.
constexpr int tensorvolume[6] = {0, 1, 1, 0, 1, 0};
constexpr int tensorentry[6] = {0, 0, 1, 1, 2, 2};

// Header, then the planes, written whole under the name: .hdr makes the pair.
template <class F, class Planes>
bool orientationsave(const F& f, const utf16& name, int components, Planes planes) {
  if (fieldempty(f)) return false;
  const utf16 ext = lower(fileextension(name));
  const bool packed = equalutf8(ext, "nii.gz"), pair = equalutf8(ext, "hdr");
  const utf16 file = packed || pair || equalutf8(ext, "nii") ? name : name + ".nii";
  const tniftiheader h = orientationheader(f, components, !pair);
  std::string bytes(reinterpret_cast<const char*>(&h), niftisize);
  const tnatvector n = fieldsize(f);
  bytes.reserve(static_cast<size_t>(niftidatastart + 8 * components * n[0] * n[1] * n[2]));
  if (pair) {
    if (!writewhole(file, bytes, false)) return false;
    bytes.clear();
  } else {
    bytes.append(4, '\0');  // no extension
  }
  planes(bytes, n[0] * n[1] * n[2]);
  return writewhole(pair ? filestem(file) + ".img" : file, bytes, packed);
}

// ---- reading ---------------------------------------------------------------------------

template <class F>
bool failed(F& f, uint8_t kind, const utf16& text) {
  println(text);
  fieldcreate(f, kind);
  return false;
}

const char* typelabel(int code) {
  switch (code) {
    case 1064: return "  3DVector (64Float) with (";
    case 1032: return "  3DVector (32Float) with (";
    case 64: return "  3DVector (64Bit) with (";
    case -64: return "  3DVector (-64Bit) with (";
    case 32: return "  3DVector (32Bit) with (";
    case -32: return "  3DVector (-32Bit) with (";
    case 16: return "  3DVector (16Bit) with (";
    case -16: return "  3DVector (-16Bit) with (";
    case 8: return "  3DVector (8Bit) with (";
    case -8: return "  3DVector (-8Bit) with (";
    case 2024: return "  3DRGB (RGB) with (";
    case 2032: return "  3DRGB (RGBA) with (";
  }
  return "  3DVector (Zero) with (";
}

// The one switch from a type code to its C type.
template <class Op>
void withnumber(int code, Op op) {
  switch (code) {
    case 1064: return op(double{});
    case 1032: return op(float{});
    case 64: return op(uint64_t{});
    case -64: return op(int64_t{});
    case 32: return op(uint32_t{});
    case -32: return op(int32_t{});
    case 16: return op(uint16_t{});
    case -16: return op(int16_t{});
    case 8: return op(uint8_t{});
    case -8: return op(int8_t{});
  }
}

template <class T>
double numberat(const uint8_t* p, bool swap) {
  using U = std::conditional_t<sizeof(T) == 8, uint64_t,
                               std::conditional_t<sizeof(T) == 4, uint32_t, std::conditional_t<sizeof(T) == 2, uint16_t, uint8_t>>>;
  U u;
  std::memcpy(&u, p, sizeof u);
  if (swap) {
    U r = 0;
    for (size_t b = 0; b < sizeof u; ++b) r = static_cast<U>((r << 8) | ((u >> (8 * b)) & 0xFF));
    u = r;
  }
  return static_cast<double>(std::bit_cast<T>(u));
}

utf16 baddims(const int64_t (&d)[8]) {
  const tnatvector a{d[1], d[2], d[3]}, b{d[5], d[6], d[7]};
  return "  Bad dim size (" + nattext(d[0]) + " " + natlisttext(a, true) + " " + nattext(d[4]) + " " +
         natlisttext(b, true) + ")! Create empty field.";
}

bool gooddims(const int64_t (&d)[8], bool rgb, int components) {
  if (d[0] < (rgb ? 3 : 4) || d[0] > 7) return false;
  if (d[1] < 1 || d[2] < 1 || d[3] < 1) return false;
  if (rgb) return true;
  int64_t values = 1;
  for (int k = 4; k <= d[0]; ++k) values = fieldcount(values, std::max<int64_t>(d[k], 0));
  return values >= components;
}

template <class F>
void takespace(F& f, const tniftiheader& h) {
  if (fieldempty(f)) return;
  f.space = headerspace(h);
  for (const utf16& line : transformationlines(f.space, false)) println(line);
}

template <class A>
void putcomponent(A& a, int64_t i, int c, double v) {
  using C = typename A::elementtype::value_type;
  a.items()[i][c] = toelement<C>(v);
}

// The component planes, slice by slice, through put(c, i, value).
template <class Put>
bool readplanes(const tnatvector& n, int components, tvoxelsource& src, int code, bool swap, const utf16& label, Put put) {
  const int64_t area = n[0] * n[1], bytes = voxelbytes(code);
  tbytelist buffer{};
  bool ok = true;
  withnumber(code, [&](auto t) {
    using T = decltype(t);
    for (int c = 0; c < components && ok; ++c)
      for (int64_t z = 0; z < n[2] && ok; ++z) {
        const uint8_t* p = sourcetake(src, area * bytes, buffer);
        if (!p) {
          ok = false;
          break;
        }
        const int64_t first = z * area;
        for (int64_t i = 0; i < area; ++i) put(c, first + i, numberat<T>(p + i * bytes, swap));
        progress(label, static_cast<double>(c * n[2] + z + 1) / static_cast<double>(components * n[2]));
      }
  });
  buffer.release();
  progressend();
  return ok;
}

// Colour voxels: r, g, b (and a) bytes side by side, each vector the colour over 255.
bool readcolours(tvectorfield& f, tvoxelsource& src, int code, const utf16& label) {
  const tnatvector n = fieldsize(f);
  const int64_t area = n[0] * n[1], bytes = voxelbytes(code);
  tbytelist buffer{};
  bool ok = true;
  eachstorage(f, [&](auto& a) {
    for (int64_t z = 0; z < n[2] && ok; ++z) {
      const uint8_t* p = sourcetake(src, area * bytes, buffer);
      if (!p) {
        ok = false;
        break;
      }
      for (int64_t i = 0; i < area; ++i)
        for (int c = 0; c < 3; ++c) putcomponent(a, z * area + i, c, p[i * bytes + c] / 255.0);
      progress(label, static_cast<double>(z + 1) / static_cast<double>(n[2]));
    }
  });
  buffer.release();
  progressend();
  return ok;
}

}  // namespace

bool vectorniftisave(const tvectorfield& f, const utf16& name, const tvector& scale) {
  const utf16 label = utf16(f.kind == vectorinteger ? "  3DVector with (" : "  3DVector64 with (") + dimensionstext(f) + ")";
  return orientationsave(f, name, 3, [&](std::string& out, int64_t count) {
    eachstorage(f, [&](const auto& a) {
      const auto* items = a.items();
      appendplanes(out, count, 3, f.kind == vectorinteger, label,
                   [&](int c, int64_t i) { return static_cast<double>(items[i][c]) * scale[c]; });
    });
  });
}

bool tensorniftisave(const ttensorfield& f, const utf16& name) {
  const utf16 label = utf16(f.kind == vectorinteger ? "  3DTensor with (" : "  3DTensor64 with (") + dimensionstext(f) + ")";
  return orientationsave(f, name, 6, [&](std::string& out, int64_t count) {
    withtensorvolumes(f, [&](const auto& diagonal, const auto& offdiagonal) {
      const std::array v{diagonal.items(), offdiagonal.items()};
      appendplanes(out, count, 6, f.kind == vectorinteger, label,
                   [&](int c, int64_t i) { return static_cast<double>(v[tensorvolume[c]][i][tensorentry[c]]); });
    });
  });
}

namespace {

// The reader of both: components values a voxel, RGB types for vectors only; read(f, src,
// code, swap, label) takes the payload.
template <class F, class Read>
bool orientationload(F& f, uint8_t kind, const utf16& name, int components, Read read) {
  const utf16 header = niftiheadername(name), data = niftidataname(name);
  const bool pair = !equal(header, data);
  const utf16 unreadable = "  Couldn't read File (" + name + ")! Create empty field.";
  if (!fileexists(header)) return failed(f, kind, unreadable);
  tvoxelsource src{};
  tbytelist buffer{};
  const auto finish = [&](bool result) {
    sourceclose(src);
    buffer.release();
    return result;
  };
  if (!sourceopen(src, header)) return finish(failed(f, kind, unreadable));
  const uint8_t* head = sourcetake(src, niftisize, buffer);
  if (!head) return finish(failed(f, kind, "  Wrong header! Create empty field."));
  tniftiheader h;
  const bool swap = takeheader(h, head);
  if (h.sizeof_hdr == nifti2size) return finish(failed(f, kind, "  Nifti-2 currently not supported! Create empty field."));
  if (h.sizeof_hdr != niftisize) return finish(failed(f, kind, "  Wrong header! Create empty field."));
  int64_t d[8];
  for (int k = 0; k < 8; ++k) d[k] = h.dim[k];
  int code = niftitypecode(h.bitpix, h.datatype);
  const bool rgb = components == 3 && (code == 2024 || code == 2032);
  if (components != 3 && (code == 2024 || code == 2032)) code = 0;
  int64_t start = 0;
  if (pair) {
    sourceclose(src);
    if (!fileexists(data)) {
      if (d[0] < 3 || d[0] > 7 || d[1] < 1 || d[2] < 1 || d[3] < 1)
        return finish(failed(f, kind, "  Couldn't read File (" + data + ") and bad dim size! Create empty field."));
      println("  Couldn't read File (" + data + ")! Create field without values.");
      fieldcreate(f, kind, {d[1], d[2], d[3]});
      takespace(f, h);
      return finish(false);
    }
    if (!sourceopen(src, data)) return finish(failed(f, kind, "  Couldn't read File (" + data + ")! Create empty field."));
  } else {
    start = h.vox_offset > niftidatastart ? roundnat(h.vox_offset) : niftidatastart;
  }
  if (!gooddims(d, rgb, components)) return finish(failed(f, kind, baddims(d)));
  if (code == 0)
    return finish(failed(f, kind, "  Bad datatype [" + nattext(h.bitpix) + "|" + nattext(h.datatype) +
                                      "]! Create empty field."));
  const tnatvector size{d[1], d[2], d[3]};
  const int64_t voxel = voxelbytes(code) * (rgb ? 1 : components);
  const __int128 count = static_cast<__int128>(d[1]) * d[2] * d[3];
  const utf16 dims = nattext(d[1]) + "x" + nattext(d[2]) + "x" + nattext(d[3]) + ")";
  if (src.size < start + count * voxel) {
    println("  Wrong file size! Header: " + nattext(start) + " +Dim: " + nattext(static_cast<int64_t>(count)) +
            " *Bytes: " + nattext(voxel));
    println("  Calculated typ (bytes):" +
            realtext(static_cast<double>(src.size - start) / static_cast<double>(count)));
    fieldcreate(f, kind, size);
    progress("  3DVector (Zero) with (" + dims, 1);
    progressend();
    takespace(f, h);
    return finish(false);
  }
  fieldcreate(f, kind, size);
  if (fieldempty(f) || !sourceseek(src, start)) return finish(false);
  read(f, src, code, swap, typelabel(code) + dims);
  takespace(f, h);
  return finish(true);
}

}  // namespace

bool vectorniftiload(tvectorfield& f, uint8_t kind, const utf16& name) {
  return orientationload(f, kind, name, 3, [](tvectorfield& v, tvoxelsource& src, int code, bool swap, const utf16& label) {
    if (code == 2024 || code == 2032) return readcolours(v, src, code, label);
    bool ok = false;
    eachstorage(v, [&](auto& a) {
      ok = readplanes(fieldsize(v), 3, src, code, swap, label, [&](int c, int64_t i, double x) { putcomponent(a, i, c, x); });
    });
    return ok;
  });
}

bool tensorniftiload(ttensorfield& f, uint8_t kind, const utf16& name) {
  return orientationload(f, kind, name, 6, [](ttensorfield& t, tvoxelsource& src, int code, bool swap, const utf16& label) {
    bool ok = false;
    withtensorvolumes(t, [&](auto& diagonal, auto& offdiagonal) {
      ok = readplanes(fieldsize(t), 6, src, code, swap, label, [&](int c, int64_t i, double x) {
        putcomponent(tensorvolume[c] == 0 ? diagonal : offdiagonal, i, tensorentry[c], x);
      });
    });
    return ok;
  });
}
