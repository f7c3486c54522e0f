#include "orientation/tensormeasures.h"

#include <cmath>

#include "field/imagefield.h"
#include "ops/slices.h"
#include "orientation/tensorvoxel.h"
#include "shell/console.h"

namespace {

constexpr double third = 0.3333333333333333;

double length(const tvector& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

tvector westin(const tvector& l) {
  const double s = l[0] + l[1] + l[2];
  if (s == 0) return {0, 0, 0};
  return {(l[0] - l[1]) / s, 2 * (l[1] - l[2]) / s, 3 * l[2] / s};
}

const char* measurelabel(tmeasure m) {
  switch (m) {
    case tmeasure::e1: return "  Calculate first eigenvalue (E1)";
    case tmeasure::e2: return "  Calculate second eigenvalue (E2)";
    case tmeasure::e3: return "  Calculate third eigenvalue (E3)";
    case tmeasure::fa: return "  Calculate fractional anisotropy (FA)";
    case tmeasure::ra: return "  Calculate relative anisotropy (RA)";
    case tmeasure::md: return "  Calculate mean (MD)";
    case tmeasure::radial: return "  Calculate transverse diffusion (radial or perpendicular)";
    case tmeasure::linear: return "  Calculate linear diffusion";
    case tmeasure::planar: return "  Calculate planar diffusion";
    case tmeasure::spherical: return "  Calculate spherical diffusion";
    case tmeasure::vr: return "  Calculate volume ratio (VR)";
  }
  return "";
}

const char* vectorlabel(tvectormeasure m) {
  switch (m) {
    case tvectormeasure::eigenvalues: return "  Calculate eigenvalues";
    case tvectormeasure::westin: return "  Calculate Westin measures";
    case tvectormeasure::westinrank: return "  Calculate ranked Westin measures";
    case tvectormeasure::vectormax: return "  Calculate first eigenvector";
    case tvectormeasure::vectormid: return "  Calculate second eigenvector";
    case tvectormeasure::vectormin: return "  Calculate third eigenvector";
  }
  return "";
}

// The target of a measure: the tensor field's size and place, made anew on another size.
template <class F>
bool preparetarget(const ttensorfield& t, F& out, uint8_t newkind, const char* word) {
  const tnatvector n = fieldsize(t), have = fieldsize(out);
  if (have != n) {
    fieldcreate(out, out.kind ? out.kind : newkind, n);
    println(utf16("  Assigned ") + word + " field (" + dimensionstext(out) + ") updated.");
  }
  out.space = t.space;
  return !fieldempty(out);
}

// Slice z of the tensors through `voxel(i, tensor)`; i is the 0-based linear index.
template <class Voxel>
void eachtensor(const ttensorfield& t, int64_t parallel, const char* label, Voxel voxel) {
  const tnatvector n = fieldsize(t);
  const int64_t area = n[0] * n[1];
  withtensorvolumes(t, [&](const auto& diagonal, const auto& offdiagonal) {
    tslicejob job{[&](int64_t z) {
                    for (int64_t i = (z - 1) * area; i < z * area; ++i) voxel(i, tensorat(diagonal, offdiagonal, i));
                  },
                  [](int64_t) {}};
    runslices(job, n[2], parallel, label);
  });
}

}  // namespace

double measureof(tmeasure m, const tvector& l) {
  const double mean = (l[0] + l[1] + l[2]) * third, s = l[0] + l[1] + l[2];
  const tvector dev{l[0] - mean, l[1] - mean, l[2] - mean};
  switch (m) {
    case tmeasure::e1: return l[0];
    case tmeasure::e2: return l[1];
    case tmeasure::e3: return l[2];
    case tmeasure::fa: return length(l) == 0 ? 0 : std::sqrt(1.5) * length(dev) / length(l);
    case tmeasure::ra: return mean == 0 ? 0 : std::sqrt(third) * length(dev) / mean;
    case tmeasure::md: return mean;
    case tmeasure::radial: return (l[1] + l[2]) * 0.5;
    case tmeasure::linear: return s == 0 ? 0 : (l[0] - l[1]) / s;
    case tmeasure::planar: return s == 0 ? 0 : 2 * (l[1] - l[2]) / s;
    case tmeasure::spherical: return s == 0 ? 0 : 3 * l[2] / s;
    case tmeasure::vr: return mean == 0 ? 0 : l[0] * l[1] * l[2] / (mean * mean * mean);
  }
  return 0;
}

double measurescale(tmeasure m) {
  return m == tmeasure::radial || m == tmeasure::linear || m == tmeasure::planar || m == tmeasure::spherical ||
                 m == tmeasure::vr
             ? 255
             : 128;
}

tvector vectormeasureof(tvectormeasure m, const tsymmetric& t) {
  if (zerotensor(t)) return {0, 0, 0};
  switch (m) {
    case tvectormeasure::eigenvalues: return eigenvalues(t);
    case tvectormeasure::westin: return westin(eigenvalues(t));
    case tvectormeasure::westinrank: {
      tvector w = westin(eigenvalues(t));
      if (w[2] >= 0.5) w[0] = w[1] = 0;
      if (w[1] >= 0.5) w[0] = w[2] = 0;
      if (w[0] >= 0.5) w[1] = w[2] = 0;
      return w;
    }
    case tvectormeasure::vectormax: return eigenvectors(t)[0];
    case tvectormeasure::vectormid: return eigenvectors(t)[1];
    case tvectormeasure::vectormin: return eigenvectors(t)[2];
  }
  return {0, 0, 0};
}

bool tensormeasure(const ttensorfield& t, tscalarfield& out, tmeasure m, int64_t parallel, uint8_t newkind) {
  if (!preparetarget(t, out, newkind, "scalar")) {
    println("Error! Empty scalarfield (result)!");
    return false;
  }
  const double scale = measurescale(m) * (out.kind == scalarfullgray ? 256 : 1);
  const int64_t top = out.kind == scalarfullgray ? 65535 : 255;
  const auto level = [&](const tsymmetric& x) {
    return zerotensor(x) ? 0 : clampround(measureof(m, eigenvalues(x)) * scale, top);
  };
  if (out.kind == scalargray) {
    uint8_t* v = out.gray.items();
    eachtensor(t, parallel, measurelabel(m), [&](int64_t i, const tsymmetric& x) { v[i] = static_cast<uint8_t>(level(x)); });
  } else if (out.kind == scalarfullgray) {
    uint16_t* v = out.full.items();
    eachtensor(t, parallel, measurelabel(m), [&](int64_t i, const tsymmetric& x) { v[i] = static_cast<uint16_t>(level(x)); });
  }
  return true;
}

bool tensorvectors(const ttensorfield& t, tvectorfield& out, tvectormeasure m, int64_t parallel, uint8_t newkind) {
  if (!preparetarget(t, out, newkind, "vector")) {
    println("Error! Empty vectorfield (result)!");
    return false;
  }
  const double scale = out.kind == vectorinteger ? 0x1p63 : out.kind == vectorrgb ? 255 : 1;
  eachstorage(out, [&](auto& a) {
    using C = typename std::remove_cvref_t<decltype(a)>::elementtype::value_type;
    auto* v = a.items();
    eachtensor(t, parallel, vectorlabel(m), [&](int64_t i, const tsymmetric& x) {
      const tvector r = vectormeasureof(m, x);
      v[i] = {toelement<C>(r[0] * scale), toelement<C>(r[1] * scale), toelement<C>(r[2] * scale)};
    });
  });
  return true;
}
