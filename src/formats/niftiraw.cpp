#include "formats/niftiraw.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "field/owned.h"
#include "shell/console.h"

namespace {

// ---- voxel types -----------------------------------------------------------------------

template <class C, int N>
struct tcolour {
  C c[N];
};
struct textended {
  uint8_t b[10];
};

template <class T>
constexpr bool iscolour = false;
template <class C, int N>
constexpr bool iscolour<tcolour<C, N>> = true;

template <class T>
T decode(const uint8_t* p, bool swap) {
  T v;
  if constexpr (iscolour<T>) {
    std::memcpy(&v, p, sizeof v);  // channels keep their order and bytes
  } else if (swap) {
    uint8_t b[sizeof(T)];
    for (size_t i = 0; i < sizeof(T); ++i) b[i] = p[sizeof(T) - 1 - i];
    std::memcpy(&v, b, sizeof v);
  } else {
    std::memcpy(&v, p, sizeof v);
  }
  return v;
}

// The 80-bit extended real: 64 bits of mantissa with the integer bit, 15 of exponent, sign.
double extendedvalue(const textended& e) {
  uint64_t mantissa = 0;
  std::memcpy(&mantissa, e.b, 8);
  const int exponent = (e.b[8] | e.b[9] << 8) & 0x7FFF;
  const bool negative = (e.b[9] & 0x80) != 0;
  double v;
  if (exponent == 0x7FFF)
    v = (mantissa << 1) == 0 ? std::numeric_limits<double>::infinity() : std::numeric_limits<double>::quiet_NaN();
  else
    v = std::ldexp(static_cast<double>(mantissa), exponent - 16383 - 63);
  return negative ? -v : v;
}

// A voxel as a real, for the float types.
template <class T>
double realvalue(const T& v) {
  if constexpr (std::same_as<T, textended>)
    return extendedvalue(v);
  else
    return static_cast<double>(v);
}

template <class T>
constexpr bool isreal = std::is_floating_point_v<T> || std::same_as<T, textended>;

// Calls op with a default-constructed value of the type that the code names.
template <class Op>
bool withvoxeltype(int code, Op op) {
  switch (code) {
    case 8: op(uint8_t{}); return true;
    case -8: op(int8_t{}); return true;
    case 16: op(uint16_t{}); return true;
    case -16: op(int16_t{}); return true;
    case 32: op(uint32_t{}); return true;
    case -32: op(int32_t{}); return true;
    case 64: op(uint64_t{}); return true;
    case -64: op(int64_t{}); return true;
    case 1032: op(float{}); return true;
    case 1064: op(double{}); return true;
    case 1080: op(textended{}); return true;
    case 2024: op(tcolour<uint8_t, 3>{}); return true;
    case 2032: op(tcolour<uint8_t, 4>{}); return true;
    case 3024: op(tcolour<uint16_t, 3>{}); return true;
    case 3032: op(tcolour<uint16_t, 4>{}); return true;
  }
  return false;
}

// ---- the conversion --------------------------------------------------------------------

// What a voxel becomes, decided once per read.
struct trule {
  bool filter = false;  // (v + add) then * mul or / -mul
  int64_t add = 0;
  int64_t mul = 1;
  double low = 0, high = 0;  // float voxels without filter: this range maps onto the kind
};

// The filter on an integer: exact in 128 bits, division toward zero.
template <class T>
__int128 filtered(T v, const trule& r) {
  __int128 w = static_cast<__int128>(v) + r.add;
  if (r.mul >= 2) w *= r.mul;
  if (r.mul < 0) w /= -static_cast<__int128>(r.mul);
  return w;
}

double filteredreal(double v, const trule& r) {
  v += static_cast<double>(r.add);
  if (r.mul >= 2) v *= static_cast<double>(r.mul);
  if (r.mul < 0) v /= -static_cast<double>(r.mul);
  return v;
}

template <class E>
E clampedvalue(__int128 w) {
  constexpr __int128 top = std::numeric_limits<E>::max();
  return static_cast<E>(w < 0 ? 0 : w > top ? top : w);
}

// One voxel of type T as element E of the field: bool (mono), uint8_t (gray) or uint16_t.
template <class E, class T>
E convertvoxel(const T& v, const trule& r) {
  constexpr bool mono = std::same_as<E, bool>;
  if constexpr (iscolour<T>) {
    int64_t sum = 0;
    for (int k = 0; k < 3; ++k) sum += v.c[k];
    constexpr bool bytes = sizeof(v.c[0]) == 1;
    if constexpr (mono) return sum / 3 > 0x7F;
    // Byte colours on a word field keep their sum, deliberately: 0..765.
    else if constexpr (bytes && std::same_as<E, uint16_t>) return static_cast<E>(sum);
    else return clampedvalue<E>(sum / 3);
  } else if constexpr (isreal<T>) {
    const double x = realvalue(v);
    if (r.filter) {
      const double w = filteredreal(x, r);
      if constexpr (mono) return w > 0;
      else return toelement<E>(w);
    }
    if constexpr (mono) {
      return std::fma(1 / (r.high - r.low), x - r.low, 0.0) >= 0.5;
    } else {
      // The rounding map of low..high onto the kind's range.
      constexpr double top = std::numeric_limits<E>::max();
      return toelement<E>(std::fma(top / (r.high - r.low), x - r.low, 0.0));
    }
  } else {
    constexpr int bits = sizeof(T) * 8;
    if constexpr (mono) {
      if (std::is_signed_v<T> || r.filter) return filtered(v, r) > 0;
      return v > (std::numeric_limits<T>::max() >> 1);
    } else {
      if (r.filter) return clampedvalue<E>(filtered(v, r));
      // The top bits, signed types moved so that their range starts at 0.
      constexpr int keep = sizeof(E) * 8;
      using U = std::make_unsigned_t<T>;
      const auto biased = static_cast<U>(static_cast<U>(v) ^ (std::is_signed_v<T> ? U(1) << (bits - 1) : U(0)));
      if constexpr (bits > keep) return static_cast<E>(biased >> (bits - keep));
      else return static_cast<E>(biased);
    }
  }
}

// n voxels from p into the field's elements first .. first + n - 1 (0-based).
template <class T, class A>
void convertblock(const uint8_t* p, int64_t n, bool swap, A& a, int64_t first, const trule& r) {
  using E = typename A::elementtype;
  if constexpr (std::same_as<E, bool>) {
    uint8_t* bits = a.data;
    for (int64_t k = 0; k < n; ++k, p += sizeof(T)) {
      const int64_t i = first + k;
      const auto mask = static_cast<uint8_t>(1u << (i & 7));
      if (convertvoxel<E>(decode<T>(p, swap), r))
        bits[i >> 3] |= mask;
      else
        bits[i >> 3] &= static_cast<uint8_t>(~mask);
    }
  } else {
    E* out = a.items() + first;
    for (int64_t k = 0; k < n; ++k, p += sizeof(T)) out[k] = convertvoxel<E>(decode<T>(p, swap), r);
  }
}

template <class T>
void minmaxblock(const uint8_t* p, int64_t n, bool swap, double& low, double& high) {
  for (int64_t k = 0; k < n; ++k, p += sizeof(T)) {
    const double x = realvalue(decode<T>(p, swap));
    if (x < low) low = x;
    if (x > high) high = x;
  }
}

utf16 sizewords(const tnatvector& s) { return nattext(s[0]) + "x" + nattext(s[1]) + "x" + nattext(s[2]); }

const char* typelabel(int code) {
  switch (code) {
    case 1080: return "80Float";
    case 1064: return "64Float";
    case 1032: return "32Float";
    case -64: return "-64Grey";
    case 64: return "64Grey";
    case -32: return "-32Grey";
    case 32: return "32Grey";
    case -16: return "-Fullgrey";
    case 16: return "Fullgrey";
    case -8: return "-Grey";
    case 2024: return "RGB";
    case 2032: return "RGBA";
    case 3024: return "FullRGB";
    case 3032: return "FullRGBA";
  }
  return "";
}

// One pass over the voxels, in blocks of whole rows of at most 1,048,575 voxels; visit
// gets each block and the index of its first voxel. False when the data ended early.
template <class Visit>
bool eachblock(tvoxelsource& src, const trawvolume& r, const utf16& label, double from, double to, Visit visit) {
  const int64_t bytes = voxelbytes(r.code);
  const int64_t total = fieldcount(r.size[0], r.size[1], r.size[2]);
  const int64_t rows = std::max<int64_t>(1, 1048575 / std::max<int64_t>(r.size[0], 1));
  const int64_t step = std::min(total, rows * r.size[0]);
  tlocalarray<tbytelist> rowbuffer;
  tbytelist& buffer = *rowbuffer;
  if (!src.packed) {
    buffer.create(step * bytes);
    if (buffer.length < step * bytes) return false;
  }
  bool complete = true;
  for (int64_t done = 0; done < total;) {
    const int64_t n = std::min(step, total - done);
    const uint8_t* p = sourcetake(src, n * bytes, buffer);
    if (!p) {
      complete = false;
      break;
    }
    visit(p, n, done);
    done += n;
    progress(label, from + (to - from) * static_cast<double>(done) / static_cast<double>(total));
  }
  progressend();
  return complete;
}

}  // namespace

