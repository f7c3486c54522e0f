// Line files: the table of formats of the line cloud, the writers and the native reader.
// Every writer makes the file's bytes; the dispatch writes them under a temporary name and
// renames, so a failed save never leaves a half file under the name asked for.
#pragma once
#include <span>
#include <string>

#include "field/cloud.h"
#include "formats/formattable.h"
#include "geometry/cloudbuild.h"

using tlinewriter = std::string (*)(const tcloud&, const utf16& name);
using tlinereader = bool (*)(tcloud&, const utf16& name, double dropshare);
using tlineformat = tformatrow<tlinereader, tlinewriter>;

std::span<const tlineformat> lineformats();
std::string lineinputnote();
std::string lineoutputnote();

// By the lower-cased extension (all others: native text), or the given writer. Nothing for
// an empty name or an empty cloud.
bool linesave(const tcloud& c, const utf16& name);
bool linesavewith(const tcloud& c, const utf16& name, tlinewriter write);
// The native text; a share in 0..100 of the lines is dropped at random.
bool lineload(tcloud& c, const utf16& name, double dropshare);

// The writers, one file each.
std::string trkbytes(const tcloud& c, const utf16& name);
std::string vtpbytes(const tcloud& c, const utf16& name);
std::string objbytes(const tcloud& c, const utf16& name);
std::string dxfbytes(const tcloud& c, const utf16& name);
std::string swcbytes(const tcloud& c, const utf16& name);
std::string mv3dbytes(const tcloud& c, const utf16& name);
std::string melbytes(const tcloud& c, const utf16& name);
std::string nativebytes(const tcloud& c, const utf16& name);
bool nativeread(tcloud& c, const utf16& name, double dropshare);

// Shared pieces of the text writers.
std::string numbertext(double x);  // full digits, point as decimal mark
inline tcloudpoint pointof(const tcloud& c, int64_t i) { return c.points.get(i); }
