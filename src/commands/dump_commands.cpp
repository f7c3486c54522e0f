// The dumps of the engine's tables, written to the current output (a file of output.store,
// else the console), each framed by its title lines.
#include <string>

#include "commands/families.h"
#include "library/output.h"
#include "script/registry.h"
#include "script/variables.h"

namespace {

using tdumpbody = void (*)(tscript& s);

void line(tscript& s, const std::string& text) { scriptwriteln(s, text); }
std::string text(const utf16& v) { return utf16toutf8(v); }

void framed(tscript& s, const char* title, tdumpbody body) {
  line(s, std::string("***** dump.") + title + " *****");
  body(s);
  line(s, std::string("***** dump.") + title + " end *****");
}

void lines(tscript& s) {
  for (int64_t n = 1; n <= linecount(s.store); ++n) {
    utf16 t;
    getline(s.store, n, t);
    line(s, "  (" + std::to_string(n) + ") " + text(t));
  }
}

void used(tscript& s) {
  for (const tmember& m : s.members)
    if (m.usecount > 0) line(s, "  (" + text(m.name) + ")+[" + std::to_string(m.kind) + "] " + std::to_string(m.usecount) + " times");
}

void members(tscript& s) {
  for (const tmember& m : s.members)
    if (m.bodyline != 0) line(s, "  (" + text(m.name) + ")+[" + std::to_string(m.kind) + "]");
}

void modules(tscript& s) {
  for (size_t i = 0; i < s.modulestart.size(); ++i)
    line(s, "  (" + std::to_string(s.modulelevel[i]) + ") " + std::to_string(s.modulestart[i]));
}

void variablesfrom(tscript& s, int64_t level) {
  for (const tvariable& v : s.variables)
    if (v.level >= level) line(s, "  (" + text(v.name) + " := \"" + text(variablevalue(v)) + "\" [" + std::to_string(v.level) + "]");
}

void variables(tscript& s) { variablesfrom(s, 0); }
void scopevariables(tscript& s) { variablesfrom(s, s.level); }

void withs(tscript& s) {
  for (size_t i = 0; i < s.withnames.size(); ++i) line(s, "  (" + std::to_string(s.withlevels[i]) + ") " + text(s.withnames[i]));
}

void outputs(tscript& s) {
  for (const toutputfile& f : s.files) line(s, "  (" + std::to_string(f.level) + ") " + text(f.name));
}

void stack(tscript& s) {
  for (size_t i = 0; i < s.blocknames.size(); ++i) line(s, "  (" + std::to_string(i + 1) + ") " + text(s.blocknames[i]));
}

void history(tscript& s) {
  for (const utf16& r : s.redo) line(s, "  " + text(r));
  line(s, "***** *****");
  for (const utf16& u : s.undo) line(s, "  " + text(u));
}

void dumpline(tscript& s) { framed(s, "line", lines); }
void dumpused(tscript& s) { framed(s, "used", used); }
void dumpprog(tscript& s) { framed(s, "prog", members); }
void dumpfunc(tscript& s) { framed(s, "func", members); }
void dumpmodulus(tscript& s) { framed(s, "modulus", modules); }
void dumpvar(tscript& s) { framed(s, "var", variables); }
void dumpvarscope(tscript& s) { framed(s, "vars", scopevariables); }
void dumpwith(tscript& s) { framed(s, "with", withs); }
void dumpoutput(tscript& s) { framed(s, "output", outputs); }
void dumpstack(tscript& s) { framed(s, "stack", stack); }
void dumphistory(tscript& s) { framed(s, "redo & undo", history); }

void dumpall(tscript& s) {
  for (tdumpbody d : {dumpline, dumpused, dumpprog, dumpmodulus, dumpvar, dumpwith, dumpoutput, dumpstack, dumphistory}) d(s);
}

using enum tcommandkind;

constexpr tcommand rows[] = {
    {"line", procedure, dumpline, nullptr, "dump.line // dump all lines of the macro"},
    {"used", procedure, dumpused, nullptr, "dump.used // dump the commands that were used and how often"},
    {"prog", procedure, dumpprog, nullptr, "dump.prog // dump the procedures and functions of the script"},
    {"func", procedure, dumpfunc, nullptr, "dump.func // same as dump.prog"},
    {"modulus", procedure, dumpmodulus, nullptr, "dump.modulus // dump the module records"},
    {"modul", procedure, dumpmodulus, nullptr, "dump.modul // same as dump.modulus"},
    {"var", procedure, dumpvar, nullptr, "dump.var // dump all variables"},
    {"var.scope", procedure, dumpvarscope, nullptr, "dump.var.scope // dump the variables of the current block"},
    {"vars.scope", procedure, dumpvarscope, nullptr, "dump.vars.scope // same as dump.var.scope"},
    {"with", procedure, dumpwith, nullptr, "dump.with // dump the active with prefixes"},
    {"output", procedure, dumpoutput, nullptr, "dump.output // dump the open output files"},
    {"stack", procedure, dumpstack, nullptr, "dump.stack // dump the block stack"},
    {"undo", procedure, dumphistory, nullptr, "dump.undo // dump the command history"},
    {"dump.redo", procedure, dumphistory, nullptr, "dump.dump.redo // same as dump.undo"},
    {"all", procedure, dumpall, nullptr, "dump.all // all dumps"},
};

}  // namespace

tcommandfamily dumpcommands() { return {"dump.", rows}; }