bool knowntypecode(int code) {
  return withvoxeltype(code, [](auto) {});
}

const char* progressword(uint8_t kind) {
  switch (kind) {
    case scalarmono: return "Mono";
    case scalargray: return "Grey";
  }
  return "Fullgrey";
}

bool rawread(tscalarfield& f, uint8_t kind, tvoxelsource& src, const trawvolume& r) {
  fieldcreate(f, kind, r.size);
  const utf16 head = "  3D" + utf16(progressword(kind));
  const utf16 dims = ") with (" + sizewords(r.size) + ")";
  if (!knowntypecode(r.code)) {
    progress(head + " (" + nattext(r.code) + " - unknown type" + dims, 0);
    progressend();
    return false;
  }
  if (fieldempty(f)) return true;
  trule rule{};
  rule.add = r.filteradd;
  rule.mul = r.filtermul;
  rule.filter = r.filtermul < 0 || r.filtermul > 1 || r.filteradd != 0;
  const bool real = r.code >= 1032 && r.code <= 1080;
  const bool mapped = real && !rule.filter;
  const bool found = mapped && !(r.calmax - r.calmin > 0);
  const utf16 type = utf16(typelabel(r.code)) + (rule.filter ? "_f" : found ? "_a" : mapped ? "_o" : "");
  const utf16 label = empty(type) ? head + " with (" + sizewords(r.size) + ")" : head + " (" + type + dims;
  const int64_t start = src.position;
  bool complete = true;
  rule.low = r.calmin, rule.high = r.calmax;
  if (found) {
    // The first pass finds the range that the second maps.
    rule.low = std::numeric_limits<double>::infinity();
    rule.high = -std::numeric_limits<double>::infinity();
    withvoxeltype(r.code, [&](auto t) {
      using T = decltype(t);
      if constexpr (isreal<T>)
        complete = eachblock(src, r, label, 0, 0.5, [&](const uint8_t* p, int64_t n, int64_t) {
          minmaxblock<T>(p, n, r.swap, rule.low, rule.high);
        });
    });
    complete = complete && sourceseek(src, start);
  }
  // Voxels that the field keeps as they lie in a plain file go straight into it.
  const bool same = (r.code == 16 && kind == scalarfullgray) || (r.code == 8 && kind == scalargray);
  if (same && !rule.filter && !r.swap) {
    bool given = false;
    eachstorage(f, [&](auto& a) {
      given = src.packed ? sourcegive(src, a, a.length) : sourceread(src, a.data, a.length * a.element, label);
    });
    if (given && src.packed) progress(label, 1);
    if (given || !src.packed) {
      progressend();
      return true;
    }
  }
  if (complete && (!mapped || rule.high - rule.low > 0)) {
    withvoxeltype(r.code, [&](auto t) {
      using T = decltype(t);
      eachstorage(f, [&](auto& a) {
        eachblock(src, r, label, found ? 0.5 : 0, 1, [&](const uint8_t* p, int64_t n, int64_t first) {
          convertblock<T>(p, n, r.swap, a, first, rule);
        });
      });
    });
  }
  if (mapped) {
    const utf16 range = "  New min (" + realtext(rule.low) + ") max (" + realtext(rule.high) + ") values -> ";
    if (kind == scalarmono)
      println(range + "threshold=" + realtext((rule.low + rule.high) / 2) + "!");
    else
      println(range + "0.." + nattext(kindmaximum(kind)) + "!");
  }
  return true;
}
