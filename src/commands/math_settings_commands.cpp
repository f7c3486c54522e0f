// The process-wide settings of number text.
#include "commands/families.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

template <bool tnumbersettings::*flag>
void setflag(tscript& s) {
  if (checkparams(s, 1)) numbersettings.*flag = textbool(param(s, 1));
}

template <int64_t tnumbersettings::*count>
void setcount(tscript& s) {
  if (checkparams(s, 1)) numbersettings.*count = textnat(param(s, 1));
}

using enum tcommandkind;
using ns = tnumbersettings;

constexpr tcommand rows[] = {
    {"math.scientific", k1, setflag<&ns::scientific>, nullptr, "math.scientific false // print numbers in the E form"},
    {"math.decimal", k1, setflag<&ns::decimal>, nullptr, "math.decimal true // true: decimal point . false: decimal comma ,"},
    {"math.digit", k1, setflag<&ns::digit>, nullptr, "math.digit false // group the digits of integers by three"},
    {"math.leading", k1, setcount<&ns::leading>, nullptr, "math.leading 0 // leading digits"},
    {"math.trailing", k1, setcount<&ns::trailing>, nullptr, "math.trailing 0 // trailing digits"},
    {"math.degree", k1, setflag<&ns::degree>, nullptr, "math.degree false // angles in degrees"},
    {"math.vector", k1, setflag<&ns::vector>, nullptr, "math.vector false // vectors in files written with brackets"},
    {"math.matrix", k1, setflag<&ns::matrix>, nullptr, "math.matrix false // matrices written in full"},
};

}  // namespace

tcommandfamily mathsettingscommands() { return {"", rows}; }
