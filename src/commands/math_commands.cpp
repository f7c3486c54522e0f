// Vector, matrix and quaternion arithmetic.
#include <numbers>
#include <type_traits>
#include <utility>

#include "commands/families.h"
#include "library/matheigen.h"
#include "library/mathmatrix.h"
#include "library/mathquaternion.h"
#include "library/mathtext.h"
#include "library/mathvector.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

// A parameter read by the type that a routine takes.
template <class T>
T read(const utf16& text);
template <>
double read<double>(const utf16& text) { return textreal(text); }
template <>
tvector read<tvector>(const utf16& text) { return textvector(text); }
template <>
tmatrix read<tmatrix>(const utf16& text) { return textmatrix(text); }
template <>
tquaternion read<tquaternion>(const utf16& text) { return quaternion(texthyper(text)); }

// A result printed by its type. Quaternions always show all four numbers, since the
// shortest form would drop a zero w and read back as another rotation.
utf16 shown(const utf16& text) { return text; }
utf16 shown(double x) { return realtext(x); }
utf16 shown(const tvector& v) { return vectortext(v); }
utf16 shown(const thyper& h) { return hypertext(h); }
utf16 shown(const tmatrix& m) { return matrixtext(m); }
utf16 shown(const tquaternion& q) { return fullhypertext(hyperof(q)); }

// Words joined by blanks: each a full vector, or each a number.
utf16 shown(const trows& rows) {
  utf16 out;
  for (const tvector& v : rows) {
    if (!empty(out)) append(out, " ");
    append(out, fullvectortext(v));
  }
  return out;
}

// The handler of a routine: exactly one parameter per argument, each read by its type,
// and the result printed by its type.
template <class R, class... A>
void callroutine(tscript& s, R (*routine)(A...)) {
  if (!checkparams(s, sizeof...(A))) return;
  [&]<size_t... I>(std::index_sequence<I...>) {
    setresult(s, shown(routine(read<std::remove_cvref_t<A>>(param(s, static_cast<int64_t>(I) + 1))...)));
  }(std::index_sequence_for<A...>{});
}

template <auto routine>
void call(tscript& s) {
  callroutine(s, routine);
}

double angle(const tvector& a, const tvector& b) { return angleout(vectorangle(a, b)); }
tquaternion quat(const tvector& axis, double angle) { return axisangle(axis, anglein(angle)); }
double quatangle(const tquaternion& q) { return angleout(rotationangle(q)); }

template <int row>
thyper matrixv(const tmatrix& m) {
  return matrixrow(m, row);
}

template <int k>
double eigenvalue(const tmatrix& m) {
  return eigenvalues(symmetricpart(m))[k - 1];
}

template <int k>
tvector eigenvector(const tmatrix& m) {
  return eigenvectors(symmetricpart(m))[k - 1];
}

tvector matrixeigen(const tmatrix& m) { return eigenvalues(symmetricpart(m)); }
double matrixfa(const tmatrix& m) { return anisotropy(symmetricpart(m)); }

tmatrix buildmatrix(const tvector& v1, const tvector& v2, const tvector& v3, const tvector& scale, const tvector& offset) {
  return framematrix({v1, v2, v3}, scale, offset);
}

utf16 matrixvectors(const tmatrix& m) { return iszero(m) ? utf16() : shown(vectorpart(m)); }

utf16 matrixspace(const tmatrix& m) {
  if (iszero(m)) return utf16();
  const trows r = vectorpart(m);
  utf16 out;
  for (const tvector& v : {r[0], r[1], r[2], translation(m)})
    for (const double x : v) {
      if (!empty(out)) append(out, " ");
      append(out, realtext(x));
    }
  return out;
}

