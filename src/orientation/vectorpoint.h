// Vector commands that change each voxel on its own: direction, normalising, lengths,
// erasing and the background. Each works through the read and write of vectoraccess.h;
// a field without storage is left alone.
#pragma once
#include <cstdint>

#include "field/vectorfield.h"

// What a unit vector becomes in the field's kind: 1, 255 for rgb, 2^64 for integers.
double kindscale(const tvectorfield& f);

// Negates each vector v with |v + (1, 1, 1)| < |v|; float and integer kinds only.
void pointdirection(tvectorfield& f);
// (1/x, 1/y, 1/z) with zero components kept; float kind only.
void invertvectors(tvectorfield& f);

enum class tnormkind { length, min, max, relative };
// v divided by |v|, min(x, y, z), max(x, y, z) or the field's largest |v|, times the kind's
// scale; a divisor of 0 gives the zero vector.
void normvectors(tvectorfield& f, tnormkind kind);
// (v / |v|) * s, or with `relative` (v / M) * s for M the largest |v|; zero stays zero.
void setlengths(tvectorfield& f, double s, bool relative);
// Vectors shorter than s (above = false) or longer than s (above = true) become zero.
void eraselengths(tvectorfield& f, double s, bool above);

// The mean of all vectors, zero ones included, into f.background.
void scanbackground(tvectorfield& f);
// Every vector whose angle to the background is no number or above 2 pi becomes the
// background. Angles lie in 0..pi, so only vectors without an angle (zero ones, or all of
// them for a zero background) are replaced.
void cleanupvectors(tvectorfield& f);

// The largest |v| of the field, 0 when empty.
double longestvector(const tvectorfield& f);
double shortestvector(const tvectorfield& f);
// Vectors whose length lies in lo..hi, both included.
int64_t countlengths(const tvectorfield& f, double lo, double hi);
// True when every vector equals the first one; an empty field is plain.
bool plainvectors(const tvectorfield& f);

// v + a and v * a, component by component.
void addvector(tvectorfield& f, const tvector& a);
void mulvector(tvectorfield& f, const tvector& a);
