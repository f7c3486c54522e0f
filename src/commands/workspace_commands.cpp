// The global commands on all six workspaces at once.
#include "commands/families.h"
#include "field/workspaces.h"
#include "script/registry.h"

namespace {

void resetcmd(tscript& s) {
  if (checkparams(s, 0)) resetworkspaces();
}

void dumpallcmd(tscript& s) {
  if (checkparams(s, 0)) dumpworkspaces();
}

using enum tcommandkind;
const tcommand rows[] = {
    {"clear", procedure, resetcmd, nullptr, ""},
    {"clean", procedure, resetcmd, nullptr, "clean // same as new"},
    {"new", procedure, resetcmd, nullptr, "new // clean memory - all scalar, vector, tensor, mesh and line"},
    {"dump", procedure, dumpallcmd, nullptr, "dump // dump // dump all scalar, vector, tensor, mesh and line workspace lists"},
};

}  // namespace

tcommandfamily workspacecommands() { return {"", rows}; }
