#include "orientation/vectorderive.h"

#include <algorithm>
#include <cmath>

#include "ops/slices.h"
#include "orientation/vectoraccess.h"
#include "shell/console.h"

namespace {

// The target at the size of the source; a new one announces itself.
template <class F>
bool fitfield(F& out, const tnatvector& size, uint8_t kind, const char* word) {
  if (fieldsize(out) != size) {
    fieldcreate(out, out.kind ? out.kind : kind, size);
    println("  Assigned " + utf16(word) + " field (" + dimensionstext(out) + ") updated.");
  }
  return fieldsize(out) == size;
}

// fill(z) writes slice z of the target by itself, reading only the source.
template <class Fill>
void eachslice(int64_t nz, int64_t parallel, const char* word, Fill fill) {
  runslices(tslicejob{fill, [](int64_t) {}}, nz, parallel, word);
}

template <class Value>
void toscalar(const tvectorfield& f, tscalarfield& out, uint8_t kind, int64_t parallel, const char* word,
              Value value) {
  const tnatvector size = fieldsize(f);
  if (fieldempty(f)) return;
  if (!fitfield(out, size, kind, "scalar")) {
    println("Error! Empty scalarfield (result)!");
    return;
  }
  out.space = f.space;
  eachstorage(f, [&](const auto& a) {
    eachstorage(out, [&](auto& s) {
      using S = std::remove_cvref_t<decltype(s)>;
      eachslice(size[2], parallel, word, [&](int64_t z) {
        for (int64_t y = 1; y <= size[1]; ++y)
          for (int64_t x = 1; x <= size[0]; ++x) s.put(x, y, z, voxelof<S>(value(readvector(a.get(x, y, z)))));
      });
      s.sorted = false;
    });
  });
}

template <class D, class O>
void tensorslices(const tvectorfield& f, D& diagonal, O& offdiagonal, int64_t parallel) {
  using TD = typename D::elementtype;
  using TO = typename O::elementtype;
  const tnatvector size = fieldsize(f);
  eachstorage(f, [&](const auto& a) {
    const int64_t area = size[0] * size[1];
    eachslice(size[2], parallel, "  Calculate orientation tensors", [&](int64_t z) {
      const auto* in = a.items() + (z - 1) * area;
      TD* d = diagonal.items() + (z - 1) * area;
      TO* o = offdiagonal.items() + (z - 1) * area;
      for (int64_t i = 0; i < area; ++i) {
        const tvector v = readvector(in[i]);
        d[i] = writevector<TD>({v[0] * v[0], v[1] * v[1], v[2] * v[2]});
        o[i] = writevector<TO>({v[0] * v[1], v[0] * v[2], v[1] * v[2]});
      }
    });
  });
  diagonal.sorted = offdiagonal.sorted = false;
}

}  // namespace

void vectorlengths(const tvectorfield& f, tscalarfield& out, uint8_t kind, int64_t parallel) {
  toscalar(f, out, kind, parallel, "  Calculate vector lengths", [](const tvector& v) { return vectorlength(v); });
}

void vectorcomponents(const tvectorfield& f, int axis, tscalarfield& out, uint8_t kind, int64_t parallel) {
  static const char* const words[] = {"  Get vector x values", "  Get vector y values", "  Get vector z values"};
  const int c = std::clamp(axis, 1, 3) - 1;
  toscalar(f, out, kind, parallel, words[c], [c](const tvector& v) { return v[c]; });
}

void orientationtensors(const tvectorfield& f, ttensorfield& out, uint8_t kind, int64_t parallel) {
  if (fieldempty(f)) return;
  if (!fitfield(out, fieldsize(f), kind, "tensor")) {
    println("Error! Empty tensorfield (result)!");
    return;
  }
  out.space = f.space;
  if (out.kind == vectorfloat) tensorslices(f, out.diagonal, out.offdiagonal, parallel);
  if (out.kind == vectorinteger) tensorslices(f, out.intdiagonal, out.intoffdiagonal, parallel);
}

