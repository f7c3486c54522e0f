// Arithmetic on 3-vectors and on lists of components.
#include "library/mathvector.h"

#include <algorithm>
#include <cmath>

// atan2 of sine and cosine parts stays exact near 0 and pi, where acos of the normalised
// dot product loses half its digits.
double vectorangle(const tvector& a, const tvector& b) { return std::atan2(vectorlength(cross(a, b)), dot(a, b)); }

tanglelimit anglelimit(double angle) {
  const double t = std::tan(angle);
  return {angle, t * t, angle > 1e-6 && angle < 1.5};
}

namespace {

double normof(std::span<const double> c, tnorm norm) {
  double result = 0;
  switch (norm) {
    case tnorm::smallest:
      for (const double x : c)
        if (x != 0 && (result == 0 || std::fabs(x) < result)) result = std::fabs(x);
      return result;
    case tnorm::euclidean:
      for (const double x : c) result += x * x;
      return std::sqrt(result);
    case tnorm::largest:
      for (const double x : c) result = std::max(result, std::fabs(x));
      return result;
  }
  return result;
}

}  // namespace

void normalise(std::span<double> components, tnorm norm) {
  const double n = normof(components, norm);
  for (double& x : components) x = n == 0 ? 0 : x / n;
}
