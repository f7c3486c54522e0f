// Number settings, integer rounding, booleans and the relative position rule.
// Reading numbers is in values_read.cpp, printing them in values_print.cpp.
#include "script/values.h"

#include <cmath>
#include <limits>

tnumbersettings numbersettings;

tnumberformat savenumberformat() { return {numbersettings.scientific, numbersettings.decimal, numbersettings.digit}; }

void restorenumberformat(const tnumberformat& s) {
  numbersettings.scientific = s.scientific;
  numbersettings.decimal = s.decimal;
  numbersettings.digit = s.digit;
}

namespace {

// x must already be integral (or infinite, or NaN).
int64_t clampedint(double x) {
  constexpr double limit = 9223372036854775808.0;  // 2^63, exact as a double
  if (std::isnan(x)) return 0;
  if (x >= limit) return std::numeric_limits<int64_t>::max();
  if (x <= -limit) return std::numeric_limits<int64_t>::min();
  return static_cast<int64_t>(x);
}

}  // namespace

double anglein(double angle) { return numbersettings.degree ? degreestoradians(angle) : angle; }
double angleout(double radians) { return numbersettings.degree ? radians * 180 / std::numbers::pi : radians; }

// nearbyint follows the default rounding mode, which rounds ties to even.
int64_t roundnat(double x) { return clampedint(std::nearbyint(x)); }
int64_t truncnat(double x) { return clampedint(std::trunc(x)); }

bool textbool(const utf16& text) {
  const utf16 t = lower(trimblanks(text));
  if (empty(t)) return false;
  const uint16_t c = charat(t, 1);
  if (c == 'y' || c == 'j' || c == 't' || c == 'h') return true;
  if (equalutf8(t, "on") || equalutf8(t, "ok") || equalutf8(t, "1") || equalutf8(t, "+")) return true;
  return textnat(t) > 0;
}

int64_t position(double v, int64_t s) {
  const double span = static_cast<double>(s - 1);
  int64_t p = s / 2;  // NaN keeps the fallback
  if (v == 0) {
    p = roundnat(span * 0.5) + 1;
  } else if (v > 0 && v < 1) {
    p = roundnat(span * v) + 1;
  } else if (v >= 1) {
    p = roundnat(v);
  } else if (v > -1 && v < 0) {
    p = roundnat(span * (v + 1)) + 1;
  } else if (v <= -1) {
    p = roundnat(v + 1 + static_cast<double>(s));
  }
  return p >= 1 && p <= s ? p : s / 2;
}
