// The value notation: how text becomes numbers, vectors and booleans, and how numbers
// print back. The only expression evaluator of the language lives here.
#pragma once
#include <array>
#include <cstdint>
#include <numbers>
#include <span>
#include <string>

#include "script/utf16.h"

using tvector = std::array<double, 3>;
using thyper = std::array<double, 4>;
using tcomplex = std::array<double, 2>;
using tnatvector = std::array<int64_t, 3>;
using tnathyper = std::array<int64_t, 4>;

// Process-wide number settings (math.* commands).
struct tnumbersettings {
  bool scientific = false;
  bool decimal = true;  // '.' and ", " when on; ',' and "; " when off
  bool digit = false;
  int64_t leading = 0;
  int64_t trailing = 0;
  bool degree = false;
  bool vector = false;
  bool matrix = false;
};
extern tnumbersettings numbersettings;

// Save and restore scientific, decimal and digit together; writers force '.' this way.
struct tnumberformat {
  bool scientific, decimal, digit;
};
tnumberformat savenumberformat();
void restorenumberformat(const tnumberformat& saved);

// Readers. Each consuming form removes what it read from the front of the text.
double textreal(const utf16& text);
// A text of an optional minus and 1 to 15 decimal digits, which every reader takes as that
// whole number exactly; false for any other text.
bool shortinteger(const utf16& text, int64_t& value);
int64_t textnat(const utf16& text);
bool textbool(const utf16& text);
double cutreal(utf16& text);
int64_t cutnat(utf16& text);
tvector textvector(const utf16& text);
thyper texthyper(const utf16& text);
tcomplex textcomplex(const utf16& text);
tnatvector textnatvector(const utf16& text);
tnathyper textnathyper(const utf16& text);
// The evaluator on an expression run that is already in rewritten form.
double expression(const std::string& run);
// The text of a real as the evaluator reads it back: 16 decimals less noise, always '.',
// never the E form, whatever the display settings are.
std::string plainrealtext(double x);

// Printers.
utf16 realtext(double x);
utf16 roundedrealtext(double x, int digits);
utf16 nattext(int64_t n);
utf16 vectortext(const tvector& v);  // shortest form
utf16 hypertext(const thyper& h);    // shortest form
utf16 fullvectortext(const tvector& v);
utf16 fullhypertext(const thyper& h);
// Any count of components, shortest form (full = false) or all in brackets (full = true);
// digits < 0 prints each component as a real, else with that many decimals.
utf16 reallisttext(std::span<const double> values, bool full, int digits = -1);
utf16 natlisttext(std::span<const int64_t> values, bool full);
utf16 matrixtext(const std::array<thyper, 4>& rows);  // four full hypers in brackets
utf16 sizetext(int64_t bytes);  // " P", " T", " G", " M", " k" in steps of 1000

// Round to nearest, ties to even, after clamping to the 64-bit range.
int64_t roundnat(double x);
// Toward zero, after clamping to the 64-bit range; NaN is 0.
int64_t truncnat(double x);
// The relative position rule along an axis of s elements.
int64_t position(double v, int64_t s);

// Angles. The macro meets radians, or degrees while math.degree is on; degrees become
// radians as (d * pi) / 180 wherever a rotation is built, so one angle gives the same bits.
constexpr double degreestoradians(double d) { return d * std::numbers::pi / 180; }
// The unit sign: "90°" is 90 * (pi / 180).
constexpr double degreeunit = std::numbers::pi / 180;
double anglein(double angle);     // the macro's unit to radians
double angleout(double radians);  // radians to the macro's unit