// A matrix gives its rotation; two vectors, or their six numbers, the frame they span.
void matrixrotation(tscript& s) {
  if (paramcount(s) == 1) {
    setresult(s, shown(rotationrows(textmatrix(param(s, 1)))));
  } else if (paramcount(s) == 2) {
    setresult(s, shown(framerows(textvector(param(s, 1)), textvector(param(s, 2)))));
  } else if (paramcount(s) == 6) {
    const tvector a{textreal(param(s, 1)), textreal(param(s, 2)), textreal(param(s, 3))};
    const tvector b{textreal(param(s, 4)), textreal(param(s, 5)), textreal(param(s, 6))};
    setresult(s, shown(framerows(a, b)));
  } else {
    reportcount(s, 1);
  }
}

// Each parameter normalised on its own; the results joined by blanks.
template <tnorm norm>
void normcommand(tscript& s) {
  if (paramcount(s) < 1) {
    reportmin(s, 1);
    return;
  }
  utf16 out;
  for (int64_t i = 1; i <= paramcount(s); ++i) {
    thyper h = texthyper(param(s, i));
    normalise(h, norm);
    if (i > 1) append(out, " ");
    append(out, hypertext(h));
  }
  setresult(s, out);
}

constexpr double pi = std::numbers::pi;

// Constants print with twelve significant digits; they are the multiples of pi a/b.
template <int a, int b>
void constant(tscript& s) {
  setresult(s, significanttext(pi * a / b, 12));
}

using enum tcommandkind;

