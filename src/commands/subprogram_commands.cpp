// run: another macro in a fresh engine of its own, which knows no registered commands.
#include <memory>

#include "commands/families.h"
#include "script/registry.h"
#include "script/run.h"
#include "shell/console.h"
#include "shell/files.h"

namespace {

void runmacro(tscript& s) {
  if (!checkparams(s, 1)) return;
  const utf16 file = param(s, 1);
  if (!fileexists(file)) {
    checkio(file, io_notfound);
    return;
  }
  printlnempty();
  println(">>>> Sub program");
  auto inner = std::make_unique<tscript>();
  inner->debug = s.debug;
  load(inner->store, file);
  runscript(*inner, false);
  if (!inner->lasterror.isempty()) {
    s.lasterror = inner->lasterror;
    s.halted = true;
  }
  inner.reset();
  printlnempty();
  println("<<<<< End of sub program");
}

using enum tcommandkind;

constexpr tcommand rows[] = {
    {"run", procedure, runmacro, nullptr, "run \"other.macro\" // run another macro with keywords and its own procedures only"},
};

}  // namespace

tcommandfamily subprogramcommands() { return {"", rows}; }
