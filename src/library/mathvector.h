// Arithmetic on 3-vectors and on lists of components: the small pieces under the matrix
// and quaternion routines and the vector commands of the script.
#pragma once
#include <span>

#include "script/values.h"

tvector added(const tvector& a, const tvector& b);
tvector scaled(const tvector& a, double f);
double dot(const tvector& a, const tvector& b);
tvector cross(const tvector& a, const tvector& b);
double vectorlength(const tvector& a);
// The unit vector of the same direction; the zero vector stays zero.
tvector normalised(const tvector& a);
// The angle between two vectors in radians, 0..pi; 0 when either is zero.
double vectorangle(const tvector& a, const tvector& b);

// Which component length divides a list of components.
enum class tnorm { smallest, euclidean, largest };
// Each component divided by the chosen length of all. The smallest absolute component
// counts only non-zero components, so that the zeros of a short vector (<3, 4> has two
// more) don't make the norm 0. A norm of 0 leaves all components 0.
void normalise(std::span<double> components, tnorm norm);
