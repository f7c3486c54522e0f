// What the mesh readers and writers share: numbers read from text without the script,
// numbers written in the program's form, the used-vertex table, and the file sink that
// writes under a temporary name and renames on success.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/linefile.h"
#include "field/mesh.h"

// Up to n numbers from text; any run of blanks, commas, semicolons, tabs and angle brackets
// separates them. Malformed numbers read as 0. Returns how many were found.
int readnumbers(std::string_view text, double* out, int n);
// A whole count: -1 when the text holds none or it is not a sane count.
int64_t readcount(std::string_view text);
// A point or face number read as a real: toward zero, NaN as 0, and held within +-1e15 so
// that adding an object's base to it cannot overflow.
int64_t meshindex(double v);

// The program's real text with '.' (digits = 0), or rounded to digits - 1 decimals.
void appendreal(std::string& out, double x, int64_t digits = 0);
void appendvector(std::string& out, const tvector& v, const char* separator = " ", int64_t digits = 0);

// True when the face is visible and all its corners name points.
bool writtenface(const tmesh& m, const tface& f);
// New 1-based numbers of the points used by written faces, 0 for the others; count is the
// number of used points.
std::vector<int64_t> usedpoints(const tmesh& m, int64_t& count);
// True when some point has a non-zero normal.
bool hasnormals(const tmesh& m);
bool hascolors(const tmesh& m);

// The head of a Maya MEL script, the mesh's or the lines': name and the time of writing in
// the form the start of a run prints its date and time.
std::string melhead(const std::string& name);

// "Write file (<name>)." and the bytes under a temporary name, renamed to the name when all
// went well; nothing is left under the name otherwise.
bool meshwritefile(const utf16& name, std::string_view bytes);

// Reader end: pads the normals to the points and prints the summary lines.
void meshreadsummary(tmesh& m, int64_t objects, int64_t uvs, int64_t normals, int64_t colors, bool withcolors);