constexpr tcommand rows[] = {
    {"math.2*pi", variablefunction, constant<2, 1>, nullptr, "a := math.2*pi // 6.28318530718"},
    {"math.360°", variablefunction, constant<2, 1>, nullptr, "a := math.360° // 6.28318530718"},
    {"math.pi", variablefunction, constant<1, 1>, nullptr, "a := math.pi // 3.14159265359"},
    {"math.180°", variablefunction, constant<1, 1>, nullptr, "a := math.180° // 3.14159265359"},
    {"math.pi/2", variablefunction, constant<1, 2>, nullptr, "a := math.pi/2 // 1.57079632679"},
    {"math.90°", variablefunction, constant<1, 2>, nullptr, "a := math.90° // 1.57079632679"},
    {"math.pi/4", variablefunction, constant<1, 4>, nullptr, "a := math.pi/4 // 0.785398163397"},
    {"math.45°", variablefunction, constant<1, 4>, nullptr, "a := math.45° // 0.785398163397"},
    {"math.minnorm", function, normcommand<tnorm::smallest>, nullptr, "a := math.minnorm <2, 4, 8> // each vector divided by its smallest non-zero component"},
    {"math.norm", function, normcommand<tnorm::euclidean>, nullptr, "a := math.norm <3, 4> // each vector divided by its length"},
    {"math.maxnorm", function, normcommand<tnorm::largest>, nullptr, "a := math.maxnorm <2, 4, 8> // each vector divided by its largest component"},
    {"math.length", function, call<vectorlength>, nullptr, "a := math.length <3, 4> // length of a vector"},
    {"math.angle", function, call<angle>, nullptr, "a := math.angle <1, 0> <0, 1> // angle between two vectors (math.degree)"},
    {"matrix2quat", function, call<matrixquaternion>, nullptr, "a := matrix2quat m // quaternion of the rotation of a matrix"},
    {"quat2matrix", function, call<quaternionmatrix>, nullptr, "a := quat2matrix q // rotation matrix of a quaternion"},
    {"quat", function, call<quat>, nullptr, "a := quat <0, 0, 1> 90° // quaternion <x, y, z, w> of a rotation about an axis"},
    {"quat.vector", function, call<rotationaxis>, nullptr, "a := quat.vector q // axis of the rotation"},
    {"quat.angle", function, call<quatangle>, nullptr, "a := quat.angle q // angle of the rotation (math.degree)"},
    {"quat.conjugate", function, call<conjugate>, nullptr, "a := quat.conjugate q // conjugate quaternion: the inverse rotation"},
    {"quat.mul", function, call<hamilton>, nullptr, "a := quat.mul q1 q2 // Hamilton product q1 q2"},
    {"quat.join", function, call<joined>, nullptr, "a := quat.join q1 q2 // rotation q1 followed by rotation q2"},
    {"quat.transform", function, call<rotated>, nullptr, "a := quat.transform q <1, 0, 0> // rotated vector"},
    {"matrix.trace", function, call<trace>, nullptr, "a := matrix.trace m // trace of the 3x3 part"},
    {"matrix.v1", function, call<matrixv<1>>, nullptr, "a := matrix.v1 m // first row"},
    {"matrix.v2", function, call<matrixv<2>>, nullptr, "a := matrix.v2 m // second row"},
    {"matrix.v3", function, call<matrixv<3>>, nullptr, "a := matrix.v3 m // third row"},
    {"matrix.v4", function, call<matrixv<4>>, nullptr, "a := matrix.v4 m // fourth row: the translation"},
    {"matrix.rotation", function, matrixrotation, nullptr, "a := matrix.rotation m // rotation as three vectors; of two vectors: the frame they span"},
    {"matrix.rotation.get", function, call<rotationmatrix>, nullptr, "a := matrix.rotation.get m // rotation as a matrix"},
    {"matrix.scale", function, call<scalematrix>, nullptr, "a := matrix.scale <1, 2, 3> // scaling matrix"},
    {"matrix.scale.get", function, call<rowlengths>, nullptr, "a := matrix.scale.get m // lengths of the three vectors"},
    {"matrix.move", function, call<movematrix>, nullptr, "a := matrix.move <1, 2, 3> // translation matrix"},
    {"matrix.move.get", function, call<translation>, nullptr, "a := matrix.move.get m // translation"},
    {"matrix.eigen", function, call<matrixeigen>, nullptr, "a := matrix.eigen m // eigenvalues of the symmetric 3x3 part, largest first"},
    {"matrix.e1", function, call<eigenvalue<1>>, nullptr, "a := matrix.e1 m // first eigenvalue"},
    {"matrix.e2", function, call<eigenvalue<2>>, nullptr, "a := matrix.e2 m // second eigenvalue"},
    {"matrix.e3", function, call<eigenvalue<3>>, nullptr, "a := matrix.e3 m // third eigenvalue"},
    {"matrix.ev1", function, call<eigenvector<1>>, nullptr, "a := matrix.ev1 m // first eigenvector"},
    {"matrix.ev2", function, call<eigenvector<2>>, nullptr, "a := matrix.ev2 m // second eigenvector"},
    {"matrix.ev3", function, call<eigenvector<3>>, nullptr, "a := matrix.ev3 m // third eigenvector"},
    {"matrix.fa", function, call<matrixfa>, nullptr, "a := matrix.fa m // fractional anisotropy of the symmetric 3x3 part"},
    {"matrix.transpose", function, call<transposed>, nullptr, "a := matrix.transpose m // transposed matrix"},
    {"matrix.inverse", function, call<inverted>, nullptr, "a := matrix.inverse m // inverse matrix; zero if there is none"},
    {"matrix.join", function, call<product>, nullptr, "a := matrix.join m1 m2 // m1 followed by m2"},
    {"matrix.transform", function, call<transformed>, nullptr, "a := matrix.transform m <1, 2, 3> // mapped point"},
    {"matrix", function, call<buildmatrix>, nullptr, "a := matrix <1, 0, 0> <0, 1, 0> <0, 0, 1> <1, 1, 1> <0, 0, 0> // matrix of axes, scale, offset"},
    {"matrix.vector", function, call<matrixvectors>, nullptr, "a := matrix.vector m // the three vectors"},
    {"matrix.space", function, call<matrixspace>, nullptr, "a := matrix.space m // the twelve numbers of vectors and translation"},
};

}  // namespace

tcommandfamily mathcommands() { return {"", rows}; }
