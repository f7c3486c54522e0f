// What the readers of device and foreign volume files share: the failure line with an
// empty field, the voxel block of a data file handed to the raw reader, the place in space,
// and the small text parsing of their headers. Every reader makes its field anew in the
// kind it is given; the load filter is taken from the field before that.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "field/scalarfield.h"
#include "formats/niftiraw.h"

// Prints text and leaves f empty in kind; false.
bool volumefail(tscalarfield& f, uint8_t kind, const utf16& text);
// A raw request carrying f's load filter.
trawvolume volumerequest(const tscalarfield& f, int code, const tnatvector& size);
// The voxels of the file data from byte start on, through the raw reader. exactbytes > 0:
// the file must hold that many bytes a voxel and nothing more, else "  Wrong file size
// (XxYxZ)! ..."; 0: it must hold at least the voxels of the type, else the short-file lines
// and a zero field of the size. Sizes are checked before anything is allocated.
bool volumeblock(tscalarfield& f, uint8_t kind, const utf16& data, int64_t start, const trawvolume& r,
                 int64_t exactbytes);
// The message of a file whose size does not fit: "  Wrong file size (XxYxZ)! ...".
utf16 wrongfilesize(const tnatvector& size);
// Offset and matrix set, the transformation line logged and the file name kept; nothing on
// an empty field.
void volumeplace(tscalarfield& f, const tvector& offset, const trows& matrix, const utf16& name);
trows diagonalrows(const tvector& scale);

// Header text: a lower-cased copy (A..Z only), the numbers found in a text (anything that
// is no part of a number separates them), and the text behind the first '='.
std::string lowertext(std::string_view text);
std::vector<double> textnumbers(std::string_view text);
std::string_view behindequal(std::string_view line);
// The first number in a text, 0 without one.
double firstnumber(std::string_view text);
// A size read from a header: rounded and kept within 0..2^40 so that products stay exact.
int64_t headersize(double v);
