// Matrix text and the short print of constants, on top of the value notation.
#pragma once
#include "library/mathmatrix.h"
#include "script/utf16.h"

// A matrix from text. Each innermost bracket group <...> is one row, read as a hyper, up
// to four rows; the outer brackets may be there or not (a bracketed parameter has lost
// them). A text without brackets gives sixteen numbers, row after row. What is missing is 0.
tmatrix textmatrix(const utf16& text);
// A real printed with the given count of significant digits, in the user's settings.
utf16 significanttext(double x, int digits);
