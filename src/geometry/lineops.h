// Operations on the line cloud: t values from the lines' geometry or statistics, erasing
// by rules, duplicates, rounding and the vector operations on two-point lines.
#pragma once
#include <cstdint>

#include "field/cloud.h"
#include "field/vectorfield.h"

void linecenter(tcloud& c);
void linecenterobjects(tcloud& c);
void linenumber(tcloud& c);
void linedistance(tcloud& c);
void linelengths(tcloud& c);

enum class tstatistic : uint8_t { mean, sd, min, median, max };
void linestatistic(tcloud& c, tstatistic s);

void lineerasetmin(tcloud& c, double v);
void lineerasetmax(tcloud& c, double v);
void lineeraselengthmin(tcloud& c, double v);
void lineeraselengthmax(tcloud& c, double v);
void lineeraseduplicates(tcloud& c);
void lineeraseduplicatesnear(tcloud& c, double d);
void lineeraseduplicatesbegin(tcloud& c, double d);
void linemeanduplicatesnear(tcloud& c, double d);

void linediscrete(tcloud& c, double s, bool withtime);

enum class tvectorop : uint8_t { norm, normscale, scale, minscale, maxscale, negate, invert };
void linevectorop(tcloud& c, tvectorop op, double s);

// A copy of from into to, x, y, z scaled by f and t by ft.
void linecopy(const tcloud& from, tcloud& to, const tvector& f, double ft);
bool lineobjectname(tcloud& c, int64_t object, const utf16& name);
// Every non-zero vector as a line from its voxel's global position to the tip.
void linesfromvectors(const tvectorfield& f, tcloud& c);