namespace {

inline double gap(double a, double b) { return std::abs(a - b); }

tvector singlefactor(const tvector& v) {
  const double m = std::max({v[0], v[1], v[2]});
  if (m == 0) return {0, 0, 0};
  const double a = v[0] / m, b = v[1] / m, c = v[2] / m;
  const double ab = gap(a, b), ac = gap(a, c), bc = gap(b, c);
  return {ab * 0.25 + ac * 0.25 + bc * 0.5, ab * 0.25 + ac * 0.5 + bc * 0.25, (ab + ac + bc) / 3};
}

tvector pairfactor(const tvector& v, const tvector& w) {
  const double u[6] = {v[0], v[1], v[2], w[0], w[1], w[2]};
  const double m = *std::max_element(u, u + 6);
  if (m == 0) return {0, 0, 0};
  tvector r{0, 0, 0};
  for (int i = 0; i < 6; ++i)
    for (int j = i + 1; j < 6; ++j) {
      const double d = gap(u[i], u[j]) / m;
      r[0] += d * 0.2 * (i + 1);
      r[1] += d * 0.2 * (j + 1);
      r[2] += d * 0.2 * (j - i);
    }
  return r;
}

// The factor of the kinds: floats as they are, integers * 37836, bytes * 147.
template <class C>
constexpr double factorscale() {
  if constexpr (std::is_floating_point_v<C>)
    return 1;
  else if constexpr (sizeof(C) == 1)
    return 147;
  else
    return 37836;
}

// out := op(i) for each voxel index i of f, then the place rule of the factor.
template <class Op>
void factorfield(const tvectorfield& f, tvectorfield& out, Op op) {
  fieldcreate(out, f.kind, fieldsize(f));
  tvector last{0, 0, 0};
  eachstorage(out, [&](auto& a) {
    using E = vectorelement<decltype(a)>;
    const double scale = factorscale<typename E::value_type>();
    E* p = a.items();
    for (int64_t i = 0; i < a.length; ++i) p[i] = writevector<E>(scaled(op(i), scale));
    a.sorted = false;
    if (a.length > 0) last = readvector(p[a.length - 1]);
  });
  out.space = f.space;
  setoffset(out.space, scaled(last, -1));
}

template <class Op>
void readeach(const tvectorfield& f, Op op) {
  eachstorage(f, [&](const auto& a) { op([&a](int64_t i) { return readvector(a.items()[i]); }); });
}

}  // namespace

void distancefactor(const tvectorfield& f, tvectorfield& out) {
  readeach(f, [&](auto at) { factorfield(f, out, [&](int64_t i) { return singlefactor(at(i)); }); });
}

bool distancefactor(const tvectorfield& f, const tvectorfield& g, tvectorfield& out) {
  if (vectorcount(f) != vectorcount(g)) return false;
  readeach(f, [&](auto first) {
    readeach(g, [&](auto second) {
      factorfield(f, out, [&](int64_t i) { return pairfactor(first(i), second(i)); });
    });
  });
  return true;
}

void fusevectors(const tvectorfield& f, const tscalarfield& s, timagefield& image, uint8_t kind) {
  const tnatvector vs = fieldsize(f), ss = fieldsize(s);
  if (fieldempty(image)) {
    fieldcreate(image, kind, {std::min(vs[0], ss[0]), std::min(vs[1], ss[1]), 1});
    image.space = f.space;
  } else {
    println("Attention, target field seems not to be empty!");
  }
  const int64_t nz = vs[2];
  if (nz <= 2) return;
  const int64_t nx = imagesizex(image), ny = imagesizey(image);
  eachstorage(f, [&](const auto& a) {
    for (int64_t y = 1; y <= ny; ++y) {
      progress("  Fusion", static_cast<double>(y - 1) / ny);
      for (int64_t x = 1; x <= nx; ++x) {
        int64_t best = 0, at = 0;
        for (int64_t z = 1; z <= nz; ++z) {
          const int64_t v = getvalue(s, x, y, z);
          if (v > best) best = v, at = z;
        }
        trgb colour{0, 0, 0};
        if (at >= 2 && at <= nz - 1) {
          const tvector v = readvector(a.getchecked(x, y, at));
          colour = {roundnat(v[0]), roundnat(v[1]), roundnat(v[2])};
        }
        setrgb(image, x, y, colour);
      }
    }
    progressend();
  });
}
