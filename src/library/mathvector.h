// Arithmetic on 3-vectors and on lists of components: the small pieces under the matrix
// and quaternion routines and the vector commands of the script.
#pragma once
#include <cmath>
#include <span>

#include "script/values.h"

// The smallest pieces are inline: tracers and samplers call them once a step.
inline tvector added(const tvector& a, const tvector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline tvector scaled(const tvector& a, double f) { return {a[0] * f, a[1] * f, a[2] * f}; }
inline double dot(const tvector& a, const tvector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline tvector cross(const tvector& a, const tvector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double vectorlength(const tvector& a) { return std::sqrt(dot(a, a)); }
// The unit vector of the same direction; the zero vector stays zero.
inline tvector normalised(const tvector& a) {
  const double n = vectorlength(a);
  return n == 0 ? tvector{0, 0, 0} : scaled(a, 1 / n);
}
// The angle between two vectors in radians, 0..pi; 0 when either is zero.
double vectorangle(const tvector& a, const tvector& b);

// "vectorangle(a, b) > angle" for a fixed angle, tested once a step by tracers. Where the
// tangent settles it with room to spare, no arc tangent is taken; the answer is always the
// one of vectorangle.
struct tanglelimit {
  double angle = 0;
  double tansquared = 0;
  bool bytangent = false;  // 1e-6 < angle < 1.5: tan(angle)^2 is a normal number
};
tanglelimit anglelimit(double angle);
inline bool anglebeyond(const tvector& a, const tvector& b, const tanglelimit& l) {
  const double d = dot(a, b);
  if (l.bytangent && d > 1e-100 && d < 1e100) {
    // At a positive dot product the angle grows with |a x b| / (a . b). A relative margin
    // of 1e-9 lies far above the rounding of this test and of the arc tangent's way.
    const tvector c = cross(a, b);
    const double crosssquared = dot(c, c), limit = d * d * l.tansquared;
    if (crosssquared < limit * (1 - 1e-9)) return false;
    if (crosssquared > limit * (1 + 1e-9) && crosssquared < HUGE_VAL) return true;
  }
  return vectorangle(a, b) > l.angle;
}

// Which component length divides a list of components.
enum class tnorm { smallest, euclidean, largest };
// Each component divided by the chosen length of all. The smallest absolute component
// counts only non-zero components, so that the zeros of a short vector (<3, 4> has two
// more) don't make the norm 0. A norm of 0 leaves all components 0.
void normalise(std::span<double> components, tnorm norm);
