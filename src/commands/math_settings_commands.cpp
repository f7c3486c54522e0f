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
    {"math.scientific", procedure, setflag<&ns::scientific>, nullptr, "math.scientific false // print numbers in the E form"},
    {"math.decimal", procedure, setflag<&ns::decimal>, nullptr, "math.decimal true // true: decimal point . false: decimal comma ,"},
    {"math.digit", procedure, setflag<&ns::digit>, nullptr, "math.digit false // group the digits of integers by three"},
    {"math.leading", procedure, setcount<&ns::leading>, nullptr, "math.leading 0 // leading digits"},
    {"math.trailing", procedure, setcount<&ns::trailing>, nullptr, "math.trailing 0 // trailing digits"},
    {"math.degree", procedure, setflag<&ns::degree>, nullptr, "math.degree false // angles in degrees"},
    {"math.vector", procedure, setflag<&ns::vector>, nullptr, "math.vector false // vectors in files written with brackets"},
    {"math.matrix", procedure, setflag<&ns::matrix>, nullptr, "math.matrix false // matrices written in full"},
};

}  // namespace

tcommandfamily mathsettingscommands() { return {"", rows}; }
