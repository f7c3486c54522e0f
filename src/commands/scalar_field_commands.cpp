// The scalar field's own values: drawing value, background, tests, labels, load filter.
#include "commands/fieldrows.h"
#include "commands/scalar_rows.h"
#include "field/workspaces.h"

namespace {

tscalarfield& current() { return currentfield(scalarworkspace); }

void valuecmd(tscript& s) {
  if (checkparams(s, 1)) setdrawvalue(current(), textreal(param(s, 1)));
}

void backgroundcmd(tscript& s) {
  if (checkparams(s, 1)) setbackground(current(), textreal(param(s, 1)));
}

// False is the empty text.
void ifscalar(tscript& s) { setresult(s, fieldempty(current()) ? "" : "1"); }
void ifplain(tscript& s) { setresult(s, isplain(current()) ? "1" : ""); }

// x y z or <x, y, z>: the voxel's value, the background outside.
void getfunc(tscript& s) {
  const int64_t n = paramcount(s);
  if (n != 1 && n != 3) return reportcount(s, 3);
  const tnatvector at =
      n == 1 ? textnatvector(param(s, 1)) : tnatvector{textnat(param(s, 1)), textnat(param(s, 2)), textnat(param(s, 3))};
  setresult(s, nattext(getvalue(current(), at[0], at[1], at[2])));
}

void labelsclear(tscript& s) {
  if (checkparams(s, 0)) clearlabels(current());
}

void labelslength(tscript& s) { setresult(s, nattext(labelcount(current()))); }

void labelproc(tscript& s) {
  if (checkparams(s, 2)) setlabel(current(), textnat(param(s, 1)), param(s, 2));
}

void labelfunc(tscript& s) {
  if (checkparams(s, 1)) setresult(s, getlabel(current(), textnat(param(s, 1))));
}

void labelsdump(tscript& s) {
  if (checkparams(s, 0)) dumplabels(current());
}

// None resets to 0 and 1, one sets the offset with scale 1, two set both.
void loadfilter(tscript& s) {
  const int64_t n = paramcount(s);
  if (n > 2) return reportmax(s, 2);
  setloadfilter(current(), n >= 1 ? textnat(param(s, 1)) : 0, n == 2 ? textnat(param(s, 2)) : 1);
}

void endiancmd(tscript& s) {
  if (checkparams(s, 0)) setendian(current());
}

using enum tcommandkind;
const tcommand rows[] = {
    {"value", procedure, valuecmd, nullptr, "value v // the value that drawing writes"},
    {"background", procedure, backgroundcmd, nullptr, "background v // the value read outside the field"},
    {"ifscalar", variablefunction, ifscalar, nullptr, "ifscalar // true, if the field has a size bigger than 0x0x0"},
    {"ifplain", variablefunction, ifplain, nullptr, "ifplain // true, if all voxels have the same value"},
    {"get", function, getfunc, nullptr, "a := get x y z // or <x, y, z>: the voxel's value"},
    {"labels.new", procedure, labelsclear, nullptr, "labels.new // no labels"},
    {"labels.clear", procedure, labelsclear, nullptr, "labels.clear // same as labels.new"},
    {"labels.clean", procedure, labelsclear, nullptr, "labels.clean // same as labels.new"},
    {"labels.length", variablefunction, labelslength, nullptr, "labels.length // number of stored labels"},
    {"label", procedureandfunction, labelproc, labelfunc,
     "label i \"name\" // name of value i; \"*\" means same as the previous label; as a function: get it"},
    {"labels.dump", procedure, labelsdump, nullptr, "labels.dump // list all labels"},
    {"load.filter", procedure, loadfilter, nullptr,
     "load.filter 12000 10 // scoped filter (integer) values (12000+value)*10 (Default 0 1)"},
    {"setendian", procedure, endiancmd, nullptr, "setendian // swap endianness $ABCD -> $CDAB"},
};

}  // namespace

std::span<const tcommand> scalarfieldrows() { return rows; }
