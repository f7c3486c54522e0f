// Matrix text and the short print of constants.
#include "library/mathtext.h"

#include <algorithm>
#include <cmath>

#include "script/values.h"

tmatrix textmatrix(const utf16& text) {
  tmatrix m{};
  if (poschar('<', text) == 0) {
    utf16 rest = text;
    for (thyper& row : m)
      for (double& x : row) x = cutreal(rest);
    return m;
  }
  size_t row = 0;
  int64_t open = 0;
  for (int64_t i = 1; i <= length(text) && row < m.size(); ++i) {
    const uint16_t c = charat(text, i);
    if (c == '<') {
      open = i;
    } else if (c == '>' && open > 0) {
      m[row++] = texthyper(copyrange(text, open + 1, i - 1));
      open = 0;
    }
  }
  return m;
}

utf16 significanttext(double x, int digits) {
  const int magnitude = x == 0 || !std::isfinite(x) ? 0 : static_cast<int>(std::floor(std::log10(std::fabs(x))));
  return roundedrealtext(x, std::max(digits - 1 - magnitude, 0));
}
